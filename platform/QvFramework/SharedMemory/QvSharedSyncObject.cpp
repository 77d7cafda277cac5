#include "QvFramework/SharedMemory/QvSharedSyncObject.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <memory>
#include <string>

#include "QvFramework/Foundation/QvDbgOutput.h"
#include "QvFramework/Foundation/QvHelpers.h"
#include "QvFramework/Foundation/QvSync.h"
#include "QvFramework/Foundation/QvSyncGuard.h"

// Every process has a random token. The lock stores the token of its holder, and each process keeps a file lock on the
// byte of the object that its token selects. The kernel drops that file lock when the process ends, however it ends: a
// thread that finds the lock held checks the holder's file lock, and takes the lock over from a dead holder.
//
// A robust mutex stores a thread id, and thread ids repeat between PID namespaces: when a thread dies while it waits
// for the mutex, and the holder has the same id, the kernel releases the mutex although its holder lives.

namespace {

using Token = std::uint64_t;

struct SharedObject {
    std::uint64_t kind = 0x0000'0002'5176'4c6b;  // "QvLk" and the version; version 1 was a recursive robust mutex
    Token holder = 0;                            // 0 while the lock is free
};
static_assert(sizeof(SharedObject) == 16 && std::atomic_ref<Token>::is_always_lock_free, "shared between processes");

}  // namespace

/** This process's state of the lock of one name. */
struct QvSharedLock {
    const std::string name;
    QvSharedLock* const next;
    const int fd;
    Token* pHolder = nullptr;
    std::atomic<bool> isMarked{true};  // whether this process has its file lock
    std::atomic<const char*> owner{};  // the thread of this process that holds the lock
    unsigned int depth = 0;            // how often it has locked it

    std::atomic_ref<Token> holder() const { return std::atomic_ref(*pHolder); }
};

namespace {

constexpr char kDirectory[] = "/dev/shm";
constexpr mode_t kMode = 0660;  // a file lock needs the object open, which needs write permission

/** Its address identifies a thread. The lock takes so few instructions that a call of pthread_self would count. */
[[gnu::tls_model("initial-exec")]] constinit thread_local char tThread = 0;

constinit std::atomic<Token> gToken{0};  // of this process
constinit std::atomic<QvSharedLock*> gLocks{nullptr};

struct flock byteOf(Token token, short type) {
    const auto offset = static_cast<off_t>(token / 2 & std::numeric_limits<off_t>::max());  // of 32 or 64 bits
    return {.l_type = type, .l_whence = SEEK_SET, .l_start = offset, .l_len = 1, .l_pid = 0};
}

/** Places this process's file lock; only a process with write permission can prevent that. */
bool markAlive(int fd) {
    struct flock byte = byteOf(gToken, F_RDLCK);
    return fcntl(fd, F_SETLK, &byte) == 0;
}

bool isAlive(int fd, Token token) {
    struct flock byte = byteOf(token, F_WRLCK);
    return token == gToken || fcntl(fd, F_GETLK, &byte) != 0 || byte.l_type != F_UNLCK;
}

bool takeFree(QvSharedLock& lock) {
    Token free = 0;
    return lock.isMarked && lock.holder().compare_exchange_strong(free, gToken);
}

bool tryLock(QvSharedLock& lock) {
    if (!lock.isMarked && !(lock.isMarked = markAlive(lock.fd))) return false;
    Token seen = 0;
    return lock.holder().compare_exchange_strong(seen, gToken) ||
           (!isAlive(lock.fd, seen) && lock.holder().compare_exchange_strong(seen, gToken));
}

void own(QvSharedLock& lock) {
    lock.owner.store(&tThread, std::memory_order_relaxed);
    lock.depth = 1;
}

[[gnu::noinline]] void waitForLock(QvSharedLock& lock) {
    constexpr long kLongestPauseNs = 2'000'000;
    for (long pause = 20'000; !tryLock(lock); pause = std::min(2 * pause, kLongestPauseNs)) {
        const timespec time{0, pause};
        nanosleep(&time, nullptr);
    }
    own(lock);
}

/** For a new process or a forked child, which inherits neither the locks nor the file locks of its parent. */
void renewToken() {
    Token token = 0;
    arc4random_buf(&token, sizeof(token));
    gToken = token | 1U;
    for (QvSharedLock* lock = gLocks; lock != nullptr; lock = lock->next) {
        lock->owner = nullptr;
        lock->isMarked = markAlive(lock->fd);
    }
}

/** Fills a nameless object and links it, so that the name never refers to an incomplete lock. */
bool publish(int fd, const std::string& path) {
    const SharedObject object;
    char self[32];  // nothing may throw while the descriptor has no owner
    std::snprintf(self, sizeof(self), "/proc/self/fd/%d", fd);
    return fchmod(fd, kMode) == 0 &&  // the umask may have narrowed it
           write(fd, &object, sizeof(object)) == sizeof(object) &&
           linkat(AT_FDCWD, self, AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) == 0;
}

int openObject(const std::string& path) {
    for (;;) {
        int fd = qv_above_standard([&] { return open(path.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK); });
        if (fd != -1 || errno != ENOENT) return fd;
        fd = qv_above_standard([] { return open(kDirectory, O_TMPFILE | O_RDWR | O_CLOEXEC, kMode); });
        if (fd == -1 || publish(fd, path)) return fd;
        close(fd);
        if (errno != EEXIST) return -1;  // else another process was first
    }
}

/** Null, with `errno`, when the object is no lock of this version or cannot be mapped. */
SharedObject* mapObject(int fd) {
    SharedObject found[2];
    const bool isLock =
        pread(fd, found, sizeof(found), 0) == sizeof(SharedObject) && found[0].kind == SharedObject().kind;
    if (!isLock) errno = EPROTO;
    if (!isLock || !markAlive(fd)) return nullptr;
    void* const address = mmap(nullptr, sizeof(SharedObject), PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    return address != MAP_FAILED ? static_cast<SharedObject*>(address) : nullptr;
}

QvSharedLock* openLock(const std::string& name) {
    const std::string path = kDirectory + ("/" + name) + ".lock";
    std::unique_ptr<QvSharedLock> lock(new QvSharedLock{name, gLocks, openObject(path)});
    SharedObject* const object = lock->fd != -1 ? mapObject(lock->fd) : nullptr;
    if (object != nullptr) {
        lock->pHolder = &object->holder;
        return gLocks = lock.release();
    }
    QvDbgOutput::DbgPrintStdErr("QvFramework/SharedMemory/QvSharedSyncObject", "QvSharedSyncObject", __LINE__,
                                "no shared lock for %s: %s\n", name.c_str(), qv_get_last_err_string());
    if (lock->fd != -1) close(lock->fd);
    return nullptr;
}

/** Opens each name once per process: closing a second descriptor of the object would drop the file lock. */
QvSharedLock* lockOf(const char* name) {
    static constinit QvSync sync;
    QvSyncGuard guard(sync);
    if (gToken == 0) {
        renewToken();
        pthread_atfork(nullptr, nullptr, &renewToken);
    }
    for (QvSharedLock* lock = gLocks; lock != nullptr; lock = lock->next) {
        if (lock->name == name) return lock;
    }
    return openLock(name);
}

}  // namespace

QvSharedSyncObject::QvSharedSyncObject(const char* name) : mpLock(lockOf(name)) {}

QvSharedSyncObject::~QvSharedSyncObject() = default;

void QvSharedSyncObject::lock() const QV_NO_THREAD_SAFETY_ANALYSIS {
    if (mpLock == nullptr) return;
    QvSharedLock& lock = *mpLock;
    if (lock.owner == &tThread) return static_cast<void>(++lock.depth);
    if (takeFree(lock)) return own(lock);
    waitForLock(lock);
}

void QvSharedSyncObject::unlock() const QV_NO_THREAD_SAFETY_ANALYSIS {
    if (mpLock == nullptr) return;
    QvSharedLock& lock = *mpLock;
    // In a child that was forked while this thread held the lock there is nothing to unlock.
    if (lock.owner != &tThread || --lock.depth != 0) return;
    lock.owner.store(nullptr, std::memory_order_relaxed);
    lock.holder().store(0, std::memory_order_release);
}
