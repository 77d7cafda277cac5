#include <cmath>

#include "Gps/private/DegreesMinutes.h"
#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "Gps/private/NMEA/SentenceText.h"

// Three-parameter datum shift through Earth-centred Cartesian coordinates. The way back is Bowring's closed formula
// (B. R. Bowring, "Transformation from spatial to geographical coordinates", Survey Review 181, 1976), one step: its
// error stays far below the quantum of the result near the ellipsoid. The order of operations is part of the result.

using sentence_text::nmeaLog;

namespace {

// Six decimals, as every process of the unit has always used them.
constexpr double kPi = 3.141592;
constexpr double kRadiansPerDegree = 0.01745328888888889;  // kPi / 180

// Tokyo datum: Bessel 1841, a = 6377397.155 m, 1/f = 299.152813.
constexpr double kBesselSemiMajor = 6377397.155;
constexpr double kBesselEccentricitySquared = 0.006674372227347433;
constexpr double kBesselOneMinusEccentricitySquared = 0.9933256277726525;

// Shift from Tokyo to WGS84, metres.
constexpr double kShiftX = -146.4;
constexpr double kShiftY = 507.3;
constexpr double kShiftZ = 680.5;

// WGS84: a = 6378137 m, 1/f = 298.257223.
constexpr double kWgs84AxisRatio = 0.9966471893289237;            // b/a
constexpr double kWgs84FirstTimesSemiMajor = 42697.672787642136;  // e^2 a, metres
constexpr double kWgs84SecondTimesSemiMinor = 42841.31159431847;  // e'^2 b, metres

constexpr double kQuantaPerDegree = 921600.0;  // 1/256 of an arc-second

double toRadians(double value) {
    const int degrees = truncateToInt(value / 100.0);
    const double decimalDegrees = degrees + (value - 100.0 * degrees) / 60.0;
    return decimalDegrees * kPi / 180.0;
}

double quantise(double degrees) {
    return static_cast<double>(truncateToInt(degrees * 3600.0 * 256.0)) / kQuantaPerDegree;
}

void decompose(double quantised, double& value, int& degrees, double& minutes) {
    const int whole = truncateToInt(quantised);
    const double signedMinutes = (quantised - whole) * 60.0;
    value = signedMinutes + 100.0 * whole;
    degrees = whole;
    minutes = std::fabs(signedMinutes);
}

}  // namespace

bool GpsParseNmeaManager::convertTokyoToWgs84(double* lat, int* latDeg, double* latMin, double* lon, int* lonDeg,
                                              double* lonMin) {
    if (lat == nullptr || latDeg == nullptr || latMin == nullptr || lon == nullptr || lonDeg == nullptr ||
        lonMin == nullptr) {
        return nmeaLog.failure("convertTokyoToWgs84", "GpsParseNmeaManager::convertTokyoToWgs84() Argument Error");
    }
    const double phi = toRadians(*lat);
    const double lambda = toRadians(*lon);
    const double sinPhi = std::sin(phi);
    const double cosPhi = std::cos(phi);
    const double sinLambda = std::sin(lambda);
    const double cosLambda = std::cos(lambda);

    const double n = kBesselSemiMajor / std::sqrt(1.0 - kBesselEccentricitySquared * sinPhi * sinPhi);
    const double x = n * cosPhi * cosLambda + kShiftX;
    const double y = n * cosPhi * sinLambda + kShiftY;
    const double z = n * kBesselOneMinusEccentricitySquared * sinPhi + kShiftZ;

    const double p = std::sqrt(x * x + y * y);
    const double theta = std::atan2(z, p * kWgs84AxisRatio);
    const double sinTheta = std::sin(theta);
    const double cosTheta = std::cos(theta);
    const double newPhi = std::atan2(z + kWgs84SecondTimesSemiMinor * sinTheta * sinTheta * sinTheta,
                                     p - kWgs84FirstTimesSemiMajor * cosTheta * cosTheta * cosTheta);
    const double newLambda = std::atan2(y, x);

    decompose(quantise(newPhi / kRadiansPerDegree), *lat, *latDeg, *latMin);
    decompose(quantise(newLambda / kRadiansPerDegree), *lon, *lonDeg, *lonMin);
    return true;
}

bool GpsParseNmeaManager::convertTokyoToWgs84ForAllData(GPGGA* gga, GPGLL* gll, GPRMC* rmc) {
    constexpr char kFunction[] = "convertTokyoToWgs84ForAllData";
    if (gga == nullptr || gll == nullptr || rmc == nullptr) {
        return nmeaLog.failure(kFunction, "GpsParseNmeaManager::convertTokyoToWgs84ForAllData() Argument Error");
    }
    const auto convert = [&](auto* record, const char* failed) {
        return convertTokyoToWgs84(&record->Lat, &record->LatDeg, &record->LatMin, &record->Lon, &record->LonDeg,
                                   &record->LonMin) ||
               nmeaLog.failure(kFunction, failed);
    };
#define FAILED "GpsParseNmeaManager::convertTokyoToWgs84ForAllData() :  convertTokyoToWgs84() = false "
    return convert(gga, FAILED "[GGA]") && convert(gll, FAILED "[GLL]") && convert(rmc, FAILED "[RMC]");
#undef FAILED
}
