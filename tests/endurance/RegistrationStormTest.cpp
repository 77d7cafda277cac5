#include <atomic>
#include <cstdio>
#include <random>

#include "tests/endurance/Endurance.h"
#include "tests/library/controller/ControllerTest.h"

// Listeners of all kinds register, unregister and are deleted on several threads under a flood of notifications.

namespace {

std::atomic<unsigned long> gNotifications{0};
std::atomic<unsigned long> gUnregistered{0};

class ShortLived : public Listener {
public:
    ShortLived() : Listener("S") {
        setHook([this] {
            ++gNotifications;
            mIsNotified = true;
            mIsNotified.notify_all();
        });
    }
    ~ShortLived() override { ++gUnregistered; }

    void waitUntilNotified() const { mIsNotified.wait(false); }

private:
    std::atomic<bool> mIsNotified{false};
};

class RegistrationStorm : public ControllerTest {
protected:
    RegistrationStorm() {
        QvDbgOutput::setSink([](void*, const char*, const char*, int, int, const char*) {},
                             nullptr);  // full registries
    }

    /** Repeats a step on a thread of its own, until the storm is over. */
    template <class Step>
    void repeat(Step step) {
        mSteps.push_back(std::async(std::launch::async, [this, step]() mutable {
            while (!isOver(mEnd)) {
                step();
            }
        }));
    }

    /** One listener registers for some kinds, waits for a notification or not, and unregisters. */
    void registerAndUnregister(unsigned long kinds, bool waitsForNotification) {
        const auto listener = std::make_unique<ShortLived>();
        const auto forEachKind = [&](auto operation) {
            for (std::size_t i = 0; i < std::size(kKinds<GpsController>); ++i) {
                if ((kinds >> i & 1U) != 0) (kKinds<GpsController>[i].*operation)(*mController, listener.get());
            }
        };
        forEachKind(&Kind<GpsController>::add);
        waitsForNotification ? listener->waitUntilNotified() : std::this_thread::yield();
        forEachKind(&Kind<GpsController>::remove);
    }

    static constexpr unsigned long kLocations = 1UL << 2;
    const std::chrono::steady_clock::time_point mEnd = endOfStorm();
    std::vector<std::future<void>> mSteps;
};

TEST_F(RegistrationStorm, notifiesNoListenerThatHasUnregistered) {
    ASSERT_EQ(kKinds<GpsController>[2].name, "LocationData"sv);
    const std::string flood = std::string(kZda) + std::string(kAntennaOpen) + std::string(kAck) +
                              "$GPGGA,123519.00,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47\r\n" +
                              "$GPRMC,123519.00,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*6A\r\n";
    repeat([&] {
        mPeer->send(flood);
        mPeer->waitUntilRead(1000);
    });
    repeat([this] {
        for (const auto& request : kRequests<GpsController>) {
            request.call(*mController);
        }
        mController->setLocationData(&kNowhere);
    });
    for (unsigned seed = 1; seed <= 3; ++seed) {
        repeat([this, random = std::minstd_rand(seed)]() mutable {
            registerAndUnregister(random() & ~kLocations, false);
        });
    }
    repeat([this] { registerAndUnregister(kLocations, false); });
    repeat([this] { registerAndUnregister(kLocations, true); });
    for (std::future<void>& step : mSteps) {
        step.wait_until(mEnd);
        expectDone(step, "a thread of the storm");
    }
    std::printf("%lu listeners were registered and unregistered, %lu notifications\n", gUnregistered.load(),
                gNotifications.load());
    EXPECT_GT(gNotifications, 0U);

    const ShortLived last;  // destroyed after the controller, which still receives the flood
    mController->registerGpsLocationDataListener(&last);
    mController->setLocationData(&kNowhere);
    auto delivery = std::async(std::launch::async, [&last] { last.waitUntilNotified(); });
    expectDone(delivery, "the worker");
    mController->registerGpsNmeaListener(&last, GEODETIC_SYSTEM_WGS84);
    mPeer->send(flood);
    auto end = std::async(std::launch::async, [this] { mController.reset(); });
    expectDone(end, "the controller's end");
}

}  // namespace
