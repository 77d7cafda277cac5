#ifndef BENCH_EXAMPLE_GGA_H
#define BENCH_EXAMPLE_GGA_H

/** A GGA sentence in which every number takes its usual width. */
inline constexpr char kExampleGga[] = "$GPGGA,123519.00,3539.00000,N,13944.00000,E,1,08,0.90,545.4,M,46.9,M,,*5C\r\n";

#endif
