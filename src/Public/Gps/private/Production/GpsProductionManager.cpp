#include "Gps/private/Production/GpsProductionManager.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "Gps/private/Listeners/GpsListenerList.h"
#include "Gps/private/Support/GpsLog.h"
#include "GpsHal/GpsHal.h"

namespace {

constexpr GpsLog log("src/Public/Gps/private/Production/GpsProductionManager");

// Announces 20 bytes of payload, of which 14 follow, and no checksum: so the receiver knows it.
constexpr unsigned char kSwitchMode[] = {0xB5, 0x62, 0x06, 0x45, 0x14, 0x00, 0x00, 0x00, 0x00, 0x00,
                                         0x00, 0x01, 0x00, 0x00, 0x01, 0x00, 0x1E, 0x00, 0xE8, 0x03};
constexpr unsigned char kStartCheck[] = {0xB5, 0x62, 0x06, 0x59, 0x10, 0x00, 0x00, 0x01, 0xFF, 0x1E, 0xE8, 0x03,
                                         0x00, 0x00, 0x64, 0x00, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0xDD, 0xDE};
constexpr unsigned char kReset[] = {0xB5, 0x62, 0x06, 0x04, 0x04, 0x00, 0xFF, 0x87, 0x04, 0x00, 0x98, 0xFD};
constexpr unsigned char kColdStart[] = {0xB5, 0x62, 0x06, 0x04, 0x04, 0x00, 0xFF, 0xFF, 0x02, 0x00, 0x0E, 0x61};

constexpr char kAcknowledgementClass = 0x05;
constexpr char kMonitorClass = 0x0A;
constexpr char kMonPt = 0x20;
constexpr char kMonPt2 = 0x2B;
constexpr unsigned int kFrameHeader = 6;    // sync bytes, class, id, length
constexpr unsigned int kFrameChecksum = 2;  // behind the payload

// Factors of MonPt, as decimal constants and not as the powers of two that they approach.
constexpr double kPtScale20 = 0.00024414062;
constexpr double kPtScale34 = 0.00390625;
constexpr double kPtScale32 = 1.525878e-05;
constexpr unsigned int kMonPtPayload = 52;

constexpr unsigned int kMonPt2Lists = 24;  // payload offset of the first list
constexpr unsigned int kMonPt2FirstEntry = 28;
constexpr unsigned int kMonPt2SecondEntry = 36;

/** The payload of a received frame. Read nothing beyond its size. */
class Payload {
public:
    /** @param length bytes of the frame, which may be cut short */
    Payload(const char* frame, unsigned int length)
        : mBytes(frame + kFrameHeader), mSize(length > kFrameHeader ? length - kFrameHeader : 0) {
        constexpr unsigned int kAnnounced = 4;  // where the header tells the payload's size
        if (mSize < kFrameChecksum) return;
        const unsigned int announced = littleEndian(frame + kAnnounced);
        if (announced == mSize - kFrameChecksum) mSize = announced;  // a whole frame ends with its checksum
    }

    unsigned int size() const { return mSize; }
    std::uint8_t byteAt(unsigned int offset) const { return static_cast<std::uint8_t>(mBytes[offset]); }
    std::uint16_t shortAt(unsigned int offset) const { return littleEndian(mBytes + offset); }
    std::uint32_t wordAt(unsigned int offset) const {
        return shortAt(offset) | static_cast<std::uint32_t>(shortAt(offset + 2)) << 16;
    }

private:
    static std::uint16_t littleEndian(const char* bytes) {
        return static_cast<std::uint16_t>(static_cast<unsigned char>(bytes[0]) | static_cast<unsigned char>(bytes[1])
                                                                                     << 8);
    }

    const char* mBytes;
    unsigned int mSize;
};

int scaled(double raw, double factor) {
    return static_cast<int>(raw * factor);
}

PRODUCTION_DATA readMonPt(const Payload& payload) {
    PRODUCTION_DATA record = {};
    record.ptValue4 = payload.wordAt(4);
    record.ptValue20 = scaled(static_cast<std::int32_t>(payload.wordAt(20)), kPtScale20);
    record.ptValue24 = scaled(static_cast<std::int32_t>(payload.wordAt(24)), kPtScale20);
    record.ptValue34 = scaled(payload.shortAt(34), kPtScale34);
    record.ptValue36 = scaled(payload.shortAt(36), kPtScale34);
    record.ptValue40 = payload.wordAt(40);
    record.ptValue48 = payload.wordAt(48);
    record.ptValue39 = payload.byteAt(39);
    record.ptValue32 = payload.shortAt(32) * kPtScale32;
    return record;
}

unsigned int secondListOf(const Payload& payload) {
    return kMonPt2Lists + kMonPt2FirstEntry * payload.byteAt(2);
}

/** Payload bytes that a MonPt2 frame with these counts has; the payload is at least as long as its fixed part. */
unsigned int monPt2Size(const Payload& payload) {
    return secondListOf(payload) + kMonPt2SecondEntry * payload.byteAt(3);
}

GPS_PRODUCTION_CHECK_DATA readMonPt2(const Payload& payload) {
    GPS_PRODUCTION_CHECK_DATA record = {};
    record.checkValid = 1;
    record.pt2Value12 = payload.wordAt(12);
    record.pt2Value16 = payload.wordAt(16);
    record.pt2Value20 = payload.wordAt(20);
    if (payload.byteAt(2) != 0) record.pt2FirstEntry0 = payload.byteAt(kMonPt2Lists);
    if (payload.byteAt(3) == 0) return record;
    const unsigned int entry = secondListOf(payload);
    record.pt2Entry4 = payload.shortAt(entry + 4);
    record.pt2Entry6 = payload.shortAt(entry + 6);
    record.pt2Entry24 = payload.byteAt(entry + 24);
    record.pt2Entry25 = payload.byteAt(entry + 25);
    record.pt2Entry22 = payload.byteAt(entry + 22);
    return record;
}

/** What is said about a test result that is not one. */
struct HeaderTexts {
    const char* function;
    const char* header;
    const char* id;
};
constexpr HeaderTexts kMonPtTexts = {"parseGpsProductionDataMonPt",
                                     "GpsProductionManager:parseGpsProductionDataMonPt() Header Error [%02x][%02x]\n",
                                     "GpsProductionManager::parseGpsProductionDataMonPt() ID Error [%02x][%02x]\n"};
constexpr HeaderTexts kMonPt2Texts = {
    "parseGpsProductionDataMonPt2", "GpsProductionManager::parseGpsProductionDataMonPt2() Header Error [%02x][%02x]\n",
    "GpsProductionManager::parseGpsProductionDataMonPt2() ID Error [%02x][%02x]\n"};

/** Whether a frame is the monitor message `id`; says why not. */
bool isMonitorFrame(const char* data, unsigned int length, char id, const HeaderTexts& texts) {
    const auto say = [&](const char* text, char first, char second) {
        QvDbgOutput::DbgPrint(log.source(), texts.function, __LINE__, GpsLog::kTag, text,
                              static_cast<unsigned char>(first), static_cast<unsigned char>(second));
        return false;
    };
    if (length < 2) return false;
    if (std::memcmp(data, "\xB5\x62", 2) != 0) return say(texts.header, data[0], data[1]);
    if (length < 4) return false;
    if (data[2] != kMonitorClass || data[3] != id) return say(texts.id, data[2], data[3]);
    return true;
}

template <std::size_t size>
bool send(GpsHal* hal, const unsigned char (&message)[size]) {
    return hal->sendData(message, size);
}

/** Sends a request whose acknowledgement is awaited: from before its first byte, so that the fastest one is told. */
template <std::size_t size>
bool sendAwaiting(RequestType type, std::atomic<RequestType>& awaited, GpsHal* hal,
                  const unsigned char (&message)[size]) {
    awaited = type;
    if (send(hal, message)) return true;
    awaited = REQUEST_TYPE_NONE;
    return false;
}

}  // namespace

GpsProductionManager::GpsProductionManager() : mRequestType(REQUEST_TYPE_NONE), mpGpsHal(GpsHal::GetInstance()) {}

GpsProductionManager::~GpsProductionManager() {
    GpsHal::DelInstance();
}

bool GpsProductionManager::requestSwitchGpsProductionMode() {
    return sendAwaiting(REQUEST_TYPE_SWITCH_PRODUCTION_MODE, mRequestType, mpGpsHal, kSwitchMode) ||
           log.failure("requestSwitchGpsProductionMode",
                       "GpsProductionManager::requestSwitchGpsProductionMode() : sendData() = false\n");
}

bool GpsProductionManager::requestStartGpsProductionCheck() {
    return sendAwaiting(REQUEST_TYPE_START_PRODUCTION_CHECK, mRequestType, mpGpsHal, kStartCheck) ||
           log.failure("requestStartGpsProductionCheck",
                       "GpsProductionManager::requestStartGpsProductionCheck() : sendData() = false\n");
}

bool GpsProductionManager::requestFinishGpsProductionCheck() {
    return requestGpsReset() ||
           log.failure("requestFinishGpsProductionCheck",
                       "GpsProductionManager::requestFinishGpsProductionCheck() : requestGpsReset() = false\n");
}

// Nobody is told an answer to these two, not even one that comes before the bytes are known to have left.

bool GpsProductionManager::requestGpsReset() {
    mRequestType = REQUEST_TYPE_NONE;
    return send(mpGpsHal, kReset) ||
           log.failure("requestGpsReset", "GpsProductionManager::requestGpsReset() : sendData() = false\n");
}

bool GpsProductionManager::requestGpsColdStart() {
    mRequestType = REQUEST_TYPE_NONE;
    return send(mpGpsHal, kColdStart) ||
           log.failure("requestGpsColdStart", "GpsProductionManager::requestGpsColdStart() : sendData() = false\n");
}

bool GpsProductionManager::switchGpsProductionResponse(const char* data, unsigned int length,
                                                       const GpsProductionListener* listener) {
    constexpr char kFunction[] = "switchGpsProductionResponse";
    if (data == nullptr || length == 0 || listener == nullptr) return false;
    const bool isAnswer = length >= 4 && std::memcmp(data, "\xB5\x62", 2) == 0 && data[2] == kAcknowledgementClass &&
                          (data[3] == 0 || data[3] == 1);
    if (!isAnswer) {
        mRequestType = REQUEST_TYPE_NONE;
        return log.failure(kFunction, "GpsProductionManager::switchGpsProductionResponse() unknown response\n");
    }
    const bool acknowledged = data[3] == 1;
    GpsProductionListener* const told = asMutable(listener);
    switch (mRequestType) {
        case REQUEST_TYPE_SWITCH_PRODUCTION_MODE:
            told->notyfySwitchGpsProductionModeRequestResponse(acknowledged);
            break;
        case REQUEST_TYPE_START_PRODUCTION_CHECK:
            told->notifyStartGpsProductionCheckResponse(acknowledged);
            break;
        case REQUEST_TYPE_COLD_START:
            told->notyfyGpsColdStartRequestResponse(acknowledged);
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
    constexpr char kFunction[] = "parseGpsProductionData";
    if (data == nullptr || listener == nullptr) return false;
    if (length < 4 || std::memcmp(data, "\xB5\x62\x0A", 3) != 0) return true;
    switch (data[3]) {
        case kMonPt:
            return parseGpsProductionDataMonPt(data, listener, length) ||
                   log.failure(
                       kFunction,
                       "GpsProductionManager::parseGpsProductionData() : parseGpsProductionDataMonPt() = false\n");
        case kMonPt2:
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
    if (data == nullptr || listener == nullptr || !isMonitorFrame(data, length, kMonPt, kMonPtTexts)) return false;
    const Payload payload(data, length);
    if (payload.size() < kMonPtPayload) return false;
    const PRODUCTION_DATA record = readMonPt(payload);
    asMutable(listener)->notifyReceiveGpsProductionData(&record);
    return true;
}

bool GpsProductionManager::parseGpsProductionDataMonPt2(const char* data, const GpsProductionListener* listener,
                                                        unsigned int length) {
    if (data == nullptr || listener == nullptr || !isMonitorFrame(data, length, kMonPt2, kMonPt2Texts)) return false;
    const Payload payload(data, length);
    if (payload.size() < kMonPt2Lists || payload.size() < monPt2Size(payload)) return false;
    const GPS_PRODUCTION_CHECK_DATA record = readMonPt2(payload);
    asMutable(listener)->notifyReceiveGpsProductionCheckData(&record);
    return true;
}
