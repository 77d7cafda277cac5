#include <algorithm>
#include <bitset>

#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "Gps/private/NMEA/RecordDelivery.h"
#include "Gps/private/NMEA/SentenceFields.h"

// The satellites used and in view: GSA and GSV. They are parsed for listeners only.

using namespace sentence_fields;
using sentence_text::nmeaLog;
using sentence_text::operationModeCode;

namespace {

#define GSA "GpsParseNmeaManager::parseGsaSentence() "
constexpr Frame kGsa = {"parseGsaSentence", GSA "Argument Error\n", GSA "$GPGSA Error\n"};
constexpr Field<GPGSA> kGsaFix[] = {
    {code<&GPGSA::OperationMode, operationModeCode>, GSA "FixType Error\n"},
    {integer<&GPGSA::FixType>, GSA "Mode Error"},
};
constexpr const char* kGsaSatelliteMissing = GSA "SatUsed Error\n";
constexpr Field<GPGSA> kGsaDilution[] = {
    {number<&GPGSA::PDOP>, GSA "PDOP Error"},
    {number<&GPGSA::HDOP>, GSA "HDOP Error"},
    {number<&GPGSA::VDOP>, GSA "VDOP Error"},
};
#undef GSA

#define GSV "GpsParseNmeaManager::parseGsvSentence() "
constexpr Frame kGsv = {"parseGsvSentence", GSV "Argument Error\n", GSV "$GPGSV Error\n"};
constexpr Field<GPGSV> kGsvCycle[] = {
    {unsignedInteger<&GPGSV::MessageTotal>, GSV "Message Error\n"},
    {unsignedInteger<&GPGSV::MessageNum>, GSV "Message Num Error\n"},
    {unsignedInteger<&GPGSV::SatView>, GSV "SatView Error\n"},
};
constexpr Field<GPGSV_SATELLITE> kGsvSatellite[] = {
    {unsignedInteger<&GPGSV_SATELLITE::SatID>, GSV "SatID Error\n"},
    {unsignedInteger<&GPGSV_SATELLITE::Elevation>, GSV "Elevation Error\n"},
    {unsignedInteger<&GPGSV_SATELLITE::Azimuth>, GSV "Azimuth Error\n"},
    {unsignedInteger<&GPGSV_SATELLITE::SNR>, GSV "SNR Error\n"},
};
constexpr const char* kGsvTooMany = GSV " over GPS_MAX_SATELLITE_RECEIVE_NUM\n";
constexpr const char* kGsvIndexOver = GSV "Index Over!\n";
constexpr unsigned int kSatellitesPerMessage = 4;
#undef GSV

}  // namespace

bool GpsParseNmeaManager::parse(const Sentence* sentence, const Recipients& recipients, GPGSA& record) {
    Fields fields;
    if (!beginForListeners(kGsa, sentence, recipients, fields, record)) return false;
    if (!readAll<kGsaFix>(kGsa.function, fields, record)) return false;
    for (unsigned char& used : record.SatUsed) {
        Token field;
        if (!fields.next(field)) return nmeaLog.failure(kGsa.function, kGsaSatelliteMissing);
        used = static_cast<unsigned char>(field.toInteger());
        ++usedSatCount;
    }
    if (!readAll<kGsaDilution>(kGsa.function, fields, record)) return false;
    record.SentenceNum = ++gsaSentenceCount;
    return deliver(recipients, record, &GpsParseNmeaListener::notifyParseGsaSentence);
}

bool GpsParseNmeaManager::parse(const Sentence* sentence, const Recipients& recipients, GPGSV& record) {
    Fields fields;
    if (!beginForListeners(kGsv, sentence, recipients, fields, record)) return false;
    if (!readAll<kGsvCycle>(kGsv.function, fields, record)) return false;
    if (record.MessageNum == 1) gsvSatCount = 0;  // the cycle before may have lost its last message
    if (record.SatView > GPS_MAX_SATELLITE_RECEIVE_NUM) {
        gsvSatCount = 0;
        return nmeaLog.failure(kGsv.function, kGsvTooMany);
    }
    if (!readSatellites(fields, record)) return false;
    if (record.MessageNum != record.MessageTotal) return true;
    if (!deliver(recipients, record, &GpsParseNmeaListener::notifyParseGsvSentence)) return false;
    gsvSatCount = 0;
    return true;
}

/** Reads the satellites of one GSV message into their entries of the record. */
bool GpsParseNmeaManager::readSatellites(Fields fields, GPGSV& record) {
    const bool isLastMessage = record.MessageNum == record.MessageTotal;
    for (unsigned int block = 1; block <= kSatellitesPerMessage && record.SatView > gsvSatCount; ++block) {
        const unsigned int index = kSatellitesPerMessage * (record.MessageNum - 1) + (block - 1);
        if (index >= GPS_MAX_SATELLITE_RECEIVE_NUM) return nmeaLog.failure(kGsv.function, kGsvIndexOver);
        touchedSatellites = std::max(touchedSatellites, index + 1);
        if (!readAll<kGsvSatellite>(kGsv.function, fields, record.Sat[index])) return false;
        if (isLastMessage && block == record.SatView % kSatellitesPerMessage) return true;
        ++gsvSatCount;
    }
    return true;
}

void GpsParseNmeaManager::checkGsvStatus(GPGSV* gsv, const GPGSA* gsa) {
    static constexpr char kFunction[] = "checkGsvStatus";
    if (gsv == nullptr || gsa == nullptr) {
        nmeaLog(kFunction, "GpsParseNmeaManager::checkGsvStatus() Argument Error");
        return;
    }
    if (gsv->SatView >= GPS_MAX_SATELLITE_RECEIVE_NUM) {
        nmeaLog(kFunction, "GpsParseNmeaManager::checkGsvStatus() SatNum Over!\n");
        return;
    }
    std::bitset<256> isUsed;
    for (unsigned int i = 0; i < usedSatCount && i < std::size(gsa->SatUsed); ++i) {
        isUsed[gsa->SatUsed[i]] = true;
    }
    touchedSatellites = std::max(touchedSatellites, gsv->SatView);
    for (unsigned int i = 0; i < gsv->SatView && usedSatCount != 0; ++i) {
        gsv->Sat[i].Used = isUsed[gsv->Sat[i].SatID];
    }
    usedSatCount = 0;
}
