#include "Gps/private/Setting/GpsSettingManager.h"

#include <algorithm>

#include "Gps/private/Listeners/GpsListenerList.h"
#include "Gps/private/Support/GpsLog.h"
#include "Gps/private/Support/UbxFrame.h"
#include "GpsHal/GpsHal.h"
#include "QvFramework/Foundation/QvHelpers.h"
#include "QvFramework/Foundation/QvSyncGuard.h"

namespace {

constexpr GpsLog log("src/Public/Gps/private/Setting/GpsSettingManager");

constexpr unsigned int kCommandSize = 128;
constexpr unsigned int kPortSpeedCommand = 0;    // sets the speed of the HAL's end
constexpr unsigned int kSpeedChangeMs = 100;     // for the receiver, then for the HAL
constexpr std::chrono::seconds kPollTimeout{1};  // at 9600 baud the sentences of a second may be sent first
constexpr unsigned char kPortPoll[] = {0xB5, 0x62, 0x06, 0x00, 0x01, 0x00, 0x00, 0x07, 0x21};

/** Values of kPortSpeedCommand. */
enum PortSpeed : unsigned int { kSpeed9600 = 0, kSpeed38400 = 2, kSpeed115200 = 4 };

/** The speed that a setting requests; none for other settings. */
std::optional<PortSpeed> speedOf(GpsSetting setting) {
    switch (setting) {
        case GPS_SETTING_BAUD_9600:
            return kSpeed9600;
        case GPS_SETTING_BAUD_38400:
            return kSpeed38400;
        case GPS_SETTING_BAUD_115200:
            return kSpeed115200;
        default:
            return std::nullopt;
    }
}

}  // namespace

GpsSettingManager::GpsSettingManager()
    : QvSharedMemory("QVSDK_GpsSettingLocalMemory"),
      mpGpsHal(GpsHal::GetInstance()),
      mPendingSetting{},
      mPendingWriteIndex(0),
      mPendingReadIndex(0),
      mBaseGeodeticSystem(GEODETIC_SYSTEM_WGS84),
      mSettingFinishFlg(false),
      mPendingCount(0) {}

GpsSettingManager::~GpsSettingManager() {
    GpsHal::DelInstance();
}

bool GpsSettingManager::requestGpsSetting(GpsSetting setting, bool canWait) {
    static constexpr char kFunction[] = "requestGpsSetting";
    if (setting > GPS_SETTING_GNSS_GPS) {
        QvDbgOutput::DbgPrint(log.source(), kFunction, __LINE__, GpsLog::kTag,
                              "GpsSettingManager::requestGpsSetting() Argument Error[%ld]\n",
                              static_cast<long>(setting));
        return false;
    }
    char command[kCommandSize] = {};
    const unsigned int length = setCommandForGpsSetting(setting, command, sizeof(command));
    if (length == 0) {
        return log.failure(kFunction, "GpsSettingManager::requestGpsSetting() : setCommandForGpsSetting() = false\n");
    }
    if (!applyInTurn(setting, command, length, canWait)) return false;
    return storeSetting(setting) ||
           log.failure(kFunction, "GpsSettingManager::requestGpsSetting() writeLocalMemory Error!\n");
}

/**
 * Waits for the answer to a poll before it sends a command, which that answer would otherwise settle. gCommandSync is
 * free meanwhile: a request in a notification takes it on the receive thread, which takes the answer.
 */
bool GpsSettingManager::applyInTurn(GpsSetting setting, const char* command, unsigned int length, bool canWait) {
    for (unsigned int timeout = 0;;) {
        mPollAnswered.WaitEvent(timeout);
        const QvSyncGuard guard(gCommandSync);
        timeout = canWait ? pollTimeLeft() : 0;
        if (timeout == 0) return apply(setting, command, length);
    }
}

/** Milliseconds for which a command still waits for the answer to the last poll. */
unsigned int GpsSettingManager::pollTimeLeft() {
    if (mPollAnswered.WaitEvent(0) == 0) return 0;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(mPollDeadline - Clock::now()).count();
    return static_cast<unsigned int>(std::max<decltype(left)>(left, 0));
}

/** Sends a setting's command. A change of speed sets the HAL's speed too before any other command is sent. */
bool GpsSettingManager::apply(GpsSetting setting, const char* command, unsigned int length) {
    if (!sendInOrder(setting, command, length)) return false;
    GPS_SETTING_LOCAL_MEMORY shared = {};
    if (!readLocalMemory(&shared)) {
        return log.failure("requestGpsSetting", "GpsSettingManager::requestGpsSetting() readLocalMemory Error!\n");
    }
    mBaseGeodeticSystem = shared.baseGeodeticSystem;
    mSettingFinishFlg = shared.settingFinishFlg != 0;
    const std::optional<PortSpeed> speed = speedOf(setting);
    return !speed || changeSpeed(*speed);
}

/**
 * Queues a setting and sends its command. The entry is queued first, so that even an immediate answer finds it; it is
 * removed when the command could not be sent.
 */
bool GpsSettingManager::sendInOrder(GpsSetting setting, const char* command, unsigned int length) {
    unsigned int index = 0;
    GpsSetting overwritten = setting;
    {
        QvSyncGuard guard(mPendingSync);
        index = mPendingWriteIndex < kMaxPending ? mPendingWriteIndex : 0;
        overwritten = mPendingSetting[index];
        mPendingSetting[index] = setting;
        mPendingWriteIndex = index + 1;
        ++mPendingCount;
        if (mAnswersDue != 0) ++mAnswersDue;
    }
    if (mpGpsHal->sendData(command, length)) return true;

    QvSyncGuard guard(mPendingSync);
    dropAnswerDue();
    if (mPendingCount == 0) return false;  // a stray answer has taken the entry
    mPendingSetting[index] = overwritten;
    mPendingWriteIndex = index;
    --mPendingCount;
    return false;
}

/** Sets the HAL to the receiver's new speed, at which the receiver answers the poll. */
bool GpsSettingManager::changeSpeed(unsigned int value) {
    qv_msleep(kSpeedChangeMs);
    if (!mpGpsHal->sendCommand(kPortSpeedCommand, value)) return false;
    qv_msleep(kSpeedChangeMs);
    {
        QvSyncGuard guard(mPendingSync);
        mPortSettingsDue = mAnswersDue != 0 ? mPortSettingsDue + 1 : 1;
        mEarlierAnswersDue = mPendingCount;
        mAnswersDue = 1;
        mPollAnswered.ResetEvent();
    }
    if (!mpGpsHal->sendData(kPortPoll, sizeof(kPortPoll))) return false;
    mPollDeadline = Clock::now() + kPollTimeout;
    return true;
}

void GpsSettingManager::dropAnswerDue() {
    if (mAnswersDue != 0 && --mAnswersDue == 0) mPollAnswered.SetEvent();
}

/** Writes to the shared record what the setting changes for all processes. */
bool GpsSettingManager::storeSetting(GpsSetting setting) {
    QvSyncGuard guard(*this);  // for the whole read-change-write
    GPS_SETTING_LOCAL_MEMORY shared = {};
    readLocalMemory(&shared);
    if (setting == GPS_SETTING_DATUM_TOKYO) {
        shared.baseGeodeticSystem = GEODETIC_SYSTEM_TOKYO;
        mBaseGeodeticSystem = GEODETIC_SYSTEM_TOKYO;
    }
    if (setting == GPS_SETTING_SAVE_CONFIG) {
        shared.settingFinishFlg = 1;
        mSettingFinishFlg = true;
    }
    return writeLocalMemory(&shared);
}

bool GpsSettingManager::analizeGpsSettingResponse(const char* data, unsigned int length,
                                                  const GpsSettingListener* listener) {
    if (data == nullptr || length == 0 || listener == nullptr) {
        return log.failure("analizeGpsSettingResponse",
                           "GpsSettingManager::analizeGpsSettingResponse() Argument Error\n");
    }
    std::optional<SettledRequest> settled;
    const bool isTaken = takeResponse(data, length, settled);
    if (settled) asMutable(listener)->notifyGpsSettingRequestResponse(settled->acknowledged, settled->setting);
    return isTaken;
}

bool GpsSettingManager::takeResponse(const char* data, unsigned int length, std::optional<SettledRequest>& settled) {
    const UbxMessage message = UbxFrame(data, length).message();
    const bool isAnswer = message == UbxMessage::AckAck || message == UbxMessage::AckNak;
    QvSyncGuard guard(mPendingSync);
    if (isAnswer && mEarlierAnswersDue != 0) {
        --mEarlierAnswersDue;
    } else if (isAnswer) {
        dropAnswerDue();
    }
    if (mPendingCount == 0) return false;
    if (message == UbxMessage::CfgPrt) return true;
    const GpsSetting oldest = takeOldest();
    if (!isAnswer) {
        return log.failure("analizeGpsSettingResponse",
                           "GpsSettingManager::analizeGpsSettingResponse() unknown response\n");
    }
    --mPendingCount;
    settled = {message == UbxMessage::AckAck, oldest};
    return true;
}

void GpsSettingManager::takePortSettings(const char* data, unsigned int length) {
    if (UbxFrame(data, length).message() != UbxMessage::CfgPrt) return;
    QvSyncGuard guard(mPendingSync);
    if (mPortSettingsDue != 0 && --mPortSettingsDue == 0) mEarlierAnswersDue = 0;
}

GpsSetting GpsSettingManager::takeOldest() {
    const unsigned int index = mPendingReadIndex < kMaxPending ? mPendingReadIndex : 0;
    mPendingReadIndex = index + 1;
    return mPendingSetting[index];
}

GeodeticSystem GpsSettingManager::getBaseGeodeticSystem() {
    GPS_SETTING_LOCAL_MEMORY shared = {};
    if (readLocalMemory(&shared)) return shared.baseGeodeticSystem;
    log("getBaseGeodeticSystem", "GpsSettingManager::getBaseGeodeticSystem() readLocalMemory Error!\n");
    return mBaseGeodeticSystem;
}

bool GpsSettingManager::getSettingFinishFlg() {
    GPS_SETTING_LOCAL_MEMORY shared = {};
    if (readLocalMemory(&shared)) return shared.settingFinishFlg != 0;
    log("getSettingFinishFlg", "GpsSettingManager::getSettingFinishFlg() readLocalMemory Error!\n");
    return mSettingFinishFlg;
}

std::pair<GeodeticSystem, bool> GpsSettingManager::getBaseAndFinishFlg() {
    GPS_SETTING_LOCAL_MEMORY shared = {};
    if (getData() == nullptr) return {getBaseGeodeticSystem(), getSettingFinishFlg()};  // each logs its failure
    readLocalMemory(&shared);
    return {shared.baseGeodeticSystem, shared.settingFinishFlg != 0};
}

bool GpsSettingManager::readLocalMemory(GPS_SETTING_LOCAL_MEMORY* out) const {
    static constexpr char kFunction[] = "readLocalMemory";
    if (out == nullptr) return log.failure(kFunction, "GpsSettingManager::readLocalMemory() Argument Error!\n");
    const GPS_SETTING_LOCAL_MEMORY* const lpData = getData();
    if (lpData == nullptr) return log.failure(kFunction, "GpsSettingManager::readLocalMemory() lpData = NULL\n");
    QvSyncGuard guard(*this);
    *out = *lpData;
    return true;
}

bool GpsSettingManager::writeLocalMemory(const GPS_SETTING_LOCAL_MEMORY* in) {
    GPS_SETTING_LOCAL_MEMORY* const lpData = getData();
    if (lpData == nullptr) {
        return log.failure("writeLocalMemory", "GpsSettingManager::writeLocalMemory() lpData = NULL\n");
    }
    QvSyncGuard guard(*this);
    *lpData = *in;
    return true;
}
