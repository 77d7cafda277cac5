#include "Gps/Gps.h"
#include "QvFramework/Foundation/QvSingletonFinalizer.h"
#include "tests/library/controller/ControllerTest.h"
#include "tests/support/Child.h"

// The facade, its only instance, and the end of the process.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Facade : public testing::Test {
protected:
    Facade() {
        auto [link, peer] = GpsHalMemoryLink::makePair();
        GpsHal::setLink(std::move(link));
        mPeer = std::move(peer);
    }
    ~Facade() override { QvSingletonFinalizer::finalize(); }

    LogCapture mLog;
    std::shared_ptr<GpsHalMemoryPeer> mPeer;
    Listener mListener{"L"};
};

TEST_F(Facade, forwardsEveryOperationWithItsArgumentAndItsResult) {
    Gps& gps = *Gps::GetInstance();
    const auto expectCalled = [this](const std::string& operation) {
        const std::vector<LogCapture::Line> lines = mLog.take();
        ASSERT_FALSE(lines.empty()) << operation;
        EXPECT_EQ(lines.back().function, operation);
    };
    mPeer->setWriteFails(true);
    for (const auto& kind : kKinds<Gps>) {
        const std::string operation = std::string("egisterGps") + kind.name + "Listener";
        EXPECT_FALSE(kind.add(gps, nullptr));
        EXPECT_EQ(mLog.texts().back(), "GpsController::r" + operation + "() npListener = NULL\n");
        EXPECT_FALSE(kind.remove(gps, nullptr));
        EXPECT_EQ(mLog.texts().back(), "GpsController::unR" + operation + "() npListener = NULL\n");
        EXPECT_FALSE(kind.remove(gps, &mListener));
        expectCalled("unR" + operation);
    }
    for (const auto& request : kRequests<Gps>) {
        EXPECT_FALSE(request.call(gps));
        if (request.name != "requestGpsSetting"sv) expectCalled(request.name);  // which says nothing
    }
    EXPECT_FALSE(gps.setLocationData(nullptr));

    mPeer->setWriteFails(false);
    for (const auto& kind : kKinds<Gps>) {
        EXPECT_TRUE(kind.add(gps, &mListener)) << kind.name;
    }
    for (const auto& request : kRequests<Gps>) {
        EXPECT_TRUE(request.call(gps)) << request.name;
    }
    EXPECT_TRUE(gps.setLocationData(&kNowhere));
    for (const auto& kind : kKinds<Gps>) {
        EXPECT_TRUE(kind.remove(gps, &mListener)) << kind.name;
    }
}

TEST_F(Facade, isOneInstanceForAllThreadsUntilTheFinalizerRuns) {
    auto other = std::async(std::launch::async, [] { return Gps::GetInstance(); });
    Gps* const gps = Gps::GetInstance();
    EXPECT_EQ(other.get(), gps);
    Gps::DelInstance();
    EXPECT_EQ(Gps::GetInstance(), gps);
    EXPECT_TRUE(gps->registerGpsNmeaListener(&mListener, GEODETIC_SYSTEM_WGS84));

    QvSingletonFinalizer::finalize();
    EXPECT_TRUE(mPeer->waitForOpen(false, kLongMs)) << "one controller was built, and it is gone";
    Gps* const fresh = Gps::GetInstance();
    EXPECT_FALSE(fresh->unRegisterGpsNmeaListener(&mListener)) << "a fresh instance knows nobody";
    EXPECT_TRUE(fresh->registerGpsNmeaListener(&mListener, GEODETIC_SYSTEM_WGS84));
    mPeer->send("$A\r\n");
    ASSERT_TRUE(mPeer->waitUntilRead(kLongMs));
    EXPECT_THAT(mListener.take(), ElementsAre("L:raw $A\r\n"));
}

TEST(ProcessExit, isCleanFromAnywhereWhileSentencesComeIn) {
    for (const char* scene : {"statics-first", "service-first", "receive", "unregistering", "worker", "first-status"}) {
        Child client({QVGPS_EXITING_CLIENT, scene});
        EXPECT_EQ(client.end(), 7) << scene;
        EXPECT_THAT(client.all(), testing::EndsWith("the last of the client\n")) << scene;
        EXPECT_THAT(client.all(), testing::Not(testing::HasSubstr("failed"))) << scene;
    }
}

}  // namespace
