#ifndef BENCH_CAPTURES_H
#define BENCH_CAPTURES_H

#include <string>
#include <vector>

/** The sentences, each with its CR LF, of all captures in the directory that QVGPS_CAPTURES names. */
const std::vector<std::string>& capturedSentences();

/** A GGA sentence in which every number takes its usual width. */
const char* exampleGga();

#endif
