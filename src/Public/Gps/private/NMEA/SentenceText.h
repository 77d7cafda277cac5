#ifndef GPS_PRIVATE_NMEA_SENTENCE_TEXT_H
#define GPS_PRIVATE_NMEA_SENTENCE_TEXT_H

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "Gps/private/NMEA/NumberText.h"
#include "Gps/private/Support/GpsLog.h"

/** The text of sentences: framing, kinds and fields. Shared by parsing and rewriting. */
namespace sentence_text {

using number_text::Token;

inline constexpr GpsLog nmeaLog("src/Public/Gps/private/NMEA/GpsParseNmeaManager");

/** Three letters as a number. */
constexpr unsigned int tag(const char* letters) {
    return static_cast<unsigned int>(letters[0] << 16 | letters[1] << 8 | letters[2]);
}

/** Values without a name count as `Other`. */
enum class Kind : unsigned int {
    Other,
    PUBX,
    GGA = tag("GGA"),
    GLL = tag("GLL"),
    GSA = tag("GSA"),
    GSV = tag("GSV"),
    RMC = tag("RMC"),
    VTG = tag("VTG"),
    ZDA = tag("ZDA"),
};

/** A sentence's text, and where its fields end. */
struct Sentence {
    /** Most characters that parsers read: an address and 20 fields of at most 19, with separators. */
    static constexpr std::size_t kMaxLength = 447;

    Sentence() = default;
    /** Copies what parsers read of a terminated text; nothing of a null one. */
    explicit Sentence(const char* terminated) { assign(terminated != nullptr ? terminated : ""); }
    void assign(std::string_view text);
    /** The whole text as one field. */
    Token whole() const { return {text, length}; }

    char text[kMaxLength + 1 + Token::kReadAhead];  ///< terminated
    std::size_t length;
    /** Bit i of the whole array is set when text[i] is "," or "*". The last word ends all searches. */
    std::uint64_t separators[kMaxLength / 64 + 2] = {0, 0, 0, 0, 0, 0, 0, ~std::uint64_t{0}};
};

/**
 * Takes the sentence from the first line of a chunk: from its last "$" to its line feed or NUL, which must be within
 * the first 128 bytes.
 * @return false when there is no such sentence or its checksum is wrong
 */
bool takeSentence(const char* data, unsigned int length, Sentence& sentence);

/** The checksum of NMEA sentences: the XOR of all characters. */
unsigned char checkSumOf(std::string_view text);

/** Whether the checksum after "*" is right, with at least one character after it. */
bool isCheckSumRight(std::string_view sentence);

/** The kind of a taken sentence: by the three characters after any two-letter talker, else by "$PUBX". */
Kind kindOf(const Sentence& sentence);

/** By the two characters after the "$"; logs when the text does not begin with "$G". */
SatelliteType satelliteType(const char* text);

/** Logs why the field at the cursor has no separator within 19 characters. False. */
bool logMissingSeparator(const char* cursor);

/** Reads a sentence field by field, the address first; "," and "*" end fields. */
class Fields {
public:
    Fields() = default;
    explicit Fields(const Sentence& sentence)
        : mCursor(sentence.text), mBlock(sentence.text), mWord(sentence.separators), mEnds(*mWord) {}

    /** False, with a message logged unless the text ends within the field, when no separator ends it. */
    bool next(Token& field) {
        while (mEnds == 0)
            [[unlikely]] {
                mEnds = *++mWord;
                mBlock += 64;
            }
        const char* const end = mBlock + static_cast<unsigned int>(std::countr_zero(mEnds));
        const auto size = static_cast<std::size_t>(end - mCursor);
        if (size >= GpsParseNmeaManager::kTokenSize) [[unlikely]]
            return logMissingSeparator(mCursor);
        field = Token(mCursor, size);
        mEnds &= mEnds - 1;
        mCursor = end + 1;
        return true;
    }

    /** Whether the last field read was the one before the checksum. */
    bool isAtCheckSum() const { return mCursor[-1] == '*'; }

private:
    const char* mCursor = nullptr;
    const char* mBlock = nullptr;
    const std::uint64_t* mWord = nullptr;
    std::uint64_t mEnds = 0;  // those not yet read of the 64 characters at mBlock
};

// Fields of several parts. Any text can be split: a missing part gives 0.

/** Splits ddmm.mmmm or dddmm.mmmm, by the number of degree digits. The minutes are seven characters at most. */
bool splitCoordinate(const Token& field, std::size_t degreeDigits, double& value, int& degrees, double& minutes);
/** Splits the first six characters in three, as of ddmmyy and hhmmss. */
void splitPairs(const Token& field, unsigned short& first, unsigned short& second, unsigned short& third);

// Codes of status and mode letters, as the records document them.

unsigned int statusCode(std::string_view field);
unsigned int modeCode(std::string_view field);
unsigned int operationModeCode(std::string_view field);
/** Indexed by code; an unknown status counts as the first. */
inline constexpr std::string_view kNavigationStatuses[] = {"NF", "DR", "G2", "G3", "D2", "D3", "RK", "TT"};
unsigned int navigationStatusCode(std::string_view field);

}  // namespace sentence_text

#endif
