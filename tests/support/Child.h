#ifndef TESTS_SUPPORT_CHILD_H
#define TESTS_SUPPORT_CHILD_H

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <array>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/Processes.h"

/** A pipe or terminal of ours, with a limit to every wait. What is read is kept; what is taken is not taken again. */
class Stream {
public:
    static constexpr int kPatienceMs = 20000;

    explicit Stream(int descriptor) : mDescriptor(descriptor) {
        if (descriptor < 0) throw std::runtime_error("no stream for the test");
    }
    ~Stream() { close(mDescriptor); }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    int descriptor() const { return mDescriptor; }
    /** Everything that has been read. */
    const std::string& all() const { return mAll; }

    /** Whether a text follows what was taken. */
    bool waitFor(const std::string& text) {
        while (mAll.find(text, mTaken) == std::string::npos) {
            if (!readSome()) return false;
        }
        return true;
    }
    /** Takes all up to the end of a text; all there is when it does not come. */
    std::string until(const std::string& text) {
        return take(waitFor(text) ? mAll.find(text, mTaken) + text.size() - mTaken : mAll.size());
    }
    /** Takes so many bytes; fewer when they do not come. */
    std::string bytes(std::size_t count) {
        while (mAll.size() - mTaken < count && readSome()) {
        }
        return take(count);
    }
    void send(const std::string& bytes) const {
        if (write(mDescriptor, bytes.data(), bytes.size()) != std::ssize(bytes))
            throw std::runtime_error("cannot send");
    }

protected:
    bool readSome() {
        pollfd readable{mDescriptor, POLLIN, 0};
        char buffer[65536];
        const ssize_t size = poll(&readable, 1, kPatienceMs) == 1 ? read(mDescriptor, buffer, sizeof(buffer)) : 0;
        if (size > 0) mAll.append(buffer, static_cast<std::size_t>(size));
        return size > 0;
    }

private:
    std::string take(std::size_t count) {
        const std::string taken = mAll.substr(mTaken, count);
        mTaken += taken.size();
        return taken;
    }

    const int mDescriptor;
    std::string mAll;
    std::size_t mTaken = 0;
};

/** A program as a process of its own, and the stream to its standard input, output and errors together. It is killed
 *  when it still runs at the end. */
class Child : public Stream {
public:
    enum class On { socket, terminal };  // a terminal of 80 by 24

    explicit Child(std::vector<std::string> command, On on = On::socket) : Child(std::move(command), ends(on)) {}
    ~Child() { end(SIGKILL); }

    /** Sends a signal, or ends the input (0), and waits for the end; the exit status, or minus the signal's number. */
    int end(int signal = 0) {
        if (mPid <= 0) return 0;
        if (signal != 0) kill(mPid, signal);
        if (signal == 0) shutdown(descriptor(), SHUT_WR);
        while (readSome()) {
        }
        int status = 0;
        waitpid(std::exchange(mPid, 0), &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }

private:
    Child(std::vector<std::string> command, std::array<int, 2> ends)
        : Stream(ends[0]), mPid(startProcess([&] { run(command, ends[1]); })) {
        close(ends[1]);
    }
    static std::array<int, 2> ends(On on) {
        const winsize size{24, 80, 0, 0};
        std::array ends{-1, -1};
        if (on == On::terminal) openpty(&ends[0], &ends[1], nullptr, nullptr, &size);
        if (on == On::socket) socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data());
        for (const int end : ends)
            fcntl(end, F_SETFD, FD_CLOEXEC);
        return ends;
    }
    static void run(std::vector<std::string>& command, int end) {
        setsid();
        ioctl(end, TIOCSCTTY, 0);  // if it is a terminal
        for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            dup2(end, standard);
        std::vector<char*> arguments;
        for (std::string& word : command)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        execvp(arguments[0], arguments.data());
        _exit(127);
    }

    pid_t mPid;
};

/** What a line of the shell writes until its end. Without --norc it reads start-up files when its input is a socket. */
inline std::string runShell(const std::string& line) {
    Child shell({"bash", "--norc", "-c", line});
    shell.end();
    return shell.all();
}

#endif
