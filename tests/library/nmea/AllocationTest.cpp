#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>

#include "NmeaSupport.h"

// The program's own malloc, calloc and realloc count what they hand on to those of the C library.

namespace {
std::atomic<unsigned long> allocations = 0;
}

#pragma GCC visibility push(default)
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);

void* malloc(std::size_t size) {
    return ++allocations, __libc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size) {
    return ++allocations, __libc_calloc(count, size);
}
void* realloc(void* block, std::size_t size) {
    return ++allocations, __libc_realloc(block, size);
}
}
#pragma GCC visibility pop

namespace {

class Counter : public GpsParseNmeaListener {
public:
    unsigned long epochs = 0;
    void notifyParseNmeaSentence(const PARSE_NMEA*) override { ++epochs; }
};

TEST(Allocation, DoesNotHappenWhileAMillionSentencesAreParsedAndRewritten) {
    std::vector<std::string> sentences;
    for (const std::string& body : kBodies)
        sentences.push_back(sentence(body));
    // Numbers that need the slow conversions. It comes first, as an RMC opens an epoch.
    sentences.insert(sentences.begin(), sentence("GPRMC,1,A,1e2,N, +1,E,0x1p3,1e-9,160926,1e12,W,A"));
    std::erase(sentences, sentence(kBodies[4]));

    GpsParseNmeaManager manager;
    Counter first, second;
    const GPS_PARSE_NMEA_LISTENER_LIST registry[] = {{&first, GEODETIC_SYSTEM_WGS84}, {&second, GEODETIC_SYSTEM_TOKYO}};
    const auto epoch = [&] {
        bool isGood = true;
        for (const std::string& text : sentences) {
            const auto length = static_cast<unsigned int>(text.size());
            char out[GpsParseNmeaManager::REGENERATED_SIZE];
            unsigned int size = 0;
            isGood = manager.parseNmeaSentence(text.data(), length, registry, 2, GEODETIC_SYSTEM_TOKYO, true) &&
                     manager.convertTokyoToWgs84ForNmea(text.data(), length, GEODETIC_SYSTEM_WGS84, out, &size) &&
                     isGood;
        }
        return isGood;
    };
    ASSERT_TRUE(epoch());
    const unsigned long before = allocations;
    ASSERT_GT(before, 0U);
    const std::size_t epochs = 1000000 / sentences.size();
    for (std::size_t i = 0; i < epochs; ++i)
        epoch();
    EXPECT_EQ(allocations - before, 0U);
    EXPECT_EQ(first.epochs, epochs + 1);
    EXPECT_EQ(second.epochs, epochs + 1);
}

}  // namespace
