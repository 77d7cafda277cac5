#include <gmock/gmock.h>

#include <chrono>
#include <map>
#include <thread>

#include "Gps/private/Setting/GpsSettingManager.h"
#include "tests/library/services/MemoryReceiver.h"
#include "tests/library/services/SharedState.h"
#include "tests/support/Processes.h"

namespace {

using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;

GpsSetting settingOf(int value) {
    return static_cast<GpsSetting>(value);
}

/** What a listener is told of settings that are all answered alike. */
Texts answers(std::initializer_list<int> settings, const char* how = "yes") {
    Texts told;
    for (const int setting : settings) {
        told.push_back("setting " + std::to_string(setting) + " " + how);
    }
    return told;
}

class Setting : public testing::Test {
protected:
    bool offer(const std::string& frame) {
        return manager.analizeGpsSettingResponse(frame.data(), static_cast<unsigned>(frame.size()), &listener);
    }
    std::string commandOf(int setting) {
        char buffer[128];
        return {buffer, manager.setCommandForGpsSetting(settingOf(setting), buffer, sizeof(buffer))};
    }
    void request(std::initializer_list<int> settings) {
        for (const int setting : settings) {
            ASSERT_TRUE(manager.requestGpsSetting(settingOf(setting))) << setting;
        }
    }

    const FreshSegments segments;
    GpsSettingManager manager;
    Listener listener;
    MemoryReceiver receiver{
        [this](const char* data, unsigned length) { manager.analizeGpsSettingResponse(data, length, &listener); }};
};

TEST_F(Setting, CommandIsWrittenOnlyWhereItFits) {
    for (int setting = 0; setting < 36; ++setting) {
        const auto length = static_cast<unsigned>(commandOf(setting).size());
        for (unsigned size = 0; size <= length + 1; ++size) {
            const LogCapture log;
            std::string buffer(size + 1, 'x');
            const bool fits = size != 0 && size >= length;
            const unsigned written = manager.setCommandForGpsSetting(settingOf(setting), buffer.data(), size);
            EXPECT_EQ(written, fits ? length : 0) << setting << ": " << size;
            EXPECT_EQ(buffer.substr(written), std::string(buffer.size() - written, 'x'));
            EXPECT_EQ(textsOf(log),
                      fits ? Texts() : Texts{"GpsSettingManager::setCommandForGpsSetting() Argument Error\n"});
        }
    }
    EXPECT_EQ(commandOf(36), "");
}

TEST_F(Setting, FrameThatIsNoAnswerSettlesNothing) {
    const std::map<std::string, bool> cases = {// whether it is taken; what is not steps over the oldest entry
                                               {ubxFrame(6, 0, std::string(20, '\0')), true},
                                               {ubxFrame(5, 2, "12"), false},
                                               {ubxFrame(6, 1, "12"), false},
                                               {"\xB5\x62\x05", false},
                                               {"\xB5\x63\x05\x01", false},
                                               {"$", false}};
    for (const auto& [frame, isTaken] : cases) {
        GpsSettingManager ours;
        const auto offerIt = [&ours, this](const std::string& bytes) {
            const std::vector<char> exact(bytes.begin(), bytes.end());
            return ours.analizeGpsSettingResponse(exact.data(), static_cast<unsigned>(exact.size()), &listener);
        };
        const LogCapture log;
        EXPECT_FALSE(offerIt(frame)) << "nothing is awaited";
        EXPECT_TRUE(ours.requestGpsSetting(settingOf(1)) && ours.requestGpsSetting(settingOf(2)));
        EXPECT_EQ(offerIt(frame), isTaken);
        EXPECT_THAT(listener.told, IsEmpty());
        EXPECT_EQ(textsOf(log),
                  isTaken ? Texts() : Texts{"GpsSettingManager::analizeGpsSettingResponse() unknown response\n"});
        EXPECT_TRUE(offerIt(answer(true)) && offerIt(answer(true)));
        EXPECT_FALSE(offerIt(answer(true)));
        EXPECT_EQ(std::exchange(listener.told, {})[0], answers({isTaken ? 1 : 2})[0]);
    }
}

TEST_F(Setting, FailedSendLeavesNothingBehindAlsoWhileAnotherRequestIsSent) {
    const LogCapture log;
    for (const GpsSetting setting : {GPS_SETTING_DATUM_TOKYO, GPS_SETTING_SAVE_CONFIG, GPS_SETTING_BAUD_38400}) {
        std::thread failing;
        receiver.peer().setWriteHook([&](std::string_view) {
            receiver.peer().setWriteFails(true);
            failing = std::thread([&] { EXPECT_FALSE(manager.requestGpsSetting(setting)); });
        });
        request({GPS_SETTING_ZDA_ON});
        failing.join();
        EXPECT_FALSE(manager.requestGpsSetting(setting));
        receiver.peer().setWriteFails(false);
        EXPECT_TRUE(offer(answer(true)));
        EXPECT_EQ(std::exchange(listener.told, {}), answers({GPS_SETTING_ZDA_ON}));
        EXPECT_FALSE(offer(answer(true)));
    }
    EXPECT_EQ(contentsOf(kSettingSegment).substr(4), std::string(8, '\0'));
    EXPECT_EQ(receiver.peer().speed(), 0u);
    EXPECT_THAT(textsOf(log), IsEmpty());
}

TEST_F(Setting, AnswerFindsItsRequestEvenBeforeSendingHasReturned) {
    receiver.peer().setWriteHook([&](std::string_view) { receiver.send(answer(false)); });
    for (int setting = 0; setting < 24; ++setting) {
        request({setting});
        EXPECT_EQ(std::exchange(listener.told, {}), answers({setting}, "no"));
    }
}

TEST_F(Setting, RequestsOfSeveralThreadsAreSettledInTheOrderInWhichTheyWereSent) {
    std::map<std::string, int> settingOfCommand;
    for (int setting = 0; setting < 24; ++setting) {
        settingOfCommand[commandOf(setting)] = setting;
    }
    std::mutex mutex;
    Texts sent;
    receiver.peer().setWriteHook([&](std::string_view command) {
        const std::lock_guard guard(mutex);
        sent.push_back(answers({settingOfCommand.at(std::string(command))})[0]);
    });
    for (int round = 0; round < 20; ++round) {
        {
            std::vector<std::jthread> threads;
            for (int thread = 0; thread < 4; ++thread) {
                threads.emplace_back([this, thread] {
                    for (int setting = thread; setting < 24; setting += 4) {
                        request({setting});
                    }
                });
            }
        }
        for (int i = 0; i < 24; ++i) {
            receiver.send(answer(true));
        }
        ASSERT_EQ(listener.told, sent);
    }
}

const std::string kPortPoll = "\xB5\x62\6\0\1\0\0\x07\x21"s;

TEST_F(Setting, SpeedChangeGoesFromTheReceiverToTheLayerToAPollAtTheNewSpeed) {
    const LogCapture log;
    unsigned speed = 0;
    for (const auto& [setting, newSpeed] : {std::pair(33, 2u), std::pair(34, 4u), std::pair(32, 0u)}) {
        std::vector<std::pair<std::string, unsigned>> writes;
        std::vector<std::chrono::steady_clock::time_point> times;
        receiver.peer().setWriteHook([&](std::string_view bytes) {
            writes.emplace_back(bytes, receiver.peer().speed());
            times.push_back(std::chrono::steady_clock::now());
        });
        request({setting});
        ASSERT_THAT(writes, ElementsAre(std::pair(commandOf(setting), speed), std::pair(kPortPoll, newSpeed)));
        EXPECT_GE(times[1] - times[0], std::chrono::milliseconds(200));
        speed = newSpeed;
    }
    receiver.send(answer(true) + answer(true) + answer(true));
    EXPECT_EQ(listener.told, answers({33, 34, 32}));
    EXPECT_THAT(textsOf(log), IsEmpty());
}

TEST_F(Setting, SpeedChangeThatFailsHalfwaySaysNothingAndKeepsItsEntry) {
    const LogCapture log;
    receiver.peer().setSpeedFails(true);
    EXPECT_FALSE(manager.requestGpsSetting(GPS_SETTING_BAUD_38400));
    EXPECT_EQ(receiver.peer().written(), commandOf(33)) << "no poll at the old speed";
    receiver.peer().setSpeedFails(false);
    receiver.peer().setWriteHook([&](std::string_view) { receiver.peer().setWriteFails(true); });
    EXPECT_FALSE(manager.requestGpsSetting(GPS_SETTING_BAUD_115200));
    EXPECT_EQ(receiver.peer().speed(), 4u);
    EXPECT_EQ(receiver.peer().written(), commandOf(33) + commandOf(34));

    receiver.send(answer(true) + answer(false));
    EXPECT_THAT(listener.told, ElementsAre("setting 33 yes", "setting 34 no"));
    EXPECT_THAT(textsOf(log), IsEmpty());
}

TEST_F(Setting, AnswersAndOtherRequestsDoNotWaitForASpeedChange) {
    std::thread other;
    receiver.peer().setWriteHook([&](std::string_view bytes) {
        if (bytes == commandOf(GPS_SETTING_BAUD_38400)) {
            other = std::thread([&] { request({GPS_SETTING_ZDA_ON}); });
        } else if (bytes == kPortPoll) {
            other.join();
            EXPECT_TRUE(receiver.send(answer(true) + answer(true))) << "while the changing request has not returned";
        }
    });
    request({GPS_SETTING_BAUD_38400});
    EXPECT_EQ(listener.told, answers({33, 1}));
}

TEST_F(Setting, DatumAndFinishedFlagHoldInEveryProcessForGood) {
    const auto expectEverywhere = [this](GeodeticSystem base, bool isFinished) {
        EXPECT_EQ(manager.getBaseGeodeticSystem(), base);
        EXPECT_EQ(manager.getSettingFinishFlg(), isFinished);
        expectInProcess([&] {
            GpsSettingManager other;
            EXPECT_EQ(other.getBaseGeodeticSystem(), base);
            EXPECT_EQ(other.getSettingFinishFlg(), isFinished);
        });
    };
    expectEverywhere(GEODETIC_SYSTEM_WGS84, false);
    request({GPS_SETTING_DATUM_TOKYO});
    expectEverywhere(GEODETIC_SYSTEM_TOKYO, false);
    receiver.send(answer(false));
    request({GPS_SETTING_SAVE_CONFIG});
    expectEverywhere(GEODETIC_SYSTEM_TOKYO, true);
    request({0, 6, 13, 25, 31, 35});
    expectEverywhere(GEODETIC_SYSTEM_TOKYO, true);
    EXPECT_EQ(contentsOf(kSettingSegment), "\x08\0\0\0\1\0\0\0\1\0\0\0"s);
}

TEST_F(Setting, NullArgumentsAreRefused) {
    request({1});
    const std::string frame = answer(true);
    const LogCapture log;
    EXPECT_FALSE(manager.analizeGpsSettingResponse(nullptr, 10, &listener));
    EXPECT_FALSE(manager.analizeGpsSettingResponse(frame.data(), 0, &listener));
    EXPECT_FALSE(manager.analizeGpsSettingResponse(frame.data(), 10, nullptr));
    EXPECT_FALSE(manager.readLocalMemory(nullptr));
    const std::string text = "GpsSettingManager::analizeGpsSettingResponse() Argument Error\n";
    EXPECT_THAT(textsOf(log), ElementsAre(text, text, text, "GpsSettingManager::readLocalMemory() Argument Error!\n"));
    EXPECT_TRUE(offer(frame)) << "still awaited";
}

TEST_F(Setting, UnmappedSegmentLeavesTheCopiesOfTheProcess) {
    FreshSegments::remove();
    createObject(kSettingSegment, "too short");
    const LogCapture log;
    GpsSettingManager unmapped;
    EXPECT_EQ(unmapped.getBaseGeodeticSystem(), GEODETIC_SYSTEM_WGS84);
    EXPECT_FALSE(unmapped.getSettingFinishFlg());
    EXPECT_FALSE(unmapped.requestGpsSetting(GPS_SETTING_DATUM_TOKYO));
    const GPS_SETTING_LOCAL_MEMORY record{};
    EXPECT_FALSE(unmapped.writeLocalMemory(&record));
    const std::string read = "GpsSettingManager::readLocalMemory() lpData = NULL\n";
    EXPECT_THAT(textsOf(log),
                ElementsAre("mmap error\n", read, "GpsSettingManager::getBaseGeodeticSystem() readLocalMemory Error!\n",
                            read, "GpsSettingManager::getSettingFinishFlg() readLocalMemory Error!\n", read,
                            "GpsSettingManager::requestGpsSetting() readLocalMemory Error!\n",
                            "GpsSettingManager::writeLocalMemory() lpData = NULL\n"));
    EXPECT_EQ(receiver.peer().written(), commandOf(GPS_SETTING_DATUM_TOKYO));
    EXPECT_TRUE(unmapped.analizeGpsSettingResponse(answer(true).data(), 10, &listener)) << "the request stays queued";
    EXPECT_EQ(listener.told, answers({5}));
}

}  // namespace
