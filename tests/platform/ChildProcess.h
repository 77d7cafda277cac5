#ifndef TESTS_PLATFORM_CHILD_PROCESS_H
#define TESTS_PLATFORM_CHILD_PROCESS_H

#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>

/** A process of its own that does some work and ends with its result, or is killed. Ended at the latest with this. */
class ChildProcess {
public:
    explicit ChildProcess(const std::function<int()>& work) : mPid(fork()) {
        if (mPid != 0) return;
        prctl(PR_SET_PDEATHSIG, SIGKILL);  // not to outlive a test that is killed
        _exit(work());
    }
    ~ChildProcess() { kill(); }
    ChildProcess(const ChildProcess&) = delete;

    int exitCode() {
        int status = 0;
        if (mPid > 0) waitpid(mPid, &status, 0);
        mPid = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    void kill() {
        if (mPid > 0) ::kill(mPid, SIGKILL);
        exitCode();
    }

private:
    pid_t mPid;
};

/** Lets one process wait until another one says something. */
class Signal {
public:
    Signal() : mIsOpen(pipe(mEnds) == 0) {}
    ~Signal() {
        close(mEnds[0]);
        close(mEnds[1]);
    }
    Signal(const Signal&) = delete;

    bool give() { return write(mEnds[1], "", 1) == 1; }
    bool wait(int ms) {
        pollfd source{mEnds[0], POLLIN, 0};
        char byte = 0;
        return mIsOpen && poll(&source, 1, ms) == 1 && read(mEnds[0], &byte, 1) == 1;
    }

private:
    int mEnds[2];
    bool mIsOpen;
};

#endif
