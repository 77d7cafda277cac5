#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "Program.h"

namespace {

using namespace std::string_literals;

/** The line for a raw sentence without characters that JSON escapes. */
std::string rawLine(const std::string& body) {
    std::string text = sentence(body);
    text.resize(text.size() - 2);
    return R"({"event":"notifyReceiveNmeaSentence","sentence":")" + text + R"(\u000d\u000a"})" + "\n";
}

/** Bytes that follow each other: 1, 2, 3 and so on. */
std::string countingBytes(unsigned count) {
    std::string bytes(count, '\0');
    std::iota(bytes.begin(), bytes.end(), '\1');
    return bytes;
}

TEST(Events, ShowEveryRecordAfterItsRawSentence) {
    const struct {
        std::string body;
        std::string line;
    } cases[] = {
        {"GPGGA,123519.50,3539.12345,S,13944.5,W,2,08,0.9,-5.25,M,46.9,M,7,0123",
         R"({"event":"notifyParseGgaSentence","SatType":1,"Hour":12,"Minute":35,"Second":19,"MilliSecond":50,)"
         R"("Lat":-3539.12345,"LatDeg":-35,"LatMin":39.1234,"Lon":-13944.5,"LonDeg":-139,"LonMin":44.5,)"
         R"("Quality":2,"SatView":8,"HDOP":0.9,"Alt":-5.25,"Geo":46.9,"DGPS_Age":7,"DGPS_ID":123})"},
        {"GNGLL,0030.0,S,00000.0,E,010203.004,A,D",
         R"({"event":"notifyParseGllSentence","SatType":4,"Lat":-30.0,"LatDeg":0,"LatMin":30.0,"Lon":0.0,"LonDeg":0,)"
         R"("LonMin":0.0,"Hour":1,"Minute":2,"Second":3,"MilliSecond":4,"Status":1,"Mode":2})"},
        {"GLGSA,M,3,01,2,,,,,,,,,,255,2.5,1e2,1e-7",
         R"({"event":"notifyParseGsaSentence","SatType":2,"SentenceNum":1,"OperationMode":1,"FixType":3,)"
         R"("SatUsed":[1,2,0,0,0,0,0,0,0,0,0,255],"PDOP":2.5,"HDOP":100.0,"VDOP":1e-07})"},
        {"GAGSV,1,1,02,05,40,083,46,300,-1,359,",
         R"({"event":"notifyParseGsvSentence","SatType":3,"MessageTotal":1,"MessageNum":1,"SatView":2,"Sat":[)"
         R"({"SatID":5,"Used":0,"Elevation":40,"SNR":46,"Azimuth":83},)"
         R"({"SatID":44,"Used":0,"Elevation":255,"SNR":0,"Azimuth":359}]})"},
        {"GPGSV,1,1,00",
         R"({"event":"notifyParseGsvSentence","SatType":1,"MessageTotal":1,"MessageNum":1,"SatView":0,"Sat":[]})"},
        {"GPRMC,000000,V,,S,,E,,,010203,3.5,W,N",
         R"({"event":"notifyParseRmcSentence","SatType":1,"Hour":0,"Minute":0,"Second":0,"MilliSecond":0,"Status":0,)"
         R"("Lat":-0.0,"LatDeg":0,"LatMin":0.0,"Lon":0.0,"LonDeg":0,"LonMin":0.0,"Speed":0.0,"Dir":0.0,)"
         R"("Year":3,"Month":2,"Day":1,"MagDec":-3.5,"Mode":0})"},
        {"GPVTG,nan,T,inf,M,-1e999,N,0.1,K,E",
         R"({"event":"notifyParseVtgSentence","SatType":1,"Dir":null,"MagDir":null,"SpeedKnot":null,)"
         R"("SpeedKMH":0.1,"Mode":3})"},
        {"GPZDA,235959.999,31,12,2026,-09,30",
         R"({"event":"notifyParseZdaSentence","SatType":1,"Hour":23,"Minute":59,"Second":59,"MilliSecond":999,)"
         R"("Year":2026,"Month":12,"Day":31,"LocalHour":65527,"LocalMinute":30})"},
        {"PUBX,00,081350.00,4717.1,N,00833.9,E,546.5,G3,2.1,2.0,0.007,77.52,-0.5,,0.92,1.19,0.77,9,0,1",
         R"({"event":"notifyParsePubxSentence","MessageID":0,"Hour":8,"Minute":13,"Second":50,"MilliSecond":0,)"
         R"("Lat":4717.1,"LatDeg":47,"LatMin":17.1,"Lon":833.9,"LonDeg":8,"LonMin":33.9,"AltRef":546.5,"Status":3,)"
         R"("hacc":2.1,"vacc":2.0,"Speed":0.007,"Dir":77.52,"vVel":-0.5,"DGPS_Age":0,"HDOP":0.92,"VDOP":1.19,)"
         R"("TDOP":0.77,"SatView":9,"DR_MODE":1})"},
    };
    for (const auto& [body, line] : cases)
        EXPECT_EQ(runDecode({}, sentence(body)).out, rawLine(body) + line + "\n");
}

TEST(Events, ShowAntennaAndProductionChunksWithoutRawSentence) {
    const struct {
        std::string chunk;
        std::string line;
    } cases[] = {
        {sentence("GPTXT,01,01,02,ANTSTATUS=OK"), R"({"event":"notifyGpsConnectionStatus","status":0})"},
        {sentence("GNTXT,01,01,02,ANTSTATUS=SHORT"), R"({"event":"notifyGpsConnectionStatus","status":2})"},
        {sentence("GPTXT,01,01,02,ANTSTATUS=INIT"), ""},
        {sentence("GPTXT"), ""},
        {frame(0x0A, 0x20, countingBytes(52)),
         R"({"event":"notifyReceiveGpsProductionData","ptValue4":134678021,"ptValue20":98673,"ptValue24":115121,)"
         R"("ptValue34":36,"ptValue36":38,"ptValue40":741026345,"ptValue48":875770417,"ptValue39":40,)"
         R"("ptValue32":0.13331596086})"},
        {frame(0x0A, 0x20, countingBytes(51)), ""},
        {frame(0x0A, 0x2B, "\0\0\0\0"s + countingBytes(20)),
         R"({"event":"notifyReceiveGpsProductionCheckData","checkValid":1,"pt2Value12":202050057,)"
         R"("pt2Value16":269422093,"pt2Value20":336794129,"pt2FirstEntry0":0,"pt2Entry4":0,"pt2Entry6":0,)"
         R"("pt2Entry24":0,"pt2Entry25":0,"pt2Entry22":0})"},
        {frame(0x0A, 0x04, "1.00"), ""},
        {frame(0x05, 0x01, "\x06\x01"), ""},
    };
    for (const auto& [chunk, line] : cases) {
        const auto [status, out, err] = runDecode({}, chunk);
        EXPECT_EQ(out, line.empty() ? "" : line + "\n");
        EXPECT_EQ(err, line.empty() ? counts(1, 0, 1, 0) : counts(1, 1, 0, 0)) << chunk;
    }
}

TEST(Events, EndAnEpochWithItsAggregate) {
    const std::string epoch =
        sentence("GPRMC,010203.00,A,3539.0,N,13944.0,E,0.5,90,161126,,,A") + sentence("GPVTG,90,T,,M,0.5,N,0.9,K,A") +
        sentence("GPGGA,010203.00,3539.0,N,13944.0,E,1,2,0.9,5.5,M,4.5,M,,") +
        sentence("GPGSA,A,3,12,,,,,,,,,,,,2.5,1.3,2.1") + sentence("GPGSV,1,1,2,05,40,083,46,12,1,2,3") +
        sentence("GPGLL,3539.0,N,13944.0,E,010203.00,A,A");
    const std::string out = runDecode({}, epoch).out;
    const auto aggregate = nlohmann::ordered_json::parse(out.substr(out.rfind('\n', out.size() - 2)));
    std::vector<std::string> names;
    for (const auto& [name, value] : aggregate.items())
        names.push_back(name);
    EXPECT_EQ(names, (std::vector<std::string>{"event", "Gga", "Gll", "Gsa", "Gsv", "Rmc", "Vtg"}));
    EXPECT_EQ(aggregate["event"], "notifyParseNmeaSentence");
    EXPECT_EQ(aggregate["Gga"]["Alt"], 5.5);
    EXPECT_EQ(aggregate["Gsa"]["SatUsed"].size(), 12U);
    EXPECT_EQ(aggregate["Gsv"]["Sat"].dump(), R"([{"SatID":5,"Used":0,"Elevation":40,"SNR":46,"Azimuth":83},)"
                                              R"({"SatID":12,"Used":1,"Elevation":1,"SNR":3,"Azimuth":2}])");
}

TEST(Events, EscapeWhatJsonCannotHoldAsItIs) {
    const std::string text = sentence(R"(PXYZ,"\/)");
    const std::string out = runDecode({}, text).out;
    EXPECT_EQ(out, R"({"event":"notifyReceiveNmeaSentence","sentence":"$PXYZ,\"\\/*)" + text.substr(10, 2) +
                       R"(\u000d\u000a"})" + "\n");
    EXPECT_EQ(nlohmann::json::parse(out)["sentence"], text);
}

TEST(Delivery, FollowsTheDatumOfReceiverAndListeners) {
    const std::string received = "$GPGGA,123519.00,3539.00000,N,13944.00000,E,1,08,0.90,545.4,M,46.9,M,,*5C\r\n";
    const std::string rebuilt = "$GPGGA,123519.000,3539.19447,N,13943.80618,E,1,08,0.90,545.40,M,46.90,M,0,0000*53\r\n";
    const std::string other = sentence("GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1");
    const std::string broken = "$GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1*00\r\n";
    const struct {
        std::vector<std::string> setup;
        std::string raw;
        std::string latitude;  // of the record
        std::string err;
    } cases[] = {
        {{}, received + other + broken, "3539.0", counts(3, 3, 0, 0)},
        {{"--unfinished"}, received + other + broken, "3539.0", counts(3, 3, 0, 0)},
        {{"--want", "tokyo"}, "", "", counts(3, 0, 3, 0)},
        {{"--base", "tokyo"}, rebuilt + other, "3539.1944661458333", counts(3, 2, 1, 0)},
        {{"--base", "tokyo", "--unfinished"}, rebuilt + other, "3539.1944661458333", counts(3, 2, 1, 0)},
        {{"--base", "tokyo", "--want", "tokyo"}, received + other + broken, "3539.0", counts(3, 3, 0, 0)},
        {{"--base", "tokyo", "--want", "tokyo", "--unfinished"}, "", "", counts(3, 0, 3, 0)},
    };
    for (auto [arguments, raw, latitude, err] : cases) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        const std::string events = runDecode(arguments, received + other + broken).out;
        const std::size_t record = events.find("notifyParseGgaSentence");
        EXPECT_EQ(record == std::string::npos, latitude.empty());
        EXPECT_TRUE(latitude.empty() || events.find("\"Lat\":" + latitude + ",", record) != std::string::npos);
        EXPECT_EQ(events.find("notifyParseGsaSentence") == std::string::npos, raw.empty());
        arguments.push_back("--raw");
        const Outcome outcome = runDecode(arguments, received + other + broken);
        EXPECT_EQ(outcome.out, raw);
        EXPECT_EQ(outcome.err, err);
    }
}

}  // namespace
