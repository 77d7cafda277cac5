#ifndef QVFRAMEWORK_SHARED_MEMORY_QV_SHARED_MEMORY_H
#define QVFRAMEWORK_SHARED_MEMORY_QV_SHARED_MEMORY_H

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <type_traits>

#include "QvFramework/Foundation/QvDbgOutput.h"
#include "QvFramework/Foundation/QvHelpers.h"
#include "QvFramework/Foundation/QvString.h"
#include "QvFramework/Foundation/QvSyncGuard.h"
#include "QvFramework/SharedMemory/QvSharedSyncObject.h"

/**
 * N records of type T in a named shared-memory object, with the cross-process lock of the same name.
 *
 * The first holder since the system started creates the object and fills the records with zeros; later holders find
 * them as they were left. The object is never removed. A holder that could not map its object, or whose lock is not
 * available, stays unmapped for its whole life; the debug output gives the reason. A creator that is killed before it
 * has set the mode 0664 leaves that of its umask: other users stay unmapped until a holder of its user finishes it.
 * Take the lock (a QvSyncGuard on this object) around every access. Other processes may store anything in the segment:
 * no length or index in it is trusted.
 */
template <class T, unsigned N>
class QvSharedMemory : public QvSharedSyncObject {
    static_assert(std::is_trivially_copyable_v<T>, "records are copied between processes byte by byte");

public:
    explicit QvSharedMemory(const char* name);
    ~QvSharedMemory() override;

    /** The first record, or null when the segment is not mapped. */
    T* getData() const { return isMapped() ? segment()->records : nullptr; }

private:
    struct Segment {
        unsigned int dataSize;  // bytes of the records
        T records[N];
    };

    static constexpr mode_t kMode = 0664;

    static void report(int line, const char* text) {
        QvDbgOutput::DbgPrintStdErr("QvFramework/SharedMemory/QvSharedMemory", "QvSharedMemory", line, "%s", text);
    }

    bool isMapped() const { return mpAddress != MAP_FAILED; }
    Segment* segment() const { return static_cast<Segment*>(mpAddress); }

    bool open(const char* objectName);
    bool resize();
    bool isWholeSegment();
    void map();

    int mFd;
    void* mpAddress;
    bool mIsCreator;
};

template <class T, unsigned N>
QvSharedMemory<T, N>::QvSharedMemory(const char* name)
    : QvSharedSyncObject(name), mFd(-1), mpAddress(MAP_FAILED), mIsCreator(false) {
    // Held to the end, so that no other process opens the segment while it is being created.
    QvSyncGuard<QvSharedSyncObject> guard(*this);
    if (isAvailable() && open((QvString("/") + name).c_str())) map();
}

template <class T, unsigned N>
QvSharedMemory<T, N>::~QvSharedMemory() {
    if (isMapped()) munmap(mpAddress, sizeof(Segment));
    if (mFd != -1) close(mFd);
}

template <class T, unsigned N>
bool QvSharedMemory<T, N>::open(const char* objectName) {
    const auto openWith = [objectName](int flags) {
        return qv_above_standard([&] { return shm_open(objectName, flags, kMode); });
    };
    mFd = openWith(O_RDWR | O_CREAT | O_EXCL);
    mIsCreator = mFd != -1;
    if (mIsCreator) return true;
    if (errno != EEXIST) {
        report(__LINE__, "shm_open error\n");
        return false;
    }
    mFd = openWith(O_RDWR | O_CREAT);
    // With fs.protected_regular set, O_CREAT is refused for another user's object in spite of its mode.
    if (mFd == -1 && errno == EACCES) mFd = openWith(O_RDWR);
    struct stat status {};
    // Empty while the lock is held: its creator died before sizing it, so this process becomes the creator.
    mIsCreator = fstat(mFd, &status) == 0 && status.st_size == 0;
    return true;
}

template <class T, unsigned N>
bool QvSharedMemory<T, N>::resize() {
    const bool hasMode = fchmod(mFd, kMode) == 0 || errno == EPERM;  // the umask may have narrowed it
    return hasMode && ftruncate(mFd, sizeof(Segment)) == 0;
}

/** Whether the segment has its full size. Reserves its memory, so that no access can fail later; later holders do so
 *  too, since a creator may have died between sizing and reserving. */
template <class T, unsigned N>
bool QvSharedMemory<T, N>::isWholeSegment() {
    struct stat status {};
    if (fstat(mFd, &status) != 0 || status.st_size < static_cast<off_t>(sizeof(Segment))) return false;
    int result = EINTR;
    while (result == EINTR)
        result = posix_fallocate(mFd, 0, sizeof(Segment));
    if (result != 0) report(__LINE__, "ftruncate error\n");
    return result == 0;
}

template <class T, unsigned N>
void QvSharedMemory<T, N>::map() {
    if (mIsCreator && !resize()) report(__LINE__, "ftruncate error\n");
    if (isWholeSegment()) mpAddress = mmap(nullptr, sizeof(Segment), PROT_READ | PROT_WRITE, MAP_SHARED, mFd, 0);
    if (!isMapped()) {
        report(__LINE__, "mmap error\n");
        return;
    }
    segment()->dataSize = sizeof(segment()->records);
    if (!mIsCreator) return;
    QvSyncGuard<QvSharedSyncObject> guard(*this);
    std::memset(static_cast<void*>(segment()->records), 0, sizeof(segment()->records));
}

#endif
