#include <gmock/gmock.h>

#include <chrono>
#include <map>
#include <thread>

#include "Gps/private/Production/GpsProductionManager.h"
#include "Gps/private/Setting/GpsSettingManager.h"
#include "GpsHal/GpsHalFramer.h"
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

/** The notifications of settings that are all answered alike. */
Texts answers(std::initializer_list<int> settings, const char* how = "yes") {
    Texts notified;
    for (const int setting : settings) {
        notified.push_back("setting " + std::to_string(setting) + " " + how);
    }
    return notified;
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
    std::function<void()> onFrame;  // called once, on the receive thread
    MemoryReceiver receiver{[this](const char* data, unsigned length) {
        manager.analizeGpsSettingResponse(data, length, &listener);
        if (const auto action = std::exchange(onFrame, {})) action();
    }};
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

TEST_F(Setting, FailedSendLeavesNoTraceAlsoWhileAnotherRequestIsSent) {
    const LogCapture log;
    for (const GpsSetting setting : {GPS_SETTING_DATUM_TOKYO, GPS_SETTING_SAVE_CONFIG, GPS_SETTING_BAUD_38400}) {
        std::thread failing;
        receiver.peer().setWriteHook([&](std::string_view) {
            const bool isFirst = !failing.joinable();
            if (isFirst) failing = std::thread([&] { EXPECT_FALSE(manager.requestGpsSetting(setting)); });
            return isFirst;
        });
        request({GPS_SETTING_ZDA_ON});
        failing.join();
        EXPECT_TRUE(offer(answer(true)));
        EXPECT_EQ(std::exchange(listener.told, {}), answers({GPS_SETTING_ZDA_ON}));
        EXPECT_FALSE(offer(answer(true)));
    }
    EXPECT_EQ(contentsOf(kSettingSegment).substr(4), std::string(8, '\0'));
    EXPECT_EQ(receiver.peer().speed(), 0u);
    EXPECT_THAT(textsOf(log), IsEmpty());
}

TEST_F(Setting, FullRingLosesItsOldestEntryToARequestThatIsSentAndToNoOther) {
    for (int setting = 0; setting < 24; ++setting) {
        request({setting});
    }
    receiver.peer().setWriteHook([](std::string_view) { return false; });
    EXPECT_FALSE(manager.requestGpsSetting(GPS_SETTING_RATE_5HZ));
    EXPECT_TRUE(offer(answer(true)));
    receiver.peer().setWriteHook(nullptr);
    request({30, 35});
    EXPECT_TRUE(offer(answer(true)) && offer(answer(true)));
    EXPECT_EQ(listener.told, answers({0, 35, 2}));
}

TEST_F(Setting, AnswerFindsItsRequestEvenBeforeSendingHasReturned) {
    receiver.peer().setWriteHook([&](std::string_view) { return receiver.send(answer(false)); });
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
        return true;
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

TEST_F(Setting, SpeedChangeExcludesAllOtherCommandsButNoAnswers) {
    const LogCapture log;
    GpsProductionManager production;
    GpsHalMemoryPeer& peer = receiver.peer();
    unsigned speed = 0;
    for (const auto& [setting, newSpeed] : {std::pair(33, 2u), std::pair(34, 4u), std::pair(32, 0u)}) {
        std::vector<std::pair<std::string, unsigned>> writes;
        std::chrono::steady_clock::time_point changed;
        std::vector<std::jthread> others;
        peer.setWriteHook([&, changing = setting](std::string_view bytes) {
            writes.emplace_back(bytes, peer.speed());
            if (bytes == kPortPoll) {
                EXPECT_GE(std::chrono::steady_clock::now() - changed, std::chrono::milliseconds(200));
            }
            if (bytes != commandOf(changing)) return true;
            changed = std::chrono::steady_clock::now();
            EXPECT_TRUE(receiver.send(answer(true)));
            EXPECT_EQ(listener.told, answers({changing})) << "before the change is complete";
            others.emplace_back([&] { request({GPS_SETTING_ZDA_ON}); });
            others.emplace_back([&] { EXPECT_TRUE(production.requestStartGpsProductionCheck()); });
            onFrame = [this] { request({GPS_SETTING_ZDA_OFF}); };
            peer.send(answer(true));
            return true;
        });
        request({setting});
        others.clear();
        ASSERT_TRUE(peer.waitUntilRead(kPatienceMs));
        ASSERT_EQ(writes.size(), 5u);
        EXPECT_EQ(writes[0], std::pair(commandOf(setting), speed));
        EXPECT_EQ(writes[1], std::pair(kPortPoll, newSpeed));
        for (std::size_t i = 2; i < writes.size(); ++i) {
            EXPECT_EQ(writes[i].second, newSpeed);
        }
        receiver.send(answer(true) + answer(true));
        EXPECT_EQ(std::exchange(listener.told, {}).size(), 3u);
        speed = newSpeed;
    }
    EXPECT_THAT(textsOf(log), IsEmpty());
}

TEST_F(Setting, SpeedChangeThatFailsHalfwayKeepsItsEntry) {
    const LogCapture log;
    GpsHalMemoryPeer& peer = receiver.peer();
    peer.setWriteHook([&](std::string_view bytes) {
        if (bytes == commandOf(GPS_SETTING_BAUD_38400)) peer.lose();
        return bytes != kPortPoll;
    });
    EXPECT_FALSE(manager.requestGpsSetting(GPS_SETTING_BAUD_38400));
    EXPECT_EQ(peer.written(), commandOf(33)) << "no poll at the old speed";
    peer.restore();
    ASSERT_TRUE(peer.waitForOpen(true, kPatienceMs));
    EXPECT_FALSE(manager.requestGpsSetting(GPS_SETTING_BAUD_115200));
    EXPECT_EQ(peer.speed(), 4u);
    receiver.send(answer(true) + answer(false));
    EXPECT_THAT(listener.told, ElementsAre("setting 33 yes", "setting 34 no"));
    EXPECT_EQ(log.texts().size(), 2u) << "of the link alone";
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
