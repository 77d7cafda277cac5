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
      gsaSentenceCount(0) {}

GpsParseNmeaManager::~GpsParseNmeaManager() = default;

bool GpsParseNmeaManager::parseNmeaSentence(const char* data, unsigned int length,
                                            const GPS_PARSE_NMEA_LISTENER_LIST* listeners, unsigned int count,
                                            GeodeticSystem base, bool settingFinished) {
    const Recipients recipients = {listeners, count, base, settingFinished};
    if (data == nullptr || length == 0 || recipients.isEmpty()) return false;
    sentence_text::Sentence sentence;
    if (!sentence_text::takeSentence(data, length, sentence)) return false;

    parseKind(sentence, recipients);
    const bool isEpochComplete =
        parsedFlags.gga && parsedFlags.gll && parsedFlags.gsa && parsedFlags.rmc && parsedFlags.vtg;
    return !isEpochComplete || deliverEpoch(recipients);
}

/** Hands a sentence to the parser of its kind and keeps the outcome for the epoch. */
void GpsParseNmeaManager::parseKind(const sentence_text::Sentence& sentence, const Recipients& to) {
    const auto parse = [&](auto parser, auto& record) {
        return (this->*parser)(sentence.text, to.listeners, to.count, &record, to.base, to.settingFinished);
    };
    switch (sentence_text::kindOf(sentence)) {
        case Kind::GGA:
            parsedFlags.gga = parse(&GpsParseNmeaManager::parseGgaSentence, ggaData);
            break;
        case Kind::GLL:
            parsedFlags.gll = parse(&GpsParseNmeaManager::parseGllSentence, gllData);
            break;
        case Kind::GSA:
            parsedFlags.gsa = parse(&GpsParseNmeaManager::parseGsaSentence, gsaData);
            break;
        case Kind::GSV:
            parsedFlags.gsv = parse(&GpsParseNmeaManager::parseGsvSentence, gsvData);
            break;
        case Kind::RMC:
            clearData();  // an RMC opens a new epoch
            parsedFlags.rmc = parse(&GpsParseNmeaManager::parseRmcSentence, rmcData);
            break;
        case Kind::VTG:
            parsedFlags.vtg = parse(&GpsParseNmeaManager::parseVtgSentence, vtgData);
            break;
        case Kind::ZDA:
            parse(&GpsParseNmeaManager::parseZdaSentence, zdaData);
            break;
        case Kind::PUBX:
            parse(&GpsParseNmeaManager::receiveParsePubxSentence, pubxData);
            pubxData = {};
            break;
        case Kind::Other:
            break;
    }
}

/** Builds and delivers the aggregate. When the delivery stops, the epoch stays complete and the next sentence tries
 *  again. */
bool GpsParseNmeaManager::deliverEpoch(const Recipients& recipients) {
    if (parsedFlags.gsv) checkGsvStatus(&gsvData, &gsaData);
    parseNmeaData = {ggaData, gllData, gsaData, gsvData, rmcData, vtgData};
    const auto convert = [this](PARSE_NMEA& aggregate) {
        return convertTokyoToWgs84ForAllData(&aggregate.Gga, &aggregate.Gll, &aggregate.Rmc);
    };
    if (!deliver(recipients, &parseNmeaData, &GpsParseNmeaListener::notifyParseNmeaSentence, convert)) return false;
    clearData();
    return true;
}

void GpsParseNmeaManager::clearData() {
    ggaData = {};
    gllData = {};
    gsaData = {};
    gsvData = {};
    rmcData = {};
    vtgData = {};
    zdaData = {};
    parseNmeaData = {};
    parsedFlags = {};
    gsaSentenceCount = 0;
}
