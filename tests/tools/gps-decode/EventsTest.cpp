#include <gtest/gtest.h>

#include <numeric>

#include "Decode.h"

namespace {

using namespace std::string_literals;

/** The file holds sentences without "$" and checksum, each followed by the events that it causes. */
TEST(Events, OfAllKindsOfSentencesAreThoseKnown) {
    std::ifstream file(EVENTS);
    std::string stream, events;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with('{')) events += line + "\n";
        if (!line.starts_with('{')) stream += sentence(line);
    }
    EXPECT_EQ(decode("", stream).out, events);
}

/** Bytes that follow each other: 1, 2, 3 and so on. */
std::string countingBytes(unsigned count) {
    std::string bytes(count, '\0');
    std::iota(bytes.begin(), bytes.end(), '\1');
    return bytes;
}

TEST(Events, ShowProductionResults) {
    EXPECT_EQ(decode("", ubxFrame(0x0A, 0x20, countingBytes(52))).out,
              R"({"event":"notifyReceiveGpsProductionData","ptValue4":134678021,"ptValue20":98673,"ptValue24":115121,)"
              R"("ptValue34":36,"ptValue36":38,"ptValue40":741026345,"ptValue48":875770417,"ptValue39":40,)"
              R"("ptValue32":0.13331596086})"
              "\n");
    EXPECT_EQ(decode("", ubxFrame(0x0A, 0x2B, "\0\0\0\0"s + countingBytes(20))).out,
              R"({"event":"notifyReceiveGpsProductionCheckData","checkValid":1,"pt2Value12":202050057,)"
              R"("pt2Value16":269422093,"pt2Value20":336794129,"pt2FirstEntry0":0,"pt2Entry4":0,"pt2Entry6":0,)"
              R"("pt2Entry24":0,"pt2Entry25":0,"pt2Entry22":0})"
              "\n");
    for (const std::string& frame :
         {ubxFrame(0x0A, 0x20, countingBytes(51)), ubxFrame(0x0A, 0x04, "1.00"), ubxFrame(5, 1, "\6\1")}) {
        EXPECT_EQ(decode("", frame).err, counts(1, 0, 1, 0));
    }
}

}  // namespace
