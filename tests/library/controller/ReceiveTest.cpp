#include "tests/library/controller/ControllerTest.h"

// What the steps of the receive path refuse, and what they ask for each listener anew.

namespace {

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
