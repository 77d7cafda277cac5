#include <sys/wait.h>

#include <cstdio>

#include "Gps/Gps.h"
#include "QvFramework/Foundation/QvSingletonFinalizer.h"
#include "tests/library/controller/ControllerTest.h"

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
    mPeer->setWriteFails(true);
    for (const auto& kind : kKinds<Gps>) {
        EXPECT_FALSE(kind.add(gps, nullptr));
        EXPECT_FALSE(kind.remove(gps, &mListener));
        const std::vector<LogCapture::Line> lines = mLog.take();
        ASSERT_EQ(lines.size(), 2U) << kind.name;
        EXPECT_EQ(lines[0].function, std::string("registerGps") + kind.name + "Listener");
        EXPECT_EQ(lines[1].function, std::string("unRegisterGps") + kind.name + "Listener");
    }
    for (const auto& request : kRequests<Gps>) {
        EXPECT_FALSE(request.call(gps));
        const std::vector<LogCapture::Line> lines = mLog.take();
        if (request.name == "requestGpsSetting"sv) continue;  // which says nothing
        ASSERT_FALSE(lines.empty()) << request.name;
        EXPECT_EQ(lines.back().function, request.name);
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
    EXPECT_THAT(mListener.take(), ElementsAre("L:$A\r\n"));
}

/** Runs a client in another process. Returns what it printed. */
std::string runClient(const char* scene, int& status) {
    std::FILE* const pipe = popen((std::string(QVGPS_EXITING_CLIENT) + " " + scene + " 2>&1").c_str(), "r");
    std::string printed;
    char buffer[512];
    while (const std::size_t length = std::fread(buffer, 1, sizeof(buffer), pipe)) {
        printed.append(buffer, length);
    }
    status = pclose(pipe);
    return printed;
}

TEST(ProcessExit, isCleanFromAnywhereWhileSentencesComeIn) {
    for (const char* scene :
         {"statics-first", "service-first", "receive", "unregistering", "worker", "version", "first-status"}) {
        int status = -1;
        const std::string printed = runClient(scene, status);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 7) << scene << " " << status;
        EXPECT_THAT(printed, testing::EndsWith("the last of the client\n")) << scene;
        EXPECT_THAT(printed, testing::Not(testing::HasSubstr("failed"))) << scene;
    }
}

}  // namespace
