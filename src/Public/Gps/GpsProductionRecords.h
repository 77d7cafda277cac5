#ifndef GPS_GPS_PRODUCTION_RECORDS_H
#define GPS_GPS_PRODUCTION_RECORDS_H

#include <cstddef>

/**
 * @file
 * Records of the factory check. The maker does not publish what the fields mean, so each is named after its position in
 * the receiver's message: `ptValue20` is at payload byte 20 of MonPt, `pt2Entry4` at byte 4 of a list entry of MonPt2.
 */

/** One MonPt test result. */
struct PRODUCTION_DATA {
    unsigned int ptValue4;
    int ptValue20;  ///< raw value times 0.00024414062, truncated toward zero
    int ptValue24;  ///< as `ptValue20`
    int ptValue34;  ///< raw value times 2^-8, truncated toward zero
    int ptValue36;  ///< as `ptValue34`
    unsigned int ptValue40;
    unsigned int ptValue48;
    unsigned char ptValue39;
    double ptValue32;  ///< raw value times 1.525878e-05
};

/** One MonPt2 test result. */
struct GPS_PRODUCTION_CHECK_DATA {
    unsigned int checkValid;  ///< always 1
    unsigned int pt2Value12;
    unsigned int pt2Value16;
    unsigned int pt2Value20;
    unsigned int pt2FirstEntry0;  ///< 0 when the first list is empty
    unsigned int pt2Entry4;       ///< this and the following are 0 when the second list is empty
    unsigned int pt2Entry6;
    unsigned int pt2Entry24;
    unsigned int pt2Entry25;
    unsigned int pt2Entry22;
};

static_assert(offsetof(PRODUCTION_DATA, ptValue39) == 28 && offsetof(PRODUCTION_DATA, ptValue32) == 32 &&
                  sizeof(PRODUCTION_DATA) == 40,
              "PRODUCTION_DATA layout");
static_assert(offsetof(GPS_PRODUCTION_CHECK_DATA, pt2FirstEntry0) == 16 &&
                  offsetof(GPS_PRODUCTION_CHECK_DATA, pt2Entry22) == 36 && sizeof(GPS_PRODUCTION_CHECK_DATA) == 40,
              "GPS_PRODUCTION_CHECK_DATA layout");

#endif
