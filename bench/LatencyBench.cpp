#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include "Gps/Gps.h"
#include "QvFramework/Foundation/QvEvent.h"
#include "QvFramework/Foundation/QvSingletonFinalizer.h"

// The time from the last byte of a sentence written to a pseudo-terminal until a client has the sentence: through this
// library in the client's process, and through gpsd (if installed) over its socket. For comparison, the time until a
// thread that only waits for the terminal has read it: the lower bound for any client.

extern char** environ;

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kSentences = 1000;
constexpr auto kPause = std::chrono::milliseconds(2);
constexpr unsigned kPatienceMs = 2000;
constexpr int kGpsdPort = 29470;

class PseudoTerminal {
public:
    PseudoTerminal() : mMaster(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        grantpt(mMaster);
        unlockpt(mMaster);
        termios settings{};
        tcgetattr(mMaster, &settings);
        cfmakeraw(&settings);
        tcsetattr(mMaster, TCSANOW, &settings);
    }
    ~PseudoTerminal() { close(mMaster); }

    const char* device() const { return ptsname(mMaster); }
    void write(const std::string& text) const {
        if (::write(mMaster, text.data(), text.size()) != static_cast<ssize_t>(text.size())) std::abort();
    }

private:
    int mMaster;
};

/** A sentence that differs from the one before. */
std::string sentenceOf(int number) {
    char body[80];
    std::snprintf(body, sizeof(body), "GPRMC,12%02d%02d.00,A,3539.00000,N,13944.00000,E,0.1,0.0,161126,,,A",
                  number / 60 % 60, number % 60);
    unsigned sum = 0;
    for (const char* c = body; *c != '\0'; ++c) {
        sum ^= static_cast<unsigned char>(*c);
    }
    char sentence[96];
    std::snprintf(sentence, sizeof(sentence), "$%s*%02X\r\n", body, sum & 0xFF);
    return sentence;
}

struct Result {
    double medianUs;
    double p99Us;
};

Result evaluate(std::vector<double> microseconds) {
    std::sort(microseconds.begin(), microseconds.end());
    return {microseconds[microseconds.size() / 2], microseconds[microseconds.size() * 99 / 100]};
}

double microsecondsSince(Clock::time_point start, Clock::time_point end) {
    return std::chrono::duration<double, std::micro>(end - start).count();
}

class Stopwatch : public GpsNmeaListener {
public:
    void notifyReceiveNmeaSentence(const char*, unsigned int) override { stop(); }
    void stop() {
        mArrival = Clock::now();
        mArrived.SetEvent();
    }
    Clock::time_point await() {
        if (mArrived.WaitEvent(kPatienceMs) != 0) std::abort();
        mArrived.ResetEvent();
        return mArrival;
    }

private:
    Clock::time_point mArrival;
    QvEvent mArrived;
};

Result measure(const PseudoTerminal& terminal, Stopwatch& stopwatch) {
    std::vector<double> microseconds;
    for (int i = 0; i < kSentences; ++i) {
        const std::string sentence = sentenceOf(i);
        const auto start = Clock::now();
        terminal.write(sentence);
        microseconds.push_back(microsecondsSince(start, stopwatch.await()));
        std::this_thread::sleep_for(kPause);
    }
    return evaluate(microseconds);
}

Result measureLibrary() {
    const PseudoTerminal terminal;
    setenv("GPSHAL_DEVICE", terminal.device(), 1);
    Stopwatch stopwatch;
    Gps::GetInstance()->registerGpsNmeaListener(&stopwatch, GEODETIC_SYSTEM_WGS84);
    const Result result = measure(terminal, stopwatch);
    Gps::GetInstance()->unRegisterGpsNmeaListener(&stopwatch);
    QvSingletonFinalizer::finalize();
    return result;
}

Result measureBareRead() {
    const PseudoTerminal terminal;
    const int device = open(terminal.device(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    Stopwatch stopwatch;
    std::jthread reader([&](const std::stop_token& isEnding) {
        char buffer[4096];
        pollfd readable{device, POLLIN, 0};
        while (!isEnding.stop_requested()) {
            if (poll(&readable, 1, 100) != 1) continue;
            const ssize_t count = read(device, buffer, sizeof(buffer));
            if (count > 0 && buffer[count - 1] == '\n') stopwatch.stop();
        }
    });
    const Result result = measure(terminal, stopwatch);
    reader = {};
    close(device);
    return result;
}

/** Connects to gpsd as soon as it listens; -1 when it never does. */
int connectToGpsd() {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(kGpsdPort);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    for (int attempt = 0; attempt < 100; ++attempt) {
        const int client = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        if (connect(client, reinterpret_cast<sockaddr*>(&address), sizeof(address)) == 0) return client;
        close(client);
        usleep(50000);
    }
    return -1;
}

/** Reads from gpsd until a text has come. */
bool awaitText(int client, const std::string& text) {
    std::string received;
    pollfd readable{client, POLLIN, 0};
    while (poll(&readable, 1, kPatienceMs) == 1) {
        char buffer[4096];
        const ssize_t count = read(client, buffer, sizeof(buffer));
        if (count <= 0) return false;
        received.append(buffer, static_cast<std::size_t>(count));
        if (received.find(text) != std::string::npos) return true;
    }
    return false;
}

bool measureGpsd(Result& result) {
    PseudoTerminal terminal;
    const std::string port = std::to_string(kGpsdPort);
    const std::string device = terminal.device();
    const char* const command[] = {"gpsd", "-N", "-n", "-b", "-S", port.c_str(), device.c_str(), nullptr};
    pid_t gpsd = -1;
    if (posix_spawnp(&gpsd, command[0], nullptr, nullptr, const_cast<char**>(command), environ) != 0) return false;

    const int client = connectToGpsd();
    const std::string watch = "?WATCH={\"enable\":true,\"nmea\":true};\n";
    bool isMeasured = client >= 0 && write(client, watch.data(), watch.size()) > 0;
    for (int i = 0; isMeasured && i < 50; ++i) {  // until it has recognised the receiver
        terminal.write(sentenceOf(i));
        usleep(20000);
    }
    isMeasured = isMeasured && awaitText(client, sentenceOf(49).substr(0, 20));
    std::vector<double> microseconds;
    for (int i = 0; isMeasured && i < kSentences; ++i) {
        const std::string sentence = sentenceOf(i + 100);
        const auto start = Clock::now();
        terminal.write(sentence);
        isMeasured = awaitText(client, sentence.substr(0, 20));
        microseconds.push_back(microsecondsSince(start, Clock::now()));
        std::this_thread::sleep_for(kPause);
    }
    if (client >= 0) close(client);
    kill(gpsd, SIGTERM);
    waitpid(gpsd, nullptr, 0);
    if (isMeasured) result = evaluate(microseconds);
    return isMeasured;
}

void print(const char* what, const Result& result) {
    std::printf("latency/%s median %.1f us, 99th percentile %.1f us\n", what, result.medianUs, result.p99Us);
}

}  // namespace

int main() {
    print("bare read", measureBareRead());
    const Result library = measureLibrary();
    print("library", library);
    Result gpsd{};
    if (!measureGpsd(gpsd)) {
        std::puts("latency/gpsd skipped: gpsd is not installed, or did not pass the sentences on");
        return 0;
    }
    print("gpsd", gpsd);
    std::printf("latency/ratio median %.1f, 99th percentile %.1f\n", gpsd.medianUs / library.medianUs,
                gpsd.p99Us / library.p99Us);
    return 0;
}
