#include <cstddef>
#include <cstring>

#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "Gps/private/NMEA/RecordDelivery.h"
#include "Gps/private/NMEA/SentenceText.h"

using sentence_text::Kind;

GpsParseNmeaManager::GpsParseNmeaManager()
    : ggaData{},
      gllData{},
      gsaData{},
      gsvData{},
      rmcData{},
      vtgData{},
      zdaData{},
      pubxData{},
      parseNmeaData{},
      parsedFlags{},
      usedSatCount(0),
      gsvSatCount(0),
      gsaSentenceCount(0),
      touchedSatellites(0),
      isClear(true) {}

GpsParseNmeaManager::~GpsParseNmeaManager() = default;

// The operations that take an array of listeners.

bool GpsParseNmeaManager::parseNmeaSentence(const char* data, unsigned int length,
                                            const GPS_PARSE_NMEA_LISTENER_LIST* listeners, unsigned int count,
                                            GeodeticSystem base, bool settingFinished) {
    return parseNmeaSentence(data, length, Recipients(listeners, count, base, settingFinished));
}

#define PARSE_FOR_ARRAY(operation, Record)                                                                 \
    bool GpsParseNmeaManager::operation(const char* text, const GPS_PARSE_NMEA_LISTENER_LIST* listeners,   \
                                        unsigned int count, Record* record, GeodeticSystem base,           \
                                        bool settingFinished) {                                            \
        sentence_text::Sentence sentence;                                                                  \
        return parse(sentence.assign(text), Recipients(listeners, count, base, settingFinished), *record); \
    }
PARSE_FOR_ARRAY(parseGgaSentence, GPGGA)
PARSE_FOR_ARRAY(parseGllSentence, GPGLL)
PARSE_FOR_ARRAY(parseGsaSentence, GPGSA)
PARSE_FOR_ARRAY(parseGsvSentence, GPGSV)
PARSE_FOR_ARRAY(parseRmcSentence, GPRMC)
PARSE_FOR_ARRAY(parseVtgSentence, GPVTG)
PARSE_FOR_ARRAY(parseZdaSentence, GPZDA)
PARSE_FOR_ARRAY(receiveParsePubxSentence, PUBX)
#undef PARSE_FOR_ARRAY

bool GpsParseNmeaManager::parseNmeaSentence(const char* data, unsigned int length, const Recipients& recipients) {
    if (data == nullptr || length == 0 || recipients.isEmpty()) return false;
    sentence_text::Sentence sentence;
    if (!sentence_text::takeSentence(data, length, sentence)) return false;

    parseKind(sentence, recipients);
    const bool isEpochComplete =
        parsedFlags.gga && parsedFlags.gll && parsedFlags.gsa && parsedFlags.rmc && parsedFlags.vtg;
    return !isEpochComplete || deliverEpoch(recipients);
}

/** Passes a sentence to the parser of its kind and keeps the outcome for the epoch. */
void GpsParseNmeaManager::parseKind(const sentence_text::Sentence& sentence, const Recipients& recipients) {
    switch (sentence_text::kindOf(sentence)) {
        case Kind::GGA:
            parsedFlags.gga = parse(&sentence, recipients, ggaData);
            break;
        case Kind::GLL:
            parsedFlags.gll = parse(&sentence, recipients, gllData);
            break;
        case Kind::GSA:
            parsedFlags.gsa = parse(&sentence, recipients, gsaData);
            break;
        case Kind::GSV:
            parsedFlags.gsv = parse(&sentence, recipients, gsvData);
            break;
        case Kind::RMC:
            clearData();  // an RMC opens a new epoch
            parsedFlags.rmc = parse(&sentence, recipients, rmcData);
            break;
        case Kind::VTG:
            parsedFlags.vtg = parse(&sentence, recipients, vtgData);
            break;
        case Kind::ZDA:
            parse(&sentence, recipients, zdaData);
            break;
        case Kind::PUBX:
            parse(&sentence, recipients, pubxData);
            pubxData = {};
            break;
        case Kind::Other:
            break;
    }
    isClear = false;
}

/** Builds and delivers the aggregate. When the delivery stops, the epoch stays complete and the next sentence tries
 *  again. */
bool GpsParseNmeaManager::deliverEpoch(const Recipients& recipients) {
    if (parsedFlags.gsv) checkGsvStatus(&gsvData, &gsaData);
    parseNmeaData.Gga = ggaData;
    parseNmeaData.Gll = gllData;
    parseNmeaData.Gsa = gsaData;
    std::memcpy(&parseNmeaData.Gsv, &gsvData, touchedSize());
    parseNmeaData.Rmc = rmcData;
    parseNmeaData.Vtg = vtgData;
    const auto convert = [this](PARSE_NMEA& aggregate) {
        return convertTokyoToWgs84ForAllData(&aggregate.Gga, &aggregate.Gll, &aggregate.Rmc);
    };
    if (!deliver(recipients, parseNmeaData, &GpsParseNmeaListener::notifyParseNmeaSentence, convert)) return false;
    clearData();
    return true;
}

void GpsParseNmeaManager::clearData() {
    parsedFlags = {};
    gsaSentenceCount = 0;
    if (isClear) return;
    const auto clear = [](auto&... records) { ((records = {}), ...); };
    clear(ggaData, gllData, gsaData, rmcData, vtgData, zdaData);
    clear(parseNmeaData.Gga, parseNmeaData.Gll, parseNmeaData.Gsa, parseNmeaData.Rmc, parseNmeaData.Vtg);
    for (GPGSV* inView : {&gsvData, &parseNmeaData.Gsv}) {
        std::memset(inView, 0, touchedSize());
    }
    touchedSatellites = 0;
    isClear = true;
}

/** The bytes of a record of satellites in view that may not be zero. */
std::size_t GpsParseNmeaManager::touchedSize() const {
    return offsetof(GPGSV, Sat) + touchedSatellites * sizeof(GPGSV_SATELLITE);
}
