#ifndef TESTS_DRIVE_NOTIFICATION_LINES_H
#define TESTS_DRIVE_NOTIFICATION_LINES_H

#include <charconv>
#include <functional>
#include <string>
#include <utility>

#include "Gps/GpsListeners.h"
#include "tools/common/RecordFields.h"

/** Writes a record as "Name=value" fields, nested ones in braces, doubles so that they read back exactly. */
class FieldWriter {
public:
    template <FieldRecord Record>
    static std::string describe(const Record& record) {
        FieldWriter writer;
        visitFields(record, writer);
        return writer.mText;
    }

    template <class Value>
    void operator()(const char* name, const Value& value) {
        mText += ' ';
        mText += name;
        mText += '=';
        write(value);
    }

private:
    void write(long long value) { mText += std::to_string(value); }
    void write(double value) {
        char text[32];
        mText.append(text, std::to_chars(text, text + sizeof(text), value).ptr);
    }
    template <FieldRecord Record>
    void write(const Record& record) {
        mText += '{' + describe(record) + " }";
    }
    template <class Element>
    void write(std::span<const Element> elements) {
        for (const Element& element : elements) {
            write(fieldValue(element));
            mText += ',';
        }
    }

    std::string mText;
};

/** Tells every notification as one line: a tag, the notification's name, and what it was given. */
class LineListener : public GpsNmeaListener,
                     public GpsParseNmeaListener,
                     public GpsLocationDataListener,
                     public GpsVersionListener,
                     public GpsConnectionListener,
                     public GpsSettingListener,
                     public GpsProductionListener {
public:
    using Tell = std::function<void(const std::string& line)>;

    LineListener(std::string tag, Tell tell) : mTag(std::move(tag)), mTell(std::move(tell)) {}

    void notifyReceiveNmeaSentence(const char* sentence, unsigned int length) override {
        const bool isWhole = length > 2 && sentence[length - 2] == '\r' && sentence[length - 1] == '\n';
        line("notifyReceiveNmeaSentence", ' ' + (isWhole ? std::string(sentence, length - 2) : "cut"));
    }
    void notifyParseNmeaSentence(const PARSE_NMEA* record) override { tell("notifyParseNmeaSentence", record); }
    void notifyParseGgaSentence(const GPGGA* record) override { tell("notifyParseGgaSentence", record); }
    void notifyParseGllSentence(const GPGLL* record) override { tell("notifyParseGllSentence", record); }
    void notifyParseGsaSentence(const GPGSA* record) override { tell("notifyParseGsaSentence", record); }
    void notifyParseGsvSentence(const GPGSV* record) override { tell("notifyParseGsvSentence", record); }
    void notifyParseRmcSentence(const GPRMC* record) override { tell("notifyParseRmcSentence", record); }
    void notifyParseVtgSentence(const GPVTG* record) override { tell("notifyParseVtgSentence", record); }
    void notifyParseZdaSentence(const GPZDA* record) override { tell("notifyParseZdaSentence", record); }
    void notifyParsePubxSentence(const PUBX* record) override { tell("notifyParsePubxSentence", record); }
    void notifyLocationData(const LOCATION_DATA* record) override { tell("notifyLocationData", record); }
    void notifyRmcData(const GPRMC* record) override { tell("notifyRmcData", record); }
    void notifyGgaData(const GPGGA* record) override { tell("notifyGgaData", record); }
    void notifyPascdData(const PASCD* record) override { tell("notifyPascdData", record); }
    void notifyGpsVersionInfo(const char* version, unsigned int length) override {
        line("notifyGpsVersionInfo", ' ' + std::to_string(length) + ' ' + version);
    }
    void notifyGpsConnectionStatus(GpsConnectionStatus status) override {
        line("notifyGpsConnectionStatus", ' ' + std::to_string(status));
    }
    void notifyGpsSettingRequestResponse(bool acknowledged, GpsSetting setting) override {
        line("notifyGpsSettingRequestResponse", answer(acknowledged) + ' ' + std::to_string(setting));
    }
    void notyfySwitchGpsProductionModeRequestResponse(bool acknowledged) override {
        line("notyfySwitchGpsProductionModeRequestResponse", answer(acknowledged));
    }
    void notifyStartGpsProductionCheckResponse(bool acknowledged) override {
        line("notifyStartGpsProductionCheckResponse", answer(acknowledged));
    }
    void notyfyGpsColdStartRequestResponse(bool acknowledged) override {
        line("notyfyGpsColdStartRequestResponse", answer(acknowledged));
    }
    void notifyReceiveGpsProductionData(const PRODUCTION_DATA* record) override {
        tell("notifyReceiveGpsProductionData", record);
    }
    void notifyReceiveGpsProductionCheckData(const GPS_PRODUCTION_CHECK_DATA* record) override {
        tell("notifyReceiveGpsProductionCheckData", record);
    }

private:
    static std::string answer(bool acknowledged) { return acknowledged ? " yes" : " no"; }

    template <class Record>
    void tell(const char* event, const Record* record) {
        line(event, FieldWriter::describe(*record));
    }
    void line(const char* event, const std::string& content) { mTell(mTag + ' ' + event + content); }

    std::string mTag;
    Tell mTell;
};

/** A location in which every part tells the same number. */
inline GPS_LOCATION_SYNC_DATA locationOf(int number) {
    GPS_LOCATION_SYNC_DATA location = {};
    location.Gga.Lat = 3500.5 + number;
    location.Gga.Lon = -13944.25;
    location.Gga.SatView = number;
    location.Rmc.Lat = location.Gga.Lat;
    location.Rmc.Lon = location.Gga.Lon;
    location.Rmc.Status = 1;
    location.Pascd.Head2 = 0x100u + static_cast<unsigned int>(number);
    location.Pascd.ValueA[0] = number;
    location.Pascd.ValueB[49] = -number;
    return location;
}

#endif
