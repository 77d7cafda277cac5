#ifndef TESTS_GPS_DECODE_PROGRAM_H
#define TESTS_GPS_DECODE_PROGRAM_H

#include <signal.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <numeric>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

/** An open file descriptor. */
class Descriptor {
public:
    explicit Descriptor(int fd) : mFd(fd) {
        if (fd < 0) throw std::runtime_error("no descriptor for the test");
    }
    Descriptor(Descriptor&& other) : mFd(std::exchange(other.mFd, -1)) {}
    ~Descriptor() { reset(); }

    operator int() const { return mFd; }
    void reset() {
        if (mFd >= 0) close(std::exchange(mFd, -1));
    }

private:
    int mFd;
};

/** A file without a name, to be read from its start. */
inline Descriptor memoryFile(const std::string& content = "") {
    Descriptor file(memfd_create("gps-decode", MFD_CLOEXEC));
    if (pwrite(file, content.data(), content.size(), 0) != std::ssize(content)) throw std::runtime_error("no memory");
    return file;
}

inline std::string contentOf(int file) {
    std::string content(static_cast<std::size_t>(lseek(file, 0, SEEK_END)), '\0');
    return pread(file, content.data(), content.size(), 0) == std::ssize(content) ? content : "(unreadable)";
}

/** What can be read until `last` has come, or the end. */
inline std::string readUntil(int fd, const std::string& last) {
    std::string text;
    for (char byte = 0; !text.ends_with(last) && read(fd, &byte, 1) == 1;)
        text += byte;
    return text;
}

/** gps-decode as a process of its own; it is killed when it still runs at the end. */
class Program {
public:
    Program(std::vector<std::string> arguments, int in, int out, int err) {
        arguments.insert(arguments.begin(), GPS_DECODE);
        std::vector<char*> argv;
        for (std::string& argument : arguments)
            argv.push_back(argument.data());
        argv.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        for (const auto& [ours, theirs] : {std::pair{in, 0}, {out, 1}, {err, 2}}) {
            if (ours >= 0) posix_spawn_file_actions_adddup2(&actions, ours, theirs);
            if (ours < 0) posix_spawn_file_actions_addclose(&actions, theirs);
        }
        if (posix_spawn(&mPid, argv[0], &actions, nullptr, argv.data(), environ) != 0) mPid = 0;
        posix_spawn_file_actions_destroy(&actions);
    }
    ~Program() {
        if (mPid > 0) end(SIGKILL);
    }

    /** Sends a signal (0: none) and waits for the end; the exit status, or -1 when a signal ended the process. */
    int end(int signal = 0) {
        int status = 0;
        kill(mPid, signal);
        waitpid(std::exchange(mPid, 0), &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    pid_t mPid = 0;
};

struct Outcome {
    int status;
    std::string out;
    std::string err;
};

inline Outcome runDecode(const std::vector<std::string>& arguments, const std::string& input) {
    const Descriptor in = memoryFile(input);
    const Descriptor out = memoryFile();
    const Descriptor err = memoryFile();
    const int status = Program(arguments, in, out, err).end();
    return {status, contentOf(out), contentOf(err)};
}

/** A sentence of the text between "$" and "*". */
inline std::string sentence(const std::string& body) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    const int sum = std::accumulate(body.begin(), body.end(), 0, [](int left, char right) { return left ^ right; });
    return "$" + body + "*" + kDigits[sum >> 4] + kDigits[sum & 0xF] + "\r\n";
}

/** A UBX frame; `payload` follows class, id and length. */
inline std::string frame(char messageClass, char id, const std::string& payload) {
    const auto byte = [](std::size_t value) { return static_cast<char>(value % 256); };
    const std::string body = std::string{messageClass, id, byte(payload.size()), byte(payload.size() / 256)} + payload;
    unsigned a = 0;
    unsigned b = 0;
    for (const char c : body) {
        a += static_cast<unsigned char>(c);
        b += a;
    }
    return "\xB5\x62" + body + byte(a) + byte(b);
}

/** The last line of standard error. */
inline std::string counts(unsigned chunks, unsigned delivered, unsigned refused, unsigned dropped) {
    return "gps-decode: " + std::to_string(chunks) + " chunks, " + std::to_string(delivered) + " delivered, " +
           std::to_string(refused) + " refused, " + std::to_string(dropped) + " bytes dropped\n";
}

#endif
