#include "Gps/Gps.h"
#include "QvFramework/Foundation/QvSingletonFinalizer.h"
#include "tests/library/controller/ControllerTest.h"
#include "tests/support/Child.h"
#include "tests/support/Messages.h"

// The facade, its only instance, and the end of the process.

namespace {

thread_local long gAllocationsLeft = -1;  // the one after them fails; a negative number is no limit
thread_local long gAllocations = 0;

}  // namespace

[[gnu::noinline]] void* operator new(std::size_t size) {
    ++gAllocations;
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
    mPeer->setWriteHook([](std::string_view) { return false; });
    for (const auto& kind : kKinds<Gps>) {
        const std::string operation = std::string("egisterGps") + kind.name + "Listener";
        EXPECT_FALSE(kind.add(gps, nullptr));
        EXPECT_EQ(mLog.texts().back(), "GpsController::r" + operation + "() npListener = NULL\n");
        EXPECT_FALSE(kind.remove(gps, nullptr));
        EXPECT_EQ(mLog.texts().back(), "GpsController::unR" + operation + "() npListener = NULL\n");
        EXPECT_FALSE(kind.remove(gps, &mListener));
    }
    for (const auto& request : kRequests<Gps>) {
        EXPECT_FALSE(request.call(gps));
        EXPECT_TRUE(request.name == "requestGpsSetting"sv || mLog.lines().back().function == request.name);
    }
    EXPECT_FALSE(gps.setLocationData(nullptr));

    mPeer->setWriteHook({});
    for (const auto& kind : kKinds<Gps>)
        EXPECT_TRUE(kind.add(gps, &mListener)) << kind.name;
    for (const auto& request : kRequests<Gps>)
        EXPECT_TRUE(request.call(gps)) << request.name;
    EXPECT_TRUE(gps.setLocationData(&kNowhere));
    for (const auto& kind : kKinds<Gps>)
        EXPECT_TRUE(kind.remove(gps, &mListener)) << kind.name;
}

TEST_F(Facade, isOneInstanceForAllThreadsUntilTheFinalizerRunsAlsoAfterMemoryRanOutAnywhere) {
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
        auto other = std::async(std::launch::async, [] { return Gps::GetInstance(); });
        Gps* const gps = Gps::GetInstance();
        EXPECT_EQ(other.get(), gps);
        Gps::DelInstance();
        EXPECT_EQ(Gps::GetInstance(), gps);
        EXPECT_FALSE(gps->unRegisterGpsNmeaListener(&mListener)) << "a fresh instance has no listeners";
        EXPECT_TRUE(gps->registerGpsNmeaListener(&mListener, GEODETIC_SYSTEM_WGS84));
        mPeer->send("$A\r\n");
        EXPECT_TRUE(mPeer->waitUntilRead(kLongMs));
        GpsHal* const hal = GpsHal::GetInstance();
        QvSingletonFinalizer::finalize();
        EXPECT_THAT(mListener.take(), ElementsAre("L:raw $A\r\n")) << allocations;
        EXPECT_TRUE(mPeer->waitForOpen(false, kLongMs) && hal->start()) << allocations;
        GpsHal::DelInstance();
        EXPECT_TRUE(mPeer->waitForOpen(false, 0)) << "that was the last reference " << allocations;
    }
    EXPECT_GT(allocations, 10);
}

class Counter : public GpsParseNmeaListener, public GpsNmeaListener {
public:
    unsigned long records = 0, sentences = 0;
    void notifyParseNmeaSentence(const PARSE_NMEA*) override { ++records; }
    void notifyReceiveNmeaSentence(const char*, unsigned int) override { ++sentences; }
};

TEST_F(Facade, receivesWithoutAllocations) {
    constexpr unsigned int kRounds = 10;
    GpsController controller;
    GPS_SETTING_LOCAL_MEMORY settings = {GEODETIC_SYSTEM_TOKYO, 1, {}};
    GpsSettingManager().writeLocalMemory(&settings);
    Counter listeners[2];
    for (const int datum : {0, 1}) {
        controller.registerGpsNmeaListener(&listeners[datum], static_cast<GeodeticSystem>(datum));
        controller.registerGpsParseNmeaListener(&listeners[datum], static_cast<GeodeticSystem>(datum));
    }
    std::vector<std::string> epoch;
    for (const char* const body : kBodies)
        epoch.push_back(sentence(body));
    epoch.push_back(sentence("GPGLL,1e2,N, +1,E,0x1p3,A,A"));  // conversions are slow
    const long before = gAllocations;
    ASSERT_GT(before, 0);
    for (unsigned int round = 0; round < kRounds; ++round) {
        for (std::string& text : epoch)
            controller.receiveData(0, text.data(), static_cast<unsigned int>(text.size()));
    }
    EXPECT_EQ(gAllocations, before);
    for (const Counter& listener : listeners) {
        EXPECT_EQ(listener.sentences, kRounds * epoch.size());
        EXPECT_EQ(listener.records, kRounds - 1) << "the first one began with an RMC in the middle";
    }
    settings = {};
    GpsSettingManager().writeLocalMemory(&settings);
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
