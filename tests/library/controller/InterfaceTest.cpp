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

template <class... Operations>
void expectInOrder(Operations... operations) {
    std::size_t slot = 2;
    const std::vector<std::size_t> slots = {slotOf(operations)...};
    for (const std::size_t actual : slots) {
        EXPECT_EQ(actual, slot++) << "of " << slots.size();
    }
}

TEST(VirtualSlots, areInTheOrderThatClientsAreCompiledFor) {
    using Parse = GpsParseNmeaListener;
    using Location = GpsLocationDataListener;
    using Production = GpsProductionListener;
    expectInOrder(&GpsNmeaListener::notifyReceiveNmeaSentence);
    expectInOrder(&Parse::notifyParseNmeaSentence, &Parse::notifyParseGgaSentence, &Parse::notifyParseGllSentence,
                  &Parse::notifyParseGsaSentence, &Parse::notifyParseGsvSentence, &Parse::notifyParseRmcSentence,
                  &Parse::notifyParseVtgSentence, &Parse::notifyParseZdaSentence, &Parse::notifyParsePubxSentence);
    expectInOrder(&Location::notifyLocationData, &Location::notifyRmcData, &Location::notifyGgaData,
                  &Location::notifyPascdData);
    expectInOrder(&GpsVersionListener::notifyGpsVersionInfo);
    expectInOrder(&GpsConnectionListener::notifyGpsConnectionStatus);
    expectInOrder(&GpsSettingListener::notifyGpsSettingRequestResponse);
    expectInOrder(&Production::notyfySwitchGpsProductionModeRequestResponse,
                  &Production::notifyStartGpsProductionCheckResponse, &Production::notyfyGpsColdStartRequestResponse,
                  &Production::notifyReceiveGpsProductionData, &Production::notifyReceiveGpsProductionCheckData);
    expectInOrder(&QvObserver<GpsController>::Update);
    expectInOrder(&GpsHal::start, &GpsHal::stop);
    expectInOrder(&LocationDataMemory::lock, &LocationDataMemory::unlock);
    expectInOrder(&GpsConnectionManager::lock, &GpsConnectionManager::unlock);
    expectInOrder(&GpsSettingManager::lock, &GpsSettingManager::unlock);
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
