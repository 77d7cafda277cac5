#include <gmock/gmock.h>

#include <cstdlib>
#include <iterator>
#include <random>

#include "NmeaSupport.h"
#include "tests/support/LogCapture.h"

namespace {

std::mt19937_64 numbers(31);

std::size_t below(std::size_t limit) {
    return numbers() % limit;
}

/** A good sentence with a few stretches changed, lost, doubled or swollen; mostly with a right checksum. Or noise. */
std::string hostileChunk() {
    std::string body = kBodies[below(std::size(kBodies))];
    for (std::size_t changes = below(6); changes > 0; --changes) {
        const std::size_t place = below(body.size() + 1);
        const std::string stretches[] = {
            "", std::string(1, static_cast<char>(numbers())), std::string(below(60), "9-,x"[below(4)]),
            body.substr(place, 20) + body.substr(place, 20), std::to_string(static_cast<long>(numbers()))};
        body.replace(place, below(12), stretches[below(std::size(stretches))]);
    }
    std::string chunk = sentence(body);
    if (below(8) == 0) chunk.resize(below(chunk.size() + 1));
    if (below(8) == 0) {
        for (char& c : chunk)
            c = below(2) == 0 ? static_cast<char>(numbers()) : "$,*\n\r0GP"[below(8)];
    }
    return chunk;
}

/** Whether a chunk's first line holds a sentence, by a reading of its own. */
bool holdsSentence(const std::string& chunk) {
    const std::size_t stop = chunk.find_first_of(std::string("\n\0", 2));
    if (stop == std::string::npos || stop > 127) return false;
    const std::string line = chunk.substr(0, stop);
    const std::size_t dollar = line.rfind('$');
    const std::size_t star = dollar == std::string::npos ? dollar : line.find('*', dollar);
    if (star == std::string::npos || line.size() < star + 4) return false;
    unsigned long sum = 0;
    for (std::size_t i = dollar + 1; i < star; ++i)
        sum ^= static_cast<unsigned char>(line[i]);
    return std::strtoul(line.substr(star + 1, 2).c_str(), nullptr, 16) == sum;
}

/** What a listener of WGS84 gets for a chunk of a receiver that reports Tokyo; nothing when it is refused. */
std::string rewrite(std::string_view chunk) {
    const std::vector<char> exact(chunk.begin(), chunk.end());
    std::vector<char> out(GpsParseNmeaManager::REGENERATED_SIZE, '#');
    const std::vector<char> untouched = out;
    unsigned int size = 7777;
    if (GpsParseNmeaManager().convertTokyoToWgs84ForNmea(exact.data(), static_cast<unsigned int>(exact.size()),
                                                         GEODETIC_SYSTEM_WGS84, out.data(), &size)) {
        return {out.data(), size};
    }
    EXPECT_TRUE(out == untouched && size == 7777) << "the outputs are left alone";
    return "";
}

TEST(HostileBytes, AreRefusedOrReadAndNeverOverread) {
    LogCapture log;
    GpsParseNmeaManager manager;
    Recorder wgs84, tokyo;
    const Registry registry = {{&wgs84, kWgs84}, {&tokyo, kTokyo}};
    int sentences = 0;
    int regenerated = 0;
    for (int round = 0; round < 50000; ++round) {
        const std::string chunk = hostileChunk();
        const bool isSentence = holdsSentence(chunk);
        ASSERT_EQ(feed(manager, chunk, registry, kTokyo), isSentence) << chunk;
        const std::string rewritten = rewrite(chunk);
        ASSERT_TRUE(isSentence || rewritten.empty()) << chunk;
        sentences += isSentence;
        if (!rewritten.empty() && rewritten != chunk) {
            ++regenerated;
            ASSERT_EQ(rewritten, sentence(rewritten.substr(1, rewritten.rfind('*') - 1))) << chunk;
        }
        log.take();
        wgs84.kinds.clear();
        tokyo.kinds.clear();
    }
    EXPECT_GT(sentences, 5000);
    EXPECT_GT(regenerated, 1000);
}

TEST(Rewriting, KeepsCodesAndLeavesOtherSentencesAlone) {
    const std::pair<std::string, std::string> rows[] = {
        {"GPGLL,,,,,,V,N", "$GPGLL,  0.36927,N,   0.27344,E,000000.000,V,N*5E"},
        {"GLGLL,,,,,,A,D", ",A,D*5F"},
        {"GAGLL,,,,,,A,N", ",A,N*58"},
        {"GNGLL,,,,,,A,E", ",A,N*57"},
        {"GBGLL,,,,,,A,A", "$GPGLL,"}};
    for (const auto& [body, part] : rows)
        EXPECT_NE(rewrite(sentence(body)).find(part), std::string::npos) << rewrite(sentence(body));
    for (const std::string status : {"NF", "DR", "G2", "G3", "D2", "D3", "RK", "TT"}) {
        const std::string rewritten = rewrite(sentence("PUBX,00,,,,,,," + status + ",,,,,,,,,,,"));
        EXPECT_NE(rewritten.find("," + status + ","), std::string::npos) << rewritten;
    }
    std::string chunk = sentence(kBodies[2]);
    chunk.resize(GpsParseNmeaManager::REGENERATED_SIZE, '\xFF');
    EXPECT_EQ(rewrite(chunk), chunk);
    EXPECT_EQ(rewrite(chunk + "x"), "") << "too long";
}

}  // namespace
