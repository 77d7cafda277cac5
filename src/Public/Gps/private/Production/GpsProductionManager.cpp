#include "Gps/private/Production/GpsProductionManager.h"

#include "Gps/private/Listeners/GpsListenerList.h"
#include "Gps/private/Support/CommandSync.h"
#include "Gps/private/Support/GpsLog.h"
#include "Gps/private/Support/UbxFrame.h"
#include "GpsHal/GpsHal.h"
#include "QvFramework/Foundation/QvSyncGuard.h"

namespace {

constexpr GpsLog log("src/Public/Gps/private/Production/GpsProductionManager");

// Announces 20 bytes of payload but has 14 and no checksum; the receiver accepts this form.
constexpr unsigned char kSwitchMode[] = {0xB5, 0x62, 0x06, 0x45, 0x14, 0x00, 0x00, 0x00, 0x00, 0x00,
                                         0x00, 0x01, 0x00, 0x00, 0x01, 0x00, 0x1E, 0x00, 0xE8, 0x03};
constexpr unsigned char kStartCheck[] = {0xB5, 0x62, 0x06, 0x59, 0x10, 0x00, 0x00, 0x01, 0xFF, 0x1E, 0xE8, 0x03,
                                         0x00, 0x00, 0x64, 0x00, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0xDD, 0xDE};
constexpr unsigned char kReset[] = {0xB5, 0x62, 0x06, 0x04, 0x04, 0x00, 0xFF, 0x87, 0x04, 0x00, 0x98, 0xFD};
constexpr unsigned char kColdStart[] = {0xB5, 0x62, 0x06, 0x04, 0x04, 0x00, 0xFF, 0xFF, 0x02, 0x00, 0x0E, 0x61};

// MonPt's factors: exactly these decimals, not the powers of two near them.
constexpr double kPtScale20 = 0.00024414062;
constexpr double kPtScale34 = 0.00390625;
constexpr double kPtScale32 = 1.525878e-05;
constexpr unsigned int kMonPtPayload = 52;

constexpr unsigned int kMonPt2Lists = 24;  // payload offset of the first list
constexpr unsigned int kMonPt2FirstEntry = 28;
constexpr unsigned int kMonPt2SecondEntry = 36;

int scaled(double raw, double factor) {
    return static_cast<int>(raw * factor);
}

PRODUCTION_DATA readMonPt(const UbxFrame& frame) {
    PRODUCTION_DATA record = {};
    record.ptValue4 = frame.wordAt(4);
    record.ptValue20 = scaled(static_cast<std::int32_t>(frame.wordAt(20)), kPtScale20);
    record.ptValue24 = scaled(static_cast<std::int32_t>(frame.wordAt(24)), kPtScale20);
    record.ptValue34 = scaled(frame.shortAt(34), kPtScale34);
    record.ptValue36 = scaled(frame.shortAt(36), kPtScale34);
    record.ptValue40 = frame.wordAt(40);
    record.ptValue48 = frame.wordAt(48);
    record.ptValue39 = frame.byteAt(39);
    record.ptValue32 = frame.shortAt(32) * kPtScale32;
    return record;
}

unsigned int secondListOf(const UbxFrame& frame) {
    return kMonPt2Lists + kMonPt2FirstEntry * frame.byteAt(2);
}

/** Payload bytes of a MonPt2 frame with the lists that it counts; the frame has at least the part before them. */
unsigned int monPt2Size(const UbxFrame& frame) {
    return secondListOf(frame) + kMonPt2SecondEntry * frame.byteAt(3);
}

GPS_PRODUCTION_CHECK_DATA readMonPt2(const UbxFrame& frame) {
    GPS_PRODUCTION_CHECK_DATA record = {};
    record.checkValid = 1;
    record.pt2Value12 = frame.wordAt(12);
    record.pt2Value16 = frame.wordAt(16);
    record.pt2Value20 = frame.wordAt(20);
    if (frame.byteAt(2) != 0) record.pt2FirstEntry0 = frame.byteAt(kMonPt2Lists);
    if (frame.byteAt(3) == 0) return record;
    const unsigned int entry = secondListOf(frame);
    record.pt2Entry4 = frame.shortAt(entry + 4);
    record.pt2Entry6 = frame.shortAt(entry + 6);
    record.pt2Entry24 = frame.byteAt(entry + 24);
    record.pt2Entry25 = frame.byteAt(entry + 25);
    record.pt2Entry22 = frame.byteAt(entry + 22);
    return record;
}

/** Log texts for a frame that is not the expected test result. */
struct RefusalTexts {
    const char* function;
    const char* header;
    const char* id;
};
constexpr RefusalTexts kMonPtTexts = {"parseGpsProductionDataMonPt",
                                      "GpsProductionManager:parseGpsProductionDataMonPt() Header Error [%02x][%02x]\n",
                                      "GpsProductionManager::parseGpsProductionDataMonPt() ID Error [%02x][%02x]\n"};
constexpr RefusalTexts kMonPt2Texts = {
    "parseGpsProductionDataMonPt2", "GpsProductionManager::parseGpsProductionDataMonPt2() Header Error [%02x][%02x]\n",
    "GpsProductionManager::parseGpsProductionDataMonPt2() ID Error [%02x][%02x]\n"};

/** Whether a chunk is a frame of this message; logs why not, unless it ends too early to say. */
bool isMessage(UbxMessage message, const char* data, unsigned int length, const RefusalTexts& texts) {
    const auto refuse = [&](const char* text, char first, char second) {
        QvDbgOutput::DbgPrint(log.source(), texts.function, __LINE__, GpsLog::kTag, text,
                              static_cast<unsigned char>(first), static_cast<unsigned char>(second));
        return false;
    };
    const UbxFrame frame(data, length);
    if (length < 2) return false;
    if (!frame.hasSync()) return refuse(texts.header, data[0], data[1]);
    if (length < 4) return false;
    return frame.message() == message || refuse(texts.id, data[2], data[3]);
}

}  // namespace

GpsProductionManager::GpsProductionManager() : mRequestType(REQUEST_TYPE_NONE), mpGpsHal(GpsHal::GetInstance()) {}

GpsProductionManager::~GpsProductionManager() {
    GpsHal::DelInstance();
}

/** Sends a request. Its type is set before the first byte, so that even an immediate acknowledgement is reported. */
template <std::size_t size>
bool GpsProductionManager::send(RequestType type, const unsigned char (&message)[size]) {
    const QvSyncGuard guard(gCommandSync);
    mRequestType = type;
    if (mpGpsHal->sendData(message, size)) return true;
    mRequestType = REQUEST_TYPE_NONE;
    return false;
}

bool GpsProductionManager::requestSwitchGpsProductionMode() {
    return send(REQUEST_TYPE_SWITCH_PRODUCTION_MODE, kSwitchMode) ||
           log.failure("requestSwitchGpsProductionMode",
                       "GpsProductionManager::requestSwitchGpsProductionMode() : sendData() = false\n");
}

bool GpsProductionManager::requestStartGpsProductionCheck() {
    return send(REQUEST_TYPE_START_PRODUCTION_CHECK, kStartCheck) ||
           log.failure("requestStartGpsProductionCheck",
                       "GpsProductionManager::requestStartGpsProductionCheck() : sendData() = false\n");
}

bool GpsProductionManager::requestFinishGpsProductionCheck() {
    return requestGpsReset() ||
           log.failure("requestFinishGpsProductionCheck",
                       "GpsProductionManager::requestFinishGpsProductionCheck() : requestGpsReset() = false\n");
}

bool GpsProductionManager::requestGpsReset() {
    return send(REQUEST_TYPE_NONE, kReset) ||
           log.failure("requestGpsReset", "GpsProductionManager::requestGpsReset() : sendData() = false\n");
}

bool GpsProductionManager::requestGpsColdStart() {
    return send(REQUEST_TYPE_NONE, kColdStart) ||
           log.failure("requestGpsColdStart", "GpsProductionManager::requestGpsColdStart() : sendData() = false\n");
}

bool GpsProductionManager::switchGpsProductionResponse(const char* data, unsigned int length,
                                                       const GpsProductionListener* listener) {
    static constexpr char kFunction[] = "switchGpsProductionResponse";
    if (data == nullptr || length == 0 || listener == nullptr) return false;
    const UbxMessage message = UbxFrame(data, length).message();
    if (message != UbxMessage::AckAck && message != UbxMessage::AckNak) {
        mRequestType = REQUEST_TYPE_NONE;
        return log.failure(kFunction, "GpsProductionManager::switchGpsProductionResponse() unknown response\n");
    }
    const bool acknowledged = message == UbxMessage::AckAck;
    switch (mRequestType) {
        case REQUEST_TYPE_SWITCH_PRODUCTION_MODE:
            asMutable(listener)->notyfySwitchGpsProductionModeRequestResponse(acknowledged);
            break;
        case REQUEST_TYPE_START_PRODUCTION_CHECK:
            asMutable(listener)->notifyStartGpsProductionCheckResponse(acknowledged);
            break;
        case REQUEST_TYPE_COLD_START:
            asMutable(listener)->notyfyGpsColdStartRequestResponse(acknowledged);
            break;
        case REQUEST_TYPE_NONE:
            break;
        default:
            log(kFunction, "GpsProductionManager::switchGpsProductionResponse() unknown RequestType\n");
            break;
    }
    return true;
}

bool GpsProductionManager::parseGpsProductionData(const char* data, const GpsProductionListener* listener,
                                                  unsigned int length) {
    static constexpr char kFunction[] = "parseGpsProductionData";
    if (data == nullptr || listener == nullptr) return false;
    switch (UbxFrame(data, length).message()) {
        case UbxMessage::MonPt:
            return parseGpsProductionDataMonPt(data, listener, length) ||
                   log.failure(
                       kFunction,
                       "GpsProductionManager::parseGpsProductionData() : parseGpsProductionDataMonPt() = false\n");
        case UbxMessage::MonPt2:
            return parseGpsProductionDataMonPt2(data, listener, length) ||
                   log.failure(
                       kFunction,
                       "GpsProductionManager::parseGpsProductionData() : parseGpsProductionDataMonPt2() = false\n");
        default:
            return true;
    }
}

bool GpsProductionManager::parseGpsProductionDataMonPt(const char* data, const GpsProductionListener* listener,
                                                       unsigned int length) {
    if (data == nullptr || listener == nullptr || !isMessage(UbxMessage::MonPt, data, length, kMonPtTexts))
        return false;
    const UbxFrame frame(data, length);
    if (frame.payloadSize() < kMonPtPayload) return false;
    const PRODUCTION_DATA record = readMonPt(frame);
    asMutable(listener)->notifyReceiveGpsProductionData(&record);
    return true;
}

bool GpsProductionManager::parseGpsProductionDataMonPt2(const char* data, const GpsProductionListener* listener,
                                                        unsigned int length) {
    if (data == nullptr || listener == nullptr || !isMessage(UbxMessage::MonPt2, data, length, kMonPt2Texts))
        return false;
    const UbxFrame frame(data, length);
    if (frame.payloadSize() < kMonPt2Lists || frame.payloadSize() < monPt2Size(frame)) return false;
    const GPS_PRODUCTION_CHECK_DATA record = readMonPt2(frame);
    asMutable(listener)->notifyReceiveGpsProductionCheckData(&record);
    return true;
}
