#ifndef TESTS_LIBRARY_NMEA_RANDOM_NUMBERS_H
#define TESTS_LIBRARY_NMEA_RANDOM_NUMBERS_H

#include <cstddef>
#include <random>

/** The same in every run. */
inline std::mt19937_64 numbers(20260916);

inline std::size_t below(std::size_t limit) {
    return static_cast<std::size_t>(numbers() % limit);
}

#endif
