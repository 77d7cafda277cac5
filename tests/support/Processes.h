#ifndef TESTS_SUPPORT_PROCESSES_H
#define TESTS_SUPPORT_PROCESSES_H

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <new>

constexpr int kPatienceMs = 60000;  // a wait that fails, fails after this

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
    pollfd process{static_cast<int>(syscall(SYS_pidfd_open, pid, 0)), POLLIN, 0};
    const bool hasEnded = poll(&process, 1, kPatienceMs) == 1;
    close(process.fd);
    if (!hasEnded) kill(pid, SIGKILL);
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

/** Makes this process one of another user in the same group, where the system allows it. */
inline bool changeUser() {
    constexpr uid_t kNobody = 65534;
    return setuid(kNobody) == 0;
}

/** Runs `work` in a process of its own to its end; what it expects must hold. */
template <class Work>
void expectInProcess(Work work) {
    EXPECT_EQ(exitCodeOf(startProcess(work)), 0);
}

/** An object that this process shares with those that it starts. */
template <class Object>
class ForAllProcesses {
public:
    ForAllProcesses()
        : mObject(new (mmap(nullptr, sizeof(Object), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))
                      Object) {}
    ~ForAllProcesses() { munmap(mObject, sizeof(Object)); }
    ForAllProcesses(const ForAllProcesses&) = delete;
    ForAllProcesses& operator=(const ForAllProcesses&) = delete;

    Object& operator*() const { return *mObject; }
    Object* operator->() const { return mObject; }

private:
    Object* const mObject;
};

/** Lets one process wait until another one signals it. */
class Signal {
public:
    Signal() : mIsOpen(pipe(mEnds) == 0) {}
    ~Signal() {
        close(mEnds[0]);
        close(mEnds[1]);
    }
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;

    void give() { EXPECT_EQ(write(mEnds[1], "", 1), 1); }
    bool wait(int ms = kPatienceMs) {
        pollfd source{mEnds[0], POLLIN, 0};
        char byte = 0;
        return mIsOpen && poll(&source, 1, ms) == 1 && read(mEnds[0], &byte, 1) == 1;
    }

private:
    int mEnds[2];
    bool mIsOpen;
};

#endif
