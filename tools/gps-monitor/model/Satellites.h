#ifndef GPS_MONITOR_SATELLITES_H
#define GPS_MONITOR_SATELLITES_H

#include <array>
#include <bitset>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "Gps/GpsNmeaRecords.h"
#include "tools/gps-monitor/model/Clock.h"

namespace monitor {

inline constexpr int kHistorySeconds = 60;

/** Signal strength in dB-Hz for each second, oldest first; 0 where the satellite was not tracked. */
using SignalHistory = std::array<unsigned char, kHistorySeconds>;

struct Satellite {
    SatelliteType system;
    unsigned id;
    unsigned elevation;  ///< degrees
    unsigned azimuth;    ///< degrees
    unsigned snr;        ///< dB-Hz; 0 when not tracked
    bool used;
    Clock::time_point time;
    SignalHistory history{};

    /** False when the angles are out of range. */
    bool hasPlace() const { return elevation <= 90 && azimuth <= 360; }
};

/** The satellites of the GSV and GSA sentences, and their signals in the last minute. */
class Satellites {
public:
    void apply(const GPGSA& record);
    void apply(const GPGSV& record, Clock::time_point now);

    /** Ordered by system and number. A system without a GSV record for ten seconds is left out. */
    std::vector<Satellite> inView(Clock::time_point now) const;

private:
    struct Signal {
        long long newest = 0;  ///< second of the clock
        SignalHistory bySecond{};
    };
    static void addSignal(Signal& signal, long long second, unsigned char snr);
    static SignalHistory historyUntil(const Signal& signal, long long second);

    std::array<std::optional<Timed<GPGSV>>, SATELLITE_TYPE_GNSS + 1> mSystems;  // by SatelliteType
    std::map<std::pair<SatelliteType, unsigned>, Signal> mSignals;              // by system and number

    // Satellites that the GSA sentences list: those of this epoch so far, and those of the last one, which may be
    // missing in this one only because it is not complete.
    std::bitset<256> mUsedNow;
    std::bitset<256> mUsedBefore;
};

}  // namespace monitor

#endif
