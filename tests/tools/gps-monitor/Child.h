#ifndef TESTS_GPS_MONITOR_CHILD_H
#define TESTS_GPS_MONITOR_CHILD_H

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utmp.h>

#include <chrono>
#include <string>
#include <vector>

/** A program under test. What it prints (errors too) is collected; it is killed when this object goes. */
class Child {
public:
    enum class Output { pipe, terminal };

    /** On a terminal, that of 80 by 24. */
    Child(Output output, std::vector<std::string> command) {
        int theirs = -1;
        if (output == Output::terminal) {
            const winsize size{24, 80, 0, 0};
            openpty(&mOurs, &mTerminal, nullptr, nullptr, &size);
            theirs = mTerminal;
        } else {
            int ends[2];
            if (pipe2(ends, O_CLOEXEC) == 0) {
                mOurs = ends[0];
                theirs = ends[1];
            }
        }
        mPid = fork();
        if (mPid == 0) run(output, theirs, command);
        if (theirs != mTerminal) close(theirs);
    }
    ~Child() {
        if (mPid > 0) {
            kill(mPid, SIGKILL);
            waitpid(mPid, nullptr, 0);
        }
        close(mOurs);
        if (mTerminal >= 0) close(mTerminal);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    pid_t pid() const { return mPid; }
    /** The program's side of its terminal, which stays open when the program ends. */
    int terminal() const { return mTerminal; }
    const std::string& output() const { return mOutput; }

    void type(const std::string& keys) { EXPECT_EQ(write(mOurs, keys.data(), keys.size()), std::ssize(keys)); }
    void resize(unsigned short width, unsigned short height) {
        const winsize size{height, width, 0, 0};
        ioctl(mOurs, TIOCSWINSZ, &size);
    }

    /** Waits until the output contains a text; false when it still does not after a long time. */
    bool waitFor(const std::string& text) {
        const auto deadline = std::chrono::steady_clock::now() + kLongestWait;
        while (mOutput.find(text) == std::string::npos) {
            if (std::chrono::steady_clock::now() > deadline || !readMore(kLongestWait)) return false;
        }
        return true;
    }

    /** Waits for the end of the program and of its output. @return its exit code; minus the signal that killed it */
    int wait() {
        int status = 0;
        if (mTerminal < 0) {
            while (readMore(kLongestWait)) {
            }
        }
        while (waitpid(mPid, &status, WNOHANG) == 0)
            readMore(std::chrono::milliseconds(10));
        while (readMore(std::chrono::milliseconds(0))) {
        }
        mPid = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }

private:
    static constexpr std::chrono::milliseconds kLongestWait{20000};

    [[noreturn]] static void run(Output output, int theirs, std::vector<std::string>& command) {
        if (output == Output::terminal) {
            login_tty(theirs);
        } else {
            dup2(theirs, STDOUT_FILENO);
            dup2(theirs, STDERR_FILENO);
        }
        unsetenv("GPSHAL_DEVICE");
        setenv("LC_ALL", "C.UTF-8", 1);
        std::vector<char*> arguments;
        for (std::string& argument : command)
            arguments.push_back(argument.data());
        arguments.push_back(nullptr);
        execv(arguments[0], arguments.data());
        _exit(127);
    }

    bool readMore(std::chrono::milliseconds timeout) {
        pollfd readable{mOurs, POLLIN, 0};
        if (poll(&readable, 1, static_cast<int>(timeout.count())) <= 0) return false;
        char buffer[4096];
        const ssize_t count = read(mOurs, buffer, sizeof(buffer));
        if (count <= 0) return false;
        mOutput.append(buffer, static_cast<std::size_t>(count));
        return true;
    }

    pid_t mPid = -1;
    int mOurs = -1;
    int mTerminal = -1;
    std::string mOutput;
};

#endif
