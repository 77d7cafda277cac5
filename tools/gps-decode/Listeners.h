#ifndef GPS_DECODE_LISTENERS_H
#define GPS_DECODE_LISTENERS_H

#include <functional>
#include <utility>

#include "tools/gps-decode/Event.h"

namespace decode {

/** One object as all four listeners; notifications go to the sink. A capture has no answers to requests. */
class Listeners : public GpsNmeaListener,
                  public GpsParseNmeaListener,
                  public GpsConnectionListener,
                  public GpsProductionListener {
public:
    using Sink = std::function<void(const char* name, Event::Content content)>;

    explicit Listeners(Sink sink) : mSink(std::move(sink)) {}

    void notifyReceiveNmeaSentence(const char* sentence, unsigned int length) override {
        mSink("notifyReceiveNmeaSentence", std::string_view(sentence, length));
    }

    void notifyParseNmeaSentence(const PARSE_NMEA* record) override { mSink("notifyParseNmeaSentence", record); }
    void notifyParseGgaSentence(const GPGGA* record) override { mSink("notifyParseGgaSentence", record); }
    void notifyParseGllSentence(const GPGLL* record) override { mSink("notifyParseGllSentence", record); }
    void notifyParseGsaSentence(const GPGSA* record) override { mSink("notifyParseGsaSentence", record); }
    void notifyParseGsvSentence(const GPGSV* record) override { mSink("notifyParseGsvSentence", record); }
    void notifyParseRmcSentence(const GPRMC* record) override { mSink("notifyParseRmcSentence", record); }
    void notifyParseVtgSentence(const GPVTG* record) override { mSink("notifyParseVtgSentence", record); }
    void notifyParseZdaSentence(const GPZDA* record) override { mSink("notifyParseZdaSentence", record); }
    void notifyParsePubxSentence(const PUBX* record) override { mSink("notifyParsePubxSentence", record); }

    void notifyGpsConnectionStatus(GpsConnectionStatus status) override { mSink("notifyGpsConnectionStatus", status); }

    void notifyReceiveGpsProductionData(const PRODUCTION_DATA* record) override {
        mSink("notifyReceiveGpsProductionData", record);
    }
    void notifyReceiveGpsProductionCheckData(const GPS_PRODUCTION_CHECK_DATA* record) override {
        mSink("notifyReceiveGpsProductionCheckData", record);
    }

private:
    Sink mSink;
};

}  // namespace decode

#endif
