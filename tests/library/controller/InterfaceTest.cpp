#include <gtest/gtest.h>

#include <array>
#include <bit>

#include "Gps/Gps.h"
#include "Gps/private/GpsController.h"
#include "Gps/private/Setting/GpsSettingManager.h"
#include "tests/support/Child.h"

// What clients are compiled against: virtual slots, and the symbols of the shared library.

namespace {

/** Virtual operations have these places in their class's table, after the destructor's 0 and 1. A pointer to member
 *  holds the place, on most processors one more than its offset. */
template <class... Operations>
void expectInOrder(Operations... operations) {
    std::size_t slot = 2;
    for (const auto& words : {std::bit_cast<std::array<std::size_t, 2>>(operations)...})
        EXPECT_EQ(words[0] / sizeof(void*), slot++) << "of " << sizeof...(operations);
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
    expectInOrder(&GpsSettingManager::lock, &GpsSettingManager::unlock);
    EXPECT_TRUE(std::has_virtual_destructor_v<GpsController> && std::has_virtual_destructor_v<Gps>);
}

TEST(SharedLibrary, showsThePublicInterfaceAndNothingElse) {
    const std::string symbols = "nm -D -C -P --defined-only " QVGPS_LIBRARY " | sed 's/ [A-Za-z] .*//' | grep -xE";
    const std::string pattern =
        " '(vtable for |typeinfo (name )?for )?(QvSingleton<Gps>|Gps([[:alnum:]]*Listener)?)(::.*)?'";
    EXPECT_EQ(runShell(symbols + "v" + pattern), "");
    EXPECT_EQ(runShell(symbols + "c" + pattern), "107\n");
}

#ifdef QVGPS_HARDENED
TEST(SharedLibrary, isBuiltWithTheProtectionsOfCompilerAndLinker) {
    const std::string elf = runShell("readelf -lWd --dyn-syms " QVGPS_LIBRARY " " QVGPS_FRAMEWORK);
    for (const char* const mark : {"GNU_RELRO", "BIND_NOW", "__stack_chk_fail", "__vsnprintf_chk"}) {
        EXPECT_NE(elf.find(mark), std::string::npos) << mark;
    }
}
#endif

}  // namespace
