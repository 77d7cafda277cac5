#ifndef GPS_DECODE_LISTENERS_H
#define GPS_DECODE_LISTENERS_H

#include <functional>
#include <utility>

#include "tools/gps-decode/Event.h"

namespace decode {

/** The four listeners in one: makes an event of every notification. Answers to requests do not occur in a capture. */
class Listeners : public GpsNmeaListener,
                  public GpsParseNmeaListener,
                  public GpsConnectionListener,
                  public GpsProductionListener {
public:
    using Sink = std::function<void(const char* name, Event::Content content)>;

    explicit Listeners(Sink sink) : mTell(std::move(sink)) {}

    void notifyReceiveNmeaSentence(const char* sentence, unsigned int length) override {
        mTell("notifyReceiveNmeaSentence", std::string_view(sentence, length));
    }

    void notifyParseNmeaSentence(const PARSE_NMEA* record) override { mTell("notifyParseNmeaSentence", record); }
    void notifyParseGgaSentence(const GPGGA* record) override { mTell("notifyParseGgaSentence", record); }
    void notifyParseGllSentence(const GPGLL* record) override { mTell("notifyParseGllSentence", record); }
    void notifyParseGsaSentence(const GPGSA* record) override { mTell("notifyParseGsaSentence", record); }
    void notifyParseGsvSentence(const GPGSV* record) override { mTell("notifyParseGsvSentence", record); }
    void notifyParseRmcSentence(const GPRMC* record) override { mTell("notifyParseRmcSentence", record); }
    void notifyParseVtgSentence(const GPVTG* record) override { mTell("notifyParseVtgSentence", record); }
    void notifyParseZdaSentence(const GPZDA* record) override { mTell("notifyParseZdaSentence", record); }
    void notifyParsePubxSentence(const PUBX* record) override { mTell("notifyParsePubxSentence", record); }

    void notifyGpsConnectionStatus(GpsConnectionStatus status) override { mTell("notifyGpsConnectionStatus", status); }

    void notifyReceiveGpsProductionData(const PRODUCTION_DATA* record) override {
        mTell("notifyReceiveGpsProductionData", record);
    }
    void notifyReceiveGpsProductionCheckData(const GPS_PRODUCTION_CHECK_DATA* record) override {
        mTell("notifyReceiveGpsProductionCheckData", record);
    }

private:
    Sink mTell;
};

}  // namespace decode

#endif
