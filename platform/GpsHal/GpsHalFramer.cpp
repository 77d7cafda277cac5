#include "GpsHal/GpsHalFramer.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {

constexpr unsigned char kSentenceStart = '$';
constexpr unsigned char kSync1 = 0xB5;
constexpr unsigned char kSync2 = 0x62;
constexpr unsigned kFrameHeader = 6;
constexpr unsigned kFrameChecksum = 2;

constexpr std::array<bool, 256> makeInsideSentence() {
    std::array<bool, 256> inside{};
    for (unsigned byte = 0x20; byte <= 0x7E; ++byte) {
        inside[byte] = byte != kSentenceStart;
    }
    inside['\r'] = true;
    return inside;
}

/** Whether a sentence continues with this byte. */
constexpr std::array<bool, 256> kInsideSentence = makeInsideSentence();

}  // namespace

/** Takes as many bytes as fit; at least one, since an unfinished chunk fills at most half of the buffer. */
unsigned GpsHalFramer::append(const unsigned char* data, unsigned length) {
    if (mBegin == mEnd || mEnd == kCapacity) compact();
    const unsigned taken = std::min(length, kCapacity - mEnd);
    std::memcpy(mBuffer + mEnd, data, taken);
    mEnd += taken;
    return taken;
}

/** Moves the bytes from mBegin on, and their sums, to the front of the buffer. */
void GpsHalFramer::compact() {
    mSummed = std::max(mSummed, mBegin);
    std::memmove(mBuffer, mBuffer + mBegin, mEnd - mBegin);
    std::memmove(mSums, mSums + mBegin, mSummed - mBegin + 1);
    std::memmove(mSumsOfSums, mSumsOfSums + mBegin, mSummed - mBegin + 1);
    mSummed -= mBegin;
    mEnd -= mBegin;
    mBegin = 0;
}

/** Removes the next whole chunk; none when the rest may still become one. */
GpsHalFramer::Chunk GpsHalFramer::next(GiveUp giveUp) {
    while (mBegin < mEnd) {
        Verdict verdict = judge();
        if (verdict.kind == Verdict::kUnfinished) {
            const bool isSentence = mBuffer[mBegin] == kSentenceStart;
            if (giveUp == GiveUp::kNothing || (giveUp == GiveUp::kFrames && isSentence)) break;
            verdict = {Verdict::kNoise, 1};
        }
        unsigned char* const data = mBuffer + mBegin;
        mBegin += verdict.length;
        mSeen = 1;
        if (verdict.kind == Verdict::kChunk) {
            ++mChunks;
            return {data, verdict.length};
        }
        mDroppedBytes += verdict.length;
    }
    return {nullptr, 0};
}

GpsHalFramer::Verdict GpsHalFramer::judge() {
    if (mBuffer[mBegin] == kSentenceStart) return judgeSentence();
    if (mBuffer[mBegin] == kSync1) return judgeFrame();
    return judgeNoise();
}

GpsHalFramer::Verdict GpsHalFramer::judgeNoise() const {
    unsigned at = mBegin + 1;
    while (at < mEnd && mBuffer[at] != kSentenceStart && mBuffer[at] != kSync1) {
        ++at;
    }
    return {Verdict::kNoise, at - mBegin};
}

GpsHalFramer::Verdict GpsHalFramer::judgeSentence() {
    const unsigned limit = std::min(mEnd, mBegin + kMaxSentence);
    unsigned at = mBegin + mSeen;
    while (at < limit && kInsideSentence[mBuffer[at]]) {
        ++at;
    }
    const unsigned length = at - mBegin;
    if (at < limit)
        return mBuffer[at] == '\n' ? Verdict{Verdict::kChunk, length + 1} : Verdict{Verdict::kNoise, length};
    if (length == kMaxSentence) return {Verdict::kNoise, length};
    mSeen = length;
    return {Verdict::kUnfinished, length};
}

GpsHalFramer::Verdict GpsHalFramer::judgeFrame() {
    const unsigned char* const frame = mBuffer + mBegin;
    const unsigned available = mEnd - mBegin;
    if (available >= 2 && frame[1] != kSync2) return {Verdict::kNoise, 1};
    if (available < kFrameHeader) return {Verdict::kUnfinished, available};
    const unsigned payload = frame[4] + (unsigned{frame[5]} << 8U);
    if (payload > kMaxPayload) return {Verdict::kNoise, 1};
    const unsigned length = payload + kFrameOverhead;
    if (available < length) return {Verdict::kUnfinished, available};
    if (!checksumHolds(mBegin + 2, mBegin + length - kFrameChecksum)) return {Verdict::kNoise, 1};
    return {Verdict::kChunk, length};
}

/** Whether the two bytes at `end` are the Fletcher checksum of the bytes before them from `begin` on: the sum of these
 *  bytes and the sum of all these sums, modulo 256. */
bool GpsHalFramer::checksumHolds(unsigned begin, unsigned end) {
    mSummed = std::max(mSummed, begin);  // the sums may start from any values: only differences are used
    unsigned sum = mSums[mSummed];
    unsigned sumOfSums = mSumsOfSums[mSummed];
    while (mSummed < end) {
        sum += mBuffer[mSummed++];
        sumOfSums += sum;
        mSums[mSummed] = static_cast<unsigned char>(sum);
        mSumsOfSums[mSummed] = static_cast<unsigned char>(sumOfSums);
    }
    const unsigned a = mSums[end] - mSums[begin];
    const unsigned b = mSumsOfSums[end] - mSumsOfSums[begin] - (end - begin) * mSums[begin];
    return mBuffer[end] == (a & 0xFFU) && mBuffer[end + 1] == (b & 0xFFU);
}
