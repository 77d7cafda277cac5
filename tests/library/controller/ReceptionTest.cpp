#include <atomic>
#include <latch>

#include "tests/library/controller/ControllerTest.h"

// Listeners that register and unregister while listeners are notified; what the receive path refuses, and what it asks
// for each listener anew.

namespace {

constexpr std::size_t kLocationData = 2;  // which is four notifications

/** The same for each kind of listener, by its index. The worker never runs: the test's thread delivers locations. */
class Lifetimes : public ControllerTest, public testing::WithParamInterface<std::size_t> {
protected:
    void add(const AnyListener* listener) {
        kKinds<GpsController>[GetParam()].add(*mController, listener);
        mController->stop();
    }
    bool remove(const AnyListener* listener) {
        return kKinds<GpsController>[GetParam()].remove(*mController, listener);
    }

    /** Causes a notification of the listeners of the kind. */
    void fire() {
        const std::function<void()> causes[] = {
            [this] { receive("$X"); },
            [this] { receive(kZda); },
            [this] { mController->setLocationData(&kNowhere), mController->notifyLocationData(); },
            [this] { mController->requestGpsVersionInfo(); },
            [this] { receive(kAntennaOpen); },
            [this] { mController->requestGpsSetting(GPS_SETTING_ZDA_ON), receive(kAck); },
            [this] { mController->requestSwitchGpsProductionMode(), receive(kAck); },
        };
        causes[GetParam()]();
    }

    /** The names of those that were notified, once for each notification. */
    Strings heard() {
        Strings names = mA.take();
        for (std::string& line : names)
            line.resize(line.find(':'));
        return names;
    }

    /** What is heard when listeners of these names are served, one after another. */
    static Strings all(const Strings& names) {
        Strings repeated;
        for (const std::string& name : names)
            repeated.insert(repeated.end(), GetParam() == kLocationData ? 4 : 1, name);
        return repeated;
    }

    Strings mLines;
    Listener mA{"A", &mLines};
    Listener mB{"B", &mLines};
    Listener mC{"C", &mLines};
};

INSTANTIATE_TEST_SUITE_P(Kinds, Lifetimes, testing::Range<std::size_t>(0, 7),
                         [](const auto& i) { return std::string(kKinds<GpsController>[i.param].name); });

TEST_P(Lifetimes, aListenerMayUnregisterItselfAndOneThatComesLater) {
    for (const Listener* listener : {&mA, &mB, &mC})
        add(listener);
    mA.take();
    mA.setHook([this] { EXPECT_TRUE(remove(&mA) && remove(&mB)); });
    fire();
    Strings expected = all({"C"});  // which misses nothing, and A is not notified of the rest
    expected.insert(expected.begin(), "A");
    EXPECT_EQ(heard(), expected);
    fire();
    EXPECT_EQ(heard(), all({"C"}));
}

TEST_P(Lifetimes, aListenerThatRegistersItselfAgainIsNotifiedOnceAndOneAfterItToo) {
    add(&mA);
    const bool hasFirstStatus = !mA.take().empty();
    add(&mB);
    mA.take();
    bool isInside = false;
    mA.setHook([&] {
        if (std::exchange(isInside, true)) return;  // the first status, from the registration below
        remove(&mA);
        add(&mA);
        add(&mC);
        isInside = false;
    });
    fire();
    Strings expected = all({"B", "C"});
    expected.insert(expected.begin(), "A");
    if (hasFirstStatus) expected.insert(expected.begin() + 1, {"A", "C"});
    EXPECT_EQ(heard(), expected);
}

TEST_P(Lifetimes, unregisteringOnAnotherThreadWaitsUntilTheListenerHasReturned) {
    for (const bool isRegistered : {true, false}) {
        add(&mA);
        mA.take();
        std::future<void> removal;
        mA.setHook([&] {
            if (removal.valid()) return;
            if (!isRegistered) remove(&mA);  // from inside, which returns at once
            removal = startUntilBlocked([&] { remove(&mA); });
            EXPECT_EQ(removal.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
        });
        fire();
        expectDone(removal, "the unregistration");
        mA.take();
        fire();
        EXPECT_THAT(mA.take(), testing::IsEmpty());
        mA.setHook({});
    }
}

class Threads : public ControllerTest {
protected:
    Listener mRaw{"raw"};
    Listener mVersion{"version"};
    Listener mAntenna{"antenna"};
};

TEST_F(Threads, unregisteringTheirListenerFromInsideWaitForTheOthersInside) {
    mController->registerGpsVersionListener(&mVersion);
    std::latch bothInside(2);
    std::atomic<int> insiders{0};
    std::atomic<pid_t> leaving{0};
    std::atomic<bool> hasOtherReturned{false};
    std::future<void> outside;
    mVersion.setHook([&] {
        bothInside.arrive_and_wait();
        if (++insiders == 1) {
            outside = startUntilBlocked([this] { mController->unRegisterGpsVersionListener(&mVersion); });
            leaving = gettid();
            leaving.notify_one();
            EXPECT_FALSE(mController->unRegisterGpsVersionListener(&mVersion)) << "any more";
            EXPECT_TRUE(hasOtherReturned);
        } else {
            leaving.wait(0);
            waitUntilBlocked(leaving);
            hasOtherReturned = true;
        }
    });
    auto request = std::async(std::launch::async, [this] { mController->requestGpsVersionInfo(); });
    mController->requestGpsVersionInfo();
    expectDone(request, "the other request");
}

TEST_F(Threads, mayUnregisterInTheFirstStatusAListenerThatIsRegistering) {
    mController->registerGpsNmeaListener(&mRaw, GEODETIC_SYSTEM_WGS84);
    std::latch bothInside(2);
    std::promise<pid_t> unregistering;
    mAntenna.setHook([&] {
        bothInside.arrive_and_wait();
        unregistering.set_value(gettid());
        EXPECT_TRUE(mController->unRegisterGpsNmeaListener(&mRaw));  // waits for the notification below
        EXPECT_TRUE(mController->unRegisterGpsConnectionListener(&mAntenna));
    });
    mRaw.setHook([&] {
        bothInside.arrive_and_wait();
        waitUntilBlocked(unregistering.get_future().get());
        EXPECT_TRUE(mController->registerGpsVersionListener(&mVersion));  // wants the lock of the registration above
    });
    auto delivery = std::async(std::launch::async, [this] { receive("$X"); });
    auto registration =
        std::async(std::launch::async, [this] { EXPECT_TRUE(mController->registerGpsConnectionListener(&mAntenna)); });
    expectDone(delivery, "the raw listener");
    expectDone(registration, "the registration");
    receive(kAntennaOpen);
    EXPECT_THAT(mAntenna.take(), testing::ElementsAre("antenna:antenna 0"));
}

TEST_F(Threads, mayUnregisterOneObjectInItsNotificationsOnTheReceiveThreadAndOnTheWorker) {
    mController->registerGpsNmeaListener(&mRaw, GEODETIC_SYSTEM_WGS84);
    mController->registerGpsLocationDataListener(&mRaw);
    std::latch bothInside(2);
    mRaw.setHook([&, controller = mController.get()] {  // reset() below clears the pointer first
        thread_local bool isInside = false;
        if (std::exchange(isInside, true)) return;
        bothInside.arrive_and_wait();
        controller->unRegisterGpsNmeaListener(&mRaw);
        controller->unRegisterGpsLocationDataListener(&mRaw);
    });
    mController->setLocationData(&kNowhere);
    auto delivery = std::async(std::launch::async, [this] { receive("$X"); });  // the worker comes a second later
    expectDone(delivery, "the raw listener");
    std::promise<void> delivered;
    mVersion.setHook([&, calls = 0]() mutable {
        if (++calls == 4) delivered.set_value();
    });
    EXPECT_TRUE(mController->registerGpsLocationDataListener(&mVersion));
    mController->setLocationData(&kNowhere);
    expectDone(delivered.get_future(), "the next listener");
    expectDone(std::async(std::launch::async, [this] { mController.reset(); }), "the controller's end");
}

TEST_F(Threads, waitForTheLockOfTheRegistriesAndAreWoken) {
    std::future<void> registration;
    {
        const LeafGuard guard(GpsListenerCalls::instance().lock());
        registration = startUntilBlocked([this] { mController->registerGpsVersionListener(&mVersion); });
        EXPECT_EQ(registration.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
    }
    expectDone(registration, "the registration");
}

using Reception = ControllerTest;

TEST_F(Reception, refusesBadArgumentsWithAMessageAndDoesNothing) {
    using Step = std::function<void(GpsController&, const char*, unsigned int)>;
    const std::pair<std::string, Step> steps[] = {
        {"receiveData", [](GpsController& c, const char* data,
                           unsigned int length) { EXPECT_EQ(c.receiveData(0, const_cast<char*>(data), length), 0U); }},
        {"nmeaSentenceProc", &GpsController::nmeaSentenceProc},
        {"parseNmeaSentenceProc", &GpsController::parseNmeaSentenceProc},
        {"responseGpsSettingProc", &GpsController::responseGpsSettingProc},
        {"responseGpsProductionProc", &GpsController::responseGpsProductionProc},
        {"parseGpsProductionDataProc", &GpsController::parseGpsProductionDataProc},
        {"responseGpsVersionProc", &GpsController::responseGpsVersionProc},
        {"parseGpsVersionDataProc", &GpsController::parseGpsVersionDataProc},
    };
    Listener listener("L");
    for (const auto& kind : kKinds<GpsController>)
        kind.add(*mController, &listener);
    listener.take();
    for (const auto& [name, step] : steps) {
        mLog.take();
        step(*mController, nullptr, 1);
        step(*mController, "$", 0);
        const std::vector<LogCapture::Line> lines = mLog.take();
        ASSERT_EQ(lines.size(), name == "parseGpsProductionDataProc" ? 1U : 2U) << name << ", which may get no bytes";
        for (const LogCapture::Line& line : lines) {
            EXPECT_EQ(line.text, "GpsController::" + name + "() Argument Error\n");
            EXPECT_EQ(line.function, name);
        }
    }
    EXPECT_THAT(listener.take(), testing::IsEmpty());
    for (const std::size_t unrouted : {6U, 7U}) {  // no answer carries a version
        steps[unrouted].second(*mController, kAck.data(), static_cast<unsigned int>(kAck.size()));
    }
    EXPECT_THAT(listener.take(), testing::IsEmpty());
    EXPECT_THAT(mLog.texts(), testing::IsEmpty());
}

TEST_F(Reception, asksForTheFinishedFlagForEveryListenerOfASentence) {
    setShared(GEODETIC_SYSTEM_TOKYO, false);
    Listener first("first");
    Listener second("second");
    mController->registerGpsNmeaListener(&first, GEODETIC_SYSTEM_WGS84);
    mController->registerGpsNmeaListener(&second, GEODETIC_SYSTEM_TOKYO);
    receive(kZda);
    EXPECT_THAT(second.take(), testing::IsEmpty());
    first.setHook([] { setShared(GEODETIC_SYSTEM_TOKYO, true); });
    receive(kZda);
    EXPECT_THAT(second.take(), testing::SizeIs(1));
}

}  // namespace
