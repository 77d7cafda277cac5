#include "tools/gps-monitor/session/Listeners.h"

#include "tools/gps-monitor/model/NmeaPosition.h"
#include "tools/gps-monitor/view/Text.h"

namespace monitor {

namespace {

constexpr auto kNoChange = [](MonitorState&) {};

}  // namespace

template <class Change>
void Listeners::told(Notification notification, const std::string& text, Change change) {
    if (mWriter != nullptr) mWriter->line(std::string(notification.name()) + text);
    mModel.update([&](MonitorState& state) {
        ++state.counts[notification.index()];
        change(state);
    });
}

template <class Record, class Change>
void Listeners::toldRecord(Notification notification, const Record& record, Change change) {
    told(notification, mWriter != nullptr ? fieldText(record) : std::string(), change);
}

void Listeners::notifyReceiveNmeaSentence(const char* sentence, unsigned int length) {
    const std::string_view bytes = withoutLineEnd(std::string_view(sentence, length));
    told("notifyReceiveNmeaSentence", ' ' + std::to_string(length) + ' ' + printable(bytes),
         [](MonitorState& state) { state.lastSentence = Clock::now(); });
}

void Listeners::notifyParseNmeaSentence(const PARSE_NMEA* record) {
    toldRecord("notifyParseNmeaSentence", *record, kNoChange);
}

void Listeners::notifyParseGgaSentence(const GPGGA* record) {
    toldRecord("notifyParseGgaSentence", *record, [&](MonitorState& state) { state.gga = *record; });
}

void Listeners::notifyParseGllSentence(const GPGLL* record) {
    toldRecord("notifyParseGllSentence", *record, kNoChange);
}

void Listeners::notifyParseGsaSentence(const GPGSA* record) {
    toldRecord("notifyParseGsaSentence", *record, [&](MonitorState& state) { apply(state, *record); });
}

void Listeners::notifyParseGsvSentence(const GPGSV* record) {
    toldRecord("notifyParseGsvSentence", *record, [&](MonitorState& state) { apply(state, *record, Clock::now()); });
}

void Listeners::notifyParseRmcSentence(const GPRMC* record) {
    toldRecord("notifyParseRmcSentence", *record, [&](MonitorState& state) { state.rmc = *record; });
}

void Listeners::notifyParseVtgSentence(const GPVTG* record) {
    toldRecord("notifyParseVtgSentence", *record, [&](MonitorState& state) { state.vtg = *record; });
}

void Listeners::notifyParseZdaSentence(const GPZDA* record) {
    toldRecord("notifyParseZdaSentence", *record, [&](MonitorState& state) { state.zda = *record; });
}

void Listeners::notifyParsePubxSentence(const PUBX* record) {
    toldRecord("notifyParsePubxSentence", *record, [&](MonitorState& state) { state.pubx = *record; });
}

void Listeners::notifyLocationData(const LOCATION_DATA* record) {
    toldRecord("notifyLocationData", *record, [&](MonitorState& state) {
        state.location = Timed<LOCATION_DATA>{Clock::now(), *record};
    });
}

void Listeners::notifyRmcData(const GPRMC* record) {
    toldRecord("notifyRmcData", *record, kNoChange);
}

void Listeners::notifyGgaData(const GPGGA* record) {
    toldRecord("notifyGgaData", *record, kNoChange);
}

void Listeners::notifyPascdData(const PASCD* record) {
    toldRecord("notifyPascdData", *record, kNoChange);
}

void Listeners::notifyGpsVersionInfo(const char* version, unsigned int length) {
    const std::string_view field(version, length);
    const std::string text = printable(field.substr(0, field.find('\0')));
    told("notifyGpsVersionInfo", ' ' + std::to_string(length) + ' ' + text,
         [&](MonitorState& state) { state.version = text; });
}

void Listeners::notifyGpsConnectionStatus(GpsConnectionStatus status) {
    told("notifyGpsConnectionStatus", ' ' + connectionStatusName(status),
         [status](MonitorState& state) { state.antenna = status; });
}

void Listeners::toldAnswer(Notification notification, bool acknowledged, std::string_view request,
                           const std::string& subject) {
    told(notification, (acknowledged ? " acknowledged" : " refused") + subject, [&](MonitorState& state) {
        settleRequest(state, request, acknowledged ? Answer::acknowledged : Answer::refused);
    });
}

void Listeners::notifyGpsSettingRequestResponse(bool acknowledged, GpsSetting setting) {
    const std::string name = settingName(setting);
    toldAnswer("notifyGpsSettingRequestResponse", acknowledged, name, ' ' + name);
}

void Listeners::notyfySwitchGpsProductionModeRequestResponse(bool acknowledged) {
    toldAnswer("notyfySwitchGpsProductionModeRequestResponse", acknowledged, kSwitchProductionMode);
}

void Listeners::notifyStartGpsProductionCheckResponse(bool acknowledged) {
    toldAnswer("notifyStartGpsProductionCheckResponse", acknowledged, kStartProductionCheck);
}

void Listeners::notyfyGpsColdStartRequestResponse(bool acknowledged) {
    toldAnswer("notyfyGpsColdStartRequestResponse", acknowledged, kColdStart);
}

// What the check finds is shown among the log lines.
template <class Record>
void Listeners::toldCheckResult(Notification notification, const Record& record) {
    const std::string text = fieldText(record);
    told(notification, text, [&](MonitorState& state) { addLog(state, std::string(notification.name()) + text); });
}

void Listeners::notifyReceiveGpsProductionData(const PRODUCTION_DATA* record) {
    toldCheckResult("notifyReceiveGpsProductionData", *record);
}

void Listeners::notifyReceiveGpsProductionCheckData(const GPS_PRODUCTION_CHECK_DATA* record) {
    toldCheckResult("notifyReceiveGpsProductionCheckData", *record);
}

void OtherDatumListener::notifyReceiveNmeaSentence(const char* sentence, unsigned int length) {
    const auto position = ggaPosition(std::string_view(sentence, length));
    mModel.update([&](MonitorState& state) {
        state.lastSentence = Clock::now();
        if (position) state.otherPosition = Timed<Position>{Clock::now(), *position};
    });
}

}  // namespace monitor
