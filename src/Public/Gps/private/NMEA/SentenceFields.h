#ifndef GPS_PRIVATE_NMEA_SENTENCE_FIELDS_H
#define GPS_PRIVATE_NMEA_SENTENCE_FIELDS_H

#include <cstddef>
#include <iterator>
#include <string_view>
#include <type_traits>
#include <utility>

#include "Gps/private/NMEA/NumberText.h"
#include "Gps/private/NMEA/RecordDelivery.h"
#include "Gps/private/NMEA/SentenceText.h"

/** Field lists of sentences as data: each row says where a field goes and what is said when the field is missing. */
namespace sentence_fields {

using number_text::Token;

/** One field of a sentence that is read into `Record`. */
template <class Record>
struct Field {
    bool (*store)(const Token& field, Record& record);
    const char* missing;
    const char* unreadable = "";  // said when the field's text cannot be split; only fields of several parts
};

// What a row may do with its field. All numbers are narrowed to the record's field as a cast does.

template <class Record>
bool skip(const Token&, Record&) {
    return true;
}

template <auto member, class Record>
bool integer(const Token& field, Record& record) {
    using Value = std::remove_reference_t<decltype(record.*member)>;
    record.*member = static_cast<Value>(field.toInteger());
    return true;
}

template <auto member, class Record>
bool natural(const Token& field, Record& record) {
    using Value = std::remove_reference_t<decltype(record.*member)>;
    record.*member = static_cast<Value>(field.toUnsigned());
    return true;
}

template <auto member, class Record>
bool number(const Token& field, Record& record) {
    record.*member = field.toDouble();
    return true;
}

template <auto member, auto codeOf, class Record>
bool code(const Token& field, Record& record) {
    record.*member = codeOf(field.text());
    return true;
}

template <class Record>
bool time(const Token& field, Record& record) {
    return sentence_text::splitTime(field, &record.Hour, &record.Minute, &record.Second, &record.MilliSecond);
}

template <class Record>
bool date(const Token& field, Record& record) {
    return sentence_text::splitDate(field, record.Year, record.Month, record.Day);
}

template <class Record>
bool latitude(const Token& field, Record& record) {
    return sentence_text::splitCoordinate(field, 2, record.Lat, record.LatDeg, record.LatMin);
}

template <class Record>
bool longitude(const Token& field, Record& record) {
    return sentence_text::splitCoordinate(field, 3, record.Lon, record.LonDeg, record.LonMin);
}

template <class Record>
bool northSouth(const Token& field, Record& record) {
    if (!field.text().starts_with('S')) return true;
    record.Lat = -record.Lat;
    record.LatDeg = -record.LatDeg;
    return true;
}

template <class Record>
bool eastWest(const Token& field, Record& record) {
    if (!field.text().starts_with('W')) return true;
    record.Lon = -record.Lon;
    record.LonDeg = -record.LonDeg;
    return true;
}

/** "W" makes an earlier field negative. */
template <auto member, class Record>
bool westNegates(const Token& field, Record& record) {
    if (field.text().starts_with('W')) record.*member = -(record.*member);
    return true;
}

/** Reads one field at the cursor and stores it; moves the cursor. False, with the message logged, when it is missing.*/
template <class Record>
[[gnu::always_inline]] inline bool read(const Field<Record>& field, const char* function, const char*& cursor,
                                        Record& record) {
    Token text;
    cursor = sentence_text::readField(cursor, text);
    if (cursor == nullptr) [[unlikely]]
        return sentence_text::nmeaLog.failure(function, field.missing);
    if (!field.store(text, record)) return sentence_text::nmeaLog.failure(function, field.unreadable);
    return true;
}

/** Reads a list of fields in order; what was read before a missing one stays in the record. */
template <const auto& fields, class Record>
bool readAll(const char* function, const char*& cursor, Record& record) {
    return [&]<std::size_t... index>(std::index_sequence<index...>) {
        return (read(fields[index], function, cursor, record) && ...);
    }
    (std::make_index_sequence<std::size(fields)>{});
}

/** What is said about a sentence as a whole. */
struct Frame {
    const char* function;
    const char* argumentError;
    const char* addressError;
};

/** Reads the address field of a terminated sentence; null, with the message logged, when it is missing. */
inline const char* readAddress(const Frame& frame, const char* sentence) {
    Token address;
    const char* const cursor = sentence_text::readField(sentence, address);
    if (cursor == nullptr) sentence_text::nmeaLog(frame.function, frame.addressError);
    return cursor;
}

/** Begins a record that is read for listeners only. Null when there is nothing to read or no listener. */
template <class Record>
const char* beginForListeners(GpsParseNmeaManager& manager, const Frame& frame, const char* sentence,
                              const Recipients& recipients, Record& record) {
    if (sentence == nullptr || recipients.isEmpty()) {
        sentence_text::nmeaLog(frame.function, frame.argumentError);
        return nullptr;
    }
    const char* const cursor = readAddress(frame, sentence);
    if (cursor != nullptr) record.SatType = manager.getSatelliteType(sentence);
    return cursor;
}

}  // namespace sentence_fields

#endif
