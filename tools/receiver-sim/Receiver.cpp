#include "tools/receiver-sim/Receiver.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <utility>

#include "tools/receiver-sim/Nmea.h"
#include "tools/receiver-sim/PortSpeed.h"

namespace sim {

namespace {

constexpr unsigned char kConfigurationClass = 0x06;
constexpr MessageId kAcknowledged{0x05, 0x01};
constexpr MessageId kRefused{0x05, 0x00};
constexpr MessageId kPort{0x06, 0x00};
constexpr unsigned kSerialPort = 1;  // the port that the simulator has; the rates of a message list it second

constexpr double kGeoidHeight = 36.7;  // metres of the sea level above WGS84's ellipsoid around Tokyo

constexpr std::array kStartTexts{"u-blox ag - www.u-blox.com", "HW  UBX-G70xx   00070000 ",
                                 "ROM CORE 1.00 (59842) Jun 27 2012 17:43:52", "PROTVER 14.00",
                                 "ANTSUPERV=AC SD OD PDoS SR"};

constexpr std::array kAntennaNames{"OK", "OPEN", "SHORT"};

/** A value in a test result, and its position. */
struct ResultField {
    std::size_t offset;
    std::size_t width;
    std::uint64_t value;
};

struct CheckResult {
    MessageId id;
    std::size_t length;
    std::vector<ResultField> fields;
};

/** Results of the receiver's self-check. The second result lists two entries of 28 bytes and one of 36. */
const CheckResult kCheckResults[] = {
    {{0x0A, 0x20},
     52,
     {{4, 4, 100001},
      {20, 4, 1000000},
      {24, 4, 0xFFFFE000},
      {32, 2, 32768},
      {34, 2, 11520},
      {36, 2, 640},
      {39, 1, 39},
      {40, 4, 4000004},
      {48, 4, 4800008}}},
    {{0x0A, 0x2B},
     24 + 2 * 28 + 36,
     {{2, 1, 2},
      {3, 1, 1},
      {12, 4, 1200012},
      {16, 4, 1600016},
      {20, 4, 2000020},
      {24, 1, 7},
      {52, 1, 8},
      {80 + 4, 2, 4004},
      {80 + 6, 2, 6006},
      {80 + 22, 1, 22},
      {80 + 24, 1, 24},
      {80 + 25, 1, 25}}},
};

/**
 * The time with the date that a receiver computes. Satellites send the week modulo 1024; the receiver assumes the first
 * matching week from its reference week on.
 */
UtcTime withDateFrom(unsigned referenceWeek, UtcTime time) {
    constexpr int kWeeksSent = 1024;
    constexpr UtcTime kWeekZero{std::chrono::sys_days(std::chrono::year(1980) / 1 / 6)};
    const auto week = std::chrono::floor<std::chrono::weeks>(time - kWeekZero).count();
    const auto sinceReference = (week - static_cast<int>(referenceWeek)) % kWeeksSent;
    const auto resolved = referenceWeek + (sinceReference + kWeeksSent) % kWeeksSent;
    return time + std::chrono::weeks(resolved - week);
}

constexpr unsigned kFadePerSecond = 8;  // dB, once the fix is lost

/** Weakens all signals; what falls below the receiver's sensitivity is no longer tracked. */
void fade(std::vector<Satellite>& sky, unsigned loss) {
    constexpr unsigned kWeakest = 12;  // dBHz
    for (Satellite& satellite : sky)
        satellite.signal = satellite.signal >= kWeakest + loss ? satellite.signal - loss : 0;
}

UtcTime alignedDown(UtcTime time, Milliseconds interval) {
    return time - time.time_since_epoch() % interval;
}

}  // namespace

const Receiver::Command Receiver::kCommands[] = {
    {kPort, &Receiver::handlePort},
    {{0x06, 0x01}, &Receiver::handleMessageRate},
    {{0x06, 0x04}, &Receiver::handleRestart},
    {{0x06, 0x06}, &Receiver::handleDatum},
    {{0x06, 0x08}, &Receiver::handleRate},
    {{0x06, 0x09}, &Receiver::handleSave},
    {{0x06, 0x23}, &Receiver::handleNavigationExpert},
    {{0x06, 0x59}, &Receiver::handleStartCheck},
};

Receiver::Receiver(const Setup& setup, UtcTime start)
    : mSetup(setup),
      mStart(start),
      mDefaults(defaultConfiguration(setup.baud, setup.interval)),
      mSaved(mDefaults),
      mCurrent(mDefaults),
      mPortBaud(setup.baud),
      mAntenna(setup.antenna.front()),
      mLastEpoch(start - Milliseconds(1)) {}

void Receiver::announce() {
    for (const char* text : kStartTexts)
        mActions.push_back(sendSentence(textSentence(text)));
    announceAntenna();
}

void Receiver::receive(std::string_view bytes) {
    handle(mFramer.push(bytes));
}

void Receiver::receivePause() {
    handle(mFramer.giveUp());
}

UtcTime Receiver::nextEpoch() const {
    const Milliseconds interval = mCurrent.navigation.interval;
    return alignedDown(mLastEpoch, interval) + interval;
}

Receiver::Truth Receiver::runEpoch(UtcTime now) {
    mLastEpoch = alignedDown(now, mCurrent.navigation.interval);
    ++mEpochs;
    updateAntenna(mLastEpoch);
    updateReception(mLastEpoch);
    const Motion motion = driveAt(mLastEpoch - mStart);
    const Fix fix = fixAt(mLastEpoch, motion);
    for (std::size_t kind = 0; kind < kSentenceKindCount; ++kind) {
        const unsigned rate = mCurrent.messages.rates[kind];
        if (rate == 0 || mEpochs % rate != 0) continue;
        for (const std::string& body : kSentenceKinds[kind].compose(fix))
            mActions.push_back(sendSentence(nmeaSentence(body)));
    }
    return {mLastEpoch, motion.position};
}

std::vector<PortAction> Receiver::takeActions() {
    return std::exchange(mActions, {});
}

Fix Receiver::fixAt(UtcTime time, const Motion& motion) const {
    const Geodetic& truth = motion.position;
    const Geodetic reported = toGeodetic(toCartesian(truth, kWgs84), mCurrent.navigation.datum);
    const double aboveSea = truth.height - kGeoidHeight;
    Fix fix{!mFixLost, withDateFrom(mCurrent.navigation.referenceWeek, time),
            reported,  reported.height - aboveSea,
            motion,    skyAt(time, truth)};
    if (mFixLost) {
        const auto secondsLost = std::chrono::ceil<std::chrono::seconds>(time - *mFixLost).count();
        fade(fix.sky, static_cast<unsigned>(secondsLost + 1) * kFadePerSecond);
    }
    return fix;
}

void Receiver::updateReception(UtcTime now) {
    const Milliseconds sinceStart = now - mStart;
    const bool isLost = sinceStart >= mSetup.fixLostAt && sinceStart < mSetup.fixLostAt + mSetup.fixLostFor;
    if (!isLost && mAntenna != Antenna::Open) {
        mFixLost.reset();
    } else if (!mFixLost) {
        mFixLost = now;
    }
}

void Receiver::updateAntenna(UtcTime now) {
    const auto turn = static_cast<std::size_t>(std::max<Milliseconds::rep>(0, (now - mStart) / mSetup.antennaEvery));
    const Antenna antenna = mSetup.antenna[std::min(turn, mSetup.antenna.size() - 1)];
    if (antenna == mAntenna) return;
    mAntenna = antenna;
    announceAntenna();
}

void Receiver::announceAntenna() {
    const std::string name = kAntennaNames[static_cast<std::size_t>(mAntenna)];
    mActions.push_back(sendSentence(textSentence("ANTSTATUS=" + name)));
    mActions.back().reports.push_back(Report::object({{"event", "antenna"}, {"status", name}}));
}

void Receiver::handle(const std::vector<Piece>& pieces) {
    for (const Piece& piece : pieces) {
        if (piece.kind == Piece::Kind::Sentence) handleSentence(piece.bytes);
        if (piece.kind == Piece::Kind::Frame) handleFrame(piece.bytes);
    }
}

void Receiver::handleSentence(const std::string& sentence) {
    constexpr std::size_t kPortField = 2;
    constexpr std::size_t kBaudField = 5;
    const std::vector<std::string> fields = nmeaFields(sentence);
    if (fields.size() <= kBaudField || fields[0] != "PUBX" || fields[1] != "41") return;
    if (fields[kPortField] != std::to_string(kSerialPort)) return;
    unsigned baud = 0;
    const std::string& digits = fields[kBaudField];
    const auto end = std::from_chars(digits.data(), digits.data() + digits.size(), baud);
    if (end.ptr == digits.data() + digits.size() && setBaud(baud)) switchSpeed();
}

void Receiver::handleFrame(const std::string& frame) {
    const MessageId id = idOf(std::string_view(frame).substr(kUbxSync.size()));
    if (id.messageClass != kConfigurationClass) return;

    Answer answer{true};
    const auto* command = std::find_if(std::begin(kCommands), std::end(kCommands),
                                       [&id](const Command& candidate) { return candidate.id == id; });
    if (mSetup.refuses(id, ++mConfigurationMessages)) {
        answer = {false};
    } else if (command != std::end(kCommands)) {
        const std::string_view payload = std::string_view(frame).substr(kUbxHeaderSize, announcedLength(frame));
        answer = (this->*command->handle)(payload);
    }
    const std::string answered{static_cast<char>(id.messageClass), static_cast<char>(id.id)};
    mActions.push_back(makeAction(
        ubxFrame(answer.isAccepted ? kAcknowledged : kRefused, answered),
        Report::object(
            {{"event", "ack"}, {"accepted", answer.isAccepted}, {"class", id.messageClass}, {"id", id.id}})));
    if (answer.afterwards != nullptr) (this->*answer.afterwards)();
    switchSpeed();
}

Receiver::Answer Receiver::handleMessageRate(std::string_view payload) {
    // With rates for all six ports, with a rate for the port in use, or as a poll of the rates.
    constexpr std::size_t kAllPorts = 8;
    constexpr std::size_t kThisPort = 3;
    constexpr std::size_t kPoll = 2;
    if (payload.size() == kPoll) return {true};
    if (payload.size() != kAllPorts && payload.size() != kThisPort) return {false};
    const std::size_t rateOffset = payload.size() == kAllPorts ? 2 + kSerialPort : 2;
    const auto* kind = std::find_if(kSentenceKinds.begin(), kSentenceKinds.end(),
                                    [&](const SentenceKind& candidate) { return candidate.id == idOf(payload); });
    if (kind == kSentenceKinds.end()) return {true};
    mCurrent.messages.rates[static_cast<std::size_t>(kind - kSentenceKinds.begin())] =
        static_cast<unsigned char>(payload[rateOffset]);
    return {true};
}

Receiver::Answer Receiver::handleDatum(std::string_view payload) {
    if (payload.empty()) return {true};
    if (payload.size() != 44) return {false};
    const Datum datum{readNumber<double>(payload, 0),
                      readNumber<double>(payload, 8),
                      {readNumber<float>(payload, 16), readNumber<float>(payload, 20), readNumber<float>(payload, 24)}};
    const bool isShiftOnly = std::all_of(payload.begin() + 28, payload.end(), [](char byte) { return byte == 0; });
    // The receiver's limits; they also exclude NaN.
    const bool isPossible = datum.semiMajorAxis >= 6.3e6 && datum.semiMajorAxis <= 6.5e6 &&
                            datum.inverseFlattening > 1.0 && datum.inverseFlattening <= 500.0 &&
                            std::abs(datum.centre.x) <= 5000.0 && std::abs(datum.centre.y) <= 5000.0 &&
                            std::abs(datum.centre.z) <= 5000.0;
    if (!isShiftOnly || !isPossible) return {false};
    mCurrent.navigation.datum = datum;
    return {true};
}

Receiver::Answer Receiver::handleRate(std::string_view payload) {
    constexpr std::uint64_t kShortest = 50;  // milliseconds
    if (payload.empty()) return {true};
    if (payload.size() != 6) return {false};
    const std::uint64_t measurement = readUnsigned(payload, 0, 2);
    const std::uint64_t perSolution = readUnsigned(payload, 2, 2);
    if (measurement < kShortest || perSolution == 0) return {false};
    mCurrent.navigation.interval = Milliseconds(measurement * perSolution);
    return {true};
}

Receiver::Answer Receiver::handleNavigationExpert(std::string_view payload) {
    constexpr std::uint64_t kSetsReferenceWeek = 1 << 9;
    if (payload.empty()) return {true};
    if (payload.size() != 40) return {false};
    if ((readUnsigned(payload, 2, 2) & kSetsReferenceWeek) == 0) return {true};
    const auto week = static_cast<unsigned>(readUnsigned(payload, 18, 2));
    mCurrent.navigation.referenceWeek = week != 0 ? week : kFirmwareWeek;
    return {true};
}

Receiver::Answer Receiver::handlePort(std::string_view payload) {
    constexpr std::size_t kSettings = 20;
    constexpr std::uint64_t kPorts = 5;
    const std::uint64_t port = payload.empty() ? kSerialPort : readUnsigned(payload, 0, 1);
    if (port >= kPorts) return {false};
    if (payload.size() == kSettings) {
        return {port != kSerialPort || setBaud(static_cast<unsigned>(readUnsigned(payload, 8, 4)))};
    }
    if (payload.size() > 1) return {false};

    std::string settings(kSettings, '\0');
    writeUnsigned(settings, 0, 1, port);
    if (port == kSerialPort) {
        writeUnsigned(settings, 4, 4, 0x08D0);  // 8 data bits, no parity, 1 stop bit
        writeUnsigned(settings, 8, 4, mCurrent.port.baud);
    }
    writeUnsigned(settings, 12, 2, 0x0007);  // UBX, NMEA and RTCM in
    writeUnsigned(settings, 14, 2, 0x0003);  // UBX and NMEA out
    mActions.push_back(sendFrame(ubxFrame(kPort, settings)));
    return {true};
}

Receiver::Answer Receiver::handleRestart(std::string_view payload) {
    // Other modes restart the whole receiver, which then knows only what was saved.
    constexpr std::uint64_t kNavigationOnly = 2;
    constexpr std::uint64_t kStopNavigation = 8;  // and 9 starts it again: neither has an effect here
    if (payload.size() != 4) return {false};
    const std::uint64_t mode = readUnsigned(payload, 2, 1);
    if (mode >= kStopNavigation) return {true};
    return {true, mode == kNavigationOnly ? &Receiver::restartNavigation : &Receiver::restart};
}

Receiver::Answer Receiver::handleSave(std::string_view payload) {
    constexpr std::size_t kAllMemories = 12;
    if (payload.size() != kAllMemories && payload.size() != kAllMemories + 1) return {false};
    copySections(mDefaults, mSaved, readUnsigned(payload, 0, 4));
    copySections(mCurrent, mSaved, readUnsigned(payload, 4, 4));
    copySections(mSaved, mCurrent, readUnsigned(payload, 8, 4));
    return {true};
}

Receiver::Answer Receiver::handleStartCheck(std::string_view) {
    return {true, &Receiver::sendCheckResults};
}

bool Receiver::setBaud(unsigned baud) {
    if (findPortSpeed(baud) == nullptr) return false;
    mCurrent.port.baud = baud;
    return true;
}

void Receiver::restart() {
    mCurrent = mSaved;
    mActions.push_back(makeAction("", Report::object({{"event", "restart"}})));
    switchSpeed();
    announce();
}

void Receiver::restartNavigation() {
    mActions.push_back(makeAction("", Report::object({{"event", "restart"}})));
    announce();
}

void Receiver::sendCheckResults() {
    for (const CheckResult& result : kCheckResults) {
        std::string payload(result.length, '\0');
        for (const ResultField& field : result.fields)
            writeUnsigned(payload, field.offset, field.width, field.value);
        mActions.push_back(sendFrame(ubxFrame(result.id, payload)));
    }
}

void Receiver::switchSpeed() {
    if (mCurrent.port.baud == mPortBaud) return;
    mPortBaud = mCurrent.port.baud;
    mActions.push_back(makeAction("", Report::object({{"event", "speed"}, {"baud", mPortBaud}})));
    mActions.back().baud = mPortBaud;
}

}  // namespace sim
