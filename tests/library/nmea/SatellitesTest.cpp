#include <gmock/gmock.h>

#include "NmeaSupport.h"
#include "tests/support/LogCapture.h"

namespace {

TEST(SatellitesInUse, AreMarkedOnceByTheSentencesThatFitOneRecord) {
    LogCapture log;
    GpsParseNmeaManager manager;
    Recorder listener;
    const GPS_PARSE_NMEA_LISTENER_LIST registry[] = {{&listener, kWgs84}};
    GPGSA used = {};
    const auto gsa = [&](const std::string& satellites) {
        const std::string text = sentence("GPGSA,A,3," + satellites + ",1.0,2.0,3.0");
        manager.parseGsaSentence(text.c_str(), registry, 1, &used, kWgs84, true);
    };
    const auto marks = [&](std::initializer_list<unsigned char> ids) {
        GPGSV inView = {};
        for (const unsigned char id : ids)
            inView.Sat[inView.SatView++] = {id, 9, 0, 0, 0};
        manager.checkGsvStatus(&inView, &used);
        std::string text;
        for (unsigned int i = 0; i < inView.SatView; ++i)
            text += std::to_string(inView.Sat[i].Used);
        return text;
    };
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
    EXPECT_THAT(log.texts(), testing::IsEmpty());

    gsa("05,12,,,,,,,,,,");
    GPGSV tooMany = {};
    tooMany.SatView = 128;
    manager.checkGsvStatus(&tooMany, &used);
    manager.checkGsvStatus(nullptr, &used);
    EXPECT_THAT(log.texts(), testing::ElementsAre("GpsParseNmeaManager::checkGsvStatus() SatNum Over!\n",
                                                  "GpsParseNmeaManager::checkGsvStatus() Argument Error"));
    EXPECT_EQ(marks({5, 7}), "10") << "the GSA is kept for the next check";
}

}  // namespace
