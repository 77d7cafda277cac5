#include <gmock/gmock.h>

#include <numeric>

#include "NmeaSupport.h"
#include "tests/support/LogCapture.h"

namespace {

using Ids = std::vector<unsigned int>;

Ids range(unsigned int first, unsigned int last) {
    Ids ids(last + 1 - first);
    std::iota(ids.begin(), ids.end(), first);
    return ids;
}

/** Satellites in view over several messages, and the marks of those in use. */
class Satellites : public testing::Test {
protected:
    bool gsv(unsigned int total, unsigned int number, unsigned int view, const Ids& ids) {
        std::string body = "GPGSV," + std::to_string(total) + "," + std::to_string(number) + "," + std::to_string(view);
        for (const unsigned int id : ids)
            body += "," + std::to_string(id) + ",10,20,30";
        return manager.parseGsvSentence(sentence(body).c_str(), registry, 1, &inView, kWgs84, true);
    }
    /** A cycle of ten satellites in three messages, the last of which carries more than the cycle has. */
    bool cycleOfTen(unsigned int lastMessage = 3) {
        bool result = true;
        for (unsigned int number = 1; number <= lastMessage; ++number)
            result = gsv(3, number, 10, range(4 * number - 3, 4 * number)) && result;
        return result;
    }
    /** `end` closes the twelve satellites, or cuts them. */
    void gsa(const std::string& satellites, const char* end = ",1.0,2.0,3.0*00") {
        const std::string text = "$GPGSA,A,3," + satellites + end;
        manager.parseGsaSentence(text.c_str(), registry, 1, &used, kWgs84, true);
    }
    Ids idsInTable(unsigned int count) const {
        Ids ids;
        for (unsigned int i = 0; i < count; ++i)
            ids.push_back(inView.Sat[i].SatID);
        return ids;
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

TEST_F(Satellites, AreDeliveredOnceAfterTheLastMessageOfTheirCycle) {
    EXPECT_TRUE(cycleOfTen(2));
    EXPECT_EQ(listener.kinds(), "");
    EXPECT_TRUE(gsv(3, 3, 10, {9, 10, 11, 12}));
    EXPECT_EQ(listener.kinds(), "GSV");
    EXPECT_EQ(idsInTable(12), (Ids{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 0, 0}));

    for (const unsigned int first : {11U, 21U}) {  // whole messages
        EXPECT_TRUE(gsv(2, 1, 8, range(first, first + 3)));
        EXPECT_TRUE(gsv(2, 2, 8, range(first + 4, first + 7)));
        EXPECT_EQ(idsInTable(8), range(first, first + 7));
    }
    EXPECT_TRUE(gsv(1, 1, 0, {}));
    EXPECT_EQ(listener.last("GSV"), "1 1 1 0 ");
    EXPECT_EQ(listener.kinds(), "GSV GSV GSV GSV");
    EXPECT_EQ(idsInTable(1), Ids{21}) << "what a cycle does not reach stays";
}

TEST_F(Satellites, OfABrokenCycleDoNotSpoilTheNext) {
    EXPECT_TRUE(cycleOfTen(2));
    inView = {};
    EXPECT_TRUE(cycleOfTen());
    EXPECT_EQ(idsInTable(10), range(1, 10));
    EXPECT_TRUE(gsv(2, 2, 6, {35, 36}));  // its first message was lost
    EXPECT_EQ(idsInTable(10), (Ids{1, 2, 3, 4, 35, 36, 7, 8, 9, 10}));
}

TEST_F(Satellites, OutsideTheTableAreRefused) {
    const std::string tooMany = "GpsParseNmeaManager::parseGsvSentence()  over GPS_MAX_SATELLITE_RECEIVE_NUM\n";
    const std::string indexOver = "GpsParseNmeaManager::parseGsvSentence() Index Over!\n";
    const struct {
        unsigned int total, number, view;
        bool result;
        std::vector<std::string> log;
    } cases[] = {{33, 0, 4, false, {indexOver}}, {33, 33, 128, false, {indexOver}}, {33, 0, 0, true, {}},
                 {33, 32, 128, true, {}},        {32, 32, 128, true, {}},           {33, 1, 129, false, {tooMany}},
                 {1, ~0U, 4, false, {indexOver}}};
    for (const auto& c : cases) {
        manager = GpsParseNmeaManager();
        EXPECT_EQ(gsv(c.total, c.number, c.view, range(1, 4)), c.result) << c.number << "," << c.view;
        EXPECT_EQ(log.texts(), c.log) << c.number << "," << c.view;
        log.take();
    }
    EXPECT_TRUE(gsv(3, 1, 4, range(1, 4)));
    inView = {};
    EXPECT_TRUE(gsv(3, 2, 4, range(5, 8)));
    EXPECT_EQ(inView.Sat[4].SatID, 0) << "four are stored: nothing more is read";
}

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
    EXPECT_THAT(log.texts(), testing::ElementsAre("GpsParseNmeaManager::checkGsvStatus() SatNum Over!\n"));
    EXPECT_EQ(marks({5, 7}), "10") << "the GSA is kept for the next check";
}

}  // namespace
