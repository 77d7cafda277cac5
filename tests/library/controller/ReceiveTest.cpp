#include "tests/library/controller/ControllerTest.h"

// What a received chunk causes, and what a request needs.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::string_view kGga = "$GPGGA,123519.000,3539.00000,N,13944.00000,E,1,08,0.90,545.4,M,46.9,M,,*6C\r\n";
constexpr std::string_view kGgaInWgs84 =
    "$GPGGA,123519.000,3539.19447,N,13943.80618,E,1,08,0.90,545.40,M,46.90,M,0,0000*53\r\n";

constexpr char kSettingUnknown[] = "GpsSettingManager::analizeGpsSettingResponse() unknown response\n";
constexpr char kProductionUnknown[] = "GpsProductionManager::switchGpsProductionResponse() unknown response\n";
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
    Listener mC{"C", &mTold};
};

TEST_F(Reception, sendsEachChunkDownItsOwnPath) {
    const struct {
        std::string bytes;
        Strings told;
        Strings logged;
    } chunks[] = {
        {"$", {"A:raw $"}, {}},
        {"$GPTX", {"A:raw $GPTX"}, {}},
        {"$GPTXT", {}, {}},
        {"$GNTXT", {}, {}},
        {"$GLTXT", {"A:raw $GLTXT"}, {}},
        {std::string(kAntennaOpen), {"A:antenna 1"}, {}},
        {"$GNTXT,01,01,02,ANTSTATUS=SHORT*6B\r\n", {"A:antenna 2"}, {}},
        {"$GPTXT,01,01,02,ANTSTATUS=OPE", {}, {}},
        {std::string(kZda), {"A:raw " + std::string(kZda), "A:ZDA"}, {}},
        {"\xB5", {}, {}},
        {"\xB5\x62", {}, {}},
        {"\xB5\x62\x05", {}, {kSettingUnknown, kProductionUnknown}},
        {"\xB5\x62\x05\x01", {"A:setting 1 yes"}, {}},
        {"\xB5\x63\x05\x01", {}, {}},
        {"\xB5\x62\x0A\x20", {}, {kResultCut, kResultRefused}},
        {monPt(52), {"A:MonPt"}, {}},
        {" $GPTXT", {}, {}},
        {std::string(1, '\0'), {}, {}},
    };
    registerFor(mA);
    mController->requestGpsSetting(GPS_SETTING_ZDA_ON);  // so that acknowledgements are looked at
    mController->requestGpsSetting(GPS_SETTING_ZDA_ON);
    mA.take();
    for (const auto& chunk : chunks) {
        mLog.take();
        receive(chunk.bytes);
        EXPECT_EQ(mA.take(), chunk.told) << testing::PrintToString(chunk.bytes);
        EXPECT_EQ(mLog.texts(), chunk.logged) << testing::PrintToString(chunk.bytes);
    }
}

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

TEST_F(Reception, deliversRawSentencesByTheDatumRule) {
    constexpr auto kOther = static_cast<GeodeticSystem>(2);
    constexpr auto kWgs84 = GEODETIC_SYSTEM_WGS84;
    constexpr auto kTokyo = GEODETIC_SYSTEM_TOKYO;
    const struct {
        GeodeticSystem base;
        GeodeticSystem wanted;
        bool isFinished;
        std::string_view received;
        std::string_view delivered;
    } rows[] = {
        {kWgs84, kWgs84, false, kGga, kGga},       {kWgs84, kTokyo, true, kGga, ""},
        {kWgs84, kOther, true, kGga, ""},          {kTokyo, kWgs84, false, kGga, kGgaInWgs84},
        {kTokyo, kWgs84, true, kGga, kGgaInWgs84}, {kTokyo, kWgs84, true, "$GPGGA*00", ""},
        {kTokyo, kTokyo, false, kGga, ""},         {kTokyo, kTokyo, true, kGga, kGga},
        {kTokyo, kOther, true, kGga, ""},          {kOther, kWgs84, true, kGga, ""},
        {kOther, kOther, true, kGga, ""},
    };
    for (const auto& row : rows) {
        setShared(row.base, row.isFinished);
        mController->registerGpsNmeaListener(&mA, row.wanted);
        mController->registerGpsNmeaListener(&mB, row.base);  // served or not, whatever became of the entry before
        receive(row.received);
        Strings expected;
        if (!row.delivered.empty()) expected.push_back("A:raw " + std::string(row.delivered));
        const bool isBehindServed = row.base == kWgs84 || (row.base == kTokyo && row.isFinished);
        if (isBehindServed) expected.push_back("B:raw " + std::string(row.received));
        EXPECT_EQ(mA.take(), expected) << row.base << " " << row.wanted << " " << row.isFinished;
        mController->unRegisterGpsNmeaListener(&mA);
        mController->unRegisterGpsNmeaListener(&mB);
    }
}

TEST_F(Reception, tellsEverySettingListenerOfEachAcknowledgementOnce) {
    for (const Listener* listener : {&mA, &mB, &mC}) {
        mController->registerGpsSettingListener(listener);
    }
    mController->requestGpsSetting(GPS_SETTING_ZDA_ON);
    mController->requestGpsSetting(GPS_SETTING_GLL_OFF);
    receive(kAck);
    EXPECT_EQ(mA.take(), toldBy({"A", "B", "C"}, {"setting 1 yes"}));
    receive(kNak);
    EXPECT_EQ(mA.take(), toldBy({"A", "B", "C"}, {"setting 3 no"}));
    receive(kAck);
    EXPECT_THAT(mA.take(), IsEmpty()) << "none is awaited";
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
