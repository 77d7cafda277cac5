#ifndef BENCH_DRIVE_H
#define BENCH_DRIVE_H

#include <string>
#include <vector>

/**
 * The sentences that the simulated receiver sends on a drive, each with its CR LF: all kinds that it knows, about ten
 * sentences an epoch. During a tenth of the drive it has no fix.
 */
std::vector<std::string> simulatedDrive(int epochs);

/** One of about 60,000 sentences, most of them distinct, so that branch prediction cannot learn them. */
inline const std::vector<std::string>& drive() {
    static const std::vector<std::string> sentences = simulatedDrive(6000);
    return sentences;
}

#endif
