#ifndef GPS_MONITOR_FIELD_TEXT_H
#define GPS_MONITOR_FIELD_TEXT_H

#include <fmt/format.h>

#include <span>
#include <string>

#include "tools/common/RecordFields.h"

namespace monitor {

/**
 * Writes each field of a record as " Name=value", in order. The fields of a nested record have its name and a dot
 * before theirs ("Gga.Lat"), those of an array of records also the index ("Sat.0.SNR"); an array of numbers is one
 * field with commas ("SatUsed=1,2,0"). A double is the shortest text that reads back as the same number.
 */
class FieldText {
public:
    explicit FieldText(std::string& text, std::string prefix = "") : mText(text), mPrefix(std::move(prefix)) {}

    template <class Number>
    requires std::is_arithmetic_v<Number>
    void operator()(const char* name, Number value) { append(name, fmt::format("{}", value)); }

    template <FieldRecord Record>
    void operator()(const char* name, const Record& record) {
        visitFields(record, FieldText(mText, mPrefix + name + "."));
    }

    template <FieldRecord Record>
    void operator()(const char* name, std::span<const Record> records) {
        for (std::size_t i = 0; i < records.size(); ++i)
            visitFields(records[i], FieldText(mText, fmt::format("{}{}.{}.", mPrefix, name, i)));
    }

    void operator()(const char* name, std::span<const unsigned char> values) {
        append(name, fmt::format("{}", fmt::join(values, ",")));
    }

private:
    void append(const char* name, const std::string& value) { mText += ' ' + mPrefix + name + '=' + value; }

    std::string& mText;
    std::string mPrefix;
};

/** All fields of a record, as FieldText writes them. */
template <FieldRecord Record>
std::string fieldText(const Record& record) {
    std::string text;
    visitFields(record, FieldText(text));
    return text;
}

}  // namespace monitor

#endif
