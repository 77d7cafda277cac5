#ifndef TESTS_LIBRARY_CONTROLLER_CONTROLLER_TEST_H
#define TESTS_LIBRARY_CONTROLLER_CONTROLLER_TEST_H

#include <gmock/gmock.h>

#include <cctype>
#include <chrono>
#include <cstring>
#include <functional>
#include <future>
#include <memory>
#include <string_view>

#include "Gps/private/Connection/GpsConnectionManager.h"
#include "Gps/private/GpsController.h"
#include "Gps/private/Setting/GpsSettingManager.h"
#include "GpsHal/GpsHal.h"
#include "GpsHal/GpsHalMemoryLink.h"
#include "tests/support/AnyListener.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ThreadState.h"

using namespace std::string_view_literals;
using Strings = std::vector<std::string>;

constexpr unsigned kLongMs = 20000;  // longer than anything takes that is not stuck

constexpr std::string_view kZda = "$GPZDA,123519.00,16,11,2026,00,00*6A\r\n";
constexpr std::string_view kAntennaOpen = "$GPTXT,01,01,02,ANTSTATUS=OPEN*2B\r\n";
constexpr std::string_view kAck = "\xB5\x62\x05\x01\x02\x00\x06\x01\x0F\x38"sv;
constexpr GPS_LOCATION_SYNC_DATA kNowhere = {};

/** Records its notifications as lines "name:what" in a list that listeners may share; of records the kind only. */
class Listener : public AnyListener {
public:
    explicit Listener(std::string name, Strings* lines = nullptr)
        : mName(std::move(name)), mLines(lines != nullptr ? *lines : mOwnLines) {}

    /** Runs inside every notification, after it was recorded. Set it while nothing is delivered. */
    void setHook(std::function<void()> hook) { mHook = std::move(hook); }

    /** Returns and clears the recorded lines. */
    Strings take() {
        const std::lock_guard guard(mutex());
        return std::exchange(mLines, {});
    }

    /** The last location received. */
    const LOCATION_DATA& location() const { return mLocation; }

    void notifyLocationData(const LOCATION_DATA* record) override {
        mLocation = *record;
        AnyListener::notifyLocationData(record);
    }
    void notified(const std::string& what, const std::string& text) override {
        const bool isRecord = std::isupper(what[0]) != 0 || what.starts_with("location");
        {
            const std::lock_guard guard(mutex());
            mLines.push_back(mName + ":" + what + (isRecord ? "" : " " + text));
        }
        if (mHook) mHook();
    }

private:
    static std::mutex& mutex() {
        static std::mutex instance;
        return instance;
    }

    std::string mName;
    Strings mOwnLines;
    Strings& mLines;
    std::function<void()> mHook;
    LOCATION_DATA mLocation{};
};

/** A controller on a link in memory, and the shared records as after the start of the system. */
class ControllerTest : public testing::Test {
protected:
    ControllerTest() {
        auto [link, peer] = GpsHalMemoryLink::makePair();
        GpsHal::setLink(std::move(link));
        mPeer = std::move(peer);
        setShared(GEODETIC_SYSTEM_WGS84, false);
        const GPS_CONNECTION_LOCAL_MEMORY antennaOk = {};
        GpsConnectionManager().writeLocalMemory(&antennaOk);
        mController = std::make_unique<GpsController>();
    }

    static void setShared(GeodeticSystem base, bool isFinished) {
        const GPS_SETTING_LOCAL_MEMORY record = {base, isFinished, {}};
        GpsSettingManager().writeLocalMemory(&record);
    }

    /** Passes a chunk on as the receive thread does, in a buffer of exactly its size. */
    void receive(std::string_view chunk) {
        const auto data = std::make_unique<char[]>(chunk.size());
        std::memcpy(data.get(), chunk.data(), chunk.size());
        mController->receiveData(0, data.get(), static_cast<unsigned int>(chunk.size()));
    }

    LogCapture mLog;
    std::shared_ptr<GpsHalMemoryPeer> mPeer;
    std::unique_ptr<GpsController> mController;
};

/** Fails, and ends the program, when a step that may be stuck is. */
template <class Result>
void expectDone(const std::future<Result>& step, const char* what) {
    if (step.wait_for(std::chrono::milliseconds(kLongMs)) == std::future_status::ready) return;
    ADD_FAILURE() << what << " is stuck";
    std::_Exit(1);
}

/** Runs a step on another thread; returns when it is blocked or done. */
template <class Step>
std::future<void> startUntilBlocked(Step step) {
    std::promise<pid_t> thread;
    std::future<void> result = std::async(std::launch::async, [&thread, step] {
        thread.set_value(gettid());
        step();
    });
    waitUntilBlocked(thread.get_future().get());
    return result;
}

#endif
