#include "Gps/private/Listeners/GpsListenerGates.h"

void ParseNmeaGate::open(Registry& registry, const GPS_PARSE_NMEA_LISTENER_LIST& entry) {
    mpRegistry = &registry;
    mEntry = entry;
}

template <class Record>
void ParseNmeaGate::tell(void (GpsParseNmeaListener::*notify)(const Record*), const Record* record) {
    mpRegistry->callIfRegistered(mEntry, [&] { (callable(mEntry.listener)->*notify)(record); });
}

void ParseNmeaGate::notifyParseNmeaSentence(const PARSE_NMEA* record) {
    tell(&GpsParseNmeaListener::notifyParseNmeaSentence, record);
}

void ParseNmeaGate::notifyParseGgaSentence(const GPGGA* record) {
    tell(&GpsParseNmeaListener::notifyParseGgaSentence, record);
}

void ParseNmeaGate::notifyParseGllSentence(const GPGLL* record) {
    tell(&GpsParseNmeaListener::notifyParseGllSentence, record);
}

void ParseNmeaGate::notifyParseGsaSentence(const GPGSA* record) {
    tell(&GpsParseNmeaListener::notifyParseGsaSentence, record);
}

void ParseNmeaGate::notifyParseGsvSentence(const GPGSV* record) {
    tell(&GpsParseNmeaListener::notifyParseGsvSentence, record);
}

void ParseNmeaGate::notifyParseRmcSentence(const GPRMC* record) {
    tell(&GpsParseNmeaListener::notifyParseRmcSentence, record);
}

void ParseNmeaGate::notifyParseVtgSentence(const GPVTG* record) {
    tell(&GpsParseNmeaListener::notifyParseVtgSentence, record);
}

void ParseNmeaGate::notifyParseZdaSentence(const GPZDA* record) {
    tell(&GpsParseNmeaListener::notifyParseZdaSentence, record);
}

void ParseNmeaGate::notifyParsePubxSentence(const PUBX* record) {
    tell(&GpsParseNmeaListener::notifyParsePubxSentence, record);
}

void ConnectionGate::open(Registry& registry, const GPS_CONNECTION_LISTENER_LIST& entry) {
    mpRegistry = &registry;
    mEntry = entry;
}

void ConnectionGate::notifyGpsConnectionStatus(GpsConnectionStatus status) {
    mpRegistry->callIfRegistered(mEntry, [&] { callable(mEntry.listener)->notifyGpsConnectionStatus(status); });
}
