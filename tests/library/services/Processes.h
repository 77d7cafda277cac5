#ifndef TESTS_LIBRARY_SERVICES_PROCESSES_H
#define TESTS_LIBRARY_SERVICES_PROCESSES_H

#include <sys/ptrace.h>

#include "tests/support/Processes.h"

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
