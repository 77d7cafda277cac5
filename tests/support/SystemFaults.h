#ifndef TESTS_SUPPORT_SYSTEM_FAULTS_H
#define TESTS_SUPPORT_SYSTEM_FAULTS_H

#include <array>

/** The error numbers that end the next invocations of a call of the system, or the numbers with which TIOCOUTQ and
 *  TIOCSERGETLSR succeed; 0 stands for the system's own result. */
struct Faults {
    const char* call = "";
    std::array<int, 3> errors = {};
};

/** A program that is linked with system_faults has functions of its own before those of the system. */
void letFail(const Faults& faults);
bool areAllFaultsTaken();

#endif
