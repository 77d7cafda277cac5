#include "Gps/GpsListeners.h"

GpsNmeaListener::~GpsNmeaListener() = default;
void GpsNmeaListener::notifyReceiveNmeaSentence(const char*, unsigned int) {}

GpsParseNmeaListener::~GpsParseNmeaListener() = default;
void GpsParseNmeaListener::notifyParseNmeaSentence(const PARSE_NMEA*) {}
void GpsParseNmeaListener::notifyParseGgaSentence(const GPGGA*) {}
void GpsParseNmeaListener::notifyParseGllSentence(const GPGLL*) {}
void GpsParseNmeaListener::notifyParseGsaSentence(const GPGSA*) {}
void GpsParseNmeaListener::notifyParseGsvSentence(const GPGSV*) {}
void GpsParseNmeaListener::notifyParseRmcSentence(const GPRMC*) {}
void GpsParseNmeaListener::notifyParseVtgSentence(const GPVTG*) {}
void GpsParseNmeaListener::notifyParseZdaSentence(const GPZDA*) {}
void GpsParseNmeaListener::notifyParsePubxSentence(const PUBX*) {}

GpsLocationDataListener::~GpsLocationDataListener() = default;
void GpsLocationDataListener::notifyLocationData(const LOCATION_DATA*) {}
void GpsLocationDataListener::notifyRmcData(const GPRMC*) {}
void GpsLocationDataListener::notifyGgaData(const GPGGA*) {}
void GpsLocationDataListener::notifyPascdData(const PASCD*) {}

GpsVersionListener::~GpsVersionListener() = default;
void GpsVersionListener::notifyGpsVersionInfo(const char*, unsigned int) {}

GpsConnectionListener::~GpsConnectionListener() = default;
void GpsConnectionListener::notifyGpsConnectionStatus(GpsConnectionStatus) {}

GpsSettingListener::~GpsSettingListener() = default;
void GpsSettingListener::notifyGpsSettingRequestResponse(bool, GpsSetting) {}

GpsProductionListener::~GpsProductionListener() = default;
void GpsProductionListener::notyfySwitchGpsProductionModeRequestResponse(bool) {}
void GpsProductionListener::notifyStartGpsProductionCheckResponse(bool) {}
void GpsProductionListener::notyfyGpsColdStartRequestResponse(bool) {}
void GpsProductionListener::notifyReceiveGpsProductionData(const PRODUCTION_DATA*) {}
void GpsProductionListener::notifyReceiveGpsProductionCheckData(const GPS_PRODUCTION_CHECK_DATA*) {}
