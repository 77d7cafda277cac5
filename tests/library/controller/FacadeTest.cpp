#include "Gps/Gps.h"
#include "QvFramework/Foundation/QvSingletonFinalizer.h"
#include "tests/library/controller/ControllerTest.h"
#include "tests/support/Child.h"

// The facade, its only instance, and the end of the process.

namespace {

thread_local long gAllocationsLeft = -1;  // the one after them fails; a negative number is no limit

}  // namespace

[[gnu::noinline]] void* operator new(std::size_t size) {
    if (gAllocationsLeft >= 0 && gAllocationsLeft-- == 0) throw std::bad_alloc();
    if (void* const memory = std::malloc(size)) return memory;
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

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
    mPeer->setWriteHook([](std::string_view) { return false; });
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
        if (request.name != "requestGpsSetting"sv) expectCalled(request.name);  // which logs nothing
    }
    EXPECT_FALSE(gps.setLocationData(nullptr));

    mPeer->setWriteHook({});
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
    EXPECT_FALSE(fresh->unRegisterGpsNmeaListener(&mListener)) << "a fresh instance has no listeners";
    EXPECT_TRUE(fresh->registerGpsNmeaListener(&mListener, GEODETIC_SYSTEM_WGS84));
    mPeer->send("$A\r\n");
    ASSERT_TRUE(mPeer->waitUntilRead(kLongMs));
    EXPECT_THAT(mListener.take(), ElementsAre("L:raw $A\r\n"));
}

TEST_F(Facade, canBeTriedAgainWhereverMemoryRanOut) {
    const auto isBuiltWith = [](long allocations) {
        gAllocationsLeft = allocations;
        try {
            Gps::GetInstance();
        } catch (const std::bad_alloc&) {
            return false;
        }
        gAllocationsLeft = -1;
        return true;
    };
    long allocations = 0;
    for (; !isBuiltWith(allocations); ++allocations) {
        EXPECT_TRUE(Gps::GetInstance()->registerGpsNmeaListener(&mListener, GEODETIC_SYSTEM_WGS84));
        mPeer->send("$A\r\n");
        EXPECT_TRUE(mPeer->waitUntilRead(kLongMs));
        QvSingletonFinalizer::finalize();
        EXPECT_THAT(mListener.take(), ElementsAre("L:raw $A\r\n")) << allocations;
        EXPECT_TRUE(mPeer->waitForOpen(false, kLongMs)) << allocations;
    }
    EXPECT_GT(allocations, 10);
}

TEST(ProcessExit, isCleanFromAnywhereWhileSentencesComeIn) {
    for (const char* scene :
         {"statics-first", "service-first", "forked", "receive", "unregistering", "worker", "worker-removed",
          "joined-removed", "first-status", "first-status-removed", "version-removed", "first-chunk-removed"}) {
        Child client({QVGPS_EXITING_CLIENT, scene});
        EXPECT_EQ(client.end(), 7) << scene;
        EXPECT_THAT(client.all(), testing::EndsWith("the last of the client\n")) << scene;
        EXPECT_THAT(client.all(), testing::Not(testing::HasSubstr("failed"))) << scene;
    }
}

}  // namespace
