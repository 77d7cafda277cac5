#include <gtest/gtest.h>

#include <locale.h>
#include <atomic>
#include <cstddef>
#include <memory>

#include "Gps/private/GpsController.h"
#include "Gps/private/Setting/GpsSettingManager.h"
#include "GpsHal/GpsHal.h"
#include "NmeaSupport.h"
#include "bench/Drive.h"
#include "tests/support/SilentLink.h"

// This program's own malloc, calloc, realloc and conversions of numbers count their calls and pass them on to the C
// library.

namespace {
std::atomic<unsigned long> allocations = 0;
std::atomic<unsigned long> conversions = 0;
}  // namespace

#pragma GCC visibility push(default)
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
long __strtol_l(const char* text, char** end, int base, locale_t locale);
unsigned long __strtoul_l(const char* text, char** end, int base, locale_t locale);
double __strtod_l(const char* text, char** end, locale_t locale);

void* malloc(std::size_t size) {
    return ++allocations, __libc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size) {
    return ++allocations, __libc_calloc(count, size);
}
void* realloc(void* block, std::size_t size) {
    return ++allocations, __libc_realloc(block, size);
}
long strtol_l(const char* text, char** end, int base, locale_t locale) noexcept {
    return ++conversions, __strtol_l(text, end, base, locale);
}
unsigned long strtoul_l(const char* text, char** end, int base, locale_t locale) noexcept {
    return ++conversions, __strtoul_l(text, end, base, locale);
}
double strtod_l(const char* text, char** end, locale_t locale) noexcept {
    return ++conversions, __strtod_l(text, end, locale);
}
}
#pragma GCC visibility pop

namespace {

TEST(Drive, IsReadWithoutASlowConversion) {
    GpsParseNmeaManager manager;
    Recorder listener;
    const unsigned long before = conversions;
    for (const std::string& text : simulatedDrive(200))
        EXPECT_TRUE(feed(manager, text, {{&listener, kWgs84}}));
    EXPECT_EQ(conversions, before);
    EXPECT_TRUE(feed(manager, sentence("GPVTG,1e1,T,,M,0.0,N,0.0,K,A"), {{&listener, kWgs84}}));
    EXPECT_EQ(conversions, before + 1);
}

class Counter : public GpsParseNmeaListener, public GpsNmeaListener {
public:
    unsigned long records = 0, sentences = 0;
    void notifyParseNmeaSentence(const PARSE_NMEA*) override { ++records; }
    void notifyReceiveNmeaSentence(const char*, unsigned int) override { ++sentences; }
};

TEST(Receiving, AllocatesNothing) {
    std::vector<std::string> sentences = simulatedDrive(20);
    for (const std::string& body : kBodies)
        sentences.push_back(sentence(body));
    sentences.push_back(sentence("GPRMC,1,A,1e2,N, +1,E,0x1p3,1e-9,160926,1e12,W,A"));  // all conversions are slow
    constexpr GPS_SETTING_LOCAL_MEMORY kSettings = {GEODETIC_SYSTEM_TOKYO, 1, {}};
    GpsSettingManager().writeLocalMemory(&kSettings);
    GpsHal::setLink(std::make_unique<SilentLink>());
    GpsController controller;
    Counter converted, unconverted;
    for (const auto& [listener, datum] : {std::pair(&converted, kWgs84), std::pair(&unconverted, kTokyo)}) {
        controller.registerGpsNmeaListener(listener, datum);
        controller.registerGpsParseNmeaListener(listener, datum);
    }
    const auto drive = [&] {
        for (std::string& text : sentences)
            controller.receiveData(0, text.data(), static_cast<unsigned int>(text.size()));
    };
    drive();
    const unsigned long before = allocations;
    ASSERT_GT(before, 0U);
    constexpr unsigned int kRounds = 500;
    for (unsigned int i = 0; i < kRounds; ++i)
        drive();
    EXPECT_EQ(allocations - before, 0U);
    EXPECT_EQ(converted.sentences, (kRounds + 1) * sentences.size());
    EXPECT_EQ(converted.records, (kRounds + 1) * 20);
}

}  // namespace
