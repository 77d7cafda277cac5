#include <gmock/gmock.h>

#include "NmeaSupport.h"
#include "tests/support/LogCapture.h"

namespace {

/** The marks of satellites in view. */
class Satellites : public testing::Test {
protected:
    /** `end` closes the twelve satellites, or cuts them. */
    void gsa(const std::string& satellites, const char* end = ",1.0,2.0,3.0*00") {
        const std::string text = "$GPGSA,A,3," + satellites + end;
        manager.parseGsaSentence(text.c_str(), registry, 1, &used, kWgs84, true);
    }
    /** The marks after a check; all of them are 9 before. */
    std::string marks(std::initializer_list<unsigned char> ids) {
        inView.SatView = 0;
        for (const unsigned char id : ids)
            inView.Sat[inView.SatView++] = {id, 9, 0, 0, 0};
        manager.checkGsvStatus(&inView, &used);
        std::string text;
        for (unsigned int i = 0; i < inView.SatView; ++i)
            text += std::to_string(inView.Sat[i].Used);
        return text;
    }

    LogCapture log;
    GpsParseNmeaManager manager;
    Recorder listener;
    const GPS_PARSE_NMEA_LISTENER_LIST registry[1] = {{&listener, kWgs84}};
    GPGSV inView = {};
    GPGSA used = {};
};

TEST_F(Satellites, InUseAreMarkedOnce) {
    EXPECT_EQ(marks({5, 7, 12}), "999") << "without a GSA nothing is known";
    gsa("05,12,,,,,,,,,,");
    EXPECT_EQ(marks({5, 7, 12}), "101");
    EXPECT_EQ(marks({5, 7, 12}), "999") << "the check forgets the GSA";
    gsa("05,12,,,,,,,,,,");
    gsa("65,66,,,,,,,,,,88");  // two GSA sentences count 24 fields, of which a record has 12
    EXPECT_EQ(marks({5, 66, 88}), "011");
    gsa("05,12,,,,,,,,,,88");
    EXPECT_EQ(marks({}), "");
    EXPECT_EQ(marks({5, 88}), "99") << "a check of nothing forgets it too";
    gsa("65,12", ",");
    EXPECT_EQ(marks({65, 12, 88}), "110") << "88 is still in the record, behind the two that were read";
}

TEST_F(Satellites, AreNotMarkedWhenThereAreTooMany) {
    gsa("05,12,,,,,,,,,,");
    inView.SatView = 128;
    manager.checkGsvStatus(&inView, &used);
    manager.checkGsvStatus(nullptr, &used);
    EXPECT_THAT(log.texts(), testing::ElementsAre("GpsParseNmeaManager::checkGsvStatus() SatNum Over!\n",
                                                  "GpsParseNmeaManager::checkGsvStatus() Argument Error"));
    EXPECT_EQ(marks({5, 7}), "10") << "the GSA is kept for the next check";
}

}  // namespace
