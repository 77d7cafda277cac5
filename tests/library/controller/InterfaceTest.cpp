#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <set>
#include <string>

#include "Gps/Gps.h"
#include "Gps/private/Connection/GpsConnectionManager.h"
#include "Gps/private/GpsController.h"
#include "Gps/private/SharedMemory/LocationDataMemory.h"
#include "GpsHal/GpsHal.h"

// What clients are compiled against: virtual slots, and the symbols of the shared library.

namespace {

/** A virtual operation's place in its class's table, as a pointer to member holds it. The destructor takes 0 and 1. */
template <class Operation>
std::size_t slotOf(Operation operation) {
    std::size_t words[2];
    static_assert(sizeof(words) == sizeof(operation));
    std::memcpy(words, &operation, sizeof(words));
#if defined(__aarch64__) || defined(__arm__)
    return words[0] / sizeof(void*);
#else
    return (words[0] - 1) / sizeof(void*);
#endif
}

TEST(VirtualSlots, areInTheOrderThatClientsAreCompiledFor) {
    const struct {
        const char* name;
        std::size_t slot;
        std::size_t expected;
    } rows[] = {
#define SLOT(operation, expected) {#operation, slotOf(&operation), expected}
        SLOT(GpsNmeaListener::notifyReceiveNmeaSentence, 2),
        SLOT(GpsParseNmeaListener::notifyParseNmeaSentence, 2),
        SLOT(GpsParseNmeaListener::notifyParseGgaSentence, 3),
        SLOT(GpsParseNmeaListener::notifyParseGllSentence, 4),
        SLOT(GpsParseNmeaListener::notifyParseGsaSentence, 5),
        SLOT(GpsParseNmeaListener::notifyParseGsvSentence, 6),
        SLOT(GpsParseNmeaListener::notifyParseRmcSentence, 7),
        SLOT(GpsParseNmeaListener::notifyParseVtgSentence, 8),
        SLOT(GpsParseNmeaListener::notifyParseZdaSentence, 9),
        SLOT(GpsParseNmeaListener::notifyParsePubxSentence, 10),
        SLOT(GpsLocationDataListener::notifyLocationData, 2),
        SLOT(GpsLocationDataListener::notifyRmcData, 3),
        SLOT(GpsLocationDataListener::notifyGgaData, 4),
        SLOT(GpsLocationDataListener::notifyPascdData, 5),
        SLOT(GpsVersionListener::notifyGpsVersionInfo, 2),
        SLOT(GpsConnectionListener::notifyGpsConnectionStatus, 2),
        SLOT(GpsSettingListener::notifyGpsSettingRequestResponse, 2),
        SLOT(GpsProductionListener::notyfySwitchGpsProductionModeRequestResponse, 2),
        SLOT(GpsProductionListener::notifyStartGpsProductionCheckResponse, 3),
        SLOT(GpsProductionListener::notyfyGpsColdStartRequestResponse, 4),
        SLOT(GpsProductionListener::notifyReceiveGpsProductionData, 5),
        SLOT(GpsProductionListener::notifyReceiveGpsProductionCheckData, 6),
        SLOT(QvObserver<GpsController>::Update, 2),
        SLOT(GpsHal::start, 2),
        SLOT(GpsHal::stop, 3),
        SLOT(LocationDataMemory::lock, 2),
        SLOT(LocationDataMemory::unlock, 3),
        SLOT(GpsConnectionManager::lock, 2),
        SLOT(GpsConnectionManager::unlock, 3),
#undef SLOT
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.slot, row.expected) << row.name;
    }
    EXPECT_TRUE(std::has_virtual_destructor_v<GpsController> && std::has_virtual_destructor_v<Gps>);
}

TEST(SharedLibrary, showsThePublicInterfaceAndNothingElse) {
    std::set<std::string> shown;
    std::FILE* const pipe = popen("nm -D -S --defined-only " QVGPS_LIBRARY, "r");
    char line[1024];
    while (std::fgets(line, sizeof(line), pipe) != nullptr) {
        char size[32] = "";
        char symbol[900] = "";
        if (std::sscanf(line, "%*s %31s %*c %899s", size, symbol) != 2) continue;
        const bool isTable = std::strncmp(symbol, "_ZTV", 4) == 0;  // its size is the number of slots
        shown.insert(isTable ? symbol + std::string(" ") + std::to_string(std::stoul(size, nullptr, 16) / sizeof(void*))
                             : symbol);
    }
    pclose(pipe);
    std::ifstream file(QVGPS_EXPORTED_SYMBOLS);
    std::set<std::string> expected;
    for (std::string symbol; std::getline(file, symbol);) {
        expected.insert(symbol);
    }
    EXPECT_THAT(shown, testing::ContainerEq(expected));
}

}  // namespace
