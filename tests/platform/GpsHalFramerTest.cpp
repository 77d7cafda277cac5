#include "GpsHal/GpsHalFramer.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <ctime>
#include <memory>
#include <random>
#include <vector>

#include "tests/support/Messages.h"

namespace {

using namespace std::string_literals;
using testing::ElementsAreArray;

const std::string kGga = "$GPGGA,092750.000,5321.6802,N,00630.3372,W,1,8,1.03,61.7,M,55.2,M,,*76\r\n";

std::string header(std::size_t payloadLength) {
    return "\xB5\x62\x06\x01"s + static_cast<char>(payloadLength % 256) + static_cast<char>(payloadLength / 256);
}

std::string frameOf(const std::string& payload) {
    return ubxFrame(6, 1, payload);
}

const std::string kShortFrame = frameOf("\x06\x08");

struct Framed {
    std::vector<std::string> chunks;
    unsigned long dropped = 0;

    bool operator==(const Framed&) const = default;
};

enum class End { none, pause, finish };

/** What becomes of a stream that comes in pieces, the first of them of its own length. */
Framed outcomeOf(const std::string& bytes, std::size_t first, std::size_t others, End end = End::none) {
    Framed outcome;
    const auto take = [&](const unsigned char* chunk, unsigned length) {
        outcome.chunks.emplace_back(reinterpret_cast<const char*>(chunk), length);
    };
    const auto framer = std::make_unique<GpsHalFramer>();
    for (std::size_t at = 0, length = first; at < bytes.size(); at += length, length = others) {
        length = std::min(length, bytes.size() - at);
        // A copy of its own, so that a look beyond a piece is noticed.
        const std::vector<char> piece(&bytes[at], &bytes[at] + length);
        framer->feed(piece.data(), static_cast<unsigned>(length), take);
    }
    if (end == End::pause) framer->pause(take);
    if (end == End::finish) framer->finish(take);
    EXPECT_EQ(framer->chunks(), outcome.chunks.size());
    outcome.dropped = framer->droppedBytes();
    return outcome;
}

struct Case {
    const char* name;
    std::string stream;
    std::vector<std::string> chunks;
    std::size_t unfinished = 0;  // bytes at the end that are neither taken nor dropped
};

const Case kCases[] = {
    {"LowestAndHighestCharacters", "$ ~\r\n", {"$ ~\r\n"}},
    {"CarriageReturnsAnywhere", "$\r\rA\rB\n", {"$\r\rA\rB\n"}},
    {"ControlCharacterAbandons", "$GP\x1FGA\r\n" + kGga, {kGga}},
    {"DeleteAbandons", "$GP\x7FGA\r\n" + kGga, {kGga}},
    {"HighBitAbandons", "$GP\x80GA\r\n" + kGga, {kGga}},
    {"LongestSentence", "$" + std::string(1022, 'x') + "\n" + kGga, {"$" + std::string(1022, 'x') + "\n", kGga}},
    {"SentenceTooLong", "$" + std::string(1023, 'x') + "\n" + kGga, {kGga}},
    {"EmptyPayload", frameOf("") + kGga, {frameOf(""), kGga}},
    {"SentenceInPayload", frameOf(kGga), {frameOf(kGga)}},
    {"LongestPayload", frameOf(std::string(8192, '\xB5')) + kGga, {frameOf(std::string(8192, '\xB5')), kGga}},
    {"PayloadTooLong", kGga + header(8193), {kGga}},
    {"BogusLengthInsideBogusLength",
     header(200) + header(150) + kShortFrame + kGga + kGga + kGga,
     {kShortFrame, kGga, kGga, kGga}},
    {"UnfinishedSentence", kGga + "noise" + kGga.substr(0, 40), {kGga}, 40},
    {"UnfinishedFrame", kGga + header(8192) + kGga, {kGga}, 6 + kGga.size()},
    {"NoSync", kGga + "\xB5x", {kGga}},
    {"UnfinishedSync", kGga + "\xB5", {kGga}, 1},
};

TEST(Framer, FindsChunksInOnePieceAndInManyAndCountsWhatItDrops) {
    for (const auto& [name, stream, chunks, unfinished] : kCases) {
        SCOPED_TRACE(name);
        const Framed whole = outcomeOf(stream, stream.size(), 1);
        EXPECT_THAT(whole.chunks, ElementsAreArray(chunks));
        std::size_t taken = 0;
        for (const std::string& chunk : whole.chunks)
            taken += chunk.size();
        EXPECT_EQ(whole.dropped + taken + unfinished, stream.size());
        EXPECT_EQ(outcomeOf(stream, 1, 1), whole);
    }
}

TEST(Framer, GivesUpFramesInAPauseAndSentencesTooAtTheEndOfTheStream) {
    const std::string claimed = kGga + header(5000) + kGga + header(3) + kShortFrame;
    const Framed freed{{kGga, kGga, kShortFrame}, 6 + 6};
    const std::string half = kGga.substr(0, 20);
    EXPECT_EQ(outcomeOf(claimed + half, 7, 7, End::pause), freed);
    EXPECT_EQ(outcomeOf(claimed + half, 7, 7, End::finish), (Framed{freed.chunks, freed.dropped + 20}));
    EXPECT_EQ(outcomeOf(claimed + "\xB5", 7, 7, End::pause), (Framed{freed.chunks, freed.dropped + 1}));
}

/** Chunks, all different, and noise that is none and completes none, in any mix: a line feed could make a sentence of
 *  it. Lengths that are claimed in vain keep more bytes undecided than the framer has room for behind them. */
class Mixture {
public:
    explicit Mixture(unsigned seed) : mRandom(seed) {
        for (std::size_t pieces = 5 + below(300); pieces > 0; --pieces) {
            const bool isChunk = below(8) < 3;
            const std::string bytes = isChunk ? chunk() : noise();
            if (isChunk) expected.chunks.push_back(bytes);
            if (!isChunk) expected.dropped += bytes.size();
            stream += bytes;
        }
    }
    std::size_t below(std::size_t limit) { return mRandom() % limit; }

    std::string stream;
    Framed expected;

private:
    std::string anyBytes(char insteadOfLineFeed) {
        std::string bytes(below(1 + below(3000)), '\0');
        for (char& byte : bytes)
            byte = static_cast<char>(below(256));
        std::replace(bytes.begin(), bytes.end(), '\n', insteadOfLineFeed);
        return bytes;
    }
    std::string chunk() { return below(3) == 0 ? frameOf(anyBytes('\n')) : sentence("GP" + std::to_string(mRandom())); }
    std::string noise() {
        const std::string all[] = {anyBytes('$'), "\xB5\xB5\x62", header(below(2) * 3000 + below(2500)),
                                   kGga.substr(0, below(kGga.size())), "$"};
        return all[below(5)];
    }

    std::mt19937 mRandom;
};

TEST(Framer, FindsEveryIntactChunkAmongRandomNoiseAndInventsNone) {
    for (unsigned seed = 0; seed < 200; ++seed) {
        Mixture mixture(seed);
        const std::size_t first = mixture.below(mixture.stream.size());
        const std::size_t others = 1 + mixture.below(600);
        ASSERT_EQ(outcomeOf(mixture.stream, first, others, End::finish), mixture.expected) << seed;
    }
}

std::clock_t timeFor(const std::string& pattern) {
    std::string bytes;
    while (bytes.size() < (1U << 20U))
        bytes += pattern;
    const std::clock_t start = std::clock();
    outcomeOf(bytes, bytes.size(), 1);
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
