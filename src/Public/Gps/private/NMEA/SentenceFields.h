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

/** Field lists of sentences as data: where each field is stored, and what is logged when it is missing. */
namespace sentence_fields {

using number_text::Token;
using sentence_text::Fields;
using sentence_text::Sentence;

/** One field of a sentence that is read into `Record`. */
template <class Record>
struct Field {
    bool (*store)(const Token& field, Record& record);
    const char* missing;
    const char* unreadable = "";  // logged when the field's text cannot be split; only fields of several parts
};

// Values of Field::store. Numbers are cast to the type of the record's field.

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
bool unsignedInteger(const Token& field, Record& record) {
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
    sentence_text::splitPairs(field, record.Hour, record.Minute, record.Second);
    record.MilliSecond = static_cast<unsigned short>(field.part(7, 3).toInteger());  // after the point
    return true;
}

template <class Record>
bool date(const Token& field, Record& record) {
    sentence_text::splitPairs(field, record.Day, record.Month, record.Year);
    return true;
}

template <class Record>
bool latitude(const Token& field, Record& record) {
    return sentence_text::splitCoordinate(field, 2, record.Lat, record.LatDeg, record.LatMin);
}

template <class Record>
bool longitude(const Token& field, Record& record) {
    return sentence_text::splitCoordinate(field, 3, record.Lon, record.LonDeg, record.LonMin);
}

/** A field that begins with `letter` negates earlier fields. */
template <char letter, auto... members, class Record>
bool negates(const Token& field, Record& record) {
    if (field.text().starts_with(letter)) ((record.*members = -(record.*members)), ...);
    return true;
}

/** Reads the next field and stores it. False, with the message logged, when it is missing. */
template <class Record>
[[gnu::always_inline]] inline bool read(const Field<Record>& row, const char* function, Fields& fields,
                                        Record& record) {
    Token field;
    if (!fields.next(field)) [[unlikely]]
        return sentence_text::nmeaLog.failure(function, row.missing);
    if (!row.store(field, record)) return sentence_text::nmeaLog.failure(function, row.unreadable);
    return true;
}

/** Reads a list of fields in order; fields before a missing one stay in the record. */
template <const auto& rows, class Record>
bool readAll(const char* function, Fields& fields, Record& record) {
    return [&]<std::size_t... index>(std::index_sequence<index...>) {
        return (read(rows[index], function, fields, record) && ...);
    }
    (std::make_index_sequence<std::size(rows)>{});
}

/** What is logged about a sentence as a whole. */
struct Frame {
    const char* function;
    const char* argumentError;
    const char* addressError;
};

/** Reads a sentence's address and talker. False, with a message logged, without a sentence or an address. */
template <class Record>
bool begin(const Frame& frame, const Sentence* sentence, Fields& fields, Record& record) {
    if (sentence == nullptr) return sentence_text::nmeaLog.failure(frame.function, frame.argumentError);
    fields = Fields(*sentence);
    Token address;
    if (!fields.next(address)) return sentence_text::nmeaLog.failure(frame.function, frame.addressError);
    if constexpr (requires { record.SatType; }) record.SatType = sentence_text::satelliteType(sentence->text);
    return true;
}

/** The same, but also false without recipients. */
template <class Record>
bool beginForListeners(const Frame& frame, const Sentence* sentence, const Recipients& recipients, Fields& fields,
                       Record& record) {
    return begin(frame, recipients.isEmpty() ? nullptr : sentence, fields, record);
}

}  // namespace sentence_fields

#endif
