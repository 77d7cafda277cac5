#include "tools/gps-monitor/model/MonitorState.h"

#include <gtest/gtest.h>

#include <cstring>

#include "tools/gps-monitor/model/LinkStatus.h"

namespace monitor {
namespace {

using std::chrono::seconds;

constexpr Clock::time_point kNow{seconds(1000)};

GPGSA usedSatellites(unsigned sentence, unsigned char first, unsigned char second) {
    GPGSA gsa{};
    gsa.SentenceNum = sentence;
    gsa.SatUsed[0] = first;
    gsa.SatUsed[1] = second;
    return gsa;
}

GPGSV inView(SatelliteType system, std::initializer_list<unsigned char> ids) {
    GPGSV gsv{};
    gsv.SatType = system;
    for (const unsigned char id : ids)
        gsv.Sat[gsv.SatView++].SatID = id;
    return gsv;
}

std::string usedIds(const MonitorState& state) {
    std::string ids;
    for (const Satellite& satellite : satellitesInView(state, kNow)) {
        if (satellite.used) ids += std::to_string(satellite.id) + ' ';
    }
    return ids;
}

TEST(UsedSatellites, AreThoseOfAllTheEpochsSentences) {
    MonitorState state;
    apply(state, inView(SATELLITE_TYPE_GPS, {1, 2, 3, 0}), kNow);
    apply(state, inView(SATELLITE_TYPE_GLONASS, {66, 67}), kNow);
    apply(state, usedSatellites(1, 1, 3));
    apply(state, usedSatellites(2, 67, 0));
    EXPECT_EQ(usedIds(state), "1 3 67 ");

    apply(state, usedSatellites(1, 2, 3));  // the second sentence of this epoch is still to come
    EXPECT_EQ(usedIds(state), "1 2 3 67 ");
    apply(state, usedSatellites(1, 2, 3));
    EXPECT_EQ(usedIds(state), "2 3 ");
}

TEST(SatellitesInView, AreThoseOfTheSystemsToldLatelyAndOfTheRecord) {
    MonitorState state;
    apply(state, inView(SATELLITE_TYPE_GLONASS, {66}), kNow - seconds(11));
    GPGSV gsv = inView(SATELLITE_TYPE_GPS, {9, 4});
    gsv.SatView = 100000;
    apply(state, gsv, kNow - seconds(1));
    gsv.SatType = static_cast<SatelliteType>(77);
    apply(state, gsv, kNow);
    const auto satellites = satellitesInView(state, kNow);
    ASSERT_EQ(satellites.size(), 2u);
    EXPECT_EQ(satellites[0].id, 4u);
    EXPECT_EQ(satellites[1].id, 9u);
}

TEST(Requests, AreSettledByTheirNameAndForgottenInTheEnd) {
    MonitorState state;
    addRequest(state, "A");
    addRequest(state, "B");
    EXPECT_TRUE(settleRequest(state, "A", Answer::refused));
    EXPECT_FALSE(isWaiting(state, "A"));
    EXPECT_TRUE(isWaiting(state, "B"));
    EXPECT_FALSE(settleRequest(state, "A", Answer::acknowledged));
    EXPECT_EQ(state.requests[0].answer, Answer::refused);

    EXPECT_TRUE(settleRequest(state, "B", Answer::unanswered));
    EXPECT_TRUE(settleRequest(state, "B", Answer::acknowledged));  // late
    EXPECT_EQ(state.requests[1].answer, Answer::acknowledged);

    for (int i = 0; i < 1000; ++i) {
        addRequest(state, std::to_string(i));
        addLog(state, std::to_string(i));
    }
    EXPECT_TRUE(state.requests.size() <= 100 && state.requests.back().name == "999") << "the newest are kept";
    EXPECT_TRUE(state.log.size() <= 500 && state.log.back() == "999");
}

TEST(LinkStatuses, SayWhyNothingIsReceived) {
    const std::optional<Clock::time_point> never;
    const struct {
        const char* device;
        const char* startMessage;
        int startAge;
        std::optional<int> sentenceAge;
        Health health;
        const char* text;
    } cases[] = {
        {"", "", 0, {}, Health::bad, "no receiver: no device named"},
        {"/dev/null", "cannot use it: busy", 0, {}, Health::bad, "no receiver: cannot use it: busy"},
        {"/dev/null", "", 1, {}, Health::unsure, "waiting for /dev/null"},
        {"/dev/null", "", 9, {}, Health::bad, "no data from /dev/null: silent, or at another speed"},
        {"/dev/null", "not about the link", 9, 1, Health::good, "receiving from /dev/null"},
        {"/dev/null", "", 9, 5, Health::bad, "no more data from /dev/null"},
        {"/nonexistent/gps", "", 9, 5, Health::bad, "no receiver: /nonexistent/gps: No such file or directory"},
    };
    for (const auto& [device, startMessage, startAge, sentenceAge, health, text] : cases) {
        const auto last = sentenceAge ? std::optional(kNow - seconds(*sentenceAge)) : never;
        const LinkStatus status = linkStatus({device, startMessage, kNow - seconds(startAge), last}, kNow);
        EXPECT_EQ(status.text, text);
        EXPECT_EQ(status.health, health) << text;
    }
}

}  // namespace
}  // namespace monitor
