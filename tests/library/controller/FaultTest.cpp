#include <cerrno>

#include "tests/library/controller/ControllerTest.h"
#include "tests/support/Receiver.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/support/SystemFaults.h"

// The service while the system refuses what its platform asks for.

namespace {

TEST(SerialReceiver, servesAgainAfterAnyFaultOfTheSystem) {
    const struct {
        Faults faults;
        bool isRefused;  // and not received until the service starts anew
        Strings reports;
    } rows[] = {
        {{"eventfd", {ENFILE}}, true, {": Too many open files\n"}},
        {{"tcsetattr", {EIO}}, true, {": Input/output error\n"}},
        {{"pthread_create", {EAGAIN}}, true, {": Resource temporarily unavailable\n"}},
        {{"read", {EINTR}}, false, {}},
        {{"read", {EIO}}, false, {" is absent\n", " is available\n"}},
        {{"write", {0, EINTR}}, false, {}},  // the first is the receiver's
    };
    const ScratchDirectory directory;
    const std::string device = directory.path("gps");
    Receiver receiver(device, true);
    setenv("GPSHAL_DEVICE", device.c_str(), 1);
    GpsHal::setLink(nullptr);
    GpsHal::GetInstance();  // stays while controllers come and go
    for (const auto& [faults, isRefused, reports] : rows) {
        SCOPED_TRACE(faults.call);
        const LogCapture log;
        Listener listener("L");
        std::atomic<int> received{0};
        listener.setHook([&] {
            ++received;
            received.notify_all();
        });
        letFail(faults);
        auto controller = std::make_unique<GpsController>();
        if (isRefused) controller = nullptr, controller = std::make_unique<GpsController>();
        controller->registerGpsNmeaListener(&listener, GEODETIC_SYSTEM_WGS84);
        controller->registerGpsSettingListener(&listener);
        receiver.send("$X\r\n");
        received.wait(0);
        EXPECT_TRUE(controller->requestGpsSetting(GPS_SETTING_ZDA_ON));
        EXPECT_EQ(receiver.bytes(16).size(), 16U) << "arrives";
        receiver.send(std::string(kAck) + "$Y\r\n");
        for (int count = 1; count < 3; count = received)
            received.wait(count);
        EXPECT_EQ(listener.take(), (Strings{"L:raw $X\r\n", "L:setting 1 yes", "L:raw $Y\r\n"}));
        EXPECT_TRUE(areAllFaultsTaken()) << "the call was made";
        Strings logged;
        for (const LogCapture::Line& line : log.lines()) {
            if (line.file.starts_with("platform/")) logged.push_back(line.text.substr(line.text.find("/gps") + 4));
        }
        EXPECT_EQ(logged, reports);
    }
    GpsHal::DelInstance();
    unsetenv("GPSHAL_DEVICE");
}

}  // namespace
