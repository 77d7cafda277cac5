#ifndef BENCH_POSITIONS_H
#define BENCH_POSITIONS_H

#include <cstddef>

/** One position in the forms that the peers take. */
struct BenchPosition {
    double latitudeDegrees;
    double longitudeDegrees;
    double latitudeDegreesMinutes;   ///< ddmm.mmmm
    double longitudeDegreesMinutes;  ///< dddmm.mmmm
};

/** Positions all over Japan, in an order that branch prediction cannot learn. */
inline const BenchPosition& benchPosition(std::size_t index) {
    constexpr std::size_t kCount = 1024;
    static const auto* const positions = [] {
        auto* const made = new BenchPosition[kCount];
        for (std::size_t i = 0; i < kCount; ++i) {
            const double latitude = 26.0 + static_cast<double>(i * 617 % kCount) * 0.0185;
            const double longitude = 128.0 + static_cast<double>(i * 389 % kCount) * 0.0163;
            const auto split = [](double degrees) {
                const auto whole = static_cast<int>(degrees);
                return 100.0 * whole + (degrees - whole) * 60.0;
            };
            made[i] = {latitude, longitude, split(latitude), split(longitude)};
        }
        return made;
    }();
    return positions[index % kCount];
}

#endif
