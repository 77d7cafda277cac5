#include "tools/gps-monitor/model/ExampleLocation.h"

namespace monitor {

namespace {

constexpr Position kExamplePosition{3539.1234, 13945.6789};

GPS_SYNC_RMC_DATA makeRmc(const GPRMC& rmc, Position position) {
    return {rmc.Hour,  rmc.Minute, rmc.Second, rmc.MilliSecond, rmc.Status, position.lat, position.lon,
            rmc.Speed, rmc.Dir,    rmc.Year,   rmc.Month,       rmc.Day,    rmc.MagDec,   rmc.Mode};
}

GPS_SYNC_GGA_DATA makeGga(const GPGGA& gga, Position position) {
    return {gga.Hour,    gga.Minute, gga.Second, gga.MilliSecond, position.lat, position.lon, gga.Quality,
            gga.SatView, gga.HDOP,   gga.Alt,    gga.Geo,         gga.DGPS_Age, gga.DGPS_ID};
}

GPS_SYNC_PASCD_DATA makePascd() {
    GPS_SYNC_PASCD_DATA pascd{12.5, 0xA5, 0x5A, 0x01020304, 0x05060708, {}, {}};
    for (int i = 0; i < GPS_PASCD_SAMPLE_NUM; ++i) {
        pascd.ValueA[i] = i + 0.5;
        pascd.ValueB[i] = -(i + 0.5);
    }
    return pascd;
}

}  // namespace

GPS_LOCATION_SYNC_DATA makeLocation(const MonitorState& state, Clock::time_point now) {
    const Position position = hasFix(state, now) ? state.position->value : kExamplePosition;
    return {makeRmc(state.rmc ? state.rmc->value : GPRMC{}, position),
            makeGga(state.gga ? state.gga->value : GPGGA{}, position), makePascd()};
}

}  // namespace monitor
