#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <atomic>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <random>

#include "tests/library/controller/ControllerTest.h"

// The whole service on a line that carries anything, and on one that is pulled out.

namespace {

std::string numbered(std::size_t number) {
    return "$GPNUM," + std::to_string(number) + "\r\n";
}

/** Notes the numbered sentences, and counts the others. */
class Counter : public GpsNmeaListener {
public:
    void notifyReceiveNmeaSentence(const char* data, unsigned int length) override {
        const std::string_view sentence(data, length);
        if (sentence != numbered(numbers)) return static_cast<void>(++others);
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

std::string randomBytes(std::size_t size) {
    static std::minstd_rand random(1);
    std::string bytes(size, '\0');
    std::generate(bytes.begin(), bytes.end(), [] { return static_cast<char>(random() >> 8); });
    return bytes;
}

/** What an end hears whose bits are `bit` times as long as those of the end that says `text`. */
std::string heardAtAnotherSpeed(std::string_view text, double bit) {
    std::vector<bool> line;
    for (const char c : text) {
        const unsigned frame = static_cast<unsigned char>(c) << 1U | 1U << 9U;  // start bit, data, stop bit
        for (unsigned i = 0; i < 10; ++i) {
            line.push_back((frame >> i & 1U) != 0);
        }
    }
    std::string heard;
    for (double time = 0; time + 10 * bit < static_cast<double>(line.size());) {
        if (line[static_cast<std::size_t>(time)]) {
            time = std::floor(time) + 1;
            continue;
        }
        unsigned byte = 0;
        for (unsigned i = 0; i < 8; ++i) {
            byte |= static_cast<unsigned>(line[static_cast<std::size_t>(time + bit * (1.5 + i))]) << i;
        }
        heard += static_cast<char>(byte);
        time += 9.5 * bit;
    }
    return heard;
}

TEST_F(ControllerTest, isToldEveryWholeSentenceWhateverIsOnTheLine) {
    const std::string sentence = "$GPZDA,123519.00,16,11,2026,00,00*6A\r\n";
    std::string sentences;
    while (sentences.size() < 2000)
        sentences += sentence;
    const struct {
        const char* what;
        std::function<std::string(std::size_t)> noise;
        std::size_t times;
    } rows[] = {
        {"nothing", [](std::size_t) { return std::string(); }, 100},
        {"a cut sentence", [&](std::size_t i) { return sentence.substr(0, i % (sentence.size() - 1)); }, 100},
        {"a sentence's end", [&](std::size_t i) { return sentence.substr(i % sentence.size()); }, 100},
        {"doubled sync bytes", [](std::size_t) { return std::string("\xB5\xB5\x62"); }, 100},
        {"a bogus length", [](std::size_t) { return std::string("\xB5\x62\x06\x01\xFF\x1F"); }, 20},
        {"a wrong checksum", [](std::size_t) { return std::string(kAck.substr(0, 9)) + 'x'; }, 100},
        {"9600 heard at 38400", [&](std::size_t) { return heardAtAnotherSpeed(sentences, 0.25); }, 20},
        {"38400 heard at 9600", [&](std::size_t) { return heardAtAnotherSpeed(sentences, 4); }, 20},
        {"115200 heard at 38400", [&](std::size_t) { return heardAtAnotherSpeed(sentences, 3); }, 20},
        {"9600 heard at 115200", [&](std::size_t) { return heardAtAnotherSpeed(sentences, 1 / 12.0); }, 20},
        {"random bytes", [](std::size_t) { return randomBytes(100000); }, 40},
    };
    QvDbgOutput::setSink([](void*, const char*, const char*, int, int, const char*) {}, nullptr);
    for (const auto& [what, noise, times] : rows) {
        Counter counter;
        mController->registerGpsNmeaListener(&counter, GEODETIC_SYSTEM_WGS84);
        std::size_t bytes = 0;
        for (std::size_t i = 0; i < times; ++i) {
            const std::string noisy = noise(i) + numbered(i);
            bytes += noisy.size();
            mPeer->send(noisy);
        }
        mPeer->send(std::string(8200, '\0'));  // ends whatever claims to be long
        ASSERT_TRUE(mPeer->waitUntilRead(kLongMs)) << what;
        EXPECT_EQ(counter.numbers, times) << what;
        EXPECT_TRUE(mController->unRegisterGpsNmeaListener(&counter));
        std::printf("%s: %zu bytes, %zu whole sentences, %zu others\n", what, bytes, times, counter.others.load());
    }
}

/** A receiver at one end of a pseudo-terminal, and a name for the other. */
class Receiver {
public:
    explicit Receiver(const std::string& name) : mMaster(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        grantpt(mMaster);
        unlockpt(mMaster);
        termios settings{};
        tcgetattr(mMaster, &settings);
        cfmakeraw(&settings);
        tcsetattr(mMaster, TCSANOW, &settings);
        std::filesystem::remove(name);
        std::filesystem::create_symlink(ptsname(mMaster), name);
    }
    ~Receiver() { close(mMaster); }
    Receiver(const Receiver&) = delete;
    Receiver& operator=(const Receiver&) = delete;

    void say(const std::string& text) const {
        ASSERT_EQ(write(mMaster, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    /** Whether something comes from the library. */
    bool hears() const {
        pollfd source{mMaster, POLLIN, 0};
        return poll(&source, 1, kLongMs) == 1 && (source.revents & POLLIN) != 0;
    }

private:
    const int mMaster;
};

TEST(Receiver, mayBePulledOutInAnySentenceAndPluggedInAgainWhileClientsRun) {
    constexpr std::size_t kCuts[] = {0, 1, 8, 9};
    std::string directory = testing::TempDir() + "receiver-XXXXXX";
    const std::string name = std::string(mkdtemp(directory.data())) + "/gps";
    setenv("GPSHAL_DEVICE", name.c_str(), 1);
    GpsHal::setLink(nullptr);
    auto receiver = std::make_unique<Receiver>(name);
    const LogCapture log;
    {
        GpsController controller;
        Counter counter;
        Listener settings("S");
        controller.registerGpsNmeaListener(&counter, GEODETIC_SYSTEM_WGS84);
        controller.registerGpsSettingListener(&settings);
        std::size_t number = 0;
        for (const std::size_t cut : kCuts) {
            receiver->say(numbered(number));
            counter.waitFor(++number);
            receiver->say(numbered(number).substr(0, cut));
            receiver.reset();
            EXPECT_FALSE(controller.requestGpsSetting(GPS_SETTING_ZDA_ON)) << "nobody is there";
            receiver = std::make_unique<Receiver>(name);
            receiver->say(numbered(number));
            counter.waitFor(++number);
            EXPECT_TRUE(controller.requestGpsSetting(GPS_SETTING_ZDA_ON));
            EXPECT_TRUE(receiver->hears());
            receiver->say(std::string(kAck) + numbered(number));
            counter.waitFor(++number);
        }
        EXPECT_EQ(counter.others, 0U);
        EXPECT_EQ(settings.take(), Strings(std::size(kCuts), "S:ack 1"));
    }
    Strings reports;
    for (const LogCapture::Line& line : log.lines()) {
        if (line.file.starts_with("platform/")) reports.push_back(line.text.substr(name.size()));
    }
    Strings expected;
    for (std::size_t i = 0; i < std::size(kCuts); ++i) {
        expected.insert(expected.end(), {" is lost\n", " is back\n"});
    }
    EXPECT_EQ(reports, expected);
    unsetenv("GPSHAL_DEVICE");
    std::filesystem::remove_all(directory);
}

}  // namespace
