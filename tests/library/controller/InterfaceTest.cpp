#include <gmock/gmock.h>

#include <cstring>
#include <fstream>
#include <set>
#include <sstream>

#include "Gps/Gps.h"
#include "Gps/private/Connection/GpsConnectionManager.h"
#include "Gps/private/GpsController.h"
#include "Gps/private/Setting/GpsSettingManager.h"
#include "Gps/private/SharedMemory/LocationDataMemory.h"
#include "GpsHal/GpsHal.h"
#include "tests/support/Child.h"

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
    using Nmea = GpsNmeaListener;
    using Parse = GpsParseNmeaListener;
    using Location = GpsLocationDataListener;
    using Production = GpsProductionListener;
    const std::vector<std::size_t> classes[] = {
        {slotOf(&Nmea::notifyReceiveNmeaSentence)},
        {slotOf(&Parse::notifyParseNmeaSentence), slotOf(&Parse::notifyParseGgaSentence),
         slotOf(&Parse::notifyParseGllSentence), slotOf(&Parse::notifyParseGsaSentence),
         slotOf(&Parse::notifyParseGsvSentence), slotOf(&Parse::notifyParseRmcSentence),
         slotOf(&Parse::notifyParseVtgSentence), slotOf(&Parse::notifyParseZdaSentence),
         slotOf(&Parse::notifyParsePubxSentence)},
        {slotOf(&Location::notifyLocationData), slotOf(&Location::notifyRmcData), slotOf(&Location::notifyGgaData),
         slotOf(&Location::notifyPascdData)},
        {slotOf(&GpsVersionListener::notifyGpsVersionInfo)},
        {slotOf(&GpsConnectionListener::notifyGpsConnectionStatus)},
        {slotOf(&GpsSettingListener::notifyGpsSettingRequestResponse)},
        {slotOf(&Production::notyfySwitchGpsProductionModeRequestResponse),
         slotOf(&Production::notifyStartGpsProductionCheckResponse),
         slotOf(&Production::notyfyGpsColdStartRequestResponse), slotOf(&Production::notifyReceiveGpsProductionData),
         slotOf(&Production::notifyReceiveGpsProductionCheckData)},
        {slotOf(&QvObserver<GpsController>::Update)},
        {slotOf(&GpsHal::start), slotOf(&GpsHal::stop)},
        {slotOf(&LocationDataMemory::lock), slotOf(&LocationDataMemory::unlock)},
        {slotOf(&GpsConnectionManager::lock), slotOf(&GpsConnectionManager::unlock)},
        {slotOf(&GpsSettingManager::lock), slotOf(&GpsSettingManager::unlock)},
    };
    for (const auto& slots : classes) {
        for (std::size_t i = 0; i < slots.size(); ++i) {
            EXPECT_EQ(slots[i], i + 2) << "operation " << i << " of class " << &slots - classes;
        }
    }
    EXPECT_TRUE(std::has_virtual_destructor_v<GpsController> && std::has_virtual_destructor_v<Gps>);
}

TEST(SharedLibrary, showsThePublicInterfaceAndNothingElse) {
    std::set<std::string> shown;
    std::istringstream symbols(runShell("nm -D -S --defined-only " QVGPS_LIBRARY).out);
    for (std::string address, size, type, symbol; symbols >> address >> size >> type >> symbol;) {
        const bool isTable = symbol.starts_with("_ZTV");  // its size is the number of slots
        if (isTable) symbol += " " + std::to_string(std::stoul(size, nullptr, 16) / sizeof(void*));
        shown.insert(symbol);
    }
    std::ifstream file(QVGPS_EXPORTED_SYMBOLS);
    std::set<std::string> expected;
    for (std::string symbol; std::getline(file, symbol);) {
        expected.insert(symbol);
    }
    EXPECT_THAT(shown, testing::ContainerEq(expected));
}

}  // namespace
