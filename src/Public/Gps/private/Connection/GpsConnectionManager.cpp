#include "Gps/private/Connection/GpsConnectionManager.h"

#include <string_view>

#include "Gps/private/Support/GpsLog.h"
#include "GpsHal/GpsHal.h"
#include "QvFramework/Foundation/QvSyncGuard.h"

namespace {

constexpr GpsLog log("src/Public/Gps/private/Connection/GpsConnectionManager");

// "$GPTXT,01,01,02,ANTSTATUS=OK*3B"
constexpr std::size_t kTopicAt = 16;
constexpr std::string_view kTopic = "ANTSTATUS";
constexpr std::size_t kWordAt = 26;

constexpr struct {
    std::string_view word;
    GpsConnectionStatus status;
} kWords[] = {
    {"OK", GPS_CONNECTION_STATUS_OK}, {"OPEN", GPS_CONNECTION_STATUS_OPEN}, {"SHORT", GPS_CONNECTION_STATUS_SHORT}};

}  // namespace

GpsConnectionManager::GpsConnectionManager()
    : QvSharedMemory("QVSDK_GpsConnectionLocalMemory"),
      mpGpsHal(GpsHal::GetInstance()),
      mConnectionStatus(GPS_CONNECTION_STATUS_OK) {}

GpsConnectionManager::~GpsConnectionManager() {
    GpsHal::DelInstance();
}

void GpsConnectionManager::changeGpsConnectionStatus(const char* sentence, const GPS_CONNECTION_LISTENER_LIST* list,
                                                     unsigned int count) {
    GpsConnectionStatus status{};
    if (!takeStatus(sentence, &status) || list == nullptr) return;
    for (unsigned int i = 0; i < count; ++i) {
        if (list[i].listener != nullptr) asMutable(list[i].listener)->notifyGpsConnectionStatus(status);
    }
}

bool GpsConnectionManager::takeStatus(const char* sentence, GpsConnectionStatus* status) {
    if (sentence == nullptr) return false;
    *status = getConnectionStatus();
    return parseConnectionStatus(sentence, status);
}

bool GpsConnectionManager::getGpsConnectionStatus(const GpsConnectionListener* listener) {
    if (listener == nullptr) {
        return log.failure("getGpsConnectionStatus", "GpsConnectionManager::getGpsConnectionStatus() Argument Error\n");
    }
    asMutable(listener)->notifyGpsConnectionStatus(getConnectionStatus());
    return true;
}

GpsConnectionStatus GpsConnectionManager::getConnectionStatus() {
    GPS_CONNECTION_LOCAL_MEMORY shared = {};
    if (readLocalMemory(&shared)) return shared.connectionStatus;
    log("getConnectionStatus", "GpsConnectionManager::getConnectionStatus() readLocalMemory Error!\n");
    return mConnectionStatus;
}

void GpsConnectionManager::setConnectionStatus(GpsConnectionStatus status) {
    mConnectionStatus = status;
}

bool GpsConnectionManager::parseConnectionStatus(const char* sentence, GpsConnectionStatus* status) {
    static constexpr char kFunction[] = "parseConnectionStatus";
    if (status == nullptr || sentence == nullptr) {
        return log.failure(kFunction, "GpsConnectionManager::parseConnectionStatus() Argument Error\n");
    }
    if (!recognizeStatus(sentence, status)) return false;
    mConnectionStatus = *status;
    const GPS_CONNECTION_LOCAL_MEMORY shared = {*status};
    return writeLocalMemory(&shared) ||
           log.failure(kFunction, "GpsConnectionManager::parseConnectionStatus() writeLocalMemory Error!\n");
}

bool GpsConnectionManager::recognizeStatus(const char* sentence, GpsConnectionStatus* status) {
    const std::string_view text(sentence);
    if (text.size() < kWordAt || !text.substr(kTopicAt).starts_with(kTopic)) return false;
    for (const auto& known : kWords) {
        if (!text.substr(kWordAt).starts_with(known.word)) continue;
        *status = known.status;
        return true;
    }
    return false;
}

bool GpsConnectionManager::readLocalMemory(GPS_CONNECTION_LOCAL_MEMORY* out) const {
    static constexpr char kFunction[] = "readLocalMemory";
    if (out == nullptr) return log.failure(kFunction, "GpsConnectionManager::readLocalMemory() Argument Error!\n");
    const GPS_CONNECTION_LOCAL_MEMORY* const lpData = getData();
    if (lpData == nullptr) return log.failure(kFunction, "GpsConnectionManager::readLocalMemory() lpData = NULL\n");
    QvSyncGuard<QvSharedSyncObject> guard(*this);
    *out = *lpData;
    return true;
}

bool GpsConnectionManager::writeLocalMemory(const GPS_CONNECTION_LOCAL_MEMORY* in) {
    GPS_CONNECTION_LOCAL_MEMORY* const lpData = getData();
    if (lpData == nullptr) {
        return log.failure("writeLocalMemory", "GpsConnectionManager::writeLocalMemory() lpData = NULL\n");
    }
    QvSyncGuard<QvSharedSyncObject> guard(*this);
    *lpData = *in;
    return true;
}
