#include <algorithm>
#include <cstdint>
#include <cstring>

#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "Gps/private/NMEA/NumberText.h"
#include "Gps/private/NMEA/SentenceText.h"

using sentence_text::nmeaLog;

namespace sentence_text {

using number_text::isDigit;
using number_text::kPowersOfTen;

namespace {

constexpr struct {
    std::string_view name;
    Kind kind;
} kKinds[] = {{"GGA", Kind::GGA}, {"GLL", Kind::GLL}, {"GSA", Kind::GSA}, {"GSV", Kind::GSV},
              {"RMC", Kind::RMC}, {"VTG", Kind::VTG}, {"ZDA", Kind::ZDA}};

struct Code {
    std::string_view text;
    unsigned int code;
};
constexpr Code kModes[] = {{"A", 1}, {"D", 2}, {"E", 3}};
constexpr Code kOperationModes[] = {{"A", 0}, {"M", 1}};

template <std::size_t count>
unsigned int codeOf(const Code (&codes)[count], std::string_view text, unsigned int otherwise) {
    for (const Code& known : codes) {
        if (known.text == text) return known.code;
    }
    return otherwise;
}

/** A stretch of a field; what lies past its end reads as empty. */
std::string_view part(std::string_view field, std::size_t start, std::size_t length) {
    return start < field.size() ? field.substr(start, length) : std::string_view();
}

/** The end of a line from its last "$" on; empty without one. Most lines have one, which begins them. */
std::string_view fromLastDollar(std::string_view line) {
    std::string_view found;
    for (std::size_t at = line.find('$'); at != std::string_view::npos; at = line.find('$', 1)) {
        line.remove_prefix(at);
        found = line;
    }
    return found;
}

unsigned short shortOf(std::string_view text) {
    if (text.size() == 2 && isDigit(text[0]) && isDigit(text[1])) {
        return static_cast<unsigned short>((text[0] - '0') * 10 + (text[1] - '0'));
    }
    return static_cast<unsigned short>(Token(text).toInteger());
}

}  // namespace

unsigned char exclusiveOr(std::string_view text) {
    std::uint64_t sum = 0;
    while (text.size() >= sizeof(sum)) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data(), sizeof(word));
        sum ^= word;
        text.remove_prefix(sizeof(word));
    }
    sum ^= sum >> 32;
    sum ^= sum >> 16;
    sum ^= sum >> 8;
    for (const char c : text) {
        sum ^= static_cast<unsigned char>(c);
    }
    return static_cast<unsigned char>(sum);
}

bool isCheckSumRight(std::string_view sentence) {
    const std::size_t star = std::min(sentence.find('*', 1), sentence.size());
    if (star + 4 > sentence.size()) return false;
    return number_text::toUnsignedHex(sentence.substr(star + 1, 2)) == exclusiveOr(sentence.substr(1, star - 1));
}

bool takeSentence(const char* data, unsigned int length, Sentence& sentence) {
    const std::string_view head(data, std::min(length, GpsParseNmeaManager::SENTENCE_SIZE));
    const std::size_t stop = std::min(head.find('\n'), head.find('\0'));
    if (stop == std::string_view::npos) return false;
    const std::string_view text = fromLastDollar(head.substr(0, stop));
    if (text.size() < 2 || !isCheckSumRight(text)) return false;
    std::memcpy(sentence.text, text.data(), text.size());
    sentence.text[text.size()] = '\0';
    sentence.length = static_cast<unsigned int>(text.size());
    return true;
}

Kind kindOf(const Sentence& sentence) {
    const std::string_view text(sentence.text, sentence.length);
    for (const auto& known : kKinds) {
        if (text.size() >= 6 && text.substr(3, 3) == known.name) return known.kind;
    }
    return text.starts_with("$PUBX") ? Kind::PUBX : Kind::Other;
}

const char* noField(const char* text) {
    nmeaLog("getNextToken", *text == '\0' ? "GpsParseNmeaManager::getNextToken() lpData = '"
                                          : "GpsParseNmeaManager::getNextToken() Token Error\n");
    return nullptr;
}

bool splitCoordinate(const Token& field, unsigned int degreeDigits, double& value, int& degrees, double& minutes) {
    constexpr std::size_t kMinuteCharacters = 7;
    value = field.toDouble();
    const std::size_t cut = field.text().size() - std::min(field.text().size(), degreeDigits + kMinuteCharacters);
    const number_text::Decimal& decimal = field.decimal();
    if (field.isPlain() && decimal.wholeDigits >= degreeDigits && cut <= decimal.decimals) {
        // The digits of both parts are at hand; those that are cut off all stand behind the point.
        const std::uint64_t scale = kPowersOfTen<std::uint64_t>[decimal.wholeDigits - degreeDigits + decimal.decimals];
        degrees = static_cast<int>(decimal.digits / scale);
        const auto digits = static_cast<std::int64_t>(decimal.digits % scale / kPowersOfTen<std::uint64_t>[cut]);
        minutes = static_cast<double>(digits) / kPowersOfTen<double>[decimal.decimals - cut];
        return true;
    }
    degrees = static_cast<int>(Token(part(field.text(), 0, degreeDigits)).toInteger());
    minutes = Token(part(field.text(), degreeDigits, kMinuteCharacters)).toDouble();
    return true;
}

bool splitDate(const Token& field, unsigned short& year, unsigned short& month, unsigned short& day) {
    day = shortOf(part(field.text(), 0, 2));
    month = shortOf(part(field.text(), 2, 2));
    year = shortOf(part(field.text(), 4, 2));
    return true;
}

bool splitTime(const Token& field, unsigned short* hour, unsigned short* minute, unsigned short* second,
               unsigned short* milliSecond) {
    std::size_t position = 0;
    const auto take = [&](unsigned short* output, std::size_t width, std::size_t step) {
        if (output == nullptr) return;
        *output = shortOf(part(field.text(), position, width));
        position += step;
    };
    take(hour, 2, 2);
    take(minute, 2, 2);
    take(second, 2, 3);  // stepping over the point
    take(milliSecond, 3, 3);
    return true;
}

unsigned int statusCode(std::string_view field) {
    return field.starts_with('A') ? 1 : 0;
}

unsigned int modeCode(std::string_view field) {
    return codeOf(kModes, field.substr(0, 1), 0);
}

unsigned int operationModeCode(std::string_view field) {
    return codeOf(kOperationModes, field.substr(0, 1), 65535);
}

unsigned int navigationStatusCode(std::string_view field) {
    const auto* const known =
        std::find(std::begin(kNavigationStatuses), std::end(kNavigationStatuses), field.substr(0, 2));
    return known != std::end(kNavigationStatuses) ? static_cast<unsigned int>(known - kNavigationStatuses) : 0;
}

}  // namespace sentence_text

bool GpsParseNmeaManager::confirmCheckSum(const char* sentence, unsigned int length) {
    if (sentence == nullptr || length == 0) {
        return nmeaLog.failure("confirmCheckSum", "GpsParseNmeaManager::confirmCheckSum() Argument Error");
    }
    return length >= 2 && sentence_text::isCheckSumRight({sentence, length});
}

const char* GpsParseNmeaManager::getNextToken(const char* cursor, char* token) {
    token[0] = '\0';
    if (cursor == nullptr) {
        nmeaLog("getNextToken", "GpsParseNmeaManager::getNextToken() Argument Error\n");
        return nullptr;
    }
    number_text::Token field;
    const char* const next = sentence_text::readField(cursor, field);
    const std::string_view text = field.text();
    std::memcpy(token, text.data(), text.size());
    token[text.size()] = '\0';
    return next;
}

SatelliteType GpsParseNmeaManager::getSatelliteType(const char* sentence) {
    constexpr char kFunction[] = "getSatelliteType";
    if (sentence == nullptr) {
        nmeaLog(kFunction, "GpsParseNmeaManager::getSatelliteType() Argument Error\n");
        return SATELLITE_TYPE_UNKNOWN;
    }
    if (sentence[0] != '$') {
        nmeaLog(kFunction, "GpsParseNmeaManager::getSatelliteType() Unknown Sat Type_1\n");
        return SATELLITE_TYPE_UNKNOWN;
    }
    if (sentence[1] != 'G') {
        nmeaLog(kFunction, "GpsParseNmeaManager::getSatelliteType() Unknown Sat Type_2\n");
        return SATELLITE_TYPE_UNKNOWN;
    }
    switch (sentence[2]) {
        case 'P':
            return SATELLITE_TYPE_GPS;
        case 'L':
            return SATELLITE_TYPE_GLONASS;
        case 'A':
            return SATELLITE_TYPE_GALILEO;
        case 'N':
            return SATELLITE_TYPE_GNSS;
        default:
            return SATELLITE_TYPE_UNKNOWN;
    }
}

bool GpsParseNmeaManager::parseCoordinate(const char* field, Identifier identifier, double* value, int* degrees,
                                          double* minutes) {
    constexpr char kFunction[] = "parseCoordinate";
    if (field == nullptr) return nmeaLog.failure(kFunction, "GpsParseNmeaManager::parseCoordinate() Argument Error");
    if (*field != '\0' && identifier != IDENTIFIER_LATITUDE && identifier != IDENTIFIER_LONGITUDE) {
        return nmeaLog.failure(kFunction, "GpsParseNmeaManager::parseCoordinate() nIdentifier Error");
    }
    const unsigned int degreeDigits = identifier == IDENTIFIER_LATITUDE ? 2 : 3;
    return sentence_text::splitCoordinate(number_text::Token(field), degreeDigits, *value, *degrees, *minutes);
}

bool GpsParseNmeaManager::divideDate(const char* field, unsigned short* year, unsigned short* month,
                                     unsigned short* day) {
    if (field == nullptr) return nmeaLog.failure("divideDate", "GpsParseNmeaManager::divideDate() Argument Error");
    return sentence_text::splitDate(number_text::Token(field), *year, *month, *day);
}

bool GpsParseNmeaManager::divideTime(const char* field, unsigned short* hour, unsigned short* minute,
                                     unsigned short* second, unsigned short* milliSecond) {
    if (field == nullptr) return nmeaLog.failure("divideTime", "GpsParseNmeaManager::divideTime() Argument Error");
    return sentence_text::splitTime(number_text::Token(field), hour, minute, second, milliSecond);
}

unsigned int GpsParseNmeaManager::convertStatus(const char* field) {
    if (field != nullptr) return sentence_text::statusCode(field);
    nmeaLog("convertStatus", "GpsParseNmeaManager::convertStatus() Argument Error");
    return 0;
}

unsigned int GpsParseNmeaManager::convertMode(const char* field) {
    if (field != nullptr) return sentence_text::modeCode(field);
    nmeaLog("convertMode", "GpsParseNmeaManager::convertMode() Argument Error");
    return 0;
}

unsigned int GpsParseNmeaManager::convertOperationMode(const char* field) {
    if (field != nullptr) return sentence_text::operationModeCode(field);
    nmeaLog("convertOperationMode", "GpsParseNmeaManager::convertOperationMode() Argument Error");
    return 0;
}

unsigned int GpsParseNmeaManager::convertStatusPubx(const char* field) {
    if (field != nullptr) return sentence_text::navigationStatusCode(field);
    nmeaLog("convertStatusPubx", "GpsParseNmeaManager::convertStatusPubx() Argument Error");
    return 0;
}
