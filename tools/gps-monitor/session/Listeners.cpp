#include "tools/gps-monitor/session/Listeners.h"

#include "tools/common/Text.h"
#include "tools/gps-monitor/model/NmeaPosition.h"
#include "tools/gps-monitor/session/FieldText.h"

namespace monitor {

namespace {

constexpr auto kNoChange = [](MonitorState&) {};

}  // namespace

void watchFix(Model& model, PlainWriter* writer) {
    std::optional<std::string> event;
    model.update([&](MonitorState& state) { event = updateFix(state, Clock::now()); });
    if (event && writer != nullptr) writer->line(*event);
}

template <class Change>
void Listeners::handle(Notification notification, const std::string& text, Change change) {
    if (mWriter != nullptr) mWriter->line(std::string(notification.name()) + text);
    mModel.update([&](MonitorState& state) {
        ++state.counts[notification.index()];
        change(state);
    });
}

template <class Record, class Change>
void Listeners::handleRecord(Notification notification, const Record& record, Change change) {
    handle(notification, mWriter != nullptr ? fieldText(record) : std::string(), change);
}

void Listeners::notifyReceiveNmeaSentence(const char* sentence, unsigned int length) {
    const std::string_view bytes(sentence, length);
    const std::string text = tool::printable(tool::withoutLineEnd(bytes));
    mRecorder.write(bytes);
    handle("notifyReceiveNmeaSentence", fmt::format(" {} {}", length, text), [&](MonitorState& state) {
        state.lastSentence = Clock::now();
        addRawSentence(state, {std::chrono::system_clock::now(), text});
    });
}

void Listeners::notifyParseNmeaSentence(const PARSE_NMEA* record) {
    handleRecord("notifyParseNmeaSentence", *record, kNoChange);
}

void Listeners::notifyParseGgaSentence(const GPGGA* record) {
    handleRecord("notifyParseGgaSentence", *record, [&](MonitorState& state) { apply(state, *record, Clock::now()); });
    watchFix(mModel, mWriter);
}

void Listeners::notifyParseGllSentence(const GPGLL* record) {
    handleRecord("notifyParseGllSentence", *record, kNoChange);
}

void Listeners::notifyParseGsaSentence(const GPGSA* record) {
    handleRecord("notifyParseGsaSentence", *record, [&](MonitorState& state) {
        state.gsa = {Clock::now(), *record};
        state.satellites.apply(*record);
    });
}

void Listeners::notifyParseGsvSentence(const GPGSV* record) {
    handleRecord("notifyParseGsvSentence", *record,
                 [&](MonitorState& state) { state.satellites.apply(*record, Clock::now()); });
}

void Listeners::notifyParseRmcSentence(const GPRMC* record) {
    handleRecord("notifyParseRmcSentence", *record, [&](MonitorState& state) { apply(state, *record, Clock::now()); });
    watchFix(mModel, mWriter);
}

void Listeners::notifyParseVtgSentence(const GPVTG* record) {
    handleRecord("notifyParseVtgSentence", *record, kNoChange);
}

void Listeners::notifyParseZdaSentence(const GPZDA* record) {
    handleRecord("notifyParseZdaSentence", *record, [&](MonitorState& state) { state.zda = {Clock::now(), *record}; });
}

void Listeners::notifyParsePubxSentence(const PUBX* record) {
    handleRecord("notifyParsePubxSentence", *record, [&](MonitorState& state) {
        state.pubx = {Clock::now(), *record};
    });
}

void Listeners::notifyLocationData(const LOCATION_DATA* record) {
    handleRecord("notifyLocationData", *record, [&](MonitorState& state) { state.location = {Clock::now(), *record}; });
}

void Listeners::notifyRmcData(const GPRMC* record) {
    handleRecord("notifyRmcData", *record, kNoChange);
}

void Listeners::notifyGgaData(const GPGGA* record) {
    handleRecord("notifyGgaData", *record, kNoChange);
}

void Listeners::notifyPascdData(const PASCD* record) {
    handleRecord("notifyPascdData", *record, kNoChange);
}

void Listeners::notifyGpsVersionInfo(const char* version, unsigned int length) {
    const std::string_view field(version, length);
    const std::string text = tool::printable(field.substr(0, field.find('\0')));
    handle("notifyGpsVersionInfo", fmt::format(" {} {}", length, text), [&](MonitorState& state) {
        state.version = text;
        settleRequest(state, kRequestVersion, Answer::answered);
    });
}

void Listeners::notifyGpsConnectionStatus(GpsConnectionStatus status) {
    handle("notifyGpsConnectionStatus", ' ' + connectionStatusName(status),
           [status](MonitorState& state) { state.antenna = status; });
}

void Listeners::handleAnswer(Notification notification, bool acknowledged, std::string_view request,
                             const std::string& subject) {
    handle(notification, (acknowledged ? " acknowledged" : " refused") + subject, [&](MonitorState& state) {
        settleRequest(state, request, acknowledged ? Answer::acknowledged : Answer::refused);
    });
}

void Listeners::notifyGpsSettingRequestResponse(bool acknowledged, GpsSetting setting) {
    const std::string name = settingName(setting);
    handleAnswer("notifyGpsSettingRequestResponse", acknowledged, name, ' ' + name);
}

void Listeners::notyfySwitchGpsProductionModeRequestResponse(bool acknowledged) {
    handleAnswer("notyfySwitchGpsProductionModeRequestResponse", acknowledged, kSwitchProductionMode);
}

void Listeners::notifyStartGpsProductionCheckResponse(bool acknowledged) {
    handleAnswer("notifyStartGpsProductionCheckResponse", acknowledged, kStartProductionCheck);
}

void Listeners::notyfyGpsColdStartRequestResponse(bool acknowledged) {
    handleAnswer("notyfyGpsColdStartRequestResponse", acknowledged, kColdStart);
}

// The results of the check are shown in the log.
template <class Record>
void Listeners::handleCheckResult(Notification notification, const Record& record) {
    const std::string text = fieldText(record);
    handle(notification, text,
           [&](MonitorState& state) { addLog(state, std::string(notification.name()) + text, std::time(nullptr)); });
}

void Listeners::notifyReceiveGpsProductionData(const PRODUCTION_DATA* record) {
    handleCheckResult("notifyReceiveGpsProductionData", *record);
}

void Listeners::notifyReceiveGpsProductionCheckData(const GPS_PRODUCTION_CHECK_DATA* record) {
    handleCheckResult("notifyReceiveGpsProductionCheckData", *record);
}

void OtherDatumListener::notifyReceiveNmeaSentence(const char* sentence, unsigned int length) {
    const auto position = ggaPosition(std::string_view(sentence, length));
    mModel.update([&](MonitorState& state) {
        state.lastSentence = Clock::now();
        if (position) state.otherPosition = {Clock::now(), *position};
    });
}

}  // namespace monitor
