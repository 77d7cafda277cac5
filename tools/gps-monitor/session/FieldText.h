#ifndef GPS_MONITOR_TEXT_H
#define GPS_MONITOR_TEXT_H

#include <string>
#include <string_view>

#include "tools/common/RecordFields.h"

namespace monitor {

// Numbers are written with a decimal point whatever the locale of the process.

/** The shortest text that reads back as the same number. */
std::string shortest(double value);
/** With that many decimals. */
std::string fixed(double value, int decimals);
/** Filled up with zeros to `width` digits. */
std::string zeroPadded(long long value, unsigned width);

/** Printable ASCII as it is; a backslash and all other bytes as \xNN. */
std::string printable(std::string_view bytes);

/** Without the line feeds and carriage returns at its end. */
std::string_view withoutLineEnd(std::string_view text);

/**
 * Writes a record's fields as " Name=value" each, in order. The fields of a nested record have its name and a dot
 * before theirs ("Gga.Lat"), those of an array of records also the index ("Sat.0.SNR"); an array of numbers is one
 * field with commas ("SatUsed=1,2,0").
 */
class FieldText {
public:
    explicit FieldText(std::string& text, std::string prefix = "") : mText(text), mPrefix(std::move(prefix)) {}

    void operator()(const char* name, long long value) { append(name, std::to_string(value)); }
    void operator()(const char* name, double value) { append(name, shortest(value)); }

    template <FieldRecord Record>
    void operator()(const char* name, const Record& record) {
        visitFields(record, FieldText(mText, mPrefix + name + "."));
    }

    template <FieldRecord Record>
    void operator()(const char* name, std::span<const Record> records) {
        for (std::size_t i = 0; i < records.size(); ++i)
            visitFields(records[i], FieldText(mText, mPrefix + name + "." + std::to_string(i) + "."));
    }

    void operator()(const char* name, std::span<const unsigned char> values);

private:
    void append(const char* name, std::string_view value);

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
