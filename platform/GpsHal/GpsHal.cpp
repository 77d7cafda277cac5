#include "GpsHal/GpsHal.h"

#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <utility>

#include "GpsHal/GpsHalFramer.h"
#include "GpsHal/GpsHalSerialLink.h"
#include "GpsHal/GpsHalSpeed.h"
#include "QvFramework/Foundation/QvDbgOutput.h"
#include "QvFramework/Foundation/QvEvent.h"
#include "QvFramework/Foundation/QvHelpers.h"
#include "QvFramework/Foundation/QvSyncGuard.h"

namespace {

constexpr char kSource[] = "platform/GpsHal/GpsHal";
constexpr char kThreadName[] = "GpsHalReceive";
constexpr int kLogLevel = 1;
constexpr unsigned kReceivedData = 0;
constexpr unsigned kCommandSpeed = 0;
constexpr unsigned kReadTimeoutMs = 250;  // also ends a read that close() does not end
constexpr unsigned kReopenMs = 500;

/** Outlives every instance. Never destroyed: threads may use it after the static destructors have run. */
struct Process {
    QvSync sync;
    unsigned shares QV_GUARDED_BY(sync) = 0;
    std::shared_ptr<GpsHal> hal QV_GUARDED_BY(sync);
    std::shared_ptr<GpsHalLink> link QV_GUARDED_BY(sync);

    static Process& instance() {
        static Process* const process = new Process();
        return *process;
    }
};

/** The link and, in `speed`, its speed; null, and `speed` unchanged, when there is none. */
std::shared_ptr<GpsHalLink> linkFromEnvironment(unsigned& speed) {
    const char* const device = std::getenv("GPSHAL_DEVICE");
    const char* const set = std::getenv("GPSHAL_BAUD");
    const char* const baud = set != nullptr ? set : "9600";
    if (device == nullptr || *device == '\0') return nullptr;
    const auto* const row = std::ranges::find(kGpsHalSpeeds, baud, &GpsHalSpeed::baud);
    if (row != std::end(kGpsHalSpeeds)) {
        speed = row->value;
        return std::make_shared<GpsHalSerialLink>(device, speed);
    }
    QvDbgOutput::DbgPrint(kSource, "start", __LINE__, kLogLevel, "GPSHAL_BAUD is %s, not 9600, 38400 or 115200\n",
                          baud);
    return nullptr;
}

std::shared_ptr<GpsHalLink> linkToUse(unsigned& speed) {
    Process& process = Process::instance();
    QvSyncGuard guard(process.sync);
    return process.link != nullptr ? process.link : linkFromEnvironment(speed);
}

/** Whether an attempt to open a link failed because its device is absent. */
bool isAbsence(int error) {
    return error == ENOENT || error == ENODEV || error == ENXIO;
}

void logFailure(const GpsHalLink& link) {
    QvDbgOutput::DbgPrint(kSource, "start", __LINE__, kLogLevel, "cannot use %s: %s\n", link.name(),
                          qv_get_last_err_string());
}

}  // namespace

/** Reception from one start to its stop: the link, the receive thread and its framer. */
class GpsHal::Reception {
public:
    Reception(std::shared_ptr<GpsHal> hal, std::shared_ptr<GpsHalLink> link)
        : mHal(std::move(hal)), mLink(std::move(link)) {}

    /** Starts the thread, which keeps the reception and the instance alive. False, with the reason in errno. */
    static bool begin(const std::shared_ptr<Reception>& reception);
    void end();

private:
    static void* runThread(void* reception);
    void run();
    void receive(const unsigned char* bytes, unsigned length);
    void tryNextSpeed();
    void awaitLink();
    /** Delivers the framer's chunks. */
    auto sink() {
        return [this](unsigned char* chunk, unsigned length) {
            if (!mIsEnding) mHal->notifyObservers(kReceivedData, chunk, length);
        };
    }
    void report(int line, const char* what) const {
        QvDbgOutput::DbgPrint(kSource, "run", line, kLogLevel, "%s %s\n", mLink->name(), what);
    }

    const std::shared_ptr<GpsHal> mHal;
    const std::shared_ptr<GpsHalLink> mLink;
    std::shared_ptr<Reception> mSelf;  // until the thread takes it
    pthread_t mThread{};
    std::atomic<bool> mIsEnding{false};
    QvEvent mEnding;

    // Of the receive thread.
    GpsHalFramer mFramer;
    GpsHalSpeedWatch mSpeedWatch;
    unsigned mSpeedRequests = 0;  // of clients, as last seen
    bool mIsTryingSpeeds = false;
};

bool GpsHal::Reception::begin(const std::shared_ptr<Reception>& reception) {
    reception->mSelf = reception;
    errno = qv_create_thread(&reception->mThread, &Reception::runThread, reception.get());
    if (errno == 0) return true;
    reception->mSelf.reset();
    return false;
}

void GpsHal::Reception::end() {
    mIsEnding = true;
    mEnding.SetEvent();
    mLink->close();
    if (pthread_equal(mThread, pthread_self()) != 0) {
        pthread_detach(mThread);
        return;
    }
    pthread_join(mThread, nullptr);
    mLink->close();  // the thread may just have been opening it again
}

void* GpsHal::Reception::runThread(void* reception) {
    const std::shared_ptr<Reception> self = std::move(static_cast<Reception*>(reception)->mSelf);
    self->run();
    return nullptr;
}

void GpsHal::Reception::run() {
    pthread_setname_np(pthread_self(), kThreadName);
    unsigned char buffer[4096];
    while (!mIsEnding) {
        const int length = mLink->read(buffer, sizeof(buffer), kReadTimeoutMs);
        if (length > 0) receive(buffer, static_cast<unsigned>(length));
        if (length == 0) mFramer.pause(sink());
        if (length >= 0 || mIsEnding) continue;
        mLink->close();
        mFramer.finish(sink());
        awaitLink();
    }
}

void GpsHal::Reception::receive(const unsigned char* bytes, unsigned length) {
    const unsigned long chunks = mFramer.chunks();
    mFramer.feed(bytes, length, sink());
    if (mSpeedRequests != mHal->mSpeedRequests) {
        mSpeedRequests = mHal->mSpeedRequests;
        mSpeedWatch.reset();
    }
    if (mSpeedWatch.receive(mFramer.chunks() != chunks, mFramer.isInsideFrame(), GpsHalSpeedWatch::Clock::now())) {
        mFramer.pause(sink());  // a frame with a damaged length may contain good sentences
        mSpeedWatch.reset();
        if (mFramer.chunks() == chunks) return tryNextSpeed();
    }
    if (mFramer.chunks() != chunks) mIsTryingSpeeds = false;
}

/** Sets the next speed, unless a client has just asked for one. */
void GpsHal::Reception::tryNextSpeed() {
    if (!mIsTryingSpeeds) report(__LINE__, "sends nothing intelligible: trying other speeds");
    mIsTryingSpeeds = true;
    QvSyncGuard guard(mHal->mSendSync);
    if (mSpeedRequests != mHal->mSpeedRequests) return;
    const auto* next = std::ranges::find(kGpsHalSpeeds, mHal->mSpeed, &GpsHalSpeed::value) + 1;
    if (next == std::end(kGpsHalSpeeds)) next = std::begin(kGpsHalSpeeds);
    mHal->mSpeed = next->value;
    mLink->setSpeed(next->value);
}

/** Opens the device again; returns when that has succeeded or reception ends. */
void GpsHal::Reception::awaitLink() {
    report(__LINE__, "is absent");
    while (mEnding.WaitEvent(kReopenMs) == QvEvent::TIMED_OUT) {
        if (!mLink->open()) continue;
        mSpeedWatch.reset();
        return report(__LINE__, "is available");
    }
}

GpsHal* GpsHal::GetInstance() {
    Process& process = Process::instance();
    QvSyncGuard guard(process.sync);
    if (process.shares == 0) process.hal.reset(new GpsHal());
    ++process.shares;
    return process.hal.get();
}

void GpsHal::DelInstance() {
    Process& process = Process::instance();
    std::shared_ptr<GpsHal> last;
    {
        QvSyncGuard guard(process.sync);
        if (process.shares == 0 || --process.shares != 0) return;
        last.swap(process.hal);
    }
    last->stop();
}

void GpsHal::setLink(std::unique_ptr<GpsHalLink> link) {
    std::shared_ptr<GpsHalLink> other(std::move(link));
    Process& process = Process::instance();
    QvSyncGuard guard(process.sync);
    process.link.swap(other);
}

GpsHal::GpsHal() : mIsStarted(false) {}

GpsHal::~GpsHal() = default;

bool GpsHal::start() {
    QvSyncGuard guard(mSync);
    if (mReception != nullptr) return true;
    unsigned speed = kGpsHalSpeed9600;
    const std::shared_ptr<GpsHalLink> link = linkToUse(speed);
    if (link == nullptr) return false;
    const auto reception = std::make_shared<Reception>(shared_from_this(), link);
    {
        QvSyncGuard sendGuard(mSendSync);
        mSendLink = link;
        mSpeed = speed;
    }
    const bool isOpen = link->open();
    const bool isForbidden = !isOpen && errno == EACCES;  // perhaps only until udev has set the mode of a new node
    if (isForbidden) logFailure(*link);
    if ((isOpen || isForbidden || isAbsence(errno)) && Reception::begin(reception)) {
        mReception = reception;
        return true;
    }
    logFailure(*link);
    link->close();
    QvSyncGuard sendGuard(mSendSync);
    mSendLink.reset();
    return false;
}

bool GpsHal::stop() {
    QvSyncGuard guard(mSync);
    if (mReception == nullptr) return false;
    mReception->end();
    mReception.reset();
    QvSyncGuard sendGuard(mSendSync);
    mSendLink.reset();
    return true;
}

bool GpsHal::sendData(const void* data, unsigned length) {
    QvSyncGuard guard(mSendSync);
    return mSendLink != nullptr && mSendLink->write(data, length);
}

bool GpsHal::sendCommand(unsigned code, unsigned& value) {
    const auto* const row = std::ranges::find(kGpsHalSpeeds, value, &GpsHalSpeed::value);
    if (code != kCommandSpeed || row == std::end(kGpsHalSpeeds)) return false;
    QvSyncGuard guard(mSendSync);
    if (mSendLink == nullptr || !mSendLink->setSpeed(value)) return false;
    mSpeed = value;
    ++mSpeedRequests;
    return true;
}
