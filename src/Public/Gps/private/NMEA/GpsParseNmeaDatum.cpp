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

/** A Tokyo position, and the same point in WGS84's Cartesian coordinates. */
struct TokyoPoint {
    TokyoPoint(double latitude, double longitude)
        : phi(toRadians(latitude)),
          lambda(toRadians(longitude)),
          sinPhi(std::sin(phi)),
          cosPhi(std::cos(phi)),
          sinLambda(std::sin(lambda)),
          cosLambda(std::cos(lambda)),
          n(kBesselSemiMajor / std::sqrt(1.0 - kBesselEccentricitySquared * sinPhi * sinPhi)),
          x(n * cosPhi * cosLambda + kShiftX),
          y(n * cosPhi * sinLambda + kShiftY),
          z(n * kBesselOneMinusEccentricitySquared * sinPhi + kShiftZ),
          p(std::sqrt(x * x + y * y)) {}

    double phi, lambda;  // radians
    double sinPhi, cosPhi, sinLambda, cosLambda;
    double n, x, y, z, p;  // metres
};

struct Quanta {
    int latitude, longitude;
};

int quantise(double radians) {
    return truncateToInt(radians / kRadiansPerDegree * 3600.0 * 256.0);
}

/** The reference: its result is right by definition, which includes the order of the operations. */
Quanta toWgs84Exactly(const TokyoPoint& point) {
    const double theta = std::atan2(point.z, point.p * kWgs84AxisRatio);
    const double sinTheta = std::sin(theta);
    const double cosTheta = std::cos(theta);
    const double phi = std::atan2(point.z + kWgs84SecondTimesSemiMinor * sinTheta * sinTheta * sinTheta,
                                  point.p - kWgs84FirstTimesSemiMajor * cosTheta * cosTheta * cosTheta);
    return {quantise(phi), quantise(std::atan2(point.y, point.x))};
}

/** Arc tangent series for |t| <= 0.01; the first omitted term is below 2^-76. */
double smallArcTangent(double t) {
    const double square = t * t;
    return t - t * square * (1.0 / 3 - square * (1.0 / 5 - square * (1.0 / 7 - square * (1.0 / 9))));
}

/** Quantises an angle that is known to kMargin quanta. False when it is too close to a step. */
bool quantiseSafely(double radians, int& quanta) {
    constexpr double kQuantaPerRadian = kQuantaPerDegree / kRadiansPerDegree;
    constexpr double kMargin = 1e-4;
    const double exact = radians * kQuantaPerRadian;
    quanta = static_cast<int>(exact);
    const double rest = std::fabs(exact - quanta);
    return rest > kMargin && rest < 1.0 - kMargin;
}

/**
 * The same result from the small angles by which the shift turns a position. The sine and cosine of the parametric
 * latitude come from its sides, so no large arc tangent is needed. Rounding errors, below 1e-6 of a quantum, matter
 * only near a step of the quantisation. False there, near the poles and the date line, where the angles are large or
 * wrap, and for values that are no position.
 */
bool toWgs84Quickly(const TokyoPoint& point, Quanta& result) {
    constexpr double kLargestPhi = 1.5;
    constexpr double kLargestLambda = 3.13;
    if (!(std::fabs(point.phi) < kLargestPhi && std::fabs(point.lambda) < kLargestLambda)) return false;
    const double adjacent = point.p * kWgs84AxisRatio;
    const double scale = 1.0 / std::sqrt(adjacent * adjacent + point.z * point.z);
    const double sinTheta = point.z * scale;
    const double cosTheta = adjacent * scale;
    const double up = point.z + kWgs84SecondTimesSemiMinor * sinTheta * sinTheta * sinTheta;
    const double out = point.p - kWgs84FirstTimesSemiMajor * cosTheta * cosTheta * cosTheta;
    const double phiTurn = (up * point.cosPhi - out * point.sinPhi) / (out * point.cosPhi + up * point.sinPhi);
    const double lambdaTurn = (kShiftY * point.cosLambda - kShiftX * point.sinLambda) /
                              (point.n * point.cosPhi + kShiftX * point.cosLambda + kShiftY * point.sinLambda);
    return quantiseSafely(point.phi + smallArcTangent(phiTurn), result.latitude) &&
           quantiseSafely(point.lambda + smallArcTangent(lambdaTurn), result.longitude);
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
    const TokyoPoint point(*lat, *lon);
    Quanta wgs84;
    if (!toWgs84Quickly(point, wgs84)) wgs84 = toWgs84Exactly(point);
    decompose(wgs84.latitude, *lat, *latDeg, *latMin);
    decompose(wgs84.longitude, *lon, *lonDeg, *lonMin);
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
