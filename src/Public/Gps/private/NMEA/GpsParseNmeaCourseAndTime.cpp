#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "Gps/private/NMEA/RecordDelivery.h"
#include "Gps/private/NMEA/SentenceFields.h"

// Course and speed, time and date: VTG and ZDA. They are parsed for listeners only.

using namespace sentence_fields;
using sentence_text::modeCode;

namespace {

#define VTG "GpsParseNmeaManager::parseVtgSentence() "
constexpr Frame kVtg = {"parseVtgSentence", VTG "Argument Error", VTG "$GPVTG Error"};
constexpr Field<GPVTG> kVtgFields[] = {
    {number<&GPVTG::Dir>, VTG "Dir Error"},
    {skip, VTG "T [True course] Error"},
    {number<&GPVTG::MagDir>, VTG "MagDir Error"},
    {skip, VTG "M [Magnetic course] Error"},
    {number<&GPVTG::SpeedKnot>, VTG "SpeedKnot Error"},
    {skip, VTG "N [knot] Error"},
    {number<&GPVTG::SpeedKMH>, VTG "SpeedKMH Error"},
    {skip, VTG "K [km/h] Error"},
    {code<&GPVTG::Mode, modeCode>, VTG "Mode Error"},
};
#undef VTG

#define ZDA "GpsParseNmeaManager::parseZdaSentence() "
constexpr Frame kZda = {"parseZdaSentence", ZDA "Argument Error", ZDA "$GPZDA Error"};
constexpr Field<GPZDA> kZdaFields[] = {
    {time, ZDA "UTC Error", ZDA ": divideTime() = false"},
    {integer<&GPZDA::Day>, ZDA "UTC(Date) Error", ZDA "divideDate() = false"},
    {integer<&GPZDA::Month>, ZDA "UTC(Date) Error", ZDA "divideDate() = false"},
    {integer<&GPZDA::Year>, ZDA "UTC(Date) Error", ZDA "divideDate() = false"},
    {integer<&GPZDA::LocalHour>, ZDA "Local Time Error", ZDA "divideTime() = false [Local]"},
    {integer<&GPZDA::LocalMinute>, ZDA "Local Time Error", ZDA "divideTime() = false [Local]"},
};
#undef ZDA

}  // namespace

bool GpsParseNmeaManager::parse(const Sentence* sentence, const Recipients& recipients, GPVTG& record) {
    Fields fields;
    return beginForListeners(kVtg, sentence, recipients, fields, record) &&
           readAll<kVtgFields>(kVtg.function, fields, record) &&
           deliver(recipients, record, &GpsParseNmeaListener::notifyParseVtgSentence);
}

bool GpsParseNmeaManager::parse(const Sentence* sentence, const Recipients& recipients, GPZDA& record) {
    Fields fields;
    return beginForListeners(kZda, sentence, recipients, fields, record) &&
           readAll<kZdaFields>(kZda.function, fields, record) &&
           deliver(recipients, record, &GpsParseNmeaListener::notifyParseZdaSentence);
}
