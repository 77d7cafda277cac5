#ifndef TESTS_RECEIVER_SIM_PROCESSES_H
#define TESTS_RECEIVER_SIM_PROCESSES_H

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

/** A directory for the files of one test. */
class ScratchDirectory {
public:
    ScratchDirectory() : mDirectory(std::filesystem::temp_directory_path() / "receiver-sim-XXXXXX") {
        if (mkdtemp(mDirectory.data()) == nullptr) throw std::runtime_error("no directory for the test");
    }
    ~ScratchDirectory() { std::filesystem::remove_all(mDirectory); }
    std::string path(const std::string& name) const { return mDirectory + "/" + name; }
    std::string write(const std::string& name, const std::string& bytes) const {
        std::ofstream(path(name), std::ios::binary) << bytes;
        return path(name);
    }
    std::string read(const std::string& name) const {
        std::ifstream file(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    std::string mDirectory;
};

/** Bytes of a terminal or pipe, with a limit of ten seconds to every wait. */
class Reader {
public:
    explicit Reader(int descriptor) : mDescriptor(descriptor) {
        if (descriptor < 0) throw std::runtime_error("nothing to read");
    }
    ~Reader() { close(mDescriptor); }

    /** All up to the end of `text`; all there is when it does not come. */
    std::string until(const std::string& text) {
        while (mUnread.find(text) == std::string::npos && readSome()) {
        }
        const std::size_t found = mUnread.find(text);
        return take(found == std::string::npos ? mUnread.size() : found + text.size());
    }
    /** So many bytes; fewer when they do not come. */
    std::string bytes(std::size_t count) {
        while (mUnread.size() < count && readSome()) {
        }
        return take(count);
    }

protected:
    const int mDescriptor;

private:
    bool readSome() {
        pollfd entry{mDescriptor, POLLIN, 0};
        char buffer[4096];
        const ssize_t size = poll(&entry, 1, 10000) > 0 ? ::read(mDescriptor, buffer, sizeof buffer) : 0;
        if (size > 0) mUnread.append(buffer, static_cast<std::size_t>(size));
        return size > 0;
    }
    std::string take(std::size_t count) {
        const std::string taken = mUnread.substr(0, count);
        mUnread.erase(0, taken.size());
        return taken;
    }

    std::string mUnread;
};

/** A client that has the receiver's terminal open. */
class Client : public Reader {
public:
    explicit Client(const std::string& device) : Reader(open(device.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)) {}
    void setSpeed(speed_t speed) const {
        termios settings;
        tcgetattr(mDescriptor, &settings);
        cfsetspeed(&settings, speed);
        tcsetattr(mDescriptor, TCSANOW, &settings);
    }
    void send(const std::string& bytes) const {
        const ssize_t sent = ::write(mDescriptor, bytes.data(), bytes.size());
        if (sent != static_cast<ssize_t>(bytes.size())) throw std::runtime_error("cannot send");
    }
};

/** The simulator as a process of its own; it is killed when it is still running at the end. */
class SimulatorProcess {
public:
    explicit SimulatorProcess(std::vector<std::string> arguments) : output(start(std::move(arguments))) {
        firstLine = output.until("\n");
        if (!firstLine.empty()) firstLine.pop_back();
    }
    ~SimulatorProcess() { end(SIGKILL); }

    /** Sends a signal (0: none) and waits for the end; the exit status, or -1 when a signal ended the process. */
    int end(int signal) {
        if (mPid == 0) return -1;
        int status = 0;
        kill(mPid, signal);
        waitpid(std::exchange(mPid, 0), &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    int start(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), RECEIVER_SIM);
        std::vector<char*> argv;
        for (std::string& argument : arguments)
            argv.push_back(argument.data());
        argv.push_back(nullptr);
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
        mPid = fork();
        if (mPid == 0) {
            dup2(ends[1], STDOUT_FILENO);
            dup2(ends[1], STDERR_FILENO);
            execv(RECEIVER_SIM, argv.data());
            _exit(127);
        }
        close(ends[1]);
        return ends[0];
    }

    int mPid = 0;

public:
    /** Standard output and error together; the first line, which is the device when all is well, is already read. */
    Reader output;
    std::string firstLine;
};

#endif
