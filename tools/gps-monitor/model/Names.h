#ifndef GPS_MONITOR_NAMES_H
#define GPS_MONITOR_NAMES_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "Gps/GpsConnectionStatus.h"
#include "Gps/GpsNmeaRecords.h"
#include "Gps/GpsSetting.h"

namespace monitor {

/** Every notification of the seven listener interfaces, under the name of its operation. */
inline constexpr std::array<std::string_view, 22> kNotificationNames{
    "notifyReceiveNmeaSentence",
    "notifyParseNmeaSentence",
    "notifyParseGgaSentence",
    "notifyParseGllSentence",
    "notifyParseGsaSentence",
    "notifyParseGsvSentence",
    "notifyParseRmcSentence",
    "notifyParseVtgSentence",
    "notifyParseZdaSentence",
    "notifyParsePubxSentence",
    "notifyRmcData",
    "notifyGgaData",
    "notifyPascdData",
    "notifyLocationData",
    "notifyGpsVersionInfo",
    "notifyGpsConnectionStatus",
    "notifyGpsSettingRequestResponse",
    "notyfySwitchGpsProductionModeRequestResponse",
    "notifyStartGpsProductionCheckResponse",
    "notyfyGpsColdStartRequestResponse",
    "notifyReceiveGpsProductionData",
    "notifyReceiveGpsProductionCheckData",
};

/** One of kNotificationNames; any other name does not compile. */
class Notification {
public:
    consteval Notification(const char* name) : mIndex(find(name)) {}

    constexpr std::size_t index() const { return mIndex; }
    constexpr std::string_view name() const { return kNotificationNames[mIndex]; }

private:
    static consteval std::size_t find(std::string_view name) {
        const auto found = std::find(kNotificationNames.begin(), kNotificationNames.end(), name);
        if (found == kNotificationNames.end()) throw "no such notification";
        return static_cast<std::size_t>(found - kNotificationNames.begin());
    }

    std::size_t mIndex;
};

/** Names of the requests that are not settings: the operations of Gps. */
inline constexpr std::string_view kRequestVersion = "requestGpsVersionInfo";
inline constexpr std::string_view kSwitchProductionMode = "requestSwitchGpsProductionMode";
inline constexpr std::string_view kStartProductionCheck = "requestStartGpsProductionCheck";
inline constexpr std::string_view kFinishProductionCheck = "requestFinishGpsProductionCheck";
inline constexpr std::string_view kReset = "requestGpsReset";
inline constexpr std::string_view kColdStart = "requestGpsColdStart";
inline constexpr std::string_view kSetLocationData = "setLocationData";

struct Setting {
    std::string_view name;         ///< of the enumerator
    std::string_view description;  ///< empty when it has no command
};

/** The enumerators of GpsSetting, in order from 0. */
extern const std::array<Setting, 36> kSettings;

/** The enumerator's name, or the number of a value without a name. */
std::string settingName(GpsSetting setting);
std::string connectionStatusName(GpsConnectionStatus status);

/** The setting whose enumerator has this name, in any case of its letters. */
std::optional<GpsSetting> findSetting(std::string_view name);

/** "WGS84" or "Tokyo". */
std::string_view datumName(GeodeticSystem datum);
GeodeticSystem otherDatum(GeodeticSystem datum);

/** Short name of a satellite system. */
std::string_view systemName(SatelliteType system);

}  // namespace monitor

#endif
