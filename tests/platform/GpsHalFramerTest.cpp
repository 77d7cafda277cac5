#include "GpsHal/GpsHalFramer.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <ctime>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace std::string_literals;
using testing::ElementsAreArray;

const std::string kGga = "$GPGGA,092750.000,5321.6802,N,00630.3372,W,1,8,1.03,61.7,M,55.2,M,,*76\r\n";
const std::string kRmc = "$GPRMC,092750.000,A,5321.6802,N,00630.3372,W,0.02,31.66,280511,,,A*43\r\n";

std::string checksumOf(const std::string& bytes) {
    unsigned a = 0;
    unsigned b = 0;
    for (const char byte : bytes) {
        a = (a + static_cast<unsigned char>(byte)) % 256;
        b = (b + a) % 256;
    }
    return {static_cast<char>(a), static_cast<char>(b)};
}

std::string header(std::size_t payloadLength) {
    return "\xB5\x62\x06\x01"s + static_cast<char>(payloadLength % 256) + static_cast<char>(payloadLength / 256);
}

std::string frameOf(const std::string& payload) {
    const std::string bytes = header(payload.size()) + payload;
    return bytes + checksumOf(bytes.substr(2));
}

std::string damaged(std::string bytes, std::size_t fromEnd) {
    ++bytes[bytes.size() - fromEnd];
    return bytes;
}

const std::string kAck = frameOf("\x06\x08");

struct Outcome {
    std::vector<std::string> chunks;
    std::vector<std::size_t> positions;
    unsigned long dropped = 0;

    bool operator==(const Outcome&) const = default;
};

/** Feeds a stream in pieces, each as long as `pieceLength()` says. */
class Stream {
public:
    template <class PieceLength>
    Stream(const std::string& bytes, PieceLength pieceLength) {
        for (std::size_t at = 0, length = 0; at < bytes.size(); at += length) {
            length = std::min<std::size_t>(pieceLength(), bytes.size() - at);
            // A copy of its own, so that a look beyond a piece is noticed.
            const std::vector<char> piece(&bytes[at], &bytes[at] + length);
            mFramer->feed(piece.data(), static_cast<unsigned>(length), [this](auto... chunk) { take(chunk...); });
        }
        mOutcome.dropped = mFramer->droppedBytes();
    }

    Outcome outcome() const { return mOutcome; }
    Outcome finish() {
        mFramer->finish([this](auto... chunk) { take(chunk...); });
        EXPECT_EQ(mFramer->chunks(), mOutcome.chunks.size());
        mOutcome.dropped = mFramer->droppedBytes();
        return mOutcome;
    }
    Outcome reset() {
        mFramer->reset();
        mOutcome.dropped = mFramer->droppedBytes();
        return mOutcome;
    }

private:
    void take(const unsigned char* chunk, unsigned length) {
        mOutcome.positions.push_back(mTaken + mFramer->droppedBytes());
        mOutcome.chunks.emplace_back(reinterpret_cast<const char*>(chunk), length);
        mTaken += length;
    }

    std::unique_ptr<GpsHalFramer> mFramer = std::make_unique<GpsHalFramer>();
    Outcome mOutcome;
    std::size_t mTaken = 0;
};

Outcome wholeOutcome(const std::string& bytes) {
    return Stream(bytes, [&] { return bytes.size(); }).outcome();
}

struct Case {
    const char* name;
    std::string stream;
    std::vector<std::string> chunks;
    std::size_t unfinished = 0;  // bytes at the end that are neither taken nor dropped
};

const Case kCases[] = {
    {"OneSentence", kGga, {kGga}},
    {"SentencesAndFramesInTurn", kGga + kAck + kRmc + kAck + kAck, {kGga, kAck, kRmc, kAck, kAck}},
    {"NoiseBetween", "\r\n\0abc"s + kGga + "\xFFnoise\n" + kAck + "\n", {kGga, kAck}},
    {"DollarStartsOver", "$GPGG$GP$" + kGga, {kGga}},
    {"LowestAndHighestCharacters", "$ ~\r\n", {"$ ~\r\n"}},
    {"CarriageReturnsAnywhere", "$\r\rA\rB\n", {"$\r\rA\rB\n"}},
    {"ControlCharacterAbandons", "$GP\x1FGA\r\n" + kGga, {kGga}},
    {"DeleteAbandons", "$GP\x7FGA\r\n" + kGga, {kGga}},
    {"HighBitAbandons", "$GP\x80GA\r\n" + kGga, {kGga}},
    {"FrameInsideSentence", "$GPGGA,0927" + kAck + "50.000\r\n" + kRmc, {kAck, kRmc}},
    {"LongestSentence", "$" + std::string(1022, 'x') + "\n" + kGga, {"$" + std::string(1022, 'x') + "\n", kGga}},
    {"SentenceTooLong", "$" + std::string(1023, 'x') + "\n" + kGga, {kGga}},
    {"EmptyPayload", frameOf("") + kGga, {frameOf(""), kGga}},
    {"SentenceInPayload", frameOf(kGga), {frameOf(kGga)}},
    {"LongestPayload", frameOf(std::string(8192, '\xB5')) + kGga, {frameOf(std::string(8192, '\xB5')), kGga}},
    {"PayloadTooLong", header(8193) + kGga + kAck, {kGga, kAck}},
    {"SyncByteRepeated", "\xB5\xB5\xB5" + kAck + "\xB5" + kGga, {kAck, kGga}},
    {"SyncRepeated", "\xB5\x62\xB5\x62" + kAck + std::string(300, '.') + kGga, {kAck, kGga}},
    {"FirstChecksumByteWrong", damaged(kAck, 2) + kGga, {kGga}},
    {"SecondChecksumByteWrong", damaged(kAck, 1) + kGga, {kGga}},
    {"BrokenFrameAroundSentence", header(kGga.size()) + kGga + "??" + kAck, {kGga, kAck}},
    {"BogusLengthOverManyChunks",
     header(500) + kGga + kAck + kRmc + "\xB5" + kAck + std::string(300, 'x') + kGga,
     {kGga, kAck, kRmc, kAck, kGga}},
    {"BogusLengthInsideBogusLength", header(200) + header(150) + kAck + kGga + kGga + kGga, {kAck, kGga, kGga, kGga}},
    {"UnfinishedSentence", kGga + "noise" + kRmc.substr(0, 40), {kGga}, 40},
    {"UnfinishedFrame", kGga + header(8192) + kGga, {kGga}, 6 + kGga.size()},
    {"UnfinishedSync", kGga + "\xB5", {kGga}, 1},
};

class FramerCase : public testing::TestWithParam<Case> {};
INSTANTIATE_TEST_SUITE_P(Framer, FramerCase, testing::ValuesIn(kCases),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_P(FramerCase, FindsTheSameChunksWhereverTheStreamIsSplit) {
    const std::string& stream = GetParam().stream;
    const Outcome whole = wholeOutcome(stream);
    EXPECT_THAT(whole.chunks, ElementsAreArray(GetParam().chunks));
    std::size_t taken = 0;
    for (const std::string& chunk : whole.chunks) {
        taken += chunk.size();
    }
    EXPECT_EQ(whole.dropped + taken + GetParam().unfinished, stream.size());

    const std::size_t step = stream.size() < 3000 ? 1 : 17;
    for (std::size_t first = 0; first < stream.size(); first += step) {
        bool isFirst = true;
        const auto split = [&] { return std::exchange(isFirst, false) ? first : stream.size(); };
        ASSERT_EQ(Stream(stream, split).outcome(), whole) << "split at " << first;
    }
    EXPECT_EQ(Stream(stream, [] { return 1; }).outcome(), whole);
}

TEST(Framer, EndOfStreamSetsFreeWhatABrokenLengthHadClaimed) {
    const std::string stream = kGga + header(5000) + kRmc + header(3) + kAck + kGga.substr(0, 20);
    const Outcome outcome = Stream(stream, [] { return 7; }).finish();
    EXPECT_THAT(outcome.chunks, ElementsAreArray({kGga, kRmc, kAck}));
    EXPECT_EQ(outcome.dropped, 6U + 6U + 20U);
}

TEST(Framer, ResetDropsTheUnfinishedChunk) {
    const Outcome outcome = Stream(kGga + "$GPRMC,0927", [] { return 7; }).reset();
    EXPECT_THAT(outcome.chunks, ElementsAreArray({kGga}));
    EXPECT_EQ(outcome.dropped, 11U);
}

/** Random streams of intact chunks, damaged chunks and noise that is rich in what starts and ends a chunk. */
class Traffic {
public:
    explicit Traffic(unsigned seed) : mRandom(seed) {
        for (std::size_t left = 1 + below(60); left > 0; --left) {
            const std::string chunk = below(2) == 0 ? sentence() : frameOf(noise(below(8) == 0 ? 8192 : 60));
            switch (below(5)) {
                case 0:
                    mBytes += chunk.substr(0, below(chunk.size()));
                    break;
                case 1:
                    mBytes += header(below(9000));
                    break;
                case 2:
                    mBytes += noise(200);
                    break;
                default:
                    mIntact.emplace_back(mBytes.size(), chunk);
                    mBytes += chunk;
            }
        }
    }

    const std::string& bytes() const { return mBytes; }
    /** Position and bytes of what must be found. */
    const std::vector<std::pair<std::size_t, std::string>>& intact() const { return mIntact; }
    std::size_t below(std::size_t limit) { return std::uniform_int_distribution<std::size_t>(0, limit - 1)(mRandom); }

private:
    std::string sentence() {
        std::string text = "$";
        for (std::size_t left = below(below(10) == 0 ? 1021 : 80); left > 0; --left) {
            text += static_cast<char>('%' + below('~' - '%' + 1));
        }
        return text + "\r\n";
    }
    std::string noise(std::size_t limit) {
        static const std::string kFavourites = "$\xB5\x62\xB5\x62\r\n\0\x1F\xFF,A"s;
        std::string bytes;
        for (std::size_t left = below(limit + 1); left > 0; --left) {
            bytes += below(2) == 0 ? static_cast<char>(below(256)) : kFavourites[below(kFavourites.size())];
        }
        return bytes;
    }

    std::mt19937 mRandom;
    std::string mBytes;
    std::vector<std::pair<std::size_t, std::string>> mIntact;
};

bool isWellFormed(const std::string& chunk) {
    if (chunk.starts_with("\xB5\x62")) {
        const std::size_t payloadLength = chunk.size() - 8;
        const bool isHeaderRight = chunk.substr(4, 2) == header(payloadLength).substr(4);
        return isHeaderRight && chunk.ends_with(checksumOf(chunk.substr(2, payloadLength + 4)));
    }
    const bool isPlain = std::all_of(chunk.begin() + 1, chunk.end() - 1,
                                     [](char c) { return c == '\r' || (c >= ' ' && c <= '~' && c != '$'); });
    return chunk.starts_with('$') && chunk.ends_with('\n') && isPlain && chunk.size() <= 1024;
}

/** Whether a chunk that was found starts before `position` and reaches beyond it: a longer frame that happens to be
 *  legal. */
bool isCovered(const Outcome& outcome, std::size_t position) {
    for (std::size_t i = 0; i < outcome.chunks.size(); ++i) {
        const std::size_t begin = outcome.positions[i];
        if (begin < position && position < begin + outcome.chunks[i].size()) return true;
    }
    return false;
}

TEST(Framer, LosesNothingIntactAndInventsNothingInAnyTraffic) {
    for (unsigned seed = 0; seed < 150; ++seed) {
        SCOPED_TRACE(seed);
        Traffic traffic(seed);
        const std::string& bytes = traffic.bytes();
        Stream stream(bytes, [&] { return bytes.size(); });
        const Outcome before = stream.outcome();
        ASSERT_EQ(Stream(bytes, [&] { return 1 + traffic.below(300); }).outcome(), before);
        ASSERT_EQ(Stream(bytes, [&] { return 1 + traffic.below(3); }).outcome(), before);

        const Outcome found = stream.finish();
        std::size_t total = found.dropped;
        for (std::size_t i = 0; i < found.chunks.size(); ++i) {
            ASSERT_TRUE(isWellFormed(found.chunks[i])) << testing::PrintToString(found.chunks[i]);
            ASSERT_EQ(bytes.substr(found.positions[i], found.chunks[i].size()), found.chunks[i]);
            total += found.chunks[i].size();
        }
        ASSERT_EQ(total, bytes.size());
        for (const auto& [position, chunk] : traffic.intact()) {
            const auto at = std::find(found.positions.begin(), found.positions.end(), position);
            if (at == found.positions.end() && isCovered(found, position)) continue;
            ASSERT_NE(at, found.positions.end()) << "nothing found at " << position;
            ASSERT_EQ(found.chunks[static_cast<std::size_t>(at - found.positions.begin())], chunk);
        }
    }
}

std::clock_t timeFor(const std::string& pattern) {
    std::string bytes;
    while (bytes.size() < (1U << 20U))
        bytes += pattern;
    const std::clock_t start = std::clock();
    wholeOutcome(bytes);
    return std::clock() - start;
}

TEST(Framer, TakesTimeInProportionToHostileBytes) {
    const std::clock_t harmless = timeFor(std::string(64, '.'));
    // Adding up, or searching, every claimed length anew would take longer by a factor of a thousand.
    for (const std::string& pattern : {"\xB5\x62\x06\x01\xFF\x1F"s, "\xB5\x62"s, "$"s, "$\xB5\x62\x06\x01\x00\x20"s}) {
        EXPECT_LT(timeFor(pattern), 100 * harmless) << testing::PrintToString(pattern);
    }
}

}  // namespace
