#include <cmath>

#include "Gps/private/NMEA/GpsParseNmeaManager.h"
#include "Gps/private/NMEA/SentenceText.h"
#include "Gps/private/Support/DegreesMinutes.h"

// Three-parameter datum shift through Earth-centred Cartesian coordinates. The conversion back to latitude and
// longitude is one step of Bowring's formula (B. R. Bowring, "Transformation from spatial to geographical coordinates",
// Survey Review 181, 1976). Near the ellipsoid its error is far below the quantum of the result.

using sentence_text::nmeaLog;

namespace {

// Six decimals: the value that all units have always used.
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

struct Quanta {
    int latitude, longitude;
};

int quantise(double radians) {
    return truncateToInt(radians / kRadiansPerDegree * 3600.0 * 256.0);
}

/** The reference: another computation must give the same result, so the order of the operations matters. */
Quanta toWgs84Exactly(double phi, double lambda) {
    const double sinPhi = std::sin(phi);
    const double cosPhi = std::cos(phi);
    const double n = kBesselSemiMajor / std::sqrt(1.0 - kBesselEccentricitySquared * sinPhi * sinPhi);
    const double x = n * cosPhi * std::cos(lambda) + kShiftX;
    const double y = n * cosPhi * std::sin(lambda) + kShiftY;
    const double z = n * kBesselOneMinusEccentricitySquared * sinPhi + kShiftZ;
    const double p = std::sqrt(x * x + y * y);
    const double theta = std::atan2(z, p * kWgs84AxisRatio);
    const double sinTheta = std::sin(theta);
    const double cosTheta = std::cos(theta);
    const double up = z + kWgs84SecondTimesSemiMinor * sinTheta * sinTheta * sinTheta;
    const double out = p - kWgs84FirstTimesSemiMajor * cosTheta * cosTheta * cosTheta;
    return {quantise(std::atan2(up, out)), quantise(std::atan2(y, x))};
}

/** Sine and cosine of an angle below pi, to 1e-10: of an eighth by their series, then of its double three times. */
struct Direction {
    explicit Direction(double angle) : sine(angle / 8) {
        const double s = sine * sine;
        sine *= 1 - s * (1.0 / 6) * (1 - s * (1.0 / 20) * (1 - s * (1.0 / 42) * (1 - s * (1.0 / 72))));
        cosine = 1 - s * (1.0 / 2) * (1 - s * (1.0 / 12) * (1 - s * (1.0 / 30) * (1 - s * (1.0 / 56))));
        for (int i = 0; i != 3; ++i) {
            const double half = sine;
            sine *= 2 * cosine;
            cosine = 1 - 2 * half * half;
        }
    }
    double sine, cosine;
};

/** Quantises an angle plus one of at most 0.001, which is given by its tangent. False when too close to a step. */
bool quantiseSafely(double radians, double tangent, int& quanta) {
    constexpr double kMargin = 1e-4;
    const double turn = tangent - tangent * tangent * tangent * (1.0 / 3);  // the next term is below 2^-52
    const double exact = (radians + turn) * (kQuantaPerDegree / kRadiansPerDegree);
    quanta = static_cast<int>(exact);
    const double rest = std::fabs(exact - quanta);
    return rest > kMargin && rest < 1.0 - kMargin;
}

/**
 * Computes the same result faster, from the small angles by which the shift turns a position. The sides of the
 * parametric latitude give its sine and cosine, so no large arc tangent is needed.
 * @return false near a step of the quantisation, where errors (below 1e-5 of a quantum) could change the result, near
 * the poles and the date line, where the angles are large or wrap, and for values that are no position
 */
bool toWgs84Quickly(double phi, double lambda, Quanta& result) {
    constexpr double kLargestPhi = 1.4;
    constexpr double kLargestLambda = 3.13;
    if (!(std::fabs(phi) < kLargestPhi && std::fabs(lambda) < kLargestLambda)) return false;
    const Direction north(phi);
    const Direction east(lambda);
    const double n = kBesselSemiMajor / std::sqrt(1.0 - kBesselEccentricitySquared * north.sine * north.sine);
    const double across = kShiftY * east.cosine - kShiftX * east.sine;
    const double along = n * north.cosine + kShiftX * east.cosine + kShiftY * east.sine;
    const double lambdaTurn = across / along;
    const double p = along + across * lambdaTurn / 2;  // the root of the sum of their squares, to 1e-8 m
    const double z = n * kBesselOneMinusEccentricitySquared * north.sine + kShiftZ;
    const double adjacent = p * kWgs84AxisRatio;
    const double squares = adjacent * adjacent + z * z;
    const double cube = squares * std::sqrt(squares);
    const double up = z + kWgs84SecondTimesSemiMinor * z * z * z / cube;
    const double out = p - kWgs84FirstTimesSemiMajor * adjacent * adjacent * adjacent / cube;
    const double phiTurn = (up * north.cosine - out * north.sine) / (out * north.cosine + up * north.sine);
    return quantiseSafely(phi, phiTurn, result.latitude) && quantiseSafely(lambda, lambdaTurn, result.longitude);
}

void decompose(int quanta, double& value, int& degrees, double& minutes) {
    const double quantised = quanta / kQuantaPerDegree;
    degrees = static_cast<int>(quantised);
    const double signedMinutes = (quantised - degrees) * 60.0;
    value = signedMinutes + 100.0 * degrees;
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
    Quanta wgs84;
    if (!toWgs84Quickly(phi, lambda, wgs84)) wgs84 = toWgs84Exactly(phi, lambda);
    decompose(wgs84.latitude, *lat, *latDeg, *latMin);
    decompose(wgs84.longitude, *lon, *lonDeg, *lonMin);
    return true;
}

bool GpsParseNmeaManager::convertTokyoToWgs84ForAllData(GPGGA* gga, GPGLL* gll, GPRMC* rmc) {
    static constexpr char kFunction[] = "convertTokyoToWgs84ForAllData";
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
