#ifndef TESTS_LIBRARY_NMEA_NMEA_SUPPORT_H
#define TESTS_LIBRARY_NMEA_NMEA_SUPPORT_H

#include <charconv>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "tools/common/RecordFields.h"

/** "$", the body, "*", its checksum, CR and LF. */
std::string sentence(std::string_view body);

/** A record's values in the order of its fields; doubles with as many digits as they need, records in brackets. */
template <FieldRecord Record>
std::string fields(const Record& record);

inline std::string textOf(long long value) {
    return std::to_string(value);
}
inline std::string textOf(double value) {
    char text[32];
    return {text, std::to_chars(text, text + sizeof(text), value).ptr};
}
template <FieldRecord Record>
std::string textOf(const Record& record) {
    return "[" + fields(record) + "]";
}
template <class Element>
std::string textOf(std::span<Element> elements) {
    std::string text;
    for (const auto& element : elements)
        text += (text.empty() ? "" : " ") + textOf(fieldValue(element));
    return text;
}
template <FieldRecord Record>
std::string fields(const Record& record) {
    std::string text;
    visitFields(record, [&](const char*, const auto& value) { text += (text.empty() ? "" : " ") + textOf(value); });
    return text;
}

/** Keeps what it is told. */
class Recorder : public GpsParseNmeaListener {
public:
    struct Notification {
        std::string kind, record;
    };
    std::vector<Notification> told;

    /** The kinds in the order told, "RMC VTG EPOCH". */
    std::string kinds() const;
    /** The last record of a kind. */
    std::string last(std::string_view kind) const;

    void notifyParseNmeaSentence(const PARSE_NMEA* record) override { told.push_back({"EPOCH", fields(*record)}); }
    void notifyParseGgaSentence(const GPGGA* record) override { told.push_back({"GGA", fields(*record)}); }
    void notifyParseGllSentence(const GPGLL* record) override { told.push_back({"GLL", fields(*record)}); }
    void notifyParseGsaSentence(const GPGSA* record) override { told.push_back({"GSA", fields(*record)}); }
    void notifyParseGsvSentence(const GPGSV* record) override { told.push_back({"GSV", fields(*record)}); }
    void notifyParseRmcSentence(const GPRMC* record) override { told.push_back({"RMC", fields(*record)}); }
    void notifyParseVtgSentence(const GPVTG* record) override { told.push_back({"VTG", fields(*record)}); }
    void notifyParseZdaSentence(const GPZDA* record) override { told.push_back({"ZDA", fields(*record)}); }
    void notifyParsePubxSentence(const PUBX* record) override { told.push_back({"PUBX", fields(*record)}); }
};

using Registry = std::vector<GPS_PARSE_NMEA_LISTENER_LIST>;

/** Hands a chunk to the dispatcher, in a buffer without a byte to spare. */
bool feed(GpsParseNmeaManager& manager, std::string_view chunk, const Registry& registry,
          GeodeticSystem base = GEODETIC_SYSTEM_WGS84);

struct Rewritten {
    bool result;
    std::string text;
};
/** What a listener of WGS84 gets for a chunk of a receiver that reports Tokyo. Refusals must leave the outputs alone.
 */
Rewritten rewrite(std::string_view chunk);

struct Parsed {
    bool result;
    std::string record;  ///< after the call
    std::string wgs84;   ///< the same, its position converted from Tokyo
};

/** One kind of sentence, its parser and a sentence that uses all of the record. */
struct SentenceKind {
    std::string name;
    bool needsListeners;
    std::string function;
    std::string prefix;   ///< of its messages
    std::string missing;  ///< messages: for no sentence, then for each field that may be missing, the address first
    std::string body;
    std::string record;  ///< what the body is read as
    std::function<Parsed(GpsParseNmeaManager&, const char*, const Registry&, GeodeticSystem, bool)> parse;
};
const std::vector<SentenceKind>& sentenceKinds();
inline void PrintTo(const SentenceKind& kind, std::ostream* out) {
    *out << kind.name;
}

#endif
