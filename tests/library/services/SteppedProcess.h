#ifndef TESTS_LIBRARY_SERVICES_STEPPED_PROCESS_H
#define TESTS_LIBRARY_SERVICES_STEPPED_PROCESS_H

#include <sys/ptrace.h>

#include "tests/support/Processes.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kIsSanitized = true;
#else
constexpr bool kIsSanitized = false;
#endif

/** A process that does `work`, from where that stops itself on, instruction by instruction. It dies with this object.
 */
class SteppedProcess {
public:
    /** Not where the system lets no process be traced, nor with a sanitizer, whose instructions take minutes. */
    static bool isPossible() {
        return !kIsSanitized &&
               exitCodeOf(startProcess([] { EXPECT_EQ(ptrace(PTRACE_TRACEME, 0, nullptr, nullptr), 0); })) == 0;
    }
    static void stopItself() { raise(SIGSTOP); }

    template <class Work>
    explicit SteppedProcess(Work work)
        : mPid(startProcess([&] {
              ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
              work();
          })) {
        waitpid(mPid, nullptr, 0);
    }
    ~SteppedProcess() {
        if (mIsThere) killProcess(mPid);
    }
    SteppedProcess(const SteppedProcess&) = delete;
    SteppedProcess& operator=(const SteppedProcess&) = delete;

    /** False when that was the end. */
    bool execute(unsigned instructions) {
        for (; instructions > 0 && mIsThere; --instructions)
            resume(PTRACE_SINGLESTEP);
        return mIsThere;
    }
    void finish() {
        while (mIsThere)
            resume(PTRACE_CONT);
    }

private:
    void resume(__ptrace_request request) {
        int status = 0;
        ptrace(request, mPid, nullptr, nullptr);
        waitpid(mPid, &status, 0);
        mIsThere = WIFSTOPPED(status);
    }

    const pid_t mPid;
    bool mIsThere = true;
};

#endif
