#ifndef TESTS_SUPPORT_ANY_LISTENER_H
#define TESTS_SUPPORT_ANY_LISTENER_H

#include <charconv>
#include <string>

#include "Gps/GpsListeners.h"
#include "tools/common/RecordFields.h"

/** A record's fields that differ from zero, as NAME=VALUE; doubles with as many digits as they need. */
template <FieldRecord Record>
std::string fields(const Record& record);

inline std::string textOf(long long value) {
    return std::to_string(value);
}
inline std::string textOf(double value) {
    char text[32];
    return {text, std::to_chars(text, text + sizeof(text), value).ptr};
}
template <FieldRecord Record>
std::string textOf(const Record& record) {
    return "{" + fields(record) + "}";
}
/** All elements up to the last that differs from zero. */
template <class Element>
std::string textOf(std::span<Element> elements) {
    std::string text;
    std::size_t end = 0;
    for (const auto& element : elements) {
        const std::string shown = textOf(fieldValue(element));
        text += (text.empty() ? "" : ",") + shown;
        if (shown != "0" && shown != "{}") end = text.size();
    }
    return text.substr(0, end);
}
template <FieldRecord Record>
std::string fields(const Record& record) {
    std::string text;
    visitFields(record, [&](const char* name, const auto& value) {
        const std::string shown = textOf(value);
        if (shown.empty() || shown == "0" || shown == "{}") return;
        text += (text.empty() ? "" : " ") + std::string(name) + "=" + shown;
    });
    return text;
}

/** A listener of every kind. `notified` receives every notification in one form: its subject, and its contents as text.
 */
class AnyListener : public GpsNmeaListener,
                    public GpsParseNmeaListener,
                    public GpsLocationDataListener,
                    public GpsVersionListener,
                    public GpsConnectionListener,
                    public GpsSettingListener,
                    public GpsProductionListener {
public:
    virtual void notified(const std::string& what, const std::string& text) = 0;

    void notifyReceiveNmeaSentence(const char* data, unsigned int length) override { notified("raw", {data, length}); }
    void notifyParseNmeaSentence(const PARSE_NMEA* record) override { notified("EPOCH", fields(*record)); }
    void notifyParseGgaSentence(const GPGGA* record) override { notified("GGA", fields(*record)); }
    void notifyParseGllSentence(const GPGLL* record) override { notified("GLL", fields(*record)); }
    void notifyParseGsaSentence(const GPGSA* record) override { notified("GSA", fields(*record)); }
    void notifyParseGsvSentence(const GPGSV* record) override { notified("GSV", fields(*record)); }
    void notifyParseRmcSentence(const GPRMC* record) override { notified("RMC", fields(*record)); }
    void notifyParseVtgSentence(const GPVTG* record) override { notified("VTG", fields(*record)); }
    void notifyParseZdaSentence(const GPZDA* record) override { notified("ZDA", fields(*record)); }
    void notifyParsePubxSentence(const PUBX* record) override { notified("PUBX", fields(*record)); }
    void notifyLocationData(const LOCATION_DATA* record) override { notified("location", fields(*record)); }
    void notifyRmcData(const GPRMC* record) override { notified("location's RMC", fields(*record)); }
    void notifyGgaData(const GPGGA* record) override { notified("location's GGA", fields(*record)); }
    void notifyPascdData(const PASCD* record) override { notified("location's PASCD", fields(*record)); }
    void notifyGpsVersionInfo(const char* version, unsigned int length) override {
        notified("version", {version, length});
    }
    void notifyGpsConnectionStatus(GpsConnectionStatus status) override { notified("antenna", std::to_string(status)); }
    void notifyGpsSettingRequestResponse(bool acknowledged, GpsSetting setting) override {
        notified("setting", std::to_string(setting) + " " + answer(acknowledged));
    }
    void notyfySwitchGpsProductionModeRequestResponse(bool acknowledged) override {
        notified("mode", answer(acknowledged));
    }
    void notifyStartGpsProductionCheckResponse(bool acknowledged) override { notified("check", answer(acknowledged)); }
    void notyfyGpsColdStartRequestResponse(bool acknowledged) override { notified("cold start", answer(acknowledged)); }
    void notifyReceiveGpsProductionData(const PRODUCTION_DATA* record) override { notified("MonPt", fields(*record)); }
    void notifyReceiveGpsProductionCheckData(const GPS_PRODUCTION_CHECK_DATA* record) override {
        notified("MonPt2", fields(*record));
    }

private:
    static std::string answer(bool acknowledged) { return acknowledged ? "yes" : "no"; }
};

/** The operations that the facade and the controller have alike. */
template <class Service>
struct Kind {
    const char* name;
    bool (*add)(Service&, const AnyListener*);
    bool (*remove)(Service&, const AnyListener*);
};

template <class Service>
struct Request {
    const char* name;
    bool (*call)(Service&);
};

#define KIND(name, ...)                                                                                  \
    {                                                                                                    \
#name, [](Service& s, const AnyListener* l) { return s.registerGps##name##Listener(l __VA_ARGS__); },  \
            [](Service& s, const AnyListener* l) { return s.unRegisterGps##name##Listener(l); } \
    }
#define REQUEST(name, ...)                                     \
    {                                                          \
#name, [](Service & s) { return s.name(__VA_ARGS__); } \
    }

template <class Service>
constexpr Kind<Service> kKinds[] = {KIND(Nmea, , GEODETIC_SYSTEM_WGS84),
                                    KIND(ParseNmea, , GEODETIC_SYSTEM_WGS84),
                                    KIND(LocationData),
                                    KIND(Version),
                                    KIND(Connection),
                                    KIND(Setting),
                                    KIND(Production)};

template <class Service>
constexpr Request<Service> kRequests[] = {REQUEST(requestGpsVersionInfo),
                                          REQUEST(requestGpsSetting, GPS_SETTING_ZDA_ON),
                                          REQUEST(requestSwitchGpsProductionMode),
                                          REQUEST(requestStartGpsProductionCheck),
                                          REQUEST(requestFinishGpsProductionCheck),
                                          REQUEST(requestGpsReset),
                                          REQUEST(requestGpsColdStart)};

#undef KIND
#undef REQUEST

#endif
