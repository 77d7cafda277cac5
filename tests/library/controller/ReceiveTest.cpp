#include "tests/library/controller/ControllerTest.h"

// What a received chunk causes, and what a request needs.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kResultCut[] =
    "GpsProductionManager::parseGpsProductionData() : parseGpsProductionDataMonPt() = false\n";
constexpr char kResultRefused[] = "GpsController::parseGpsProductionDataProc() : parseGpsProductionData() = false\n";

/** A MonPt frame with a payload of this many bytes. */
std::string monPt(std::size_t payload) {
    return "\xB5\x62\x0A\x20" + std::string(1, static_cast<char>(payload)) + std::string(3 + payload, '\0');
}

class Reception : public ControllerTest {
protected:
    Strings mTold;
    Listener mA{"A", &mTold};
    Listener mB{"B", &mTold};
};

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
    registerFor(mA);
    mA.take();
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
    EXPECT_THAT(mA.take(), IsEmpty());
    for (const std::size_t unrouted : {6U, 7U}) {  // no answer carries a version
        steps[unrouted].second(*mController, kAck.data(), static_cast<unsigned int>(kAck.size()));
    }
    EXPECT_THAT(mA.take(), IsEmpty());
    EXPECT_THAT(mLog.texts(), IsEmpty());
}

TEST_F(Reception, offersAResultToTheNextProductionListenerOnlyWhenTheFirstWasServed) {
    mController->registerGpsProductionListener(&mA);
    mController->registerGpsProductionListener(&mB);
    receive(monPt(52));
    EXPECT_THAT(mA.take(), ElementsAre("A:MonPt", "B:MonPt"));
    receive(monPt(51));
    EXPECT_THAT(mA.take(), IsEmpty());
    EXPECT_THAT(mLog.texts(), ElementsAre(kResultCut, kResultRefused)) << "once, not once a listener";
}

TEST_F(Reception, requestsNeedTheListenerOfTheirOutcomeAndTheReceiver) {
    constexpr int kNone = -1;
    constexpr int kVersion = 3;
    constexpr int kSetting = 5;
    constexpr int kProduction = 6;
    const struct {
        int needed;           // the kind of listener
        const char* counter;  // named when there is none; null for no message
        bool isSent;          // to the receiver
        bool isFailureNoted;  // by the controller, behind the manager's own message
    } expected[] = {
        {kVersion, "mGpsVersionListenerCounter", false, false},
        {kSetting, nullptr, true, false},
        {kProduction, "mGpsProductionListenerCounter", true, false},
        {kProduction, "mGpsProductionListenerCounter", true, true},
        {kNone, nullptr, true, true},
        {kNone, nullptr, true, false},
        {kNone, nullptr, true, false},
    };
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        const auto& [name, request] = kRequests<GpsController>[i];
        const auto& row = expected[i];
        const std::string operation = std::string("GpsController::") + name + "() ";
        SCOPED_TRACE(name);
        mLog.take();
        if (row.needed != kNone) {
            EXPECT_FALSE(request(*mController));
            EXPECT_EQ(mLog.texts(), row.counter != nullptr ? Strings{operation + row.counter + " = 0\n"} : Strings{});
            kKinds<GpsController>[row.needed].add(*mController, &mA);
        }
        const std::size_t before = mPeer->written().size();
        EXPECT_TRUE(request(*mController));
        EXPECT_EQ(mPeer->written().size() > before, row.isSent);

        mPeer->setWriteFails(true);
        mLog.take();
        EXPECT_EQ(request(*mController), !row.isSent);
        const std::vector<LogCapture::Line> lines = mLog.take();
        const bool isNoted = !lines.empty() && lines.back().text == operation + ": " + name + "() = false\n";
        EXPECT_EQ(isNoted, row.isFailureNoted);
        mPeer->setWriteFails(false);
        if (row.needed != kNone) kKinds<GpsController>[row.needed].remove(*mController, &mA);
    }
}

}  // namespace
