#include <cerrno>

#include "tests/library/controller/ControllerTest.h"
#include "tests/support/Receiver.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/support/SystemFaults.h"

// The service while the system refuses what its platform asks for.

namespace {

std::string numbered(std::size_t number) {
    return "$GPNUM," + std::to_string(number) + "\r\n";
}

class SerialReceiver : public testing::Test {
protected:
    SerialReceiver() {
        setenv("GPSHAL_DEVICE", mName.c_str(), 1);
        mSentences.setHook([this] {
            ++mReceived;
            mReceived.notify_all();
        });
        GpsHal::setLink(nullptr);
        GpsHal::GetInstance();  // stays while controllers come and go
    }
    ~SerialReceiver() override {
        GpsHal::DelInstance();
        unsetenv("GPSHAL_DEVICE");
    }

    /** A sentence comes, a request goes and is answered, and a sentence comes. */
    void expectService(GpsController& controller) {
        const std::size_t number = mReceived;
        mReceiver->send(numbered(number));
        mReceived.wait(number);
        EXPECT_TRUE(controller.requestGpsSetting(GPS_SETTING_ZDA_ON));
        EXPECT_EQ(mReceiver->bytes(1).size(), 1U) << "arrives";
        mReceiver->send(std::string(kAck) + numbered(number + 1));
        mReceived.wait(number + 1);
        EXPECT_EQ(mSentences.take(), (Strings{"N:raw " + numbered(number), "N:raw " + numbered(number + 1)}));
        EXPECT_EQ(mSettings.take(), Strings{"S:setting 1 yes"});
    }

    /** What the platform has logged, without the device's name. */
    Strings reports() {
        Strings texts;
        for (const LogCapture::Line& line : mLog.take()) {
            if (line.file.starts_with("platform/")) texts.push_back(line.text.substr(line.text.find("/gps") + 4));
        }
        return texts;
    }

    const ScratchDirectory mDirectory;
    const std::string mName = mDirectory.path("gps");
    LogCapture mLog;
    std::unique_ptr<Receiver> mReceiver = std::make_unique<Receiver>(mName, true);
    std::atomic<std::size_t> mReceived{0};
    Listener mSentences{"N"};
    Listener mSettings{"S"};
};

TEST_F(SerialReceiver, servesAgainAfterAnyFaultOfTheSystem) {
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
    for (const auto& row : rows) {
        SCOPED_TRACE(row.faults.call);
        letFail(row.faults);
        auto controller = std::make_unique<GpsController>();
        if (row.isRefused) controller = nullptr, controller = std::make_unique<GpsController>();
        controller->registerGpsNmeaListener(&mSentences, GEODETIC_SYSTEM_WGS84);
        controller->registerGpsSettingListener(&mSettings);
        expectService(*controller);
        EXPECT_TRUE(areAllFaultsTaken()) << "the call was made";
        EXPECT_EQ(reports(), row.reports);
    }
}

}  // namespace
