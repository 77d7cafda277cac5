#ifndef GPS_PRIVATE_SETTING_GPS_SETTING_MANAGER_H
#define GPS_PRIVATE_SETTING_GPS_SETTING_MANAGER_H

#include <atomic>
#include <chrono>
#include <cstddef>
#include <optional>
#include <utility>

#include "Gps/GpsListeners.h"
#include "Gps/private/Support/CommandSync.h"
#include "QvFramework/Foundation/QvEvent.h"
#include "QvFramework/Foundation/QvSync.h"
#include "QvFramework/SharedMemory/QvSharedMemory.h"

class GpsHal;

/** The receiver's configuration; in shared memory. */
struct GPS_SETTING_LOCAL_MEMORY {
    GeodeticSystem baseGeodeticSystem;  ///< datum in which the receiver reports
    unsigned char settingFinishFlg;     ///< 1 once the configuration has been saved, else 0
    unsigned char filler[3];
};
static_assert(offsetof(GPS_SETTING_LOCAL_MEMORY, settingFinishFlg) == 4 && sizeof(GPS_SETTING_LOCAL_MEMORY) == 8,
              "shared with every process");

/** A request that the receiver has answered. */
struct SettledRequest {
    bool acknowledged;
    GpsSetting setting;
};

/**
 * Sends settings to the receiver and matches its acknowledgements to the waiting requests by their order.
 * Keeps the datum in which the receiver reports and the setting-finished flag for all processes.
 */
class GpsSettingManager final : public QvSharedMemory<GPS_SETTING_LOCAL_MEMORY, 1> {
public:
    GpsSettingManager();
    ~GpsSettingManager() override;

    /**
     * Any thread. A change of speed blocks for 200 ms, and so do the commands of other threads. The next setting waits
     * for the answer to its poll, at most 1 s.
     * @param canWait false on the receive thread, which takes that answer
     */
    bool requestGpsSetting(GpsSetting setting, bool canWait = true);

    /**
     * Takes a received UBX frame of at least one byte. An acknowledgement settles the oldest waiting request.
     * @param settled set when the frame settles a request
     * @return whether the frame was taken as a response
     */
    bool takeResponse(const char* data, unsigned int length, std::optional<SettledRequest>& settled);
    /** The same, and notifies `listener` of the settled request. */
    bool analizeGpsSettingResponse(const char* data, unsigned int length, const GpsSettingListener* listener);

    /**
     * Takes a received UBX frame that is no acknowledgement. The receiver sends its port settings right before it
     * acknowledges a poll: after those of the last poll, answers to earlier commands are not awaited any longer.
     */
    void takePortSettings(const char* data, unsigned int length);

    /** The shared values; this process's copies when the segment cannot be read. */
    GeodeticSystem getBaseGeodeticSystem();
    bool getSettingFinishFlg();
    /** Both, of one read of the segment. */
    std::pair<GeodeticSystem, bool> getBaseAndFinishFlg();

    bool readLocalMemory(GPS_SETTING_LOCAL_MEMORY* out) const;
    bool writeLocalMemory(const GPS_SETTING_LOCAL_MEMORY* in);

    /**
     * Writes the command of a setting to `buffer`.
     * @return its length (12 to 68); 0 when there is no command or `size` is too small
     */
    unsigned int setCommandForGpsSetting(GpsSetting setting, char* buffer, unsigned int size);

private:
    using Clock = std::chrono::steady_clock;
    static constexpr unsigned int kMaxPending = 24;

    bool applyInTurn(GpsSetting setting, const char* command, unsigned int length, bool canWait);
    unsigned int pollTimeLeft() QV_REQUIRES(gCommandSync);
    bool apply(GpsSetting setting, const char* command, unsigned int length) QV_REQUIRES(gCommandSync);
    bool sendInOrder(GpsSetting setting, const char* command, unsigned int length) QV_REQUIRES(gCommandSync);
    bool changeSpeed(unsigned int value) QV_REQUIRES(gCommandSync);
    bool storeSetting(GpsSetting setting);
    void dropAnswerDue() QV_REQUIRES(mPendingSync);
    GpsSetting takeOldest() QV_REQUIRES(mPendingSync);

    GpsHal* mpGpsHal;
    QvEvent mPollAnswered;  // reset from the poll at a new speed until no answer is due
    Clock::time_point mPollDeadline QV_GUARDED_BY(gCommandSync);  // its answer is not awaited any longer

    QvSync mPendingSync;                                              // guards the ring; held for single steps only
    unsigned int mEarlierAnswersDue QV_GUARDED_BY(mPendingSync) = 0;  // to what was sent before the last poll
    unsigned int mAnswersDue QV_GUARDED_BY(mPendingSync) = 0;         // to the last poll and what was sent after it
    unsigned int mPortSettingsDue QV_GUARDED_BY(mPendingSync) = 0;    // to polls up to the last
    GpsSetting mPendingSetting[kMaxPending] QV_GUARDED_BY(mPendingSync);
    unsigned int mPendingWriteIndex QV_GUARDED_BY(mPendingSync);  // where the next request is queued
    unsigned int mPendingReadIndex QV_GUARDED_BY(mPendingSync);   // the oldest request that awaits an answer
    std::atomic<GeodeticSystem> mBaseGeodeticSystem;
    std::atomic<bool> mSettingFinishFlg;
    unsigned int mPendingCount QV_GUARDED_BY(mPendingSync);  // not bounded: a full ring overwrites its oldest entries
};

#endif
