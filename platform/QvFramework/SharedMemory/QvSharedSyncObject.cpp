#include "QvFramework/SharedMemory/QvSharedSyncObject.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <ctime>
#include <map>
#include <string>

#include "QvFramework/Foundation/QvDbgOutput.h"
#include "QvFramework/Foundation/QvSync.h"
#include "QvFramework/Foundation/QvSyncGuard.h"

namespace {

constexpr char kSource[] = "QvFramework/SharedMemory/QvSharedSyncObject";
constexpr std::uint32_t kMagic = 0x51764c6b;  // "QvLk"
constexpr std::uint32_t kVersion = 1;
constexpr mode_t kMode = 0664;

struct SharedLock {
    std::uint32_t magic;  // written last: a lock without it was left unfinished
    std::uint32_t version;
    pthread_mutex_t mutex;
};

void initialize(pthread_mutex_t* mutex, int shared) {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutexattr_setpshared(&attributes, shared);
    pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
    pthread_mutex_init(mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

/** Sizes an object that is new, or whose creator died before it had sized it. The caller holds the file lock. */
bool reserve(int fd) {
    struct stat status {};
    if (fstat(fd, &status) != 0) return false;
    if (status.st_size != 0) return static_cast<std::size_t>(status.st_size) == sizeof(SharedLock);
    if (fchmod(fd, kMode) != 0 && errno != EPERM) return false;  // whatever the umask made of it
    int reserved = EINTR;
    while (reserved == EINTR)
        reserved = posix_fallocate(fd, 0, sizeof(SharedLock));
    return reserved == 0;
}

/** Maps the lock of an open object, and makes it one if nobody has. The caller holds the file lock. */
SharedLock* mapLocked(int fd) {
    if (!reserve(fd)) return nullptr;
    void* const address = mmap(nullptr, sizeof(SharedLock), PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    if (address == MAP_FAILED) return nullptr;
    auto* const lock = static_cast<SharedLock*>(address);
    const std::uint32_t magic = __atomic_load_n(&lock->magic, __ATOMIC_ACQUIRE);
    if (magic == 0) {
        initialize(&lock->mutex, PTHREAD_PROCESS_SHARED);
        lock->version = kVersion;
        __atomic_store_n(&lock->magic, kMagic, __ATOMIC_RELEASE);
    } else if (magic != kMagic || lock->version != kVersion) {
        munmap(address, sizeof(SharedLock));
        return nullptr;
    }
    return lock;
}

int openObject(const char* name) {
    const int fd = shm_open(name, O_RDWR | O_CREAT, kMode);
    // Where fs.protected_regular is set, O_CREAT is refused for another user's object, whatever its mode allows.
    return fd < 0 && errno == EACCES ? shm_open(name, O_RDWR, kMode) : fd;
}

/** Waits for the file lock, which ends with `fd` and with this process: no child that is forked meanwhile has it. */
bool lockFile(int fd) {
    struct flock whole {};
    whole.l_type = F_WRLCK;
    whole.l_whence = SEEK_SET;
    int result = -1;
    do {
        result = fcntl(fd, F_SETLKW, &whole);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

/** The lock in shared memory, or null. Two processes that start together take turns through the file lock. */
pthread_mutex_t* openShared(const std::string& name) {
    const int fd = openObject(("/" + name + ".lock").c_str());
    if (fd < 0) return nullptr;
    SharedLock* const lock = lockFile(fd) ? mapLocked(fd) : nullptr;
    close(fd);
    return lock != nullptr ? &lock->mutex : nullptr;
}

/** A lock for this process alone. */
pthread_mutex_t* makeLocal() {
    auto* const mutex = new pthread_mutex_t;
    initialize(mutex, PTHREAD_PROCESS_PRIVATE);
    return mutex;
}

/**
 * Waits for the lock, and looks at it again from time to time: a process that is killed when it has been woken, but
 * does not have the lock yet, takes the wake-up along, and another one that slipped in does not know of those who wait
 * on.
 */
int waitFor(pthread_mutex_t* mutex) {
#if defined(__SANITIZE_THREAD__)
    return pthread_mutex_lock(mutex);  // the one way of waiting that GCC's thread sanitizer knows
#else
    constexpr time_t kSeconds = 1;
    timespec next{};
    clock_gettime(CLOCK_MONOTONIC, &next);
    next.tv_sec += kSeconds;
    return pthread_mutex_clocklock(mutex, CLOCK_MONOTONIC, &next);
#endif
}

/** Every name is mapped once a process and stays mapped: the death of a holder is noticed only while it is. */
pthread_mutex_t* lockOf(const char* name) {
    static QvSync& sync = *new QvSync;  // never destroyed: a client may build the service while its process exits
    static auto* const locks = new std::map<std::string, pthread_mutex_t*>();
    QvSyncGuard guard(sync);
    pthread_mutex_t*& mutex = (*locks)[name];
    if (mutex != nullptr) return mutex;
    mutex = openShared(name);
    if (mutex == nullptr) {
        QvDbgOutput::DbgPrintStdErr(kSource, "QvSharedSyncObject", __LINE__, "no shared lock for %s\n", name);
        mutex = makeLocal();
    }
    return mutex;
}

}  // namespace

QvSharedSyncObject::QvSharedSyncObject(const char* name) : mpMutex(lockOf(name)) {}

QvSharedSyncObject::~QvSharedSyncObject() = default;

void QvSharedSyncObject::lock() const QV_NO_THREAD_SAFETY_ANALYSIS {
    int result = pthread_mutex_trylock(mpMutex);
    while (result == EBUSY || result == ETIMEDOUT) {
        result = waitFor(mpMutex);
    }
    if (result == EOWNERDEAD) pthread_mutex_consistent(mpMutex);
}

void QvSharedSyncObject::unlock() const QV_NO_THREAD_SAFETY_ANALYSIS {
    pthread_mutex_unlock(mpMutex);
}
