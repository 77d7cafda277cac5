#ifndef TOOLS_COMMON_RECORD_FIELDS_H
#define TOOLS_COMMON_RECORD_FIELDS_H

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <span>
#include <tuple>
#include <type_traits>

#include "Gps/GpsLocationRecords.h"
#include "Gps/GpsNmeaRecords.h"
#include "Gps/GpsProductionRecords.h"

/**
 * The records as lists of named fields, in declaration order, for printing them in any form.
 *
 * `visitFields(record, visitor)` calls `visitor(name, value)` once for every field. `name` is a `const char*` of static
 * storage; `value` is one of
 * - `long long`: every integer and enumeration field,
 * - `double`,
 * - a nested record, by reference to const: visit it with `visitFields` in turn,
 * - `std::span<const unsigned char>` or a span of records: an array field; of `GPGSV::Sat` the first `SatView` entries,
 *   at most all. `fieldValue(element)` converts an element to one of these values.
 */

template <class Record, class Value>
struct Field {
    const char* name;
    Value Record::*member;
};
template <class Record, class Value>
Field(const char*, Value Record::*) -> Field<Record, Value>;

/** An array of which only the first `count` entries are used. */
template <class Record, class Array, class Count>
struct CountedField {
    const char* name;
    Array Record::*member;
    Count Record::*count;
};
template <class Record, class Array, class Count>
CountedField(const char*, Array Record::*, Count Record::*) -> CountedField<Record, Array, Count>;

/** The fields of one record type, as a tuple of Field and CountedField; specialised for every record below. */
template <class Record>
inline constexpr std::tuple<> kFields;

template <>
inline constexpr std::tuple kFields<GPGGA>{
    Field{"SatType", &GPGGA::SatType},
    Field{"Hour", &GPGGA::Hour},
    Field{"Minute", &GPGGA::Minute},
    Field{"Second", &GPGGA::Second},
    Field{"MilliSecond", &GPGGA::MilliSecond},
    Field{"Lat", &GPGGA::Lat},
    Field{"LatDeg", &GPGGA::LatDeg},
    Field{"LatMin", &GPGGA::LatMin},
    Field{"Lon", &GPGGA::Lon},
    Field{"LonDeg", &GPGGA::LonDeg},
    Field{"LonMin", &GPGGA::LonMin},
    Field{"Quality", &GPGGA::Quality},
    Field{"SatView", &GPGGA::SatView},
    Field{"HDOP", &GPGGA::HDOP},
    Field{"Alt", &GPGGA::Alt},
    Field{"Geo", &GPGGA::Geo},
    Field{"DGPS_Age", &GPGGA::DGPS_Age},
    Field{"DGPS_ID", &GPGGA::DGPS_ID},
};

template <>
inline constexpr std::tuple kFields<GPGLL>{
    Field{"SatType", &GPGLL::SatType},
    Field{"Lat", &GPGLL::Lat},
    Field{"LatDeg", &GPGLL::LatDeg},
    Field{"LatMin", &GPGLL::LatMin},
    Field{"Lon", &GPGLL::Lon},
    Field{"LonDeg", &GPGLL::LonDeg},
    Field{"LonMin", &GPGLL::LonMin},
    Field{"Hour", &GPGLL::Hour},
    Field{"Minute", &GPGLL::Minute},
    Field{"Second", &GPGLL::Second},
    Field{"MilliSecond", &GPGLL::MilliSecond},
    Field{"Status", &GPGLL::Status},
    Field{"Mode", &GPGLL::Mode},
};

template <>
inline constexpr std::tuple kFields<GPGSA>{
    Field{"SatType", &GPGSA::SatType},
    Field{"SentenceNum", &GPGSA::SentenceNum},
    Field{"OperationMode", &GPGSA::OperationMode},
    Field{"FixType", &GPGSA::FixType},
    Field{"SatUsed", &GPGSA::SatUsed},
    Field{"PDOP", &GPGSA::PDOP},
    Field{"HDOP", &GPGSA::HDOP},
    Field{"VDOP", &GPGSA::VDOP},
};

template <>
inline constexpr std::tuple kFields<GPGSV_SATELLITE>{
    Field{"SatID", &GPGSV_SATELLITE::SatID},         Field{"Used", &GPGSV_SATELLITE::Used},
    Field{"Elevation", &GPGSV_SATELLITE::Elevation}, Field{"SNR", &GPGSV_SATELLITE::SNR},
    Field{"Azimuth", &GPGSV_SATELLITE::Azimuth},
};

template <>
inline constexpr std::tuple kFields<GPGSV>{
    Field{"SatType", &GPGSV::SatType},
    Field{"MessageTotal", &GPGSV::MessageTotal},
    Field{"MessageNum", &GPGSV::MessageNum},
    Field{"SatView", &GPGSV::SatView},
    CountedField{"Sat", &GPGSV::Sat, &GPGSV::SatView},
};

template <>
inline constexpr std::tuple kFields<GPRMC>{
    Field{"SatType", &GPRMC::SatType},
    Field{"Hour", &GPRMC::Hour},
    Field{"Minute", &GPRMC::Minute},
    Field{"Second", &GPRMC::Second},
    Field{"MilliSecond", &GPRMC::MilliSecond},
    Field{"Status", &GPRMC::Status},
    Field{"Lat", &GPRMC::Lat},
    Field{"LatDeg", &GPRMC::LatDeg},
    Field{"LatMin", &GPRMC::LatMin},
    Field{"Lon", &GPRMC::Lon},
    Field{"LonDeg", &GPRMC::LonDeg},
    Field{"LonMin", &GPRMC::LonMin},
    Field{"Speed", &GPRMC::Speed},
    Field{"Dir", &GPRMC::Dir},
    Field{"Year", &GPRMC::Year},
    Field{"Month", &GPRMC::Month},
    Field{"Day", &GPRMC::Day},
    Field{"MagDec", &GPRMC::MagDec},
    Field{"Mode", &GPRMC::Mode},
};

template <>
inline constexpr std::tuple kFields<GPVTG>{
    Field{"SatType", &GPVTG::SatType},     Field{"Dir", &GPVTG::Dir},           Field{"MagDir", &GPVTG::MagDir},
    Field{"SpeedKnot", &GPVTG::SpeedKnot}, Field{"SpeedKMH", &GPVTG::SpeedKMH}, Field{"Mode", &GPVTG::Mode},
};

template <>
inline constexpr std::tuple kFields<GPZDA>{
    Field{"SatType", &GPZDA::SatType},
    Field{"Hour", &GPZDA::Hour},
    Field{"Minute", &GPZDA::Minute},
    Field{"Second", &GPZDA::Second},
    Field{"MilliSecond", &GPZDA::MilliSecond},
    Field{"Year", &GPZDA::Year},
    Field{"Month", &GPZDA::Month},
    Field{"Day", &GPZDA::Day},
    Field{"LocalHour", &GPZDA::LocalHour},
    Field{"LocalMinute", &GPZDA::LocalMinute},
};

template <>
inline constexpr std::tuple kFields<PUBX>{
    Field{"MessageID", &PUBX::MessageID},
    Field{"Hour", &PUBX::Hour},
    Field{"Minute", &PUBX::Minute},
    Field{"Second", &PUBX::Second},
    Field{"MilliSecond", &PUBX::MilliSecond},
    Field{"Lat", &PUBX::Lat},
    Field{"LatDeg", &PUBX::LatDeg},
    Field{"LatMin", &PUBX::LatMin},
    Field{"Lon", &PUBX::Lon},
    Field{"LonDeg", &PUBX::LonDeg},
    Field{"LonMin", &PUBX::LonMin},
    Field{"AltRef", &PUBX::AltRef},
    Field{"Status", &PUBX::Status},
    Field{"hacc", &PUBX::hacc},
    Field{"vacc", &PUBX::vacc},
    Field{"Speed", &PUBX::Speed},
    Field{"Dir", &PUBX::Dir},
    Field{"vVel", &PUBX::vVel},
    Field{"DGPS_Age", &PUBX::DGPS_Age},
    Field{"HDOP", &PUBX::HDOP},
    Field{"VDOP", &PUBX::VDOP},
    Field{"TDOP", &PUBX::TDOP},
    Field{"SatView", &PUBX::SatView},
    Field{"DR_MODE", &PUBX::DR_MODE},
};

template <>
inline constexpr std::tuple kFields<PARSE_NMEA>{
    Field{"Gga", &PARSE_NMEA::Gga}, Field{"Gll", &PARSE_NMEA::Gll}, Field{"Gsa", &PARSE_NMEA::Gsa},
    Field{"Gsv", &PARSE_NMEA::Gsv}, Field{"Rmc", &PARSE_NMEA::Rmc}, Field{"Vtg", &PARSE_NMEA::Vtg},
};

template <>
inline constexpr std::tuple kFields<PASCD_SAMPLE>{
    Field{"ValueA", &PASCD_SAMPLE::ValueA},
    Field{"ValueB", &PASCD_SAMPLE::ValueB},
};

template <>
inline constexpr std::tuple kFields<PASCD>{
    Field{"Head1", &PASCD::Head1}, Field{"Head2", &PASCD::Head2}, Field{"Head3", &PASCD::Head3},
    Field{"Head4", &PASCD::Head4}, Field{"Head5", &PASCD::Head5}, Field{"Sample", &PASCD::Sample},
};

template <>
inline constexpr std::tuple kFields<LOCATION_DATA>{
    Field{"Gga", &LOCATION_DATA::Gga},
    Field{"Rmc", &LOCATION_DATA::Rmc},
    Field{"Pascd", &LOCATION_DATA::Pascd},
};

template <>
inline constexpr std::tuple kFields<PRODUCTION_DATA>{
    Field{"ptValue4", &PRODUCTION_DATA::ptValue4},   Field{"ptValue20", &PRODUCTION_DATA::ptValue20},
    Field{"ptValue24", &PRODUCTION_DATA::ptValue24}, Field{"ptValue34", &PRODUCTION_DATA::ptValue34},
    Field{"ptValue36", &PRODUCTION_DATA::ptValue36}, Field{"ptValue40", &PRODUCTION_DATA::ptValue40},
    Field{"ptValue48", &PRODUCTION_DATA::ptValue48}, Field{"ptValue39", &PRODUCTION_DATA::ptValue39},
    Field{"ptValue32", &PRODUCTION_DATA::ptValue32},
};

template <>
inline constexpr std::tuple kFields<GPS_PRODUCTION_CHECK_DATA>{
    Field{"checkValid", &GPS_PRODUCTION_CHECK_DATA::checkValid},
    Field{"pt2Value12", &GPS_PRODUCTION_CHECK_DATA::pt2Value12},
    Field{"pt2Value16", &GPS_PRODUCTION_CHECK_DATA::pt2Value16},
    Field{"pt2Value20", &GPS_PRODUCTION_CHECK_DATA::pt2Value20},
    Field{"pt2FirstEntry0", &GPS_PRODUCTION_CHECK_DATA::pt2FirstEntry0},
    Field{"pt2Entry4", &GPS_PRODUCTION_CHECK_DATA::pt2Entry4},
    Field{"pt2Entry6", &GPS_PRODUCTION_CHECK_DATA::pt2Entry6},
    Field{"pt2Entry24", &GPS_PRODUCTION_CHECK_DATA::pt2Entry24},
    Field{"pt2Entry25", &GPS_PRODUCTION_CHECK_DATA::pt2Entry25},
    Field{"pt2Entry22", &GPS_PRODUCTION_CHECK_DATA::pt2Entry22},
};

/** A record whose fields are described here. */
template <class Type>
concept FieldRecord = (std::tuple_size_v<std::remove_const_t<decltype(kFields<std::remove_cvref_t<Type>>)>> > 0);

template <class Value>
requires std::integral<Value> || std::is_enum_v<Value>
constexpr long long fieldValue(Value value) {
    return static_cast<long long>(value);
}

constexpr double fieldValue(double value) {
    return value;
}

template <FieldRecord Record>
constexpr const Record& fieldValue(const Record& record) {
    return record;
}

template <class Element, std::size_t Size>
constexpr std::span<const Element> fieldValue(const Element (&array)[Size]) {
    return array;
}

template <class Record, class Value, class Visitor>
constexpr void visitField(const Record& record, const Field<Record, Value>& field, Visitor& visitor) {
    visitor(field.name, fieldValue(record.*field.member));
}

template <class Record, class Array, class Count, class Visitor>
constexpr void visitField(const Record& record, const CountedField<Record, Array, Count>& field, Visitor& visitor) {
    const auto all = fieldValue(record.*field.member);
    visitor(field.name, all.first(std::min<std::size_t>(record.*field.count, all.size())));
}

template <FieldRecord Record, class Visitor>
constexpr void visitFields(const Record& record, Visitor&& visitor) {
    std::apply([&](const auto&... field) { (visitField(record, field, visitor), ...); }, kFields<Record>);
}

#endif
