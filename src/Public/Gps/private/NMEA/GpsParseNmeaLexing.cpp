#include <algorithm>
#include <cstdint>
#include <cstring>

#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "Gps/private/NMEA/NumberText.h"
#include "Gps/private/NMEA/SentenceText.h"

using sentence_text::nmeaLog;
using sentence_text::Sentence;

namespace sentence_text {

using number_text::digitsAt;
using number_text::kPowersOfTen;
using number_text::nonDigits;
using number_text::ratio;
using number_text::repeatedByte;
using number_text::valueOf;
using number_text::wordAt;

namespace {

/** The index of a field's first character in `letters`; `otherwise` if it is not there. */
unsigned int letterCode(std::string_view field, std::string_view letters, unsigned int otherwise) {
    const char letter = field.empty() ? '\0' : field.front();
    for (std::size_t i = 0; i != letters.size(); ++i) {
        if (letters[i] == letter) return static_cast<unsigned int>(i);
    }
    return otherwise;
}

/**
 * Takes a sentence that fills its chunk and has no character below "," between "$" and "*". Computes the checksum and
 * finds the commas eight characters at a time.
 */
bool takePlainSentence(const char* data, unsigned int length, Sentence& sentence) {
    constexpr unsigned int kEnding = 5;  // "*", the checksum, CR and LF
    constexpr unsigned int kStep = 8;
    if (length < 1 + kStep + kEnding || length > GpsParseNmeaManager::kSentenceSize || data[0] != '$') return false;
    const unsigned int star = length - kEnding;
    if (data[star] != '*' || data[length - 2] != '\r' || data[length - 1] != '\n') return false;

    const char* const body = data + 1;
    const unsigned int size = star - 1;
    std::uint64_t sum = 0;
    std::uint64_t odd = 0;
    std::uint64_t commas[2] = {};
    const auto take = [&](unsigned int start, std::uint64_t text, std::uint64_t present) {
        const std::uint64_t found = ~(text + repeatedByte<std::uint64_t>(0x80 - '-')) & present;
        sum ^= text;
        odd |= (text | ~(text + repeatedByte<std::uint64_t>(0x80 - ','))) & present;
        commas[start / 64] |= (found * 0x0002040810204081 >> 56) << start % 64;
    };
    unsigned int start = 0;
    for (; start + kStep < size; start += kStep) {
        take(start, wordAt<std::uint64_t>(body + start), repeatedByte<std::uint64_t>(0x80));
    }
    const unsigned int taken = 8 * (start + kStep - size);  // bits of the last word that have been taken
    take(start, wordAt<std::uint64_t>(body + size - kStep) >> taken, repeatedByte<std::uint64_t>(0x80) >> taken);
    sum ^= sum >> 32;
    sum ^= sum >> 16;
    sum ^= sum >> 8;
    static constexpr char kDigits[] = "0123456789ABCDEF";
    if (odd != 0 || data[star + 1] != kDigits[sum >> 4 & 0xF] || data[star + 2] != kDigits[sum & 0xF]) return false;

    std::memcpy(sentence.text, data, length);
    sentence.text[length - 1] = '\0';
    sentence.length = length - 1;
    sentence.separators[0] = commas[0] << 1;
    sentence.separators[1] = commas[1] << 1 | commas[0] >> 63;
    sentence.separators[star / 64] |= std::uint64_t{1} << star % 64;
    return true;
}

}  // namespace

void Sentence::assign(std::string_view from) {
    length = from.copy(text, kMaxLength);
    text[length] = '\0';
    for (std::size_t i = 0; i != length; ++i) {
        if (text[i] == ',' || text[i] == '*') separators[i / 64] |= std::uint64_t{1} << i % 64;
    }
}

unsigned char checkSumOf(std::string_view text) {
    unsigned char sum = 0;
    for (const char c : text) {
        sum ^= static_cast<unsigned char>(c);
    }
    return sum;
}

bool isCheckSumRight(std::string_view sentence) {
    const std::size_t star = std::min(sentence.find('*', 1), sentence.size());
    if (star + 4 > sentence.size()) return false;
    return number_text::toUnsignedHexSlowly(sentence.substr(star + 1, 2)) == checkSumOf(sentence.substr(1, star - 1));
}

bool takeSentence(const char* data, unsigned int length, Sentence& sentence) {
    if (takePlainSentence(data, length, sentence)) return true;
    std::string_view line(data, std::min(length, GpsParseNmeaManager::kSentenceSize));
    const std::size_t stop = line.find_first_of(std::string_view("\n\0", 2));
    if (stop == std::string_view::npos) return false;
    line = line.substr(0, stop);
    const std::string_view text = line.substr(std::min(line.rfind('$'), stop));
    if (!isCheckSumRight(text)) return false;
    sentence.assign(text);
    return true;
}

Kind kindOf(const Sentence& sentence) {
    if (std::string_view(sentence.text, sentence.length).starts_with("$PUBX")) return Kind::PUBX;
    return static_cast<Kind>(tag(sentence.text + 3));
}

SatelliteType satelliteType(const char* text) {
    if (text[0] != '$' || text[1] != 'G') {
        nmeaLog("getSatelliteType", text[0] != '$' ? "GpsParseNmeaManager::getSatelliteType() Unknown Sat Type_1\n"
                                                   : "GpsParseNmeaManager::getSatelliteType() Unknown Sat Type_2\n");
        return SATELLITE_TYPE_UNKNOWN;
    }
    return static_cast<SatelliteType>(letterCode({text + 2, 1}, "?PLAN", SATELLITE_TYPE_UNKNOWN));
}

bool logMissingSeparator(const char* cursor) {
    static constexpr char kFunction[] = "getNextToken";
    if (*cursor == '\0') return nmeaLog.failure(kFunction, "GpsParseNmeaManager::getNextToken() lpData = '");
    if (std::memchr(cursor, '\0', GpsParseNmeaManager::kTokenSize) != nullptr) return false;
    return nmeaLog.failure(kFunction, "GpsParseNmeaManager::getNextToken() Token Error\n");
}

bool splitCoordinate(const Token& field, std::size_t degreeDigits, double& value, int& degrees, double& minutes) {
    constexpr std::size_t kMinuteDecimals = 4;  // those that are read into `minutes`
    constexpr std::size_t kDecimals = 2 * kMinuteDecimals;
    const char* const text = field.data();
    const std::size_t point = degreeDigits + 2;
    const std::size_t decimals = field.size() - (point + 1);
    if (decimals < kDecimals && text[point] == '.') {
        const auto before = digitsAt<std::uint64_t>(text) << 8 * (8 - point);
        const auto after = digitsAt<std::uint64_t>(text + point + 1) & ((std::uint64_t{1} << 8 * decimals) - 1);
        if ((nonDigits(before) | nonDigits(after)) == 0) [[likely]] {
            constexpr auto kMinute = kPowersOfTen<std::int64_t>[kMinuteDecimals];
            const std::int64_t whole = valueOf(before);
            const std::int64_t fraction = valueOf(after);
            degrees = static_cast<int>(whole / 100);
            minutes = ratio(whole % 100 * kMinute + fraction / kMinute, kMinuteDecimals);
            value = ratio(whole * kMinute * kMinute + fraction, kDecimals);
            return true;
        }
    }
    degrees = static_cast<int>(field.part(0, degreeDigits).toInteger());
    minutes = field.part(degreeDigits, 3 + kMinuteDecimals).toDouble();
    value = field.toDouble();
    return true;
}

void splitPairs(const Token& field, unsigned short& first, unsigned short& second, unsigned short& third) {
    const auto digits = number_text::digitsAt<std::uint64_t>(field.data());
    if (field.size() >= 6 && (number_text::nonDigits(digits) & 0xFFFFFFFFFFFF) == 0) [[likely]] {
        const std::uint64_t pairs = number_text::pairsOf(digits);
        first = pairs & 0xFF;
        second = pairs >> 16 & 0xFF;
        third = pairs >> 32 & 0xFF;
        return;
    }
    first = static_cast<unsigned short>(field.part(0, 2).toInteger());
    second = static_cast<unsigned short>(field.part(2, 2).toInteger());
    third = static_cast<unsigned short>(field.part(4, 2).toInteger());
}

unsigned int statusCode(std::string_view field) {
    return letterCode(field, "VA", 0);
}

unsigned int modeCode(std::string_view field) {
    return letterCode(field, "NADE", 0);
}

unsigned int operationModeCode(std::string_view field) {
    return letterCode(field, "AM", 65535);
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
    return sentence_text::isCheckSumRight({sentence, length});
}

const char* GpsParseNmeaManager::getNextToken(const char* cursor, char* token) {
    token[0] = '\0';
    if (cursor == nullptr) {
        nmeaLog("getNextToken", "GpsParseNmeaManager::getNextToken() Argument Error\n");
        return nullptr;
    }
    const std::string_view text(cursor, strnlen(cursor, kTokenSize));
    const std::size_t end = std::min(text.find_first_of(",*"), text.size());
    if (end < kTokenSize) token[text.copy(token, end)] = '\0';
    if (end < text.size()) return cursor + end + 1;
    sentence_text::logMissingSeparator(cursor);
    return nullptr;
}

SatelliteType GpsParseNmeaManager::getSatelliteType(const char* sentence) {
    if (sentence != nullptr) return sentence_text::satelliteType(sentence);
    nmeaLog("getSatelliteType", "GpsParseNmeaManager::getSatelliteType() Argument Error\n");
    return SATELLITE_TYPE_UNKNOWN;
}

bool GpsParseNmeaManager::parseCoordinate(const char* field, Identifier identifier, double* value, int* degrees,
                                          double* minutes) {
    static constexpr char kFunction[] = "parseCoordinate";
    if (field == nullptr) return nmeaLog.failure(kFunction, "GpsParseNmeaManager::parseCoordinate() Argument Error");
    if (*field != '\0' && identifier != IDENTIFIER_LATITUDE && identifier != IDENTIFIER_LONGITUDE) {
        return nmeaLog.failure(kFunction, "GpsParseNmeaManager::parseCoordinate() nIdentifier Error");
    }
    const unsigned int degreeDigits = identifier == IDENTIFIER_LATITUDE ? 2 : 3;
    return sentence_text::splitCoordinate(Sentence(field).whole(), degreeDigits, *value, *degrees, *minutes);
}

bool GpsParseNmeaManager::divideDate(const char* field, unsigned short* year, unsigned short* month,
                                     unsigned short* day) {
    if (field == nullptr) return nmeaLog.failure("divideDate", "GpsParseNmeaManager::divideDate() Argument Error");
    sentence_text::splitPairs(Sentence(field).whole(), *day, *month, *year);
    return true;
}

bool GpsParseNmeaManager::divideTime(const char* field, unsigned short* hour, unsigned short* minute,
                                     unsigned short* second, unsigned short* milliSecond) {
    if (field == nullptr) return nmeaLog.failure("divideTime", "GpsParseNmeaManager::divideTime() Argument Error");
    const Sentence copy(field);
    std::size_t position = 0;
    const auto take = [&](unsigned short* output, std::size_t width, std::size_t step) {
        if (output == nullptr) return;
        *output = static_cast<unsigned short>(copy.whole().part(position, width).toInteger());
        position += step;
    };
    take(hour, 2, 2);
    take(minute, 2, 2);
    take(second, 2, 3);  // skips the point
    take(milliSecond, 3, 3);
    return true;
}

#define CONVERT(name, codeOf)                                              \
    unsigned int GpsParseNmeaManager::name(const char* field) {            \
        if (field != nullptr) return sentence_text::codeOf(field);         \
        nmeaLog(#name, "GpsParseNmeaManager::" #name "() Argument Error"); \
        return 0;                                                          \
    }
CONVERT(convertStatus, statusCode)
CONVERT(convertMode, modeCode)
CONVERT(convertOperationMode, operationModeCode)
CONVERT(convertStatusPubx, navigationStatusCode)
