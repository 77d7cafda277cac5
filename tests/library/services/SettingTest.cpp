#include <map>
#include <thread>

#include "GpsHal/GpsHalFramer.h"
#include "tests/library/controller/ControllerTest.h"
#include "tests/library/services/SharedState.h"
#include "tests/support/Messages.h"
#include "tests/support/Processes.h"

namespace {

using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;

GpsSetting settingOf(int value) {
    return static_cast<GpsSetting>(value);
}

/** The notifications of settings that are all answered alike. */
Texts answers(std::initializer_list<int> settings, const char* how = "yes") {
    Texts notified;
    for (const int setting : settings)
        notified.push_back("L:setting " + std::to_string(setting) + " " + how);
    return notified;
}

const std::string kYes(kAck);
const std::string kNo = ubxFrame(5, 0, "\6\0"s);
const std::string kPortSettings = ubxFrame(6, 0, std::string(20, '\0'));

class Setting : public ControllerTest {
protected:
    Setting() {
        mController->registerGpsSettingListener(&mListener);
        mController->registerGpsProductionListener(&mListener);
    }
    static std::string commandOf(int setting) {
        char buffer[128];
        return {buffer, GpsSettingManager().setCommandForGpsSetting(settingOf(setting), buffer, sizeof(buffer))};
    }
    void request(std::initializer_list<int> settings) {
        for (const int setting : settings)
            ASSERT_TRUE(mController->requestGpsSetting(settingOf(setting))) << setting;
    }
    /** Sends frames on the receive thread; returns when everything they caused has happened. */
    bool send(const std::string& frames) {
        mPeer->send(frames);
        return mPeer->waitUntilRead(kLongMs);
    }

    Listener mListener{"L"};
};

TEST_F(Setting, CommandIsOneChunkAndWrittenOnlyWhereItFits) {
    for (int setting = 0; setting < 36; ++setting) {
        const std::string command = commandOf(setting);
        const auto length = static_cast<unsigned>(command.size());
        std::string chunk;
        GpsHalFramer().feed(command.data(), length,
                            [&](unsigned char* data, unsigned size) { chunk.assign(data, data + size); });
        EXPECT_EQ(chunk, command);
        for (unsigned size = 0; size <= length + 1; ++size) {
            std::string buffer(size + 1, 'x');
            const bool fits = size != 0 && size >= length;
            const unsigned written =
                GpsSettingManager().setCommandForGpsSetting(settingOf(setting), buffer.data(), size);
            EXPECT_EQ(written, fits ? length : 0) << setting << ": " << size;
            EXPECT_EQ(buffer.substr(written), std::string(buffer.size() - written, 'x'));
            EXPECT_EQ(textsOf(mLog.take()),
                      fits ? Texts() : Texts{"GpsSettingManager::setCommandForGpsSetting() Argument Error\n"});
        }
    }
    EXPECT_EQ(commandOf(36), "");
}

TEST_F(Setting, FrameThatIsNoAnswerSettlesNothing) {
    const std::map<std::string, bool> cases = {// whether it is taken; what is not steps over the oldest entry
                                               {kPortSettings, true},         {ubxFrame(5, 2, "12"), false},
                                               {ubxFrame(6, 1, "12"), false}, {"\xB5\x62\x05", false},
                                               {"\xB5\x63\x05\x01", false},   {"$", false}};
    for (const auto& [frame, isTaken] : cases) {
        GpsSettingManager manager;
        const auto offer = [&](const std::string& bytes) {
            const std::vector<char> exact(bytes.begin(), bytes.end());
            return manager.analizeGpsSettingResponse(exact.data(), static_cast<unsigned>(exact.size()), &mListener);
        };
        EXPECT_FALSE(offer(frame)) << "nothing is awaited";
        EXPECT_TRUE(manager.requestGpsSetting(settingOf(1)) && manager.requestGpsSetting(settingOf(2)));
        EXPECT_EQ(offer(frame), isTaken);
        EXPECT_THAT(mListener.take(), IsEmpty());
        EXPECT_EQ(textsOf(mLog.take()),
                  isTaken ? Texts() : Texts{"GpsSettingManager::analizeGpsSettingResponse() unknown response\n"});
        EXPECT_TRUE(offer(kYes) && offer(kYes));
        EXPECT_FALSE(offer(kYes));
        EXPECT_EQ(mListener.take()[0], answers({isTaken ? 1 : 2})[0]);
    }
}

TEST_F(Setting, FailedSendLeavesNoTraceAlsoWhileAnotherRequestIsSent) {
    for (const GpsSetting setting : {GPS_SETTING_DATUM_TOKYO, GPS_SETTING_SAVE_CONFIG, GPS_SETTING_BAUD_38400}) {
        std::thread failing;
        mPeer->setWriteHook([&](std::string_view) {
            const bool isFirst = !failing.joinable();
            if (isFirst) failing = std::thread([&] { EXPECT_FALSE(mController->requestGpsSetting(setting)); });
            return isFirst;
        });
        request({GPS_SETTING_ZDA_ON});
        failing.join();
        send(kYes + kYes);
        EXPECT_EQ(mListener.take(), answers({GPS_SETTING_ZDA_ON}));
    }
    EXPECT_EQ(contentsOf(kSettingSegment).substr(4), std::string(8, '\0'));
    EXPECT_EQ(mPeer->speed(), 0u);
    EXPECT_THAT(mLog.texts(), IsEmpty());
}

TEST_F(Setting, FullRingLosesItsOldestEntryToARequestThatIsSentAndToNoOther) {
    for (int setting = 0; setting < 24; ++setting)
        request({setting});
    mPeer->setWriteHook([](std::string_view) { return false; });
    EXPECT_FALSE(mController->requestGpsSetting(GPS_SETTING_RATE_5HZ));
    send(kYes);
    mPeer->setWriteHook(nullptr);
    request({30, 35});
    send(kYes + kYes);
    EXPECT_EQ(mListener.take(), answers({0, 35, 2}));
}

TEST_F(Setting, IsAnsweredEvenBeforeSendingHasReturnedAndSoAreProductionRequests) {
    mPeer->setWriteHook([&](std::string_view) { return !send(kYes); });
    EXPECT_FALSE(mController->requestGpsSetting(GPS_SETTING_ZDA_ON)) << "though a stray answer came";
    EXPECT_EQ(mListener.take(), answers({GPS_SETTING_ZDA_ON}));
    send(kYes);
    EXPECT_THAT(mListener.take(), IsEmpty()) << "nothing is awaited";
    mPeer->setWriteHook([&](std::string_view) { return send(kNo); });
    for (int setting = 0; setting < 24; ++setting) {
        request({setting});
        EXPECT_EQ(mListener.take(), answers({setting}, "no"));
    }
    EXPECT_TRUE(mController->requestSwitchGpsProductionMode());
    EXPECT_TRUE(mController->requestStartGpsProductionCheck());
    EXPECT_THAT(mListener.take(), ElementsAre("L:mode no", "L:check no"));
}

const std::string kPortPoll = "\xB5\x62\6\0\1\0\0\x07\x21"s;

TEST_F(Setting, SpeedChangeExcludesOtherCommandsUntilItsPollAndSettingsUntilThePollIsAnswered) {
    unsigned speed = 0;
    Listener raw("raw");
    raw.setHook([&] { request({GPS_SETTING_RATE_5HZ}); });
    mController->registerGpsNmeaListener(&raw, GEODETIC_SYSTEM_WGS84);
    for (const auto& [setting, newSpeed] : {std::pair(33, 2u), std::pair(34, 4u), std::pair(32, 0u)}) {
        std::vector<std::pair<std::string, unsigned>> writes;
        std::chrono::steady_clock::time_point changed;
        std::vector<std::jthread> others;
        mPeer->setWriteHook(nullptr);
        request({GPS_SETTING_PUBX00_ON});
        mPeer->setWriteHook([&, changing = setting](std::string_view bytes) {
            writes.emplace_back(bytes, mPeer->speed());
            const bool isPoll = bytes == kPortPoll;
            const bool waitsForAnswer = changing != 33 && bytes.starts_with("\xB5\x62\6\1");
            const std::chrono::milliseconds wait(isPoll ? 200 : waitsForAnswer ? 1200 : 0);
            EXPECT_GE(std::chrono::steady_clock::now() - changed, wait);
            if (isPoll && changing == 32) mPeer->send(kZda);  // a request on the receive thread, which does not wait
            if (isPoll) return changing == 32 || send(changing == 33 ? kYes + kYes : kYes);
            if (bytes == commandOf(GPS_SETTING_RATE_5HZ)) mPeer->send(kYes + kYes);  // takes the poll's answer
            if (bytes != commandOf(changing)) return true;
            changed = std::chrono::steady_clock::now();
            EXPECT_TRUE(send(kYes));
            EXPECT_EQ(mListener.take(), answers({GPS_SETTING_PUBX00_ON})) << "before the change is complete";
            others.emplace_back([&] { request({GPS_SETTING_ZDA_ON}); });
            others.emplace_back([&] { EXPECT_TRUE(mController->requestFinishGpsProductionCheck()); });
            others.emplace_back([&] { request({GPS_SETTING_ZDA_OFF}); });
            return true;
        });
        request({setting});
        others.clear();
        const std::size_t more = setting == 32 ? 1 : 0;
        ASSERT_TRUE(send("") && writes.size() == 5 + more);
        EXPECT_EQ(writes[0], std::pair(commandOf(setting), speed));
        EXPECT_EQ(writes[1], std::pair(kPortPoll, newSpeed));
        for (std::size_t i = 2; i < writes.size(); ++i)
            EXPECT_EQ(writes[i].second, newSpeed);
        send(kYes + kYes);
        EXPECT_EQ(mListener.take().size(), 3 + more);
        speed = newSpeed;
    }
    for (const bool isAnswerLost : {false, true}) {
        mPeer->setWriteHook([&](std::string_view bytes) {
            if (bytes == commandOf(GPS_SETTING_BAUD_38400)) return isAnswerLost || send(kYes);
            return send(bytes == kPortPoll && isAnswerLost ? kPortSettings + kYes : kYes);
        });
        bool isDelayed = true;
        for (int i = 0; i < 20 && isDelayed; ++i) {  // a busy system delays them, too
            const auto start = std::chrono::steady_clock::now();
            request({GPS_SETTING_BAUD_38400, GPS_SETTING_ZDA_ON});
            isDelayed = std::chrono::steady_clock::now() - start > std::chrono::milliseconds(600);
        }
        EXPECT_FALSE(isDelayed) << "after the poll was answered; change unanswered: " << isAnswerLost;
    }
    EXPECT_THAT(mLog.texts(), IsEmpty());
}

TEST_F(Setting, WaitsForTheLastOfTwoPollsAndForNoCommandThatFailed) {
    const auto answer = [this](GpsSettingManager& manager) {
        manager.takePortSettings(kPortSettings.data(), static_cast<unsigned>(kPortSettings.size()));
        EXPECT_TRUE(manager.analizeGpsSettingResponse(kYes.data(), 10, &mListener));
    };
    bool isDelayed = true;
    for (int i = 0; i < 20 && isDelayed; ++i) {  // a busy system delays it, too
        GpsSettingManager manager;
        EXPECT_TRUE(manager.requestGpsSetting(GPS_SETTING_BAUD_38400)) << "which is never answered";
        mPeer->setWriteHook([](std::string_view) { return false; });
        EXPECT_FALSE(manager.requestGpsSetting(GPS_SETTING_ZDA_ON, false));
        mPeer->setWriteHook(nullptr);
        const auto polled = std::chrono::steady_clock::now();
        answer(manager);
        EXPECT_TRUE(manager.requestGpsSetting(GPS_SETTING_ZDA_ON));
        isDelayed = std::chrono::steady_clock::now() - polled > std::chrono::milliseconds(600);
    }
    EXPECT_FALSE(isDelayed);

    GpsSettingManager manager;
    EXPECT_TRUE(manager.requestGpsSetting(GPS_SETTING_BAUD_115200));
    EXPECT_TRUE(manager.analizeGpsSettingResponse(kYes.data(), 10, &mListener));
    EXPECT_TRUE(manager.requestGpsSetting(GPS_SETTING_BAUD_38400, false));
    const auto polled = std::chrono::steady_clock::now();
    answer(manager);  // the first poll
    EXPECT_TRUE(manager.requestGpsSetting(GPS_SETTING_ZDA_ON));
    EXPECT_GE(std::chrono::steady_clock::now() - polled, std::chrono::milliseconds(900));
}

TEST_F(Setting, SpeedChangeThatFailsHalfwayKeepsItsEntry) {
    mPeer->setWriteHook([&](std::string_view bytes) {
        if (bytes == commandOf(GPS_SETTING_BAUD_38400)) mPeer->lose();
        return bytes != kPortPoll;
    });
    EXPECT_FALSE(mController->requestGpsSetting(GPS_SETTING_BAUD_38400));
    EXPECT_EQ(mPeer->written(), commandOf(33)) << "no poll at the old speed";
    mPeer->restore();
    ASSERT_TRUE(mPeer->waitForOpen(true, kLongMs));
    EXPECT_FALSE(mController->requestGpsSetting(GPS_SETTING_BAUD_115200));
    EXPECT_EQ(mPeer->speed(), 4u);
    send(kYes + kNo);
    EXPECT_THAT(mListener.take(), ElementsAre("L:setting 33 yes", "L:setting 34 no"));
    EXPECT_EQ(mLog.texts().size(), 2u) << "of the link alone";
}

TEST_F(Setting, DatumAndFinishedFlagHoldInEveryProcessForGood) {
    const auto expectEverywhere = [](GeodeticSystem base, bool isFinished) {
        expectInProcess([&] {
            GpsSettingManager other;
            EXPECT_EQ(other.getBaseGeodeticSystem(), base);
            EXPECT_EQ(other.getSettingFinishFlg(), isFinished);
        });
    };
    expectEverywhere(GEODETIC_SYSTEM_WGS84, false);
    request({GPS_SETTING_DATUM_TOKYO});
    expectEverywhere(GEODETIC_SYSTEM_TOKYO, false);
    send(kNo);
    request({GPS_SETTING_SAVE_CONFIG});
    expectEverywhere(GEODETIC_SYSTEM_TOKYO, true);
    request({0, 6, 13, 25, 31, 35});
    expectEverywhere(GEODETIC_SYSTEM_TOKYO, true);
    EXPECT_EQ(contentsOf(kSettingSegment), "\x08\0\0\0\1\0\0\0\1\0\0\0"s);
}

TEST_F(Setting, IsKeptWhileOtherProcessesStoreOthers) {
    auto& stored = makeForAllProcesses<std::atomic<unsigned>>();
    pid_t others[4];
    for (pid_t& other : others) {
        other = startProcess([&] {
            for (;; ++stored)
                request({GPS_SETTING_ZDA_ON});
        });
    }
    for (int round = 0; round < 600; ++round) {
        setShared(GEODETIC_SYSTEM_WGS84, false);
        request({GPS_SETTING_DATUM_TOKYO, GPS_SETTING_SAVE_CONFIG});
        for (const unsigned before = stored; stored < before + 100;)
            std::this_thread::yield();
        EXPECT_EQ(GpsSettingManager().getBaseAndFinishFlg(), std::pair(GEODETIC_SYSTEM_TOKYO, true));
    }
    for (const pid_t other : others)
        killProcess(other);
}

}  // namespace
