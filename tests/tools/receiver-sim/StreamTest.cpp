#include <gtest/gtest.h>

#include "LogReplay.h"
#include "Ubx.h"

namespace {

using namespace sim;

std::vector<std::string> epochsOf(const std::string& log) {
    LogReplay replay(log);
    std::vector<std::string> epochs;
    while (!replay.isAtEnd()) {
        std::string bytes;
        for (const PortAction& action : replay.takeEpoch())
            bytes += action.bytes;
        epochs.push_back(bytes);
    }
    return epochs;
}

TEST(LogReplay, BeginsAnEpochAtEveryRmcButTheFirst) {
    const std::string rmc = "$GNRMC,1*00\r\n";
    const std::string gga = "$GPGGA,1*00\r\n";
    const std::string frame = ubxFrame({1, 7}, rmc);
    const struct {
        std::string log;
        std::vector<std::string> epochs;
    } cases[] = {
        {"", {}},
        {"cut off*00\r\n", {"cut off*00\r\n"}},
        {gga + gga, {gga + gga}},
        {gga + rmc + gga + rmc, {gga + rmc + gga, rmc}},
        {rmc + rmc, {rmc, rmc}},
        {rmc + frame + "\xB5" + rmc + "$GPRMC,cut", {rmc + frame + "\xB5", rmc + "$GPRMC,cut"}},
        {rmc + "$GPRM" + rmc, {rmc + "$GPRM", rmc}},
    };
    for (const auto& [log, epochs] : cases)
        EXPECT_EQ(epochsOf(log), epochs) << log;
}

}  // namespace
