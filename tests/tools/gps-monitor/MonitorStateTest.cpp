#include "tools/gps-monitor/model/MonitorState.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tools/gps-monitor/model/LinkStatus.h"

namespace monitor {
namespace {

using std::chrono::milliseconds;
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

std::string usedIds(const Satellites& satellites) {
    std::string ids;
    for (const Satellite& satellite : satellites.inView(kNow)) {
        if (satellite.used) ids += std::to_string(satellite.id) + ' ';
    }
    return ids;
}

TEST(UsedSatellites, AreThoseOfAllTheEpochsSentences) {
    Satellites satellites;
    satellites.apply(inView(SATELLITE_TYPE_GPS, {1, 2, 3, 0}), kNow);
    satellites.apply(inView(SATELLITE_TYPE_GLONASS, {66, 67}), kNow);
    satellites.apply(usedSatellites(1, 1, 3));
    satellites.apply(usedSatellites(2, 67, 0));
    EXPECT_EQ(usedIds(satellites), "1 3 67 ");

    satellites.apply(usedSatellites(1, 2, 3));  // the second sentence of this epoch is still to come
    EXPECT_EQ(usedIds(satellites), "1 2 3 67 ");
    satellites.apply(usedSatellites(1, 2, 3));
    EXPECT_EQ(usedIds(satellites), "2 3 ");
}

TEST(SatellitesInView, AreThoseOfRecentRecordsWithTheirSignalsOfTheLastMinute) {
    Satellites satellites;
    satellites.apply(inView(SATELLITE_TYPE_GLONASS, {66}), kNow - seconds(11));
    GPGSV gsv = inView(SATELLITE_TYPE_GPS, {9, 4});
    gsv.SatView = 100000;
    for (const int age : {80, 59, 57, 1}) {
        gsv.Sat[1].SNR = static_cast<unsigned char>(age % 50);
        satellites.apply(gsv, kNow - seconds(age));
    }
    gsv.SatType = static_cast<SatelliteType>(77);
    satellites.apply(gsv, kNow);
    const auto shown = satellites.inView(kNow);
    ASSERT_EQ(shown.size(), 2u);
    EXPECT_EQ(shown[0].id, 4u);
    EXPECT_EQ(shown[1].id, 9u);
    SignalHistory expected{9, 7, 7};  // one second without a record is bridged, more are not
    expected[58] = 1;
    expected[59] = 0;
    EXPECT_EQ(shown[0].history, expected);
}

TEST(AFix, IsLostWhenTheReceiverReportsItOrIsSilentForTwoEpochs) {
    MonitorState state;
    Clock::time_point now = kNow;
    const auto epoch = [&](int quality) {
        GPGGA gga{};
        gga.Quality = quality;
        apply(state, GPRMC{}, now);
        apply(state, gga, now);
        const auto event = updateFix(state, now);
        now += milliseconds(200);
        return event.value_or("");
    };
    EXPECT_EQ(epoch(0), "");
    EXPECT_EQ(epoch(1), "fix acquired");
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(epoch(1), "");
    EXPECT_EQ(epoch(0), "fix lost");
    now += seconds(7);
    EXPECT_EQ(epoch(1), "fix regained after 7 s");
    EXPECT_EQ(updateFix(state, now + milliseconds(200)), std::nullopt);
    EXPECT_EQ(updateFix(state, now + milliseconds(201)), "fix lost");
    EXPECT_TRUE(state.position) << "the last position is kept";
    EXPECT_EQ(state.log.size(), 4u);
    ASSERT_EQ(state.track.points().size(), 7u);
    EXPECT_TRUE(state.track.points()[6].startsSegment && !state.track.points()[5].startsSegment);
}

TEST(Tracks, KeepTheirShapeWithABoundedNumberOfPoints) {
    Track track;
    for (int i = 0; i < 100000; ++i)
        track.add({i / 1000.0, 0}, i == 50001);
    const auto& points = track.points();
    EXPECT_TRUE(points.size() > 1000 && points.size() < 4000) << points.size();
    EXPECT_EQ(std::count_if(points.begin(), points.end(), [](const TrackPoint& p) { return p.startsSegment; }), 1);
    EXPECT_EQ(points[0].lat, 0);
    EXPECT_GT(points.back().lat, 99.9 / 60);
}

TEST(Requests, AreSettledByTheirNameAndDroppedInTheEnd) {
    MonitorState state;
    addRequest(state, {"A"});
    addRequest(state, {"B"});
    EXPECT_TRUE(settleRequest(state, "A", Answer::refused));
    EXPECT_FALSE(isWaiting(state, "A"));
    EXPECT_TRUE(isWaiting(state, "B"));
    EXPECT_FALSE(settleRequest(state, "A", Answer::acknowledged));
    EXPECT_EQ(state.requests[0].answer, Answer::refused);

    EXPECT_TRUE(settleRequest(state, "B", Answer::unanswered));
    EXPECT_TRUE(settleRequest(state, "B", Answer::acknowledged));  // late
    EXPECT_EQ(state.requests[1].answer, Answer::acknowledged);

    for (int i = 0; i < 5000; ++i) {
        addRequest(state, {std::to_string(i)});
        addLog(state, std::to_string(i), 0);
    }
    EXPECT_TRUE(state.requests.size() <= 1000 && state.requests.back().name == "4999") << "the newest are kept";
    EXPECT_TRUE(state.log.size() <= 500 && state.log.back().text == "4999");
}

TEST(LinkStatuses, GiveTheReasonWhyNothingIsReceived) {
    const auto status = [](const char* device, const char* startMessage, int startAge, int sentenceAge = -1) {
        const auto last = sentenceAge >= 0 ? std::optional(kNow - seconds(sentenceAge)) : std::nullopt;
        const LinkStatus link = linkStatus({device, startMessage, kNow - seconds(startAge), last}, kNow);
        return (link.health == Health::good ? "good: " : link.health == Health::bad ? "bad: " : "unsure: ") + link.text;
    };
    EXPECT_EQ(status("", "", 0), "bad: no receiver: no device named");
    EXPECT_EQ(status("/dev/null", "cannot use it: busy", 0), "bad: no receiver: cannot use it: busy");
    EXPECT_EQ(status("/dev/null", "", 1), "unsure: waiting for /dev/null");
    EXPECT_EQ(status("/dev/null", "", 9), "bad: no data from /dev/null: silent, at another speed, or lines without CR");
    EXPECT_EQ(status("/dev/null", "not about the link", 9, 1), "good: receiving from /dev/null");
    EXPECT_EQ(status("/dev/null", "", 9, 5), "bad: no more data from /dev/null");
    EXPECT_EQ(status("/nonexistent/gps", "", 9, 5), "bad: no receiver: /nonexistent/gps: No such file or directory");
}

}  // namespace
}  // namespace monitor
