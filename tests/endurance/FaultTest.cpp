#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/mman.h>
#include <termios.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <random>

#include "QvFramework/Foundation/QvSyncGuard.h"
#include "tests/library/controller/ControllerTest.h"

// The service while the system refuses what its platform asks for, on lines that carry anything, and on one that is
// pulled out. This program's functions stand before those of the system.

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
void* mmap(void* address, std::size_t length, int protection, int flags, int fd, off_t offset) noexcept {
    return takeFault("mmap") != 0 ? MAP_FAILED : SYSTEM(mmap)(address, length, protection, flags, fd, offset);
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

/** What an end hears whose bits are `bit` times as long as those of the end that says `text`. */
std::string heardAtAnotherSpeed(std::string_view text, double bit) {
    std::vector<unsigned> line;
    for (const char c : text) {
        for (unsigned i = 0, frame = static_cast<unsigned char>(c) << 1U | 1U << 9U; i < 10; ++i) {
            line.push_back(frame >> i & 1U);  // start bit, data, stop bit
        }
    }
    std::string heard;
    const auto at = [&line](double time) { return line[static_cast<std::size_t>(time)]; };
    for (double time = 0; time + 10 * bit < static_cast<double>(line.size());) {
        unsigned byte = 0;
        for (unsigned i = 0; i < 8; ++i) {
            byte |= at(time + bit * (1.5 + i)) << i;
        }
        const bool isStart = at(time) == 0;
        if (isStart) heard += static_cast<char>(byte);
        time = isStart ? time + 9.5 * bit : std::floor(time) + 1;
    }
    return heard;
}

TEST_F(ControllerTest, isToldEveryWholeSentenceWhateverElseIsOnTheLine) {
    std::string sentences;
    std::string noise(100000, '\0');
    std::minstd_rand random(1);
    std::generate(noise.begin(), noise.end(), [&] { return static_cast<char>(random() >> 8U); });
    while (sentences.size() < 2000)
        sentences += kZda;
    const std::pair<const char*, std::string> rows[] = {
        {"9600 heard at 38400", heardAtAnotherSpeed(sentences, 0.25)},
        {"38400 heard at 9600", heardAtAnotherSpeed(sentences, 4)},
        {"115200 heard at 38400", heardAtAnotherSpeed(sentences, 3)},
        {"9600 heard at 115200", heardAtAnotherSpeed(sentences, 1 / 12.)},
        {"random bytes", noise}};
    for (const auto& [what, garbage] : rows) {
        constexpr std::size_t kTimes = 100;
        Counter counter;
        mController->registerGpsNmeaListener(&counter, GEODETIC_SYSTEM_WGS84);
        for (std::size_t i = 0; i < kTimes; ++i) {
            mPeer->send(garbage + std::string(kZda.substr(0, i % kZda.size())) + numbered(i));
        }
        mPeer->send(std::string(8200, '\0'));  // ends whatever claims to be long
        ASSERT_TRUE(mPeer->waitUntilRead(kLongMs)) << what;
        EXPECT_EQ(counter.numbers, kTimes) << what;
        mController->unRegisterGpsNmeaListener(&counter);
        std::printf("%s: %zu bytes, %zu sentences, %zu others\n", what, kTimes * garbage.size(), kTimes,
                    counter.others.load());
    }
}

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
    std::size_t number = 0;
    for (const std::size_t cut : {0, 1, 8, 9}) {
        mTerminal->say(numbered(number));
        mCounter.waitFor(++number);
        mTerminal->say(numbered(number).substr(0, cut));
        mTerminal.reset();
        EXPECT_FALSE(controller.requestGpsSetting(GPS_SETTING_ZDA_ON)) << "nobody is there";
        mTerminal = std::make_unique<Terminal>(mName);
        mTerminal->say(numbered(number));
        mCounter.waitFor(++number);
        EXPECT_TRUE(controller.requestGpsSetting(GPS_SETTING_ZDA_ON));
        EXPECT_TRUE(mTerminal->hears());
        mTerminal->say(std::string(kAck) + numbered(number));
        mCounter.waitFor(++number);
        EXPECT_EQ(mSettings.take(), Strings{"S:ack 1"});
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
    std::size_t number = 0;
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.call) + ' ' + std::to_string(row.error));
        letFail(row.call, row.error);
        auto controller = std::make_unique<GpsController>();
        if (row.isRefused) controller = nullptr, controller = std::make_unique<GpsController>();
        controller->registerGpsNmeaListener(&mCounter, GEODETIC_SYSTEM_WGS84);
        controller->registerGpsSettingListener(&mSettings);
        mTerminal->say(numbered(number));
        mCounter.waitFor(++number);
        EXPECT_TRUE(controller->requestGpsSetting(GPS_SETTING_ZDA_ON));
        EXPECT_TRUE(mTerminal->hears());
        mTerminal->say(std::string(kAck) + numbered(number));
        mCounter.waitFor(++number);
        EXPECT_EQ(gError, 0) << "the call was made";
        EXPECT_EQ(reports(), row.reports);
    }
}

TEST(SharedLock, worksInItsProcessAloneWhenTheSystemHasNoMemoryForIt) {
    const struct {
        const char* call;
        int error;
        bool isShared;
    } rows[] = {{"shm_open", EMFILE, false},
                {"mmap", ENOMEM, false},
                {"posix_fallocate", EINTR, true},
                {"posix_fallocate", ENOSPC, false}};
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
