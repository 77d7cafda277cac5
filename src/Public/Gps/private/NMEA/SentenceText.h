#ifndef GPS_PRIVATE_NMEA_SENTENCE_TEXT_H
#define GPS_PRIVATE_NMEA_SENTENCE_TEXT_H

#include <string_view>

#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "Gps/private/NMEA/NumberText.h"
#include "Gps/private/Support/GpsLog.h"

/** The text of sentences: framing, kinds and fields. Shared by parsing and rewriting. */
namespace sentence_text {

using number_text::Token;

inline constexpr GpsLog nmeaLog("src/Public/Gps/private/NMEA/GpsParseNmeaManager");

enum class Kind { GGA, GLL, GSA, GSV, RMC, VTG, ZDA, PUBX, Other };

/** A sentence without its line feed, checked and terminated. */
struct Sentence {
    char text[GpsParseNmeaManager::SENTENCE_SIZE];
    unsigned int length;
};

/**
 * Takes the sentence out of the first line of a chunk: from its last "$" to its line feed or NUL, which must stand
 * within the first 128 bytes.
 * @return false when there is no such sentence or its checksum is wrong
 */
bool takeSentence(const char* data, unsigned int length, Sentence& sentence);

/** The checksum of NMEA sentences: all characters, exclusively or-ed. */
unsigned char exclusiveOr(std::string_view text);

/** Whether the checksum after "*" is right, with at least one character behind it. */
bool isCheckSumRight(std::string_view sentence);

/** By the three characters behind the talker, whatever the talker; else by "$PUBX". */
Kind kindOf(const Sentence& sentence);

/** Says why there is no field at the cursor: the end of the text, or 20 characters without a separator. Null. */
const char* noField(const char* text);

/**
 * Reads the field at the cursor of a terminated text; "," and "*" end fields.
 * @return the place behind the separator, or null when none ends the field within 19 characters
 */
inline const char* readField(const char* cursor, Token& field) {
    constexpr unsigned int kLongest = GpsParseNmeaManager::TOKEN_SIZE - 1;
    const auto decimal = number_text::Decimal::read(cursor, kLongest);
    std::size_t length = decimal.length;
    for (; length <= kLongest; ++length) {
        if (static_cast<unsigned char>(cursor[length]) > ',') continue;  // digits, letters and points, at one glance
        if (cursor[length] == ',' || cursor[length] == '*' || cursor[length] == '\0') break;
    }
    if (length > kLongest || *cursor == '\0') {
        field = Token(std::string_view(cursor, cursor));
        return noField(cursor);
    }
    field = Token({cursor, length}, decimal);
    return cursor[length] == '\0' ? nullptr : cursor + length + 1;
}

// Fields of several parts. Any text can be split: a part that is not there gives 0.

/** Splits ddmm.mmmm or dddmm.mmmm, by the number of degree digits. The minutes are seven characters at most. */
bool splitCoordinate(const Token& field, unsigned int degreeDigits, double& value, int& degrees, double& minutes);
/** Splits ddmmyy. */
bool splitDate(const Token& field, unsigned short& year, unsigned short& month, unsigned short& day);
/** Splits hhmmss.sss; outputs that are null take no characters. */
bool splitTime(const Token& field, unsigned short* hour, unsigned short* minute, unsigned short* second,
               unsigned short* milliSecond);

// Codes of status and mode letters, as the records document them.

unsigned int statusCode(std::string_view field);
unsigned int modeCode(std::string_view field);
unsigned int operationModeCode(std::string_view field);
/** By their codes; any other status is as the first. */
inline constexpr std::string_view kNavigationStatuses[] = {"NF", "DR", "G2", "G3", "D2", "D3", "RK", "TT"};
unsigned int navigationStatusCode(std::string_view field);

}  // namespace sentence_text

#endif
