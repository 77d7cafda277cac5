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
 * The records as lists of named fields, in the order of declaration.
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

#define FIELD(Record, member) (Field{#member, &Record::member})

template <>
inline constexpr std::tuple kFields<GPGGA>{FIELD(GPGGA, SatType), FIELD(GPGGA, Hour),        FIELD(GPGGA, Minute),
                                           FIELD(GPGGA, Second),  FIELD(GPGGA, MilliSecond), FIELD(GPGGA, Lat),
                                           FIELD(GPGGA, LatDeg),  FIELD(GPGGA, LatMin),      FIELD(GPGGA, Lon),
                                           FIELD(GPGGA, LonDeg),  FIELD(GPGGA, LonMin),      FIELD(GPGGA, Quality),
                                           FIELD(GPGGA, SatView), FIELD(GPGGA, HDOP),        FIELD(GPGGA, Alt),
                                           FIELD(GPGGA, Geo),     FIELD(GPGGA, DGPS_Age),    FIELD(GPGGA, DGPS_ID)};

template <>
inline constexpr std::tuple kFields<GPGLL>{
    FIELD(GPGLL, SatType),     FIELD(GPGLL, Lat),    FIELD(GPGLL, LatDeg), FIELD(GPGLL, LatMin), FIELD(GPGLL, Lon),
    FIELD(GPGLL, LonDeg),      FIELD(GPGLL, LonMin), FIELD(GPGLL, Hour),   FIELD(GPGLL, Minute), FIELD(GPGLL, Second),
    FIELD(GPGLL, MilliSecond), FIELD(GPGLL, Status), FIELD(GPGLL, Mode)};

template <>
inline constexpr std::tuple kFields<GPGSA>{
    FIELD(GPGSA, SatType), FIELD(GPGSA, SentenceNum), FIELD(GPGSA, OperationMode), FIELD(GPGSA, FixType),
    FIELD(GPGSA, SatUsed), FIELD(GPGSA, PDOP),        FIELD(GPGSA, HDOP),          FIELD(GPGSA, VDOP)};

template <>
inline constexpr std::tuple kFields<GPGSV_SATELLITE>{FIELD(GPGSV_SATELLITE, SatID), FIELD(GPGSV_SATELLITE, Used),
                                                     FIELD(GPGSV_SATELLITE, Elevation), FIELD(GPGSV_SATELLITE, SNR),
                                                     FIELD(GPGSV_SATELLITE, Azimuth)};

template <>
inline constexpr std::tuple kFields<GPGSV>{FIELD(GPGSV, SatType), FIELD(GPGSV, MessageTotal), FIELD(GPGSV, MessageNum),
                                           FIELD(GPGSV, SatView), CountedField{"Sat", &GPGSV::Sat, &GPGSV::SatView}};

template <>
inline constexpr std::tuple kFields<GPRMC>{
    FIELD(GPRMC, SatType), FIELD(GPRMC, Hour),   FIELD(GPRMC, Minute), FIELD(GPRMC, Second), FIELD(GPRMC, MilliSecond),
    FIELD(GPRMC, Status),  FIELD(GPRMC, Lat),    FIELD(GPRMC, LatDeg), FIELD(GPRMC, LatMin), FIELD(GPRMC, Lon),
    FIELD(GPRMC, LonDeg),  FIELD(GPRMC, LonMin), FIELD(GPRMC, Speed),  FIELD(GPRMC, Dir),    FIELD(GPRMC, Year),
    FIELD(GPRMC, Month),   FIELD(GPRMC, Day),    FIELD(GPRMC, MagDec), FIELD(GPRMC, Mode)};

template <>
inline constexpr std::tuple kFields<GPVTG>{FIELD(GPVTG, SatType),   FIELD(GPVTG, Dir),      FIELD(GPVTG, MagDir),
                                           FIELD(GPVTG, SpeedKnot), FIELD(GPVTG, SpeedKMH), FIELD(GPVTG, Mode)};

template <>
inline constexpr std::tuple kFields<GPZDA>{FIELD(GPZDA, SatType),    FIELD(GPZDA, Hour),        FIELD(GPZDA, Minute),
                                           FIELD(GPZDA, Second),     FIELD(GPZDA, MilliSecond), FIELD(GPZDA, Year),
                                           FIELD(GPZDA, Month),      FIELD(GPZDA, Day),         FIELD(GPZDA, LocalHour),
                                           FIELD(GPZDA, LocalMinute)};

template <>
inline constexpr std::tuple kFields<PUBX>{
    FIELD(PUBX, MessageID), FIELD(PUBX, Hour),   FIELD(PUBX, Minute),  FIELD(PUBX, Second),   FIELD(PUBX, MilliSecond),
    FIELD(PUBX, Lat),       FIELD(PUBX, LatDeg), FIELD(PUBX, LatMin),  FIELD(PUBX, Lon),      FIELD(PUBX, LonDeg),
    FIELD(PUBX, LonMin),    FIELD(PUBX, AltRef), FIELD(PUBX, Status),  FIELD(PUBX, hacc),     FIELD(PUBX, vacc),
    FIELD(PUBX, Speed),     FIELD(PUBX, Dir),    FIELD(PUBX, vVel),    FIELD(PUBX, DGPS_Age), FIELD(PUBX, HDOP),
    FIELD(PUBX, VDOP),      FIELD(PUBX, TDOP),   FIELD(PUBX, SatView), FIELD(PUBX, DR_MODE)};

template <>
inline constexpr std::tuple kFields<PARSE_NMEA>{FIELD(PARSE_NMEA, Gga), FIELD(PARSE_NMEA, Gll), FIELD(PARSE_NMEA, Gsa),
                                                FIELD(PARSE_NMEA, Gsv), FIELD(PARSE_NMEA, Rmc), FIELD(PARSE_NMEA, Vtg)};

template <>
inline constexpr std::tuple kFields<PASCD_SAMPLE>{FIELD(PASCD_SAMPLE, ValueA), FIELD(PASCD_SAMPLE, ValueB)};

template <>
inline constexpr std::tuple kFields<PASCD>{FIELD(PASCD, Head1), FIELD(PASCD, Head2), FIELD(PASCD, Head3),
                                           FIELD(PASCD, Head4), FIELD(PASCD, Head5), FIELD(PASCD, Sample)};

template <>
inline constexpr std::tuple kFields<LOCATION_DATA>{FIELD(LOCATION_DATA, Gga), FIELD(LOCATION_DATA, Rmc),
                                                   FIELD(LOCATION_DATA, Pascd)};

template <>
inline constexpr std::tuple kFields<PRODUCTION_DATA>{
    FIELD(PRODUCTION_DATA, ptValue4),  FIELD(PRODUCTION_DATA, ptValue20), FIELD(PRODUCTION_DATA, ptValue24),
    FIELD(PRODUCTION_DATA, ptValue34), FIELD(PRODUCTION_DATA, ptValue36), FIELD(PRODUCTION_DATA, ptValue40),
    FIELD(PRODUCTION_DATA, ptValue48), FIELD(PRODUCTION_DATA, ptValue39), FIELD(PRODUCTION_DATA, ptValue32)};

template <>
inline constexpr std::tuple kFields<GPS_PRODUCTION_CHECK_DATA>{
    FIELD(GPS_PRODUCTION_CHECK_DATA, checkValid),     FIELD(GPS_PRODUCTION_CHECK_DATA, pt2Value12),
    FIELD(GPS_PRODUCTION_CHECK_DATA, pt2Value16),     FIELD(GPS_PRODUCTION_CHECK_DATA, pt2Value20),
    FIELD(GPS_PRODUCTION_CHECK_DATA, pt2FirstEntry0), FIELD(GPS_PRODUCTION_CHECK_DATA, pt2Entry4),
    FIELD(GPS_PRODUCTION_CHECK_DATA, pt2Entry6),      FIELD(GPS_PRODUCTION_CHECK_DATA, pt2Entry24),
    FIELD(GPS_PRODUCTION_CHECK_DATA, pt2Entry25),     FIELD(GPS_PRODUCTION_CHECK_DATA, pt2Entry22)};

#undef FIELD

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
