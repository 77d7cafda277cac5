#include <gmock/gmock.h>

#include "Gps/private/Connection/GpsConnectionManager.h"
#include "tests/library/services/SharedState.h"
#include "tests/support/Processes.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kOk[] = "$GPTXT,01,01,02,ANTSTATUS=OK*3B\r\n";
constexpr char kOpen[] = "$GNTXT,01,01,02,ANTSTATUS=OPEN*2B\r\n";
constexpr char kShort[] = "$GPTXT,01,01,02,ANTSTATUS=SHORT*6D\r\n";

class ConnectionStatus : public testing::Test {
protected:
    const FreshSegments segments;
};

TEST_F(ConnectionStatus, EveryRecognisedSentenceTellsEveryListenerInOrder) {
    GpsConnectionManager manager;
    Listener first;
    Listener second;
    const GPS_CONNECTION_LISTENER_LIST list[] = {{&first}, {nullptr}, {&second}, {nullptr}};
    const LogCapture log;
    manager.changeGpsConnectionStatus(kOpen, list, 3);
    manager.changeGpsConnectionStatus(kShort, list, 0);
    EXPECT_EQ(manager.getConnectionStatus(), GPS_CONNECTION_STATUS_SHORT) << "stored with nobody to tell";
    manager.changeGpsConnectionStatus(kOpen, nullptr, 3);
    EXPECT_EQ(manager.getConnectionStatus(), GPS_CONNECTION_STATUS_OPEN);
    manager.changeGpsConnectionStatus(nullptr, list, 3);
    manager.changeGpsConnectionStatus(kOk, list, 1);
    EXPECT_THAT(first.told, ElementsAre("antenna 1", "antenna 0"));
    EXPECT_THAT(second.told, ElementsAre("antenna 1"));
    EXPECT_THAT(textsOf(log), IsEmpty());
}

TEST_F(ConnectionStatus, NewListenerIsToldTheStatusInEveryProcessAndAfterARestart) {
    {
        GpsConnectionManager manager;
        manager.changeGpsConnectionStatus(kShort, nullptr, 0);
        manager.setConnectionStatus(GPS_CONNECTION_STATUS_OK);  // this process's copy only
    }
    const auto expectShort = [] {
        Listener listener;
        EXPECT_TRUE(GpsConnectionManager().getGpsConnectionStatus(&listener));
        EXPECT_THAT(listener.told, ElementsAre("antenna 2"));
    };
    expectShort();
    expectInProcess(expectShort);
}

TEST_F(ConnectionStatus, NullArgumentsAreRefused) {
    GpsConnectionManager manager;
    GpsConnectionStatus status{};
    const LogCapture log;
    EXPECT_FALSE(manager.parseConnectionStatus(nullptr, &status) || manager.parseConnectionStatus(kShort, nullptr) ||
                 manager.getGpsConnectionStatus(nullptr) || manager.readLocalMemory(nullptr));
    EXPECT_THAT(textsOf(log), ElementsAre("GpsConnectionManager::parseConnectionStatus() Argument Error\n",
                                          "GpsConnectionManager::parseConnectionStatus() Argument Error\n",
                                          "GpsConnectionManager::getGpsConnectionStatus() Argument Error\n",
                                          "GpsConnectionManager::readLocalMemory() Argument Error!\n"));
}

TEST_F(ConnectionStatus, UnmappedSegmentLeavesTheCopyOfTheProcess) {
    createObject(kConnectionSegment, "short");
    const LogCapture log;
    GpsConnectionManager manager;
    Listener listener;
    const GPS_CONNECTION_LISTENER_LIST list[] = {{&listener}};
    manager.changeGpsConnectionStatus(kShort, list, 1);
    EXPECT_EQ(manager.getConnectionStatus(), GPS_CONNECTION_STATUS_SHORT);
    EXPECT_THAT(listener.told, IsEmpty());
    const std::string read = "GpsConnectionManager::readLocalMemory() lpData = NULL\n";
    const std::string get = "GpsConnectionManager::getConnectionStatus() readLocalMemory Error!\n";
    EXPECT_THAT(textsOf(log),
                ElementsAre("mmap error\n", read, get, "GpsConnectionManager::writeLocalMemory() lpData = NULL\n",
                            "GpsConnectionManager::parseConnectionStatus() writeLocalMemory Error!\n", read, get));
}

}  // namespace
