#include "Gps/private/Production/GpsProductionManager.h"
#include "Gps/private/Version/GpsVersionManager.h"
#include "tests/library/controller/ControllerTest.h"
#include "tests/library/services/SharedState.h"
#include "tests/support/Messages.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(ProductionAnswer, MissingArgumentsAndUnknownTypesChangeNothing) {
    GpsProductionManager manager;
    Listener listener("L");
    const LogCapture log;
    manager.setRequestType(REQUEST_TYPE_COLD_START);
    EXPECT_FALSE(manager.switchGpsProductionResponse(kAck.data(), 0, &listener));
    for (const char* const data : {static_cast<const char*>(nullptr), kAck.data()}) {
        Listener* const to = data == nullptr ? &listener : nullptr;
        EXPECT_FALSE(
            manager.switchGpsProductionResponse(data, 4, to) || manager.parseGpsProductionData(data, to, 100) ||
            manager.parseGpsProductionDataMonPt(data, to, 100) || manager.parseGpsProductionDataMonPt2(data, to, 100));
    }
    EXPECT_TRUE(manager.switchGpsProductionResponse(kAck.data(), 10, &listener));
    EXPECT_THAT(listener.take(), ElementsAre("L:cold start yes"));
    manager.setRequestType(static_cast<RequestType>(77));
    EXPECT_TRUE(manager.switchGpsProductionResponse(kAck.data(), 10, &listener));
    EXPECT_FALSE(GpsVersionManager().requestGpsVersionInfo(nullptr));
    EXPECT_THAT(textsOf(log.lines()),
                ElementsAre("GpsProductionManager::switchGpsProductionResponse() unknown RequestType\n",
                            "GpsVersionManager::requestGpsVersionInfo() Argument Error"));
}

constexpr unsigned char kMonPt = 0x20;
constexpr unsigned char kMonPt2 = 0x2B;

/** Offers the first `length` bytes, after which nothing may be read. */
bool parse(const std::string& frame, std::size_t length, Listener& listener) {
    const std::vector<char> exact(frame.begin(), frame.begin() + static_cast<std::ptrdiff_t>(length));
    return GpsProductionManager().parseGpsProductionData(exact.data(), &listener, static_cast<unsigned>(length));
}

/** A MonPt2 payload with so many entries. */
std::string monPt2(unsigned char first, unsigned char second) {
    std::string payload(24 + 28 * first + 36 * second, '\0');
    payload[2] = static_cast<char>(first);
    payload[3] = static_cast<char>(second);
    return payload;
}

TEST(ProductionResult, FrameTooShortForWhatItAnnouncesIsRefused) {
    const std::string start = "GpsProductionManager::parseGpsProductionData() : ";
    const struct {
        unsigned char id;
        std::string payload;
        std::string text;
    } cases[] = {
        {kMonPt, std::string(52, '\0'), start + "parseGpsProductionDataMonPt() = false\n"},
        {kMonPt2, monPt2(0, 0), start + "parseGpsProductionDataMonPt2() = false\n"},
        {kMonPt2, monPt2(255, 255), start + "parseGpsProductionDataMonPt2() = false\n"},
    };
    Listener listener("L");
    for (const auto& row : cases) {
        const std::string frame = ubxFrame(0x0A, row.id, row.payload);
        const std::size_t end = frame.size() - 2;  // of the payload
        const LogCapture log;
        Texts expected;
        for (std::size_t length = 4; length < end; ++length) {
            EXPECT_FALSE(parse(frame, length, listener)) << length;
            expected.push_back(row.text);
        }
        for (std::size_t announced = 0; announced < 0x10000;
             announced += announced < 70 ? 1 : 97) {  // with all bytes of the frame present
            if (announced >= row.payload.size() && announced <= row.payload.size() + 2) continue;
            std::string other = frame;
            other[4] = static_cast<char>(announced);
            other[5] = static_cast<char>(announced >> 8);
            EXPECT_FALSE(parse(other, other.size(), listener)) << announced;
            expected.push_back(row.text);
        }
        EXPECT_THAT(listener.take(), IsEmpty());
        for (std::size_t length = end; length <= frame.size(); ++length) {
            EXPECT_TRUE(parse(frame, length, listener)) << length;
        }
        EXPECT_EQ(listener.take().size(), 3u);
        EXPECT_EQ(textsOf(log.lines()), expected);
    }
}

TEST(ProductionResult, ParsersRefuseOtherFrames) {
    Listener listener("L");
    const auto expect = [&](auto parser, const std::string& start, const std::string& text) {
        GpsProductionManager manager;
        const LogCapture log;
        EXPECT_FALSE((manager.*parser)((start + std::string(96, '\0')).data(), &listener, 100));
        EXPECT_THAT(textsOf(log.lines()), ElementsAre(text));
    };
    expect(&GpsProductionManager::parseGpsProductionDataMonPt, "\xB5\x63\x0A\x20",
           "GpsProductionManager:parseGpsProductionDataMonPt() Header Error [b5][63]\n");
    expect(&GpsProductionManager::parseGpsProductionDataMonPt, "\xB5\x62\x0A\x2B",
           "GpsProductionManager::parseGpsProductionDataMonPt() ID Error [0a][2b]\n");
    expect(&GpsProductionManager::parseGpsProductionDataMonPt2, "\x01\x62\x0A\x2B",
           "GpsProductionManager::parseGpsProductionDataMonPt2() Header Error [01][62]\n");
    expect(&GpsProductionManager::parseGpsProductionDataMonPt2, "\xB5\x62\xFF\x2B",
           "GpsProductionManager::parseGpsProductionDataMonPt2() ID Error [ff][2b]\n");
    EXPECT_THAT(listener.take(), IsEmpty());
}

}  // namespace
