#include <bit>
#include <cmath>
#include <limits>

#include "Gps/private/Location/LocationPipeline.h"
#include "Gps/private/Support/DegreesMinutes.h"
#include "tests/library/controller/ControllerTest.h"
#include "tests/support/ScratchDirectory.h"

// Location data: when it is due, what is published, and that it reaches another process.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

timeval at(long ms, long microseconds = 0) {
    constexpr long long kStart = 1000000000000000;
    const long long sum = kStart + ms * 1000LL + microseconds;
    return {static_cast<time_t>(sum / 1000000), static_cast<suseconds_t>(sum % 1000000)};
}

/** Times in milliseconds, and update counters of records that arrive before the poll at that time, or are delivered in
 *  it. */
using Events = std::vector<std::pair<long, unsigned int>>;

class Pipeline : public testing::Test {
protected:
    Pipeline() { mPipeline.reset(at(0)); }

    bool take(unsigned int counter) {
        GPS_LOCATION_DATA_SHARE record = {};
        record.UpdateCounter = counter;
        return mPipeline.take(record);
    }

    unsigned int pop() {
        GPS_LOCATION_DATA_SHARE record = {};
        mPipeline.pop(record);
        return record.UpdateCounter;
    }

    /** Polls every 100 ms, as the worker does, and delivers what is due. */
    Events run(const Events& arrivals) {
        Events deliveries;
        for (long ms = 100; ms <= 4000; ms += 100) {
            for (const auto& [arrivalMs, counter] : arrivals) {
                if (arrivalMs == ms) take(counter);
            }
            if (!mPipeline.isDue(at(ms))) continue;
            mPipeline.noteDelivery(at(ms));
            deliveries.emplace_back(ms, pop());
        }
        return deliveries;
    }

    LogCapture mLog;
    LocationPipeline mPipeline;
    unsigned int mCounter = 0;
};

TEST_F(Pipeline, deliversAsThePaceAndTheBacklogWant) {
    const struct {
        const char* name;
        Events arrivals;
        Events deliveries;
    } rows[] = {
        {"the first an interval after the start", {{100, 1}}, {{1000, 1}}},
        {"one that comes later than an interval at once", {{1700, 1}}, {{1700, 1}}},
        {"one a second, a poll late", {{1000, 1}, {2000, 2}, {3000, 3}}, {{1100, 1}, {2200, 2}, {3300, 3}}},
        {"a backlog of two", {{900, 1}, {900, 2}}, {{1000, 1}, {1900, 2}}},
        {"a backlog of three", {{900, 1}, {900, 2}, {900, 3}}, {{1000, 1}, {1500, 2}, {1900, 3}}},
        {"a backlog of four", {{100, 1}, {100, 2}, {100, 3}, {100, 4}}, {{500, 1}, {800, 2}, {900, 3}, {1000, 4}}},
        {"a fifth in the place of the oldest",
         {{100, 1}, {100, 2}, {100, 3}, {100, 4}, {100, 5}},
         {{500, 2}, {800, 3}, {900, 4}, {1000, 5}}},
    };
    for (const auto& row : rows) {
        mPipeline.reset(at(0));
        EXPECT_EQ(run(row.arrivals), row.deliveries) << row.name;
    }
}

TEST_F(Pipeline, creepsFromAHurryBackToFiveMillisecondsOverTheInterval) {
    const auto expectDueFrom = [this](long ms) {
        for (const long time : {ms - 1, ms}) {
            mPipeline.noteDelivery(at(0));
            take(++mCounter);
            EXPECT_EQ(mPipeline.isDue(at(time)), time == ms) << time;
            pop();
        }
    };
    const auto idle = [this](int polls) {
        for (int i = 0; i < polls; ++i)
            EXPECT_FALSE(mPipeline.isDue(at(100000)));
    };
    idle(4);
    expectDueFrom(1004);
    idle(50);
    expectDueFrom(1005);  // never more than five
    mPipeline.noteDelivery(at(0));
    take(++mCounter);
    take(++mCounter);
    EXPECT_FALSE(mPipeline.isDue(at(904)));  // takes 100 ms off
    pop();
    pop();
    idle(30);
    expectDueFrom(935);
}

TEST_F(Pipeline, goesOnWithinAnIntervalWhenTheClockIsSet) {
    for (const long step : {-3600000L, -1500L, -500L, 500L, 3600000L}) {
        mPipeline.reset(at(0));
        take(1);
        ASSERT_TRUE(mPipeline.isDue(at(1000)));
        mPipeline.noteDelivery(at(1000));
        bool isDue = false;
        for (long ms = 1100; ms <= 2100; ms += 100)
            isDue = isDue || mPipeline.isDue(at(ms + step));
        EXPECT_TRUE(isDue) << step;
    }
    mPipeline.noteDelivery(at(0, 999500));
    EXPECT_FALSE(mPipeline.isDue(at(1999, 499))) << "999.999 ms";
    EXPECT_TRUE(mPipeline.isDue(at(1999, 500))) << "1000 ms";
    mPipeline.noteDelivery(at(0));
    EXPECT_TRUE(mPipeline.isDue(at(-1))) << "a millisecond back counts as elapsed";
}

TEST_F(Pipeline, takesOnlyNewerRecordsAndLogsMissedAndDroppedOnes) {
    const unsigned int largest = std::numeric_limits<unsigned int>::max();
    EXPECT_TRUE(!take(0) && take(7)) << "the first is never a drop";
    EXPECT_TRUE(!take(7) && !take(6) && take(8) && take(10) && take(largest));
    EXPECT_FALSE(take(1)) << "not beyond the counter's end";
    EXPECT_EQ(mPipeline.lastUpdateCounter(), largest);
    EXPECT_THAT(mLog.texts(), ElementsAre("- Gps - DATA DROP 8->10 \n", "- Gps - DATA DROP 10->-1 \n"));

    mPipeline.reset(at(0));
    mLog.take();
    EXPECT_TRUE(take(1) && take(2) && take(3) && take(4));
    EXPECT_THAT(mLog.texts(), IsEmpty());
    EXPECT_TRUE(take(6));
    EXPECT_THAT(mLog.texts(), ElementsAre("- Gps - DATA DROP 4->6 \n", "- Gps - QUEUE IS FULL \n"));
    for (const LogCapture::Line& line : mLog.lines())
        EXPECT_EQ(line.file + line.function, "src/Public/Gps/private/GpsControllerMainProc");
}

const std::string kSegment = "/dev/shm/QVSDK_GPS_LocationDataMemory";
constexpr int kRecord = 8;  // where the segment's record begins

using Publication = ControllerTest;

TEST_F(Publication, carriesEveryFieldAndLeavesTheRestOfTheRecord) {
    Listener listener("L");
    mController->registerGpsLocationDataListener(&listener);
    mController->stop();
    mLog.take();
    const auto publish = [&](const GPS_LOCATION_SYNC_DATA& location) -> const LOCATION_DATA& {
        EXPECT_TRUE(mController->setLocationData(&location));
        mController->notifyLocationData();
        return listener.location();
    };
    constexpr int kUnwritten[] = {4, 7, 20, 23, 212, 215, 236, 239};  // the reserved word, and gaps
    std::fstream segment(kSegment, std::ios::in | std::ios::out | std::ios::binary);
    for (const int offset : kUnwritten)
        segment.seekp(kRecord + offset).put('\x5A');
    segment.flush();
    GPS_LOCATION_SYNC_DATA location = {};
    location.Gga = {1, 2, 3, 4, 3539.125, -13945.625, -5, 6, 7.5, 8.5, -9.5, 10, -11};
    location.Rmc = {12, 13, 14, 15, 16, -3539.125, 13945.625, 17.5, 18.5, 19, 20, 21, 22.5, 23};
    const double signallingNan = std::bit_cast<double>(0x7FF0DEADBEEF0001);
    location.Pascd = {signallingNan, 0xFFFFFF24, 0xFFFFFF25, 0xDEADBEEF, 0xFEEDFACE, {}, {}};
    for (unsigned int i = 0; i < GPS_PASCD_SAMPLE_NUM; ++i) {
        location.Pascd.ValueA[i] = std::bit_cast<double>(0x7FF0000000000100 + i);
        location.Pascd.ValueB[i] = -static_cast<double>(i);
    }
    EXPECT_FALSE(mController->setLocationData(nullptr));
    EXPECT_THAT(mLog.texts(), ElementsAre("GpsController::setNavigationData() Argument Error\n"));
    const LOCATION_DATA received = publish(location);

    EXPECT_EQ(fields(received.Gga),
              "Hour=1 Minute=2 Second=3 MilliSecond=4 Lat=3539.125 LatDeg=35 LatMin=39.125 Lon=-13945.625 LonDeg=-139 "
              "LonMin=45.625 Quality=-5 SatView=6 HDOP=7.5 Alt=8.5 Geo=-9.5 DGPS_Age=10 DGPS_ID=-11");
    EXPECT_EQ(fields(received.Rmc),
              "Hour=12 Minute=13 Second=14 MilliSecond=15 Status=16 Lat=-3539.125 LatDeg=-35 LatMin=39.125 "
              "Lon=13945.625 LonDeg=139 LonMin=45.625 Speed=17.5 Dir=18.5 Year=19 Month=20 Day=21 MagDec=22.5 Mode=23");
    const PASCD& pascd = received.Pascd;
    EXPECT_EQ(std::memcmp(&pascd.Head1, &location.Pascd.Head1, sizeof(double)), 0);
    EXPECT_EQ(std::tie(pascd.Head2, pascd.Head3, pascd.Head4, pascd.Head5),
              std::make_tuple(0x24, 0x25, 0xDEADBEEF, 0xFEEDFACE));
    for (unsigned int i = 0; i < GPS_PASCD_SAMPLE_NUM; ++i) {
        EXPECT_EQ(std::memcmp(&pascd.Sample[i].ValueA, &location.Pascd.ValueA[i], sizeof(double)), 0) << i;
        EXPECT_EQ(std::memcmp(&pascd.Sample[i].ValueB, &location.Pascd.ValueB[i], sizeof(double)), 0) << i;
    }
    const std::string record = fileContents(kSegment).substr(kRecord);
    for (const int offset : kUnwritten)
        EXPECT_EQ(record[static_cast<std::size_t>(offset)], '\x5A') << offset;
    EXPECT_EQ(record[0], 1) << "the update counter";
    location.Gga.Lat = -1e300;
    location.Gga.Lon = std::nan("");
    const GPGGA nowhere = publish(location).Gga;
    EXPECT_EQ(std::pair(nowhere.LatDeg, nowhere.LonDeg), std::pair(-21474836, 0));
    EXPECT_EQ(truncateToInt(location.Gga.Lon), 0) << "of which a hundredth would be 0 anyway";
    EXPECT_TRUE(nowhere.LatMin > 1e299 && std::isnan(nowhere.LonMin));
    EXPECT_EQ(fileContents(kSegment)[kRecord], 2);
    listener.take();
    segment.seekp(kRecord - 4).put(1).flush();  // as of a process that is killed inside the copy
    mController->notifyLocationData();
    EXPECT_THAT(listener.take(), IsEmpty());
    publish(location);
    EXPECT_THAT(listener.take(), testing::SizeIs(4));
    EXPECT_EQ(fileContents(kSegment)[kRecord], 3) << "the count goes on";
    const GpsController next;
    EXPECT_EQ(fileContents(kSegment), std::string("\x10\x04\0\0", 4) + std::string(1044, '\0')) << "reset";
}

}  // namespace
