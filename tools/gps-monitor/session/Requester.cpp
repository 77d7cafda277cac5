#include "tools/gps-monitor/session/Requester.h"

#include "tools/gps-monitor/model/ExampleLocation.h"

namespace monitor {

namespace {

constexpr std::chrono::milliseconds kLongestAnswer{2000};
constexpr std::chrono::milliseconds kLongestCheck{5000};

unsigned long count(const MonitorState& state, Notification notification) {
    return state.counts[notification.index()];
}

void report(PlainWriter* writer, std::string_view operation, const std::string& subject, bool result) {
    if (writer != nullptr) writer->line(std::string(operation) + subject + (result ? " true" : " false"));
}

}  // namespace

Requester::Requester(Gps& gps, Model& model, PlainWriter* writer)
    : mGps(gps), mModel(model), mWriter(writer), mThread([this](const std::stop_token& stop) { run(stop); }) {}

Requester::~Requester() {
    mThread.request_stop();
    mThread.join();
}

void Requester::requestSetting(GpsSetting setting, bool isFromCommandLine) {
    enqueue([=, this](const std::stop_token& stop) {
        ask(stop, "requestGpsSetting", {settingName(setting), Answer::waiting, isFromCommandLine},
            [=, this] { return mGps.requestGpsSetting(setting); });
    });
}

void Requester::requestVersion() {
    enqueue([this](const auto&) { post(kRequestVersion, [this] { return mGps.requestGpsVersionInfo(); }); });
}

void Requester::requestReset() {
    enqueue([this](const auto&) { post(kReset, [this] { return mGps.requestGpsReset(); }); });
}

void Requester::requestColdStart() {
    enqueue([this](const auto&) { post(kColdStart, [this] { return mGps.requestGpsColdStart(); }); });
}

void Requester::requestProductionCheck() {
    enqueue([this](const std::stop_token& stop) { checkProduction(stop); });
}

void Requester::publishLocation() {
    enqueue([this](const auto&) { monitor::publishLocation(mGps, mModel, mWriter); });
}

void Requester::enqueue(Job job) {
    {
        const std::lock_guard lock(mMutex);
        mJobs.push(std::move(job));
    }
    mHasJob.notify_one();
}

void Requester::run(const std::stop_token& stop) {
    while (true) {
        Job job;
        {
            std::unique_lock lock(mMutex);
            if (!mHasJob.wait(lock, stop, [this] { return !mJobs.empty(); }) || stop.stop_requested()) return;
            job = std::move(mJobs.front());
            mJobs.pop();
        }
        job(stop);
    }
}

bool Requester::ask(const std::stop_token& stop, std::string_view operation, const Request& request,
                    const std::function<bool()>& send) {
    // Added first: the answer may come before the request returns.
    mModel.update([&](MonitorState& state) { addRequest(state, request); });
    const std::string& name = request.name;
    const bool isSent = send();
    report(mWriter, operation, name != operation ? ' ' + name : "", isSent);
    if (!isSent) {
        mModel.update([&](MonitorState& state) { settleRequest(state, name, Answer::notSent); });
        return false;
    }
    const auto isSettled = [&](const MonitorState& state) { return !isWaiting(state, name); };
    if (mModel.waitUntil(stop, kLongestAnswer, isSettled) || stop.stop_requested()) return true;

    mModel.update([&](MonitorState& state) { settleRequest(state, name, Answer::unanswered); });
    if (mWriter != nullptr) mWriter->line("unanswered " + name);
    return true;
}

void Requester::post(std::string_view operation, const std::function<bool()>& send) {
    mModel.update([&](MonitorState& state) { addRequest(state, {std::string(operation)}); });
    const bool isSent = send();
    report(mWriter, operation, "", isSent);
    mModel.update(
        [&](MonitorState& state) { settleRequest(state, operation, isSent ? Answer::none : Answer::notSent); });
}

void Requester::checkProduction(const std::stop_token& stop) {
    const MonitorState before = mModel.snapshot();
    const auto isMore = [&before](const MonitorState& state, Notification notification) {
        return count(state, notification) > count(before, notification);
    };
    const auto haveBothResults = [&](const MonitorState& state) {
        return isMore(state, "notifyReceiveGpsProductionData") && isMore(state, "notifyReceiveGpsProductionCheckData");
    };

    const bool isRunning = ask(stop, kSwitchProductionMode, {std::string(kSwitchProductionMode)},
                               [this] { return mGps.requestSwitchGpsProductionMode(); }) &&
                           ask(stop, kStartProductionCheck, {std::string(kStartProductionCheck)},
                               [this] { return mGps.requestStartGpsProductionCheck(); });
    if (isRunning) mModel.waitUntil(stop, kLongestCheck, haveBothResults);
    post(kFinishProductionCheck, [this] { return mGps.requestFinishGpsProductionCheck(); });
}

void publishLocation(Gps& gps, const Model& model, PlainWriter* writer) {
    const GPS_LOCATION_SYNC_DATA location = makeLocation(model.snapshot(), Clock::now());
    report(writer, kSetLocationData, "", gps.setLocationData(&location));
}

}  // namespace monitor
