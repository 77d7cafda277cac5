#include <gmock/gmock.h>

#include <bit>
#include <cmath>
#include <random>

#include "NmeaSupport.h"
#include "tests/support/LogCapture.h"

namespace {

using Manager = GpsParseNmeaManager;

/** The regenerated sentence; nothing, and the outputs left alone, when the writer refuses. */
template <class Record>
std::string regenerated(bool (Manager::*writer)(Record*, double, double, char*, unsigned int*), Record record,
                        double lat, double lon) {
    std::vector<char> out(255, '#');
    unsigned int size = 7777;
    Manager manager;
    if ((manager.*writer)(&record, lat, lon, out.data(), &size)) {
        EXPECT_TRUE(size == 255 || out[size] == '#') << "no NUL";
        return {out.data(), size};
    }
    EXPECT_EQ(out, std::vector<char>(255, '#'));
    EXPECT_EQ(size, 7777U);
    return "";
}

std::mt19937_64 numbers(4);

template <class Integer>
void randomise(Integer& value) {
    value = static_cast<Integer>(static_cast<Integer>(numbers()) >> (numbers() % (8 * sizeof(Integer))));
}

/** Of any magnitude now and then, so that sentences come out on both sides of the longest. */
template <>
void randomise(double& value) {
    value = std::uniform_real_distribution<double>(-20000, 20000)(numbers);
    if (numbers() % 16 == 0) value = std::bit_cast<double>(numbers());
}

/** What printf makes of the values, with the checksum; nothing when that is longer than 255 characters. */
template <class... Values>
std::string printedSentence(const char* format, Values... values) {
    std::vector<char> text(8000);
    std::snprintf(text.data(), text.size(), format, values...);
    const std::string whole = sentence(text.data());
    return whole.size() <= 255 ? whole : "";
}

TEST(RebuiltSentences, ReadAsPrintfWritesThem) {
    LogCapture log;
    unsigned int fitting = 0;
    for (unsigned int round = 0; round < 20000; ++round) {
        double lat, lon;
        randomise(lat), randomise(lon);
        const double latitude = std::fabs(lat), longitude = std::fabs(lon);
        const char* const ns = lat < 0 ? "S" : "N";
        const char* const ew = lon < 0 ? "W" : "E";

        GPGGA a = {};
        for (auto* field : {&a.Quality, &a.SatView, &a.DGPS_Age, &a.DGPS_ID})
            randomise(*field);
        for (auto* field : {&a.HDOP, &a.Alt, &a.Geo})
            randomise(*field);
        for (auto* field : {&a.Hour, &a.Minute, &a.Second, &a.MilliSecond})
            randomise(*field);
        const std::string gga = regenerated(&Manager::regeneratedGga, a, lat, lon);
        fitting += !gga.empty();
        ASSERT_EQ(gga, printedSentence("GPGGA,%02d%02d%02d.%03d,%9.5f,%s,%10.5f,%s,%d,%02d,%.2f,%.2f,M,%.2f,M,%d,%04d",
                                       a.Hour, a.Minute, a.Second, a.MilliSecond, latitude, ns, longitude, ew,
                                       a.Quality, a.SatView, a.HDOP, a.Alt, a.Geo, a.DGPS_Age, a.DGPS_ID));

        PUBX p = {};
        for (auto* field : {&p.MessageID, &p.SatView, &p.DR_MODE})
            randomise(*field);
        for (auto* field : {&p.AltRef, &p.hacc, &p.vacc, &p.Speed, &p.Dir, &p.vVel, &p.HDOP, &p.VDOP, &p.TDOP})
            randomise(*field);
        randomise(p.MilliSecond);
        ASSERT_EQ(regenerated(&Manager::regeneratedPubx, p, lat, lon),
                  printedSentence("PUBX,%02d,000000.%02d,%9.5f,%s,%10.5f,%s,%7.3f,NF,%3.1f,%3.1f,%5.3f,%5.2f,%5.3f,,"
                                  "%4.2f,%4.2f,%4.2f,%d,,%d",
                                  p.MessageID, p.MilliSecond, latitude, ns, longitude, ew, p.AltRef, p.hacc, p.vacc,
                                  p.Speed, p.Dir, p.vVel, p.HDOP, p.VDOP, p.TDOP, p.SatView, p.DR_MODE));
    }
    EXPECT_GT(fitting, 5000U);
    EXPECT_LT(fitting, 19000U);
}

TEST(RebuiltSentences, ThatAreTooLongAreRefused) {
    LogCapture log;
    EXPECT_EQ(regenerated(&Manager::regeneratedGga, GPGGA{}, 1e308, 0), "");
    EXPECT_EQ(regenerated(&Manager::regeneratedGll, GPGLL{}, 0, -1e308), "");
    EXPECT_EQ(regenerated(&Manager::regeneratedRmc, GPRMC{}, 1e308, 0), "");
    EXPECT_EQ(regenerated(&Manager::regeneratedPubx, PUBX{}, 1e308, 0), "");
    EXPECT_THAT(log.texts(), testing::ElementsAre("GpsParseNmeaManager::regeneratedGga() Size Error!\n",
                                                  "GpsParseNmeaManager::regeneratedGll() Size Error!\n",
                                                  "GpsParseNmeaManager::regeneratedRmc() Size Error!\n",
                                                  "GpsParseNmeaManager::regeneratedPubx() Size Error!\n"));
}

}  // namespace
