#ifndef BENCH_CAPTURES_H
#define BENCH_CAPTURES_H

#include <string>
#include <vector>

/** The checked sentences, each with its CR LF, of all captures in the directory that QVGPS_CAPTURES names. */
const std::vector<std::string>& capturedSentences();

/** A whole epoch in which every number takes its usual width. */
const char* exampleGga();

#endif
