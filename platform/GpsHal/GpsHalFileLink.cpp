#include "GpsHal/GpsHalFileLink.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "QvFramework/Foundation/QvHelpers.h"
#include "QvFramework/Foundation/QvSyncGuard.h"

namespace {

constexpr int kNoFile = -1;

/** A descriptor for reading, or -1 with the reason in errno. */
int openRegularFile(const char* path) {
    const int file = qv_above_standard([path] { return ::open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY); });
    if (file == kNoFile) return kNoFile;
    struct stat status {};
    if (fstat(file, &status) == 0 && S_ISREG(status.st_mode)) return file;
    ::close(file);
    errno = EINVAL;
    return kNoFile;
}

}  // namespace

GpsHalFileLink::GpsHalFileLink(std::string path) : mPath(std::move(path)), mFile(kNoFile) {}

GpsHalFileLink::~GpsHalFileLink() {
    GpsHalFileLink::close();
}

bool GpsHalFileLink::isOpen() const {
    QvSyncGuard guard(mSync);
    return mFile != kNoFile;
}

bool GpsHalFileLink::open() {
    QvSyncGuard guard(mSync);
    if (mFile == kNoFile) mFile = openRegularFile(mPath.c_str());
    if (mFile == kNoFile) return false;
    mClosed.ResetEvent();
    return true;
}

void GpsHalFileLink::close() {
    QvSyncGuard guard(mSync);
    if (mFile != kNoFile) ::close(mFile);
    mFile = kNoFile;
    mClosed.SetEvent();
}

int GpsHalFileLink::readFile(void* buffer, unsigned size) {
    QvSyncGuard guard(mSync);
    return mFile == kNoFile ? -1 : static_cast<int>(::read(mFile, buffer, size));
}

int GpsHalFileLink::read(void* buffer, unsigned size, unsigned timeoutMs) {
    const int length = readFile(buffer, size);
    if (length != 0) return length;
    return mClosed.WaitEvent(timeoutMs) == QvEvent::TIMED_OUT ? 0 : -1;
}

bool GpsHalFileLink::write(const void*, unsigned) {
    return isOpen();
}

bool GpsHalFileLink::setSpeed(unsigned) {
    return isOpen();
}
