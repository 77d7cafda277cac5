#include <cstddef>
#include <cstring>

#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "Gps/private/NMEA/RecordDelivery.h"
#include "Gps/private/NMEA/SentenceText.h"

using sentence_text::Kind;

GpsParseNmeaManager::GpsParseNmeaManager() = default;
GpsParseNmeaManager::~GpsParseNmeaManager() = default;

// The operations that take an array of listeners.

bool GpsParseNmeaManager::parseNmeaSentence(const char* data, unsigned int length,
                                            const GPS_PARSE_NMEA_LISTENER_LIST* listeners, unsigned int count,
                                            GeodeticSystem base, bool settingFinished) {
    return parseNmeaSentence(data, length, Recipients(listeners, count, base, settingFinished));
}

#define PARSE_FOR_ARRAY(operation, RecordPointer)                                                                \
    bool GpsParseNmeaManager::operation(const char* text, const GPS_PARSE_NMEA_LISTENER_LIST* listeners,         \
                                        unsigned int count, RecordPointer record, GeodeticSystem base,           \
                                        bool settingFinished) {                                                  \
        const sentence_text::Sentence sentence(text);                                                            \
        return parse(text != nullptr ? &sentence : nullptr, Recipients(listeners, count, base, settingFinished), \
                     *record);                                                                                   \
    }
PARSE_FOR_ARRAY(parseGgaSentence, GPGGA*)
PARSE_FOR_ARRAY(parseGllSentence, GPGLL*)
PARSE_FOR_ARRAY(parseGsaSentence, GPGSA*)
PARSE_FOR_ARRAY(parseGsvSentence, GPGSV*)
PARSE_FOR_ARRAY(parseRmcSentence, GPRMC*)
PARSE_FOR_ARRAY(parseVtgSentence, GPVTG*)
PARSE_FOR_ARRAY(parseZdaSentence, GPZDA*)
PARSE_FOR_ARRAY(receiveParsePubxSentence, PUBX*)
#undef PARSE_FOR_ARRAY

bool GpsParseNmeaManager::parseNmeaSentence(const char* data, unsigned int length, const Recipients& recipients) {
    if (data == nullptr || recipients.isEmpty()) return false;
    sentence_text::Sentence sentence;
    if (!sentence_text::takeSentence(data, length, sentence)) return false;

    parseKind(sentence, recipients);
    isClear = false;
    const bool isEpochComplete =
        parsedFlags.gga && parsedFlags.gll && parsedFlags.gsa && parsedFlags.rmc && parsedFlags.vtg;
    return !isEpochComplete || deliverEpoch(recipients);
}

/** Passes a sentence to the parser of its kind and keeps the outcome for the epoch. */
void GpsParseNmeaManager::parseKind(const sentence_text::Sentence& sentence, const Recipients& recipients) {
    const auto keep = [&](bool& flag, auto& record) { flag = parse(&sentence, recipients, record); };
    bool isParsed = false;
    switch (sentence_text::kindOf(sentence)) {
        case Kind::GGA:
            return keep(parsedFlags.gga, ggaData);
        case Kind::GLL:
            return keep(parsedFlags.gll, gllData);
        case Kind::GSA:
            return keep(parsedFlags.gsa, gsaData);
        case Kind::GSV:
            return keep(parsedFlags.gsv, gsvData);
        case Kind::RMC:
            clearData();  // an RMC begins a new epoch
            return keep(parsedFlags.rmc, rmcData);
        case Kind::VTG:
            return keep(parsedFlags.vtg, vtgData);
        case Kind::ZDA:
            return keep(isParsed, zdaData);
        case Kind::PUBX:
            keep(isParsed, pubxData);
            pubxData = {};
            return;
        case Kind::Other:
            return;
    }
}

/** Builds and delivers the aggregate. When that fails, the epoch stays complete, and the next sentence tries again. */
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
