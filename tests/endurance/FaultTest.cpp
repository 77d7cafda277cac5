#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <termios.h>

#include <cerrno>
#include <filesystem>

#include "QvFramework/Foundation/QvSyncGuard.h"
#include "tests/library/controller/ControllerTest.h"

// The service while the system refuses what its platform asks for, and while the receiver is pulled out. This program's
// functions stand before those of the system.

namespace {

std::string gCall;  // set while no other thread runs
std::atomic<int> gError{0};

constexpr std::size_t kEventSize = 8;  // not a device's bytes

/** Sets errno when this is the call that is to fail, once. */
int takeFault(const char* call) {
    const int error = gError != 0 && gCall == call ? gError.exchange(0) : 0;
    if (error != 0) errno = error;
    return error;
}

void letFail(const char* call, int error) {
    gCall = call;
    gError = error;
}

}  // namespace

#define SYSTEM(function) reinterpret_cast<decltype(&(function))>(dlsym(RTLD_NEXT, #function))

#pragma GCC visibility push(default)
extern "C" {
int shm_open(const char* name, int flags, mode_t mode) {
    return takeFault("shm_open") != 0 ? -1 : SYSTEM(shm_open)(name, flags, mode);
}
int posix_fallocate(int fd, off_t offset, off_t length) {
    const int error = takeFault("posix_fallocate");
    return error != 0 ? error : SYSTEM(posix_fallocate)(fd, offset, length);
}
int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*routine)(void*), void* arg) noexcept {
    const int error = takeFault("pthread_create");
    return error != 0 ? error : SYSTEM(pthread_create)(thread, attributes, routine, arg);
}
int eventfd(unsigned value, int flags) noexcept {
    return takeFault("eventfd") != 0 ? -1 : SYSTEM(eventfd)(value, flags);
}
int tcsetattr(int fd, int actions, const termios* settings) noexcept {
    return takeFault("tcsetattr") != 0 ? -1 : SYSTEM(tcsetattr)(fd, actions, settings);
}
ssize_t read(int fd, void* buffer, std::size_t size) {
    return size != kEventSize && takeFault("read") != 0 ? -1 : SYSTEM(read)(fd, buffer, size);
}
ssize_t write(int fd, const void* data, std::size_t size) {
    return size != kEventSize && takeFault("write") != 0 ? -1 : SYSTEM(write)(fd, data, size);
}
}
#pragma GCC visibility pop

namespace {

std::string numbered(std::size_t number) {
    return "$GPNUM," + std::to_string(number) + "\r\n";
}

/** Counts the numbered sentences, which come in their order, and the others. */
class Counter : public GpsNmeaListener {
public:
    void notifyReceiveNmeaSentence(const char* data, unsigned int length) override {
        if (std::string_view(data, length) != numbered(numbers)) return static_cast<void>(++others);
        ++numbers;
        numbers.notify_all();
    }
    void waitFor(std::size_t count) const {
        for (std::size_t seen = numbers; seen < count; seen = numbers) {
            numbers.wait(seen);
        }
    }

    std::atomic<std::size_t> numbers{0};
    std::atomic<std::size_t> others{0};
};

/** A receiver at one end of a pseudo-terminal, and a name for the other. */
class Terminal {
public:
    explicit Terminal(const std::string& name) : mMaster(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        grantpt(mMaster);
        unlockpt(mMaster);
        termios settings{};
        tcgetattr(mMaster, &settings);
        cfmakeraw(&settings);
        tcsetattr(mMaster, TCSANOW, &settings);
        std::filesystem::remove(name);
        std::filesystem::create_symlink(ptsname(mMaster), name);
    }
    ~Terminal() { close(mMaster); }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    void say(const std::string& text) const {
        ASSERT_EQ(SYSTEM(write)(mMaster, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    bool hears() const {
        pollfd source{mMaster, POLLIN, 0};
        return poll(&source, 1, kLongMs) == 1 && (source.revents & POLLIN) != 0;
    }

private:
    const int mMaster;
};

class SerialReceiver : public testing::Test {
protected:
    SerialReceiver() {
        setenv("GPSHAL_DEVICE", mName.c_str(), 1);
        GpsHal::setLink(nullptr);
    }
    ~SerialReceiver() override {
        unsetenv("GPSHAL_DEVICE");
        std::filesystem::remove_all(mDirectory);
    }

    /** A sentence comes, a request goes and is answered, and a sentence comes. */
    void expectService(GpsController& controller) {
        const std::size_t number = mCounter.numbers;
        mTerminal->say(numbered(number));
        mCounter.waitFor(number + 1);
        EXPECT_TRUE(controller.requestGpsSetting(GPS_SETTING_ZDA_ON));
        EXPECT_TRUE(mTerminal->hears());
        mTerminal->say(std::string(kAck) + numbered(number + 1));
        mCounter.waitFor(number + 2);
        EXPECT_EQ(mSettings.take(), Strings{"S:setting 1 yes"});
    }

    /** What the layer has said, with the device's name cut off. */
    Strings reports() {
        Strings texts;
        for (const LogCapture::Line& line : mLog.take()) {
            if (line.file.starts_with("platform/")) texts.push_back(line.text.substr(line.text.find("/gps") + 4));
        }
        return texts;
    }

    std::string mDirectory = testing::TempDir() + "receiver-XXXXXX";
    const std::string mName = std::string(mkdtemp(mDirectory.data())) + "/gps";
    LogCapture mLog;
    std::unique_ptr<Terminal> mTerminal = std::make_unique<Terminal>(mName);
    Counter mCounter;
    Listener mSettings{"S"};
};

TEST_F(SerialReceiver, mayBePulledOutInAnySentenceAndPluggedInAgainWhileClientsRun) {
    GpsController controller;
    controller.registerGpsNmeaListener(&mCounter, GEODETIC_SYSTEM_WGS84);
    controller.registerGpsSettingListener(&mSettings);
    for (const std::size_t cut : {0, 1, 8, 9}) {
        expectService(controller);
        mTerminal->say(numbered(mCounter.numbers).substr(0, cut));
        mTerminal.reset();
        EXPECT_FALSE(controller.requestGpsSetting(GPS_SETTING_ZDA_ON)) << "nobody is there";
        mTerminal = std::make_unique<Terminal>(mName);
        expectService(controller);
        EXPECT_EQ(reports(), (Strings{" is lost\n", " is back\n"}));
    }
    EXPECT_EQ(mCounter.others, 0U);
}

TEST_F(SerialReceiver, servesAgainAfterAnyFaultOfTheSystem) {
    const struct {
        const char* call;
        int error;
        bool isRefused;  // and not received until the service starts anew
        Strings reports;
    } rows[] = {
        {"eventfd", EMFILE, true, {": Too many open files\n"}},
        {"tcsetattr", EIO, true, {": Input/output error\n"}},
        {"tcsetattr", EINTR, false, {}},
        {"pthread_create", EAGAIN, true, {": Resource temporarily unavailable\n"}},
        {"read", EINTR, false, {}},
        {"read", EIO, false, {" is lost\n", " is back\n"}},
        {"write", EINTR, false, {}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.call) + ' ' + std::to_string(row.error));
        letFail(row.call, row.error);
        auto controller = std::make_unique<GpsController>();
        if (row.isRefused) controller = nullptr, controller = std::make_unique<GpsController>();
        controller->registerGpsNmeaListener(&mCounter, GEODETIC_SYSTEM_WGS84);
        controller->registerGpsSettingListener(&mSettings);
        expectService(*controller);
        EXPECT_EQ(gError, 0) << "the call was made";
        EXPECT_EQ(reports(), row.reports);
    }
}

/** Waits for the end of its own thread, which only the system can refuse. */
class Impatient {
public:
    int Initialize() { return 0; }
    int MainProc() {
        mId = gettid();
        pthread_detach(pthread_self());
        EXPECT_FALSE(mThread.WaitExit(kLongMs));
        EXPECT_EQ(mThread.GetPriority(), -1);
        return 0;
    }
    void Finalize() { mIsOver.set_value(); }

    void runToTheEnd() {
        EXPECT_TRUE(mThread.Start("impatient"));
        mIsOver.get_future().wait();
        while (std::filesystem::exists("/proc/self/task/" + std::to_string(mId)))
            std::this_thread::yield();
    }

private:
    pid_t mId = 0;
    std::promise<void> mIsOver;
    QvThread<Impatient> mThread{this};
};

TEST(Thread, saysThatItsEndCannotBeWaitedFor) {
    const LogCapture log;
    Impatient().runToTheEnd();
    EXPECT_THAT(log.texts(),
                testing::ElementsAre(testing::StartsWith("pthread_join failed !! ret["), "invalid thread id\n"));
}

TEST(SharedLock, worksInItsProcessAloneWhenTheSystemHasNoMemoryForIt) {
    const struct {
        const char* call;
        int error;
        bool isShared;
    } rows[] = {{"shm_open", EMFILE, false}, {"posix_fallocate", EINTR, true}, {"posix_fallocate", ENOSPC, false}};
    int lock = 0;
    for (const auto& row : rows) {
        const std::string name = "QVSDK_Fault" + std::to_string(++lock);  // a process has one lock of a name
        const LogCapture log;
        letFail(row.call, row.error);
        const QvSharedSyncObject object(name.c_str());
        EXPECT_EQ(gError, 0) << row.call;
        EXPECT_EQ(log.texts(), row.isShared ? Strings() : Strings{"no shared lock for " + name + "\n"});
        QvSyncGuard guard(object);
        QvSyncGuard again(object);
    }
}

}  // namespace
