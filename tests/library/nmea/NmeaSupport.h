#ifndef TESTS_LIBRARY_NMEA_NMEA_SUPPORT_H
#define TESTS_LIBRARY_NMEA_NMEA_SUPPORT_H

#include <functional>
#include <ostream>
#include <utility>
#include <vector>

#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "tests/support/AnyListener.h"
#include "tests/support/Messages.h"

constexpr auto kWgs84 = GEODETIC_SYSTEM_WGS84;
constexpr auto kTokyo = GEODETIC_SYSTEM_TOKYO;

/** Keeps what it is told. */
class Recorder : public AnyListener {
public:
    void tell(const std::string& kind, const std::string& record) override { told.emplace_back(kind, record); }

    /** The kinds in the order told, "RMC VTG EPOCH". */
    std::string kinds() const;
    /** The last record of a kind. */
    std::string last(std::string_view kind) const;

    std::vector<std::pair<std::string, std::string>> told;
};

using Registry = std::vector<GPS_PARSE_NMEA_LISTENER_LIST>;

/** Hands a chunk to the dispatcher, in a buffer without a byte to spare. */
bool feed(GpsParseNmeaManager& manager, std::string_view chunk, const Registry& registry, GeodeticSystem base = kWgs84);

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
