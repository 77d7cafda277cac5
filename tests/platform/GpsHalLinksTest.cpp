#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <future>
#include <thread>

#include "GpsHal/GpsHalFileLink.h"
#include "GpsHal/GpsHalSerialLink.h"
#include "tests/support/Processes.h"
#include "tests/support/Receiver.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/support/SystemFaults.h"
#include "tests/support/ThreadState.h"

namespace {

constexpr int kReadLimit = 20000;  // ms; a wait that fails, fails after this

std::string readAll(GpsHalLink& link, std::size_t size) {
    std::string bytes;
    char buffer[1000];
    while (bytes.size() < size) {
        const int length = link.read(buffer, sizeof(buffer), kReadLimit);
        if (length <= 0) break;
        bytes.append(buffer, static_cast<std::size_t>(length));
    }
    return bytes;
}

bool send(GpsHalLink& link, const std::string& bytes) {
    return link.write(bytes.data(), static_cast<unsigned>(bytes.size()));
}

std::string everyByte() {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += static_cast<char>(byte);
    return bytes;
}

class SerialLinkTest : public testing::Test {
protected:
    ScratchDirectory mDirectory;
    const std::string mDevice = mDirectory.path("receiver");
    std::unique_ptr<Receiver> mReceiver = std::make_unique<Receiver>(mDevice);
    GpsHalSerialLink mLink{mDevice};
    char mBuffer[100];
};

TEST_F(SerialLinkTest, CarriesEveryByteUnchangedBothWaysAndMoreThanTheDeviceTakesAtOnce) {
    std::string bytes;
    while (bytes.size() < 200000)
        bytes += everyByte() + std::to_string(bytes.size());
    ASSERT_TRUE(mLink.open() && mLink.open());
    EXPECT_TRUE(send(mLink, "x"));
    EXPECT_EQ(mReceiver->bytes(1), "x");
    auto received = std::async(std::launch::async, [&] { return mReceiver->bytes(bytes.size()); });
    EXPECT_TRUE(send(mLink, bytes));
    EXPECT_EQ(received.get(), bytes);
    std::signal(SIGALRM, [](int) {});
    ualarm(1000, 1000);
    EXPECT_EQ(mLink.read(mBuffer, sizeof(mBuffer), 10), 0) << "nothing is echoed";
    ualarm(0, 0);
    mReceiver->send(everyByte());
    EXPECT_EQ(readAll(mLink, 256), everyByte());
    EXPECT_FALSE(send(mLink, bytes)) << "the device takes no more";
    mReceiver.reset();
    EXPECT_FALSE(send(mLink, "x")) << "the device has hung up";
    EXPECT_EQ(mLink.read(mBuffer, sizeof(mBuffer), 0), -1);
}

TEST_F(SerialLinkTest, SetsEverythingUpAndKeepsItsSpeedAcrossReopening) {
    struct {
        unsigned value;
        speed_t speed;
        Faults busy;  // the device, with what was written
    } const rows[] = {
        {0, B9600, {"TIOCOUTQ", {1, 1}}}, {2, B38400, {"TIOCSERGETLSR", {2, 2, 1}}}, {4, B115200, {}}, {0, B9600, {}}};
    for (const auto& [value, speed, busy] : rows) {
        EXPECT_FALSE(mLink.setSpeed(value)) << "closed";
        ASSERT_TRUE(mLink.open());
        letFail(busy);
        EXPECT_TRUE(mLink.setSpeed(value));
        EXPECT_TRUE(areAllFaultsTaken()) << busy.call;
        EXPECT_FALSE(mLink.setSpeed(1));
        letFail({"tcflush", {EIO}});
        mLink.close();
        EXPECT_FALSE(areAllFaultsTaken()) << "nothing is dropped";
        mReceiver = std::make_unique<Receiver>(mDevice);
        termios settings = mReceiver->settings();
        settings.c_cflag = CSTOPB | CRTSCTS | PARENB;
        settings.c_iflag |= IXON | IXOFF | IXANY;
        settings.c_cc[VMIN] = settings.c_cc[VTIME] = 9;
        tcsetattr(mReceiver->descriptor(), TCSANOW, &settings);
        ASSERT_TRUE(mLink.open());
        settings = mReceiver->settings();
        EXPECT_EQ(cfgetospeed(&settings), speed);
        EXPECT_EQ(cfgetispeed(&settings), speed);
        EXPECT_EQ(settings.c_cflag & ~static_cast<tcflag_t>(CBAUD | CBAUDEX | CIBAUD | HUPCL),
                  static_cast<tcflag_t>(CS8 | CREAD | CLOCAL));
        EXPECT_EQ(settings.c_iflag & (IXON | IXOFF | IXANY), 0U);
        EXPECT_EQ(settings.c_cc[VMIN] * 10 + settings.c_cc[VTIME], 10);
        mLink.close();
    }
}

TEST_F(SerialLinkTest, IsOpenInOneProcessOnly) {
    GpsHalSerialLink second(mDevice);
    const auto before = entriesOf("/proc/self/fd");
    ASSERT_TRUE(mLink.open());
    int isExclusive = 0;  // a terminal would stay so after its holder is killed; root may open it even then
    ioctl(Stream(open(mDevice.c_str(), O_RDWR | O_NOCTTY)).descriptor(), TIOCGEXCL, &isExclusive);
    EXPECT_EQ(isExclusive, 0);
    EXPECT_FALSE(second.open());
    EXPECT_EQ(errno, EBUSY);
    mReceiver->send("x");
    EXPECT_EQ(readAll(mLink, 1), "x") << "unaffected by the refused ones";
    const std::string device = std::filesystem::canonical(mDevice);
    EXPECT_EQ(runShell("readlink /proc/self/fd/*").find(device), std::string::npos) << "not inherited by programs";
    const pid_t child = startProcess([] { pause(); });
    mLink.close();
    for (int i = 0; i < 2; ++i)
        EXPECT_TRUE(GpsHalSerialLink(mDevice).open()) << "also while a forked child has a copy of the descriptor";
    EXPECT_TRUE(second.open());
    second.close();
    killProcess(child);
    EXPECT_EQ(entriesOf("/proc/self/fd"), before);
    const Stream other(open("/dev/null", O_RDONLY | O_CLOEXEC));  // gets the device's number
    expectInProcess([&] { EXPECT_NE(fcntl(other.descriptor(), F_GETFD), -1); });

    auto& heir = makeForAllProcesses<std::atomic<pid_t>>();
    const pid_t holder = startProcess([&] {
        EXPECT_TRUE(mLink.open());
        if (fork() == 0) heir = getpid();
        pause();
    });
    while (heir == 0)
        std::this_thread::yield();
    EXPECT_FALSE(mLink.open());
    killProcess(holder);
    EXPECT_TRUE(mLink.open()) << "released by the death of its holder, though not of its child";
    kill(heir, SIGKILL);
}

TEST_F(SerialLinkTest, ClosingEndsAWaitingReadAndAWaitingWrite) {
    for (int round = 0; round < 3; ++round) {
        ASSERT_TRUE(mLink.open());
        auto reading = std::async(std::launch::async, [this] { return mLink.read(mBuffer, sizeof(mBuffer), 600000); });
        auto writing = std::async(std::launch::async, [this] { return send(mLink, std::string(100000, 'x')); });
        EXPECT_EQ(mReceiver->bytes(1).substr(0, 1), "x");
        mLink.close();
        EXPECT_EQ(reading.get(), -1);
        EXPECT_FALSE(writing.get());
        mReceiver = std::make_unique<Receiver>(mDevice);
    }
}

TEST_F(SerialLinkTest, RefusesWhatIsNoSerialDevice) {
    mDirectory.write("file", "text");
    mkfifo(mDirectory.path("fifo").c_str(), 0600);
    for (const char* const name : {"file", "fifo", ".", "missing"}) {
        GpsHalSerialLink link(mDirectory.path(name));
        EXPECT_FALSE(link.open()) << name;
        EXPECT_EQ(link.read(mBuffer, sizeof(mBuffer), 0), -1);
        EXPECT_FALSE(send(link, "x"));
    }
    GpsHalSerialLink terminal("/dev/ptmx");  // which is one, but not a pseudo-terminal's other end
    while (!terminal.open())
        ASSERT_EQ(errno, EBUSY) << "in another run of this test";
}

TEST(FileLink, GivesTheFileOnceAndThenSilence) {
    const auto before = entriesOf("/proc/self/fd");
    const ScratchDirectory directory;
    std::string bytes;
    while (bytes.size() < 10000)
        bytes += everyByte();
    GpsHalFileLink link(directory.write("log", bytes));
    char buffer[10];
    EXPECT_EQ(link.read(buffer, sizeof(buffer), 0), -1);
    EXPECT_FALSE(send(link, "x") || link.setSpeed(2));
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(link.open());
        EXPECT_EQ(runShell("readlink /proc/self/fd/*").find(directory.path("log")), std::string::npos);
        EXPECT_EQ(readAll(link, bytes.size()), bytes);
        EXPECT_EQ(link.read(buffer, sizeof(buffer), 10), 0);
        EXPECT_TRUE(send(link, "x") && link.setSpeed(2));
        const std::jthread closing([&link, reader = gettid()] {
            waitUntilBlocked(reader);
            link.close();
        });
        EXPECT_EQ(link.read(buffer, sizeof(buffer), 600000), -1);
    }
    mkfifo(directory.path("fifo").c_str(), 0600);
    for (const char* const name : {"missing", "fifo", "."})
        EXPECT_FALSE(GpsHalFileLink(directory.path(name)).open()) << name;
    EXPECT_EQ(errno, EINVAL) << "not that of the missing one, which is awaited";
    EXPECT_TRUE(GpsHalFileLink(directory.path("log")).open());
    EXPECT_EQ(entriesOf("/proc/self/fd"), before);
}

}  // namespace
