#ifndef GPS_PRIVATE_NMEA_GPS_PARSE_NMEA_MANAGER_H
#define GPS_PRIVATE_NMEA_GPS_PARSE_NMEA_MANAGER_H

#include <cstddef>

#include "Gps/private/Listeners/GpsListenerList.h"

class Recipients;
namespace sentence_text {
class Fields;
struct Sentence;
}  // namespace sentence_text

/**
 * Parses NMEA sentences into records, collects the records of an epoch, converts positions from the Tokyo datum to
 * WGS84 and regenerates sentences from records.
 *
 * `parseNmeaSentence` and the parsers it uses change this object's state and must not run concurrently; they call the
 * listeners they are given on the caller's thread. The other operations use no state and may run on any thread. Nothing
 * allocates, throws, depends on the host's locale or reads past the lengths given.
 *
 * One source file each: lexing, sentences with a position, satellites, course and time, the dispatcher, datum
 * conversion, regeneration (record to sentence), rewriting (sentence to converted sentence).
 */
class GpsParseNmeaManager {
public:
    enum Identifier : int {
        IDENTIFIER_LATITUDE = 0,   ///< two digits of degrees
        IDENTIFIER_LONGITUDE = 1,  ///< three digits of degrees
    };

    /** Bytes of a field token: 19 characters and a NUL. */
    static constexpr unsigned int kTokenSize = 20;
    /** Most bytes of a sentence that is parsed. */
    static constexpr unsigned int kSentenceSize = 128;
    /** Bytes of a buffer for a regenerated sentence, of which 255 are used at most. */
    static constexpr unsigned int kRegeneratedSize = 256;

    GpsParseNmeaManager();
    virtual ~GpsParseNmeaManager();

    /**
     * Parses the first line of a received chunk, delivers its record and, when that completes the epoch, the aggregate.
     * @param listeners, count the recipients; must stay unchanged during the call
     * @param base datum in which the receiver reports
     * @param settingFinished whether listeners of the Tokyo datum may be served
     * @return false when the line is not a checked sentence, or the delivery of an aggregate stopped
     */
    bool parseNmeaSentence(const char* data, unsigned int length, const Recipients& recipients);
    bool parseNmeaSentence(const char* data, unsigned int length, const GPS_PARSE_NMEA_LISTENER_LIST* listeners,
                           unsigned int count, GeodeticSystem base, bool settingFinished);
    /** Clears the records of the current epoch. */
    void clearData();

    // Sentence parsers. `sentence` is NUL-terminated and begins with "$". The record is filled field by field; on
    // failure it keeps what was read. True when every field was read and every listener was served.

    bool parseGgaSentence(const char* sentence, const GPS_PARSE_NMEA_LISTENER_LIST* listeners, unsigned int count,
                          GPGGA* record, GeodeticSystem base, bool settingFinished);
    bool parseGllSentence(const char* sentence, const GPS_PARSE_NMEA_LISTENER_LIST* listeners, unsigned int count,
                          GPGLL* record, GeodeticSystem base, bool settingFinished);
    bool parseGsaSentence(const char* sentence, const GPS_PARSE_NMEA_LISTENER_LIST* listeners, unsigned int count,
                          GPGSA* record, GeodeticSystem base, bool settingFinished);
    bool parseGsvSentence(const char* sentence, const GPS_PARSE_NMEA_LISTENER_LIST* listeners, unsigned int count,
                          GPGSV* record, GeodeticSystem base, bool settingFinished);
    bool parseRmcSentence(const char* sentence, const GPS_PARSE_NMEA_LISTENER_LIST* listeners, unsigned int count,
                          GPRMC* record, GeodeticSystem base, bool settingFinished);
    bool parseVtgSentence(const char* sentence, const GPS_PARSE_NMEA_LISTENER_LIST* listeners, unsigned int count,
                          GPVTG* record, GeodeticSystem base, bool settingFinished);
    bool parseZdaSentence(const char* sentence, const GPS_PARSE_NMEA_LISTENER_LIST* listeners, unsigned int count,
                          GPZDA* record, GeodeticSystem base, bool settingFinished);
    bool receiveParsePubxSentence(const char* sentence, const GPS_PARSE_NMEA_LISTENER_LIST* listeners,
                                  unsigned int count, PUBX* record, GeodeticSystem base, bool settingFinished);

    // The same for a sentence taken from its chunk; null is refused.

    bool parse(const sentence_text::Sentence* sentence, const Recipients& recipients, GPGGA& record);
    bool parse(const sentence_text::Sentence* sentence, const Recipients& recipients, GPGLL& record);
    bool parse(const sentence_text::Sentence* sentence, const Recipients& recipients, GPGSA& record);
    bool parse(const sentence_text::Sentence* sentence, const Recipients& recipients, GPGSV& record);
    bool parse(const sentence_text::Sentence* sentence, const Recipients& recipients, GPRMC& record);
    bool parse(const sentence_text::Sentence* sentence, const Recipients& recipients, GPVTG& record);
    bool parse(const sentence_text::Sentence* sentence, const Recipients& recipients, GPZDA& record);
    bool parse(const sentence_text::Sentence* sentence, const Recipients& recipients, PUBX& record);

    /** Marks the satellites in view that the epoch's GSA names as used. */
    void checkGsvStatus(GPGSV* gsv, const GPGSA* gsa);

    // Lexing.

    /** Whether the two digits are the XOR of the characters between "$" and "*". At least one character must follow
     * the digits within `length`. */
    bool confirmCheckSum(const char* sentence, unsigned int length);
    /** Reads the field at the cursor into a token of kTokenSize bytes. Null when no separator ends the field. */
    const char* getNextToken(const char* cursor, char* token);
    bool parseCoordinate(const char* field, Identifier identifier, double* value, int* degrees, double* minutes);
    /** Splits ddmmyy. */
    bool divideDate(const char* field, unsigned short* year, unsigned short* month, unsigned short* day);
    /** Splits hhmmss.sss; null outputs are skipped and take no characters. */
    bool divideTime(const char* field, unsigned short* hour, unsigned short* minute, unsigned short* second,
                    unsigned short* milliSecond);
    SatelliteType getSatelliteType(const char* sentence);
    unsigned int convertStatus(const char* field);
    unsigned int convertMode(const char* field);
    unsigned int convertOperationMode(const char* field);
    unsigned int convertStatusPubx(const char* field);

    // Datum conversion.

    /**
     * Converts a position from the Tokyo datum to WGS84 in place. Reads `lat` and `lon` (ddmm.mmmm, south and west
     * negative), writes all six.
     */
    bool convertTokyoToWgs84(double* lat, int* latDeg, double* latMin, double* lon, int* lonDeg, double* lonMin);
    /** Converts the positions of three records in place; those converted before a failure stay converted. */
    bool convertTokyoToWgs84ForAllData(GPGGA* gga, GPGLL* gll, GPRMC* rmc);

    // Regeneration. Writes a sentence of at most 255 characters, CR LF included and no NUL, with the given position
    // instead of the record's. On failure `out` and `outSize` are untouched.

    bool regeneratedGga(GPGGA* gga, double latitude, double longitude, char* out, unsigned int* outSize);
    bool regeneratedGll(GPGLL* gll, double latitude, double longitude, char* out, unsigned int* outSize);
    bool regeneratedRmc(GPRMC* rmc, double latitude, double longitude, char* out, unsigned int* outSize);
    bool regeneratedPubx(PUBX* pubx, double latitude, double longitude, char* out, unsigned int* outSize);

    /** Writes the talker prefix ("$GP") and a NUL. */
    bool setTalkerId(SatelliteType type, char* talker);
    void judgeNortSouthAndEastWest(double latitude, double longitude, char* northSouth, char* eastWest);
    void judgeStatus(unsigned int status, char* text);
    void judgeStatusPubx(unsigned int status, char* text);
    void judgeMode(unsigned int mode, char* text);

    // Rewriting.

    /**
     * A received chunk in WGS84: position sentences converted and regenerated, anything else unchanged.
     * @param geodeticSystem must be GEODETIC_SYSTEM_WGS84
     * @param out at least kRegeneratedSize bytes; a chunk to pass on that is longer is refused
     */
    bool convertTokyoToWgs84ForNmea(const char* sentence, unsigned int length, GeodeticSystem geodeticSystem, char* out,
                                    unsigned int* outSize);
    /** The same, but a chunk without a position is not copied: it only clears `converted`. */
    bool parseNmeaSentenceMinimum(const char* sentence, unsigned int length, GeodeticSystem geodeticSystem,
                                  bool* converted, char* out, unsigned int* outSize);

private:
    void parseKind(const sentence_text::Sentence& sentence, const Recipients& recipients);
    bool deliverEpoch(const Recipients& recipients);
    /** Bytes of the GSV record, from its start, that may not be zero. */
    std::size_t touchedSize() const { return offsetof(GPGSV, Sat) + touchedSatellites * sizeof(GPGSV_SATELLITE); }
    bool readSatellites(sentence_text::Fields fields, GPGSV& record);

    struct ParsedFlags {
        bool gga;
        bool gll;
        bool gsa;
        bool gsv;
        bool rmc;
        bool vtg;
    };

    GPGGA ggaData{};
    GPGLL gllData{};
    GPGSA gsaData{};
    GPGSV gsvData{};
    GPRMC rmcData{};
    GPVTG vtgData{};
    GPZDA zdaData{};
    PUBX pubxData{};
    PARSE_NMEA parseNmeaData{};
    ParsedFlags parsedFlags{};
    unsigned int usedSatCount = 0;
    unsigned int gsvSatCount = 0;
    unsigned int gsaSentenceCount = 0;
    unsigned int touchedSatellites = 0;  // entries of the GSV record that may not be zero
    bool isClear = true;                 // whether all records are zero
};

#endif
