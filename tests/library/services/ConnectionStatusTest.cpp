#include "tests/library/controller/ControllerTest.h"
#include "tests/library/services/SharedState.h"
#include "tests/support/Processes.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kShort[] = "$GPTXT,01,01,02,ANTSTATUS=SHORT*6D\r\n";

class ConnectionStatus : public testing::Test {
protected:
    const FreshSegments segments;
    Listener mListener{"L"};
};

TEST_F(ConnectionStatus, IsStoredForEveryProcessAndDeliveredToTheListenersThatAreThere) {
    GpsConnectionManager manager;
    const GPS_CONNECTION_LISTENER_LIST list[] = {{nullptr}, {&mListener}, {&mListener}};
    manager.changeGpsConnectionStatus(nullptr, list, 3);
    manager.changeGpsConnectionStatus(kShort, nullptr, 3);
    manager.changeGpsConnectionStatus(kShort, list, 2);
    EXPECT_THAT(mListener.take(), ElementsAre("L:antenna 2"));
    manager.setConnectionStatus(GPS_CONNECTION_STATUS_OK);  // this process's copy only
    expectInProcess([] { EXPECT_EQ(GpsConnectionManager().getConnectionStatus(), GPS_CONNECTION_STATUS_SHORT); });
    EXPECT_TRUE(manager.getGpsConnectionStatus(&mListener));
    EXPECT_THAT(mListener.take(), ElementsAre("L:antenna 2"));
}

TEST_F(ConnectionStatus, NullArgumentsAreRefused) {
    GpsConnectionManager manager;
    GpsConnectionStatus status{};
    const LogCapture log;
    EXPECT_FALSE(manager.parseConnectionStatus(nullptr, &status) || manager.parseConnectionStatus(kShort, nullptr) ||
                 manager.getGpsConnectionStatus(nullptr) || manager.readLocalMemory(nullptr));
    EXPECT_THAT(textsOf(log.lines()), ElementsAre("GpsConnectionManager::parseConnectionStatus() Argument Error\n",
                                                  "GpsConnectionManager::parseConnectionStatus() Argument Error\n",
                                                  "GpsConnectionManager::getGpsConnectionStatus() Argument Error\n",
                                                  "GpsConnectionManager::readLocalMemory() Argument Error!\n"));
}

TEST_F(ConnectionStatus, UnmappedSegmentLeavesTheCopyOfTheProcess) {
    createObject(kConnectionSegment, "short");
    const LogCapture log;
    GpsConnectionManager manager;
    const GPS_CONNECTION_LISTENER_LIST list[] = {{&mListener}};
    manager.changeGpsConnectionStatus(kShort, list, 1);
    EXPECT_EQ(manager.getConnectionStatus(), GPS_CONNECTION_STATUS_SHORT);
    EXPECT_THAT(mListener.take(), IsEmpty());
    const std::string read = "GpsConnectionManager::readLocalMemory() lpData = NULL\n";
    const std::string get = "GpsConnectionManager::getConnectionStatus() readLocalMemory Error!\n";
    EXPECT_THAT(textsOf(log.lines()),
                ElementsAre("mmap error\n", read, get, "GpsConnectionManager::writeLocalMemory() lpData = NULL\n",
                            "GpsConnectionManager::parseConnectionStatus() writeLocalMemory Error!\n", read, get));
}

}  // namespace
