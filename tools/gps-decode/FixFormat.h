#ifndef GPS_DECODE_FIX_FORMAT_H
#define GPS_DECODE_FIX_FORMAT_H

#include "tools/gps-decode/Event.h"

namespace decode {

/** The position data of the sentences of one time; empty where none of them has a value. */
struct Fix {
    struct Place {
        double latitude;  ///< degrees, north and east positive
        double longitude;
    };

    std::optional<UtcTime> time;
    std::optional<Place> place;      ///< none without a fix
    std::optional<double> altitude;  ///< metres above mean sea level
    std::optional<double> geoid;     ///< separation, metres
    std::optional<double> speed;     ///< km/h
    std::optional<double> course;    ///< degrees from true north
    std::optional<double> hdop;
    std::optional<int> satellites;  ///< used
    int dimensions = 0;             ///< 2 or 3; 0 without a GSA
    bool isDifferential = false;
    bool beginsSegment = false;  ///< the first of a track segment
    unsigned starts = 0;         ///< as Event::starts
};

/** "none", "2d", "3d" or "dgps", as in GPX; empty when unknown. */
const char* fixName(const Fix& fix);

/**
 * A form of output by fixes. An RMC, a GGA of the same time of day and the first GSA after them make one fix. It has no
 * place when the RMC's status is not "A", the GGA's quality is 0 or the coordinates are invalid. A track segment begins
 * where the fix was lost, the receiver started, time went back or `gap` passed without a fix.
 */
class FixFormat : public Format {
public:
    explicit FixFormat(std::chrono::milliseconds gap) : mGap(gap) {}

    void write(const Event& event, std::string& text) override;
    void end(std::string& text) override { finishFix(text); }

protected:
    virtual void writeFix(const Fix& fix, std::string& text) = 0;

private:
    struct Epoch {
        Fix fix;
        bool hasGga = false;
        bool hasRmc = false;
        bool hasGsa = false;
        bool isNoFix = false;
    };

    void add(const GPGGA& gga, const Event& event, std::string& text);
    void add(const GPRMC& rmc, const Event& event, std::string& text);
    void add(const GPGSA& gsa);
    /** The epoch of an event: a new one for another time, and when `has` shows that the epoch has such a sentence. */
    Epoch& epochOf(const Event& event, bool Epoch::*has, std::string& text);
    void finishFix(std::string& text);
    bool isJump(const Fix& fix) const;

    const std::chrono::milliseconds mGap;
    std::optional<Epoch> mEpoch;  // not yet complete
    std::optional<Fix> mLast;     // of the current segment
};

}  // namespace decode

#endif
