#include <gtest/gtest.h>

#include "Decode.h"

namespace {

std::string rmc(const std::string& time, const std::string& position, const std::string& date, char status = 'A') {
    return sentence("GPRMC," + time + "," + status + "," + position + ",0.5,90," + date + ",,,A");
}

std::string gga(const std::string& time, const std::string& position, const std::string& altitude, char quality = '1') {
    return sentence("GPGGA," + time + "," + position + "," + quality + ",08,0.9," + altitude + ",M,46.9,M,,");
}

const std::string kHere = "3030.0,N,01015.0,W";
const std::string kThere = "0030.0,S,00006.0,E";
const std::string kNowhere = ",,,";

std::string point(const std::string& content, const std::string& place = R"(lat="30.500000000" lon="-10.250000000")") {
    return "<trkpt " + place + ">" + content + "</trkpt>\n";
}

std::string segment(const std::string& points) {
    return "<trkseg>\n" + points + "</trkseg>\n";
}

TEST(Gpx, MakesATrackOfTheFixes) {
    const struct {
        const char* what;
        std::string stream;
        std::string track;
        std::string base = "wgs84";
    } cases[] = {
        {"nothing", "", ""},
        {"RMC before GGA", rmc("010203.00", kHere, "161126") + gga("010203.00", kHere, "5.5"),
         segment(point("<ele>5.5</ele><time>2026-11-16T01:02:03Z</time>"))},
        {"GGA before RMC, south and east", gga("010203.5", kThere, "-5.5") + rmc("010203.5", kThere, "161199"),
         segment(
             point("<ele>-5.5</ele><time>1999-11-16T01:02:03.500Z</time>", R"(lat="-0.500000000" lon="0.100000000")"))},
        {"hundredths and thousandths", rmc("000000.05", kHere, "010180") + rmc("000000.125", kHere, "010180"),
         segment(point("<time>1980-01-01T00:00:00.050Z</time>") + point("<time>1980-01-01T00:00:00.125Z</time>"))},
        {"GGA alone", gga("010203", kHere, "5"), segment(point("<ele>5</ele>"))},
        {"GGA after the date was told", rmc("235958", kHere, "161126") + gga("235959", kHere, "5"),
         segment(point("<time>2026-11-16T23:59:58Z</time>") + point("<ele>5</ele><time>2026-11-16T23:59:59Z</time>"))},
        {"GGA after midnight", rmc("235959", kHere, "161126") + gga("000000", kHere, "5"),
         segment(point("<time>2026-11-16T23:59:59Z</time>") + point("<ele>5</ele>"))},
        {"fix lost and found",
         rmc("000001", kHere, "161126") + rmc("000002", kHere, "161126", 'V') + rmc("000003", kHere, "161126"),
         segment(point("<time>2026-11-16T00:00:01Z</time>")) + segment(point("<time>2026-11-16T00:00:03Z</time>"))},
        {"either sentence denies the fix",
         rmc("000001", kHere, "161126", 'V') + gga("000001", kHere, "5") + rmc("000002", kHere, "161126") +
             gga("000002", kNowhere, "", '0'),
         ""},
        {"no time, no date, no such date",
         rmc("", kHere, "161126") + rmc("000001", kHere, "") + rmc("000002", kHere, "321326"),
         segment(point("") + point("") + point(""))},
        {"no such place", rmc("000001", "9900.0,N,00000.0,E", "161126"), ""},
        {"hundredths from a receiver that reports Tokyo", rmc("123519.50", "3539.0,N,13944.0,E", "161126"),
         segment(point("<time>2026-11-16T12:35:19.500Z</time>", R"(lat="35.653241102" lon="139.730103082")")), "tokyo"},
        {"two sentences of a kind at one time", gga("000001", kHere, "1") + gga("000001", kHere, "2"),
         segment(point("<ele>1</ele>") + point("<ele>2</ele>"))},
    };
    for (const auto& [what, stream, track, base] : cases) {
        EXPECT_EQ(decode("--gpx --base " + base, stream).out,
                  "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                  "<gpx version=\"1.1\" creator=\"gps-decode\" xmlns=\"http://www.topografix.com/GPX/1/1\">\n<trk>\n" +
                      track + "</trk>\n</gpx>\n")
            << what;
    }
}

}  // namespace
