#include "tools/gps-monitor/session/Session.h"

#include <cstdlib>

namespace monitor {

namespace {

constexpr std::chrono::seconds kPublishInterval{1};
constexpr std::chrono::seconds kFixInterval{1};

/** Passes the device's name and speed to the HAL. @return the name in use */
std::string nameDevice(const Options& options) {
    if (!options.device.empty()) setenv("GPSHAL_DEVICE", options.device.c_str(), 1);
    if (!options.baud.empty()) setenv("GPSHAL_BAUD", options.baud.c_str(), 1);
    const char* const name = std::getenv("GPSHAL_DEVICE");
    return name != nullptr ? name : "";
}

}  // namespace

Session::Session(const Options& options, Model& model, PlainWriter* writer)
    : mDevice(nameDevice(options)),
      mStart(Clock::now()),
      mEnd(options.runTime ? mStart + *options.runTime : Clock::time_point::max()),
      mRecorder(model, writer, options.record),
      mService(model, writer, mRecorder, options.datum),
      mRequester(mService.gps(), model, writer),
      mFixWatch(kFixInterval, [=, &model] { watchFix(model, writer); }) {
    mRequester.requestVersion();
    for (const GpsSetting setting : options.settings)
        mRequester.requestSetting(setting, true);
    if (options.setsLocation)
        mPublisher.emplace(kPublishInterval, [=, this, &model] { publishLocation(mService.gps(), model, writer); });
}

LinkStatus Session::link(const MonitorState& state) const {
    return linkStatus({mDevice, mService.startMessage(), mStart, state.lastSentence}, Clock::now());
}

}  // namespace monitor
