#ifndef TESTS_LIBRARY_SERVICES_PROCESSES_H
#define TESTS_LIBRARY_SERVICES_PROCESSES_H

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

/** Runs `work` in a process of its own, which exits with 1 when an expectation failed there and with 0 otherwise. */
template <class Work>
pid_t startProcess(Work work) {
    const pid_t pid = fork();
    if (pid < 0) std::abort();  // and never kill(-1)
    if (pid > 0) return pid;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    work();
    std::fflush(stdout);
    _exit(testing::Test::HasFailure() ? 1 : 0);
}

inline void killProcess(pid_t pid) {
    kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
}

/** Waits for the end of a process; its exit code, or -1 when it was killed or hangs. */
inline int exitCodeOf(pid_t pid) {
    constexpr int kPatienceMs = 60000;
    pollfd process{static_cast<int>(syscall(SYS_pidfd_open, pid, 0)), POLLIN, 0};
    const bool hasEnded = poll(&process, 1, kPatienceMs) == 1;
    close(process.fd);
    if (!hasEnded) kill(pid, SIGKILL);
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/** A process that does `work` step by step. It dies where it stands, with this object at the latest. */
class SteppedProcess {
public:
    /** Where the system lets no process be traced, no process can be stepped. */
    static bool isPossible() {
        return exitCodeOf(startProcess([] { EXPECT_EQ(ptrace(PTRACE_TRACEME, 0, nullptr, nullptr), 0); })) == 0;
    }

    template <class Work>
    explicit SteppedProcess(Work work)
        : mPid(startProcess([&] {
              ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
              raise(SIGSTOP);
              work();
              raise(SIGSTOP);
          })) {
        waitpid(mPid, nullptr, 0);
    }
    ~SteppedProcess() { kill(); }
    SteppedProcess(const SteppedProcess&) = delete;
    SteppedProcess& operator=(const SteppedProcess&) = delete;

    bool isAtWork() const { return mIsAtWork; }
    /** Goes on until it has made that many system calls. */
    void makeSystemCalls(unsigned count) { resume(PTRACE_SYSCALL, 2 * count); }  // it stops before and after each
    void execute(unsigned instructions) { resume(PTRACE_SINGLESTEP, instructions); }
    void kill() {
        if (mPid != 0) killProcess(mPid);
        mPid = 0;
    }

private:
    void resume(__ptrace_request request, unsigned times) {
        for (unsigned done = 0; done < times && mIsAtWork; ++done) {
            int status = 0;
            ptrace(request, mPid, nullptr, nullptr);
            waitpid(mPid, &status, 0);
            mIsAtWork = WIFSTOPPED(status) && WSTOPSIG(status) == SIGTRAP;
        }
    }

    pid_t mPid;
    bool mIsAtWork = true;
};

#endif
