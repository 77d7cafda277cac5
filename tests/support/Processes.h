#ifndef TESTS_SUPPORT_PROCESSES_H
#define TESTS_SUPPORT_PROCESSES_H

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <new>

/** Runs `work` in a process of its own, which exits with 1 when an expectation failed there and with 0 otherwise. */
template <class Work>
pid_t startProcess(Work work) {
    const pid_t parent = getpid(), pid = fork();
    if (pid < 0) std::abort();  // and never kill(-1)
    if (pid > 0) return pid;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const pid_t above = getppid();                // 0 for a parent outside of the process's PID namespace
    if (above != parent && above != 0) _exit(1);  // killed before
    work();
    std::fflush(stdout);
    _exit(testing::Test::HasFailure() ? 1 : 0);
}

/** Waits for the end of a process; its exit code, or -1 when it was killed. */
inline int exitCodeOf(pid_t pid) {
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

inline void killProcess(pid_t pid) {
    kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
}

constexpr uid_t kOtherUser = 65534;  // for setuid, where the system allows it

/** Runs `work` in a process of its own to its end; what it expects must hold. */
template <class Work>
void expectInProcess(Work work) {
    EXPECT_EQ(exitCodeOf(startProcess(work)), 0);
}

/** An object that this process shares, until its end, with those that it starts. */
template <class Object>
Object& makeForAllProcesses() {
    void* const memory = mmap(nullptr, sizeof(Object), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    return *new (memory) Object;
}

#endif
