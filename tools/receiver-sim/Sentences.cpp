#include "tools/receiver-sim/Sentences.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "tools/receiver-sim/Nmea.h"

namespace sim {

namespace {

constexpr double kKnot = 1852.0 / 3600.0;  // metres per second
constexpr std::size_t kSatellitesInGsa = 12;
constexpr std::size_t kSatellitesInGsv = 4;

/** Made up: the more satellites, the better. */
struct Dilution {
    explicit Dilution(const Fix& fix) {
        const auto used =
            std::count_if(fix.sky.begin(), fix.sky.end(), [](const Satellite& s) { return s.isTracked(); });
        satellites = static_cast<unsigned>(used);
        horizontal = 3.2 / std::sqrt(std::max(1.0, static_cast<double>(used)));
        vertical = 1.4 * horizontal;
        position = std::hypot(horizontal, vertical);
        time = 0.8 * horizontal;
    }
    unsigned satellites;
    double horizontal;
    double vertical;
    double position;
    double time;
};

std::string timeField(UtcTime time) {
    const UtcFields t = utcFields(time);
    return formatted("%02u%02u%02u.%02u", t.hour, t.minute, t.second, t.millisecond / 10);
}

/** Degrees and minutes with five decimals and the letter of the hemisphere, "3539.00000,N". */
std::string angleField(double angle, int degreeDigits, char positive, char negative) {
    constexpr long long kPerDegree = 60 * 100000LL;
    const long long units = std::llround(std::fabs(angle) * kPerDegree);
    const long long minutes = units % kPerDegree;
    return formatted("%0*lld%02lld.%05lld,%c", degreeDigits, units / kPerDegree, minutes / 100000, minutes % 100000,
                     angle < 0 ? negative : positive);
}

std::string positionFields(const Fix& fix) {
    return angleField(fix.position.latitude, 2, 'N', 'S') + "," + angleField(fix.position.longitude, 3, 'E', 'W');
}

std::string courseField(const Fix& fix) {
    const long hundredths = std::lround(fix.motion.course * 100.0) % 36000;
    return formatted("%ld.%02ld", hundredths / 100, hundredths % 100);
}

std::vector<std::string> composeRmc(const Fix& fix) {
    const UtcFields t = utcFields(fix.time);
    const std::string date = formatted(",%02u%02u%02d", t.day, t.month, t.year % 100);
    if (!fix.isValid) return {"GPRMC," + timeField(fix.time) + ",V,,,,,," + date + ",,,N"};
    return {"GPRMC," + timeField(fix.time) + ",A," + positionFields(fix) +
            formatted(",%.3f,", fix.motion.speed / kKnot) + courseField(fix) + date + ",,,A"};
}

std::vector<std::string> composeVtg(const Fix& fix) {
    if (!fix.isValid) return {"GPVTG,,,,,,,,,N"};
    return {"GPVTG," + courseField(fix) +
            formatted(",T,,M,%.3f,N,%.3f,K,A", fix.motion.speed / kKnot, fix.motion.speed * 3.6)};
}

std::vector<std::string> composeGga(const Fix& fix) {
    if (!fix.isValid) return {"GPGGA," + timeField(fix.time) + ",,,,,0,00,99.99,,,,,,"};
    const Dilution dilution(fix);
    return {"GPGGA," + timeField(fix.time) + "," + positionFields(fix) +
            formatted(",1,%02u,%.2f,%.1f,M,%.1f,M,,", dilution.satellites, dilution.horizontal,
                      fix.position.height - fix.geoidSeparation, fix.geoidSeparation)};
}

std::vector<std::string> composeGsa(const Fix& fix) {
    if (!fix.isValid) return {"GPGSA,A,1,,,,,,,,,,,,,99.99,99.99,99.99"};
    std::string used;
    std::size_t count = 0;
    for (const Satellite& satellite : fix.sky) {
        if (!satellite.isTracked() || count == kSatellitesInGsa) continue;
        used += formatted(",%02u", satellite.number);
        ++count;
    }
    used.append(kSatellitesInGsa - count, ',');
    const Dilution dilution(fix);
    return {"GPGSA,A,3" + used +
            formatted(",%.2f,%.2f,%.2f", dilution.position, dilution.horizontal, dilution.vertical)};
}

std::vector<std::string> composeGsv(const Fix& fix) {
    const std::size_t messages = std::max<std::size_t>(1, (fix.sky.size() + kSatellitesInGsv - 1) / kSatellitesInGsv);
    std::vector<std::string> bodies;
    for (std::size_t message = 0; message < messages; ++message) {
        std::string body = formatted("GPGSV,%zu,%zu,%02zu", messages, message + 1, fix.sky.size());
        const std::size_t end = std::min(fix.sky.size(), (message + 1) * kSatellitesInGsv);
        for (std::size_t i = message * kSatellitesInGsv; i < end; ++i) {
            const Satellite& satellite = fix.sky[i];
            body += formatted(",%02u,%02u,%03u,", satellite.number, satellite.elevation, satellite.azimuth);
            if (satellite.isTracked()) body += formatted("%02u", satellite.signal);
        }
        bodies.push_back(body);
    }
    return bodies;
}

std::vector<std::string> composeGll(const Fix& fix) {
    if (!fix.isValid) return {"GPGLL,,,,," + timeField(fix.time) + ",V,N"};
    return {"GPGLL," + positionFields(fix) + "," + timeField(fix.time) + ",A,A"};
}

std::vector<std::string> composeZda(const Fix& fix) {
    const UtcFields t = utcFields(fix.time);
    return {"GPZDA," + timeField(fix.time) + formatted(",%02u,%02u,%04d,00,00", t.day, t.month, t.year)};
}

std::vector<std::string> composePubx00(const Fix& fix) {
    if (!fix.isValid) {
        return {"PUBX,00," + timeField(fix.time) +
                ",0000.00000,N,00000.00000,E,0.000,NF,5303302,3750001,0.000,0.00,0.000,,99.99,99.99,99.99,0,0,0"};
    }
    constexpr double kRangeError = 2.0;  // metres of error for a dilution of 1
    const Dilution dilution(fix);
    return {"PUBX,00," + timeField(fix.time) + "," + positionFields(fix) +
            formatted(",%.3f,G3,%.1f,%.1f,%.3f,", fix.position.height, kRangeError * dilution.horizontal,
                      kRangeError * dilution.vertical, fix.motion.speed * 3.6) +
            courseField(fix) +
            // The receiver counts the vertical speed downward.
            formatted(",%.3f,,%.2f,%.2f,%.2f,%u,0,0", -fix.motion.climb, dilution.horizontal, dilution.vertical,
                      dilution.time, dilution.satellites)};
}

}  // namespace

const std::array<SentenceKind, kSentenceKindCount> kSentenceKinds{{
    {{0xF0, 0x04}, 1, composeRmc},
    {{0xF0, 0x05}, 1, composeVtg},
    {{0xF0, 0x00}, 1, composeGga},
    {{0xF0, 0x02}, 1, composeGsa},
    {{0xF0, 0x03}, 1, composeGsv},
    {{0xF0, 0x01}, 1, composeGll},
    {{0xF0, 0x08}, 0, composeZda},
    {{0xF1, 0x00}, 0, composePubx00},
}};

std::string textSentence(const std::string& text) {
    return nmeaSentence("GPTXT,01,01,02," + text);
}

}  // namespace sim
