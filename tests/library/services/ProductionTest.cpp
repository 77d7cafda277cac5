#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "Gps/private/Production/GpsProductionManager.h"
#include "Gps/private/Version/GpsVersionManager.h"
#include "tests/library/services/MemoryReceiver.h"
#include "tests/library/services/SharedState.h"

namespace {

using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;
TEST(ProductionRequest, AwaitsItsAnswerOnceItsBytesAreSent) {
    const auto failureOf = [](const std::string& request, const std::string& callee = "sendData") {
        return "GpsProductionManager::" + request + "() : " + callee + "() = false\n";
    };
    const std::string reset = ubxFrame(6, 4, "\xFF\x87\4\0"s);
    using Manager = GpsProductionManager;
    const struct {
        bool (Manager::*request)();
        std::string sent;
        RequestType awaited;
        Texts failure;
    } cases[] = {
        {&Manager::requestSwitchGpsProductionMode,
         "\xB5\x62\6\x45\x14\0\0\0\0\0\0\1\0\0\1\0\x1E\0\xE8\3"s,
         REQUEST_TYPE_SWITCH_PRODUCTION_MODE,
         {failureOf("requestSwitchGpsProductionMode")}},
        {&Manager::requestStartGpsProductionCheck,
         ubxFrame(6, 0x59, "\0\1\xFF\x1E\xE8\3\0\0\x64\0\0\0\0\1\0\0"s),
         REQUEST_TYPE_START_PRODUCTION_CHECK,
         {failureOf("requestStartGpsProductionCheck")}},
        {&Manager::requestFinishGpsProductionCheck,
         reset,
         REQUEST_TYPE_NONE,
         {failureOf("requestGpsReset"), failureOf("requestFinishGpsProductionCheck", "requestGpsReset")}},
        {&Manager::requestGpsReset, reset, REQUEST_TYPE_NONE, {failureOf("requestGpsReset")}},
        {&Manager::requestGpsColdStart,
         ubxFrame(6, 4, "\xFF\xFF\2\0"s),
         REQUEST_TYPE_NONE,
         {failureOf("requestGpsColdStart")}},
    };
    for (const auto& row : cases) {
        for (const bool fails : {false, true}) {
            MemoryReceiver receiver;
            receiver.peer().setWriteFails(fails);
            Manager manager;
            EXPECT_EQ(manager.getRequestType(), REQUEST_TYPE_NONE);
            manager.setRequestType(REQUEST_TYPE_COLD_START);
            const LogCapture log;
            EXPECT_NE((manager.*row.request)(), fails);
            EXPECT_EQ(receiver.peer().written(), fails ? "" : row.sent);
            EXPECT_EQ(manager.getRequestType(), fails ? REQUEST_TYPE_NONE : row.awaited);
            EXPECT_EQ(textsOf(log), fails ? row.failure : Texts());
        }
    }
}

TEST(ProductionRequest, IsAnsweredEvenBeforeSendingHasReturned) {
    GpsProductionManager manager;
    Listener listener;
    MemoryReceiver receiver([&](const char* data, unsigned length) {
        EXPECT_TRUE(manager.switchGpsProductionResponse(data, length, &listener));
    });
    receiver.peer().setWriteHook([&](std::string_view) { receiver.send(answer(true)); });
    EXPECT_TRUE(manager.requestSwitchGpsProductionMode());
    EXPECT_TRUE(manager.requestStartGpsProductionCheck());
    EXPECT_THAT(listener.told, ElementsAre("mode yes", "check yes"));
}

TEST(ProductionAnswer, IsReportedByTheTypeOfTheLastRequest) {
    const struct {
        int type;
        Texts told;
        Texts texts;
    } cases[] = {
        {REQUEST_TYPE_SWITCH_PRODUCTION_MODE, {"mode yes", "mode no"}, {}},
        {REQUEST_TYPE_START_PRODUCTION_CHECK, {"check yes", "check no"}, {}},
        {REQUEST_TYPE_COLD_START, {"cold start yes", "cold start no"}, {}},
        {REQUEST_TYPE_NONE, {}, {}},
        {77, {}, {2, "GpsProductionManager::switchGpsProductionResponse() unknown RequestType\n"}},
    };
    for (const auto& row : cases) {
        GpsProductionManager manager;
        manager.setRequestType(static_cast<RequestType>(row.type));
        Listener listener;
        const LogCapture log;
        for (const bool acknowledged : {true, false}) {
            EXPECT_TRUE(manager.switchGpsProductionResponse(answer(acknowledged).data(), 10, &listener));
        }
        EXPECT_EQ(listener.told, row.told);
        EXPECT_EQ(textsOf(log), row.texts);
        EXPECT_EQ(manager.getRequestType(), row.type) << "until the next request";
    }
}

TEST(ProductionAnswer, ThatIsNoneEndsTheWaiting) {
    GpsProductionManager manager;
    Listener listener;
    for (const std::string& frame : {ubxFrame(5, 2, "12"), ubxFrame(6, 1, "12"), "\xB5\x62\5"s, "\xB5\x63\5\1"s}) {
        manager.setRequestType(REQUEST_TYPE_START_PRODUCTION_CHECK);
        const LogCapture log;
        const std::vector<char> exact(frame.begin(), frame.end());
        const auto length = static_cast<unsigned>(exact.size());
        EXPECT_FALSE(manager.switchGpsProductionResponse(exact.data(), length, &listener));
        EXPECT_EQ(manager.getRequestType(), REQUEST_TYPE_NONE);
        EXPECT_THAT(textsOf(log),
                    ElementsAre("GpsProductionManager::switchGpsProductionResponse() unknown response\n"));
    }
    EXPECT_THAT(listener.told, IsEmpty());
}

TEST(ProductionAnswer, NullArgumentsAreRefusedSilentlyAndChangeNothing) {
    GpsProductionManager manager;
    manager.setRequestType(REQUEST_TYPE_START_PRODUCTION_CHECK);
    Listener listener;
    const std::string frame(100, '\0');
    const LogCapture log;
    EXPECT_FALSE(manager.switchGpsProductionResponse(frame.data(), 0, &listener));
    for (const bool isFrameMissing : {true, false}) {
        const char* const data = isFrameMissing ? nullptr : frame.data();
        Listener* const told = isFrameMissing ? &listener : nullptr;
        EXPECT_FALSE(manager.switchGpsProductionResponse(data, 4, told) ||
                     manager.parseGpsProductionData(data, told, 100) ||
                     manager.parseGpsProductionDataMonPt(data, told, 100) ||
                     manager.parseGpsProductionDataMonPt2(data, told, 100));
    }
    EXPECT_THAT(textsOf(log), IsEmpty());
    EXPECT_EQ(manager.getRequestType(), REQUEST_TYPE_START_PRODUCTION_CHECK);
}

constexpr unsigned char kMonPt = 0x20;
constexpr unsigned char kMonPt2 = 0x2B;

/** Offers the first `length` bytes, behind which nothing may be read. */
bool parse(const std::string& frame, std::size_t length, Listener& listener) {
    const std::vector<char> exact(frame.begin(), frame.begin() + static_cast<std::ptrdiff_t>(length));
    return GpsProductionManager().parseGpsProductionData(exact.data(), &listener, static_cast<unsigned>(length));
}

struct Value {
    std::size_t offset, width;
    unsigned value;
};

std::string payloadOf(std::size_t size, const std::vector<Value>& values) {
    std::string payload(size, '\0');
    for (const Value& value : values) {
        for (std::size_t i = 0; i < value.width; ++i) {
            payload[value.offset + i] = static_cast<char>(value.value >> (8 * i));
        }
    }
    return payload;
}

TEST(ProductionResult, MonPtFieldsComeFromTheirPlacesByTheirFactors) {
    const struct {
        std::vector<Value> values;
        std::string fields;
    } cases[] = {
        {{}, "0 0 0 0 0 0 0 0 0"},
        {{{4, 4, 0x89ABCDEF}, {40, 4, 0xFEDCBA98}, {48, 4, 0x80000001}, {39, 1, 0xFF}},
         "2309737967 0 0 0 0 4275878552 2147483649 255 0"},
        {{{20, 4, 4096}, {24, 4, 8192}}, "0 0 1 0 0 0 0 0 0"},
        {{{20, 4, -8192u}, {24, 4, -4096u}}, "0 -1 0 0 0 0 0 0 0"},
        {{{20, 4, 0x7FFFFFFF}, {24, 4, 0x80000000}}, "0 524287 -524287 0 0 0 0 0 0"},
        {{{34, 2, 0xFFFF}, {36, 2, 0x00FF}}, "0 0 0 255 0 0 0 0 0"},
        {{{34, 2, 0x0100}, {36, 2, 0x8000}}, "0 0 0 1 128 0 0 0 0"},
        {{{32, 2, 0xFFFF}}, "0 0 0 0 0 0 0 0 " + textOf(65535 * 1.525878e-05)},
    };
    Listener listener;
    for (const auto& row : cases) {
        const std::string frame = ubxFrame(0x0A, kMonPt, payloadOf(52, row.values));
        ASSERT_TRUE(parse(frame, frame.size(), listener));
        EXPECT_EQ(listener.told.back(), "MonPt " + row.fields);
    }
}

/** A MonPt2 payload with so many entries, in which every byte behind the counts tells its offset. */
std::string monPt2(unsigned first, unsigned second) {
    std::string payload = payloadOf(24 + 28 * first + 36 * second, {{2, 1, first}, {3, 1, second}});
    for (std::size_t offset = 4; offset < payload.size(); ++offset) {
        payload[offset] = static_cast<char>(offset);
    }
    return payload;
}

TEST(ProductionResult, MonPt2FieldsComeFromTheFirstEntryOfEachList) {
    const struct {
        unsigned first, second;
        const char* entries;  // the record from pt2FirstEntry0 on
    } cases[] = {
        {0, 0, "0 0 0 0 0 0"},
        {1, 0, "24 0 0 0 0 0"},
        {0, 1, "0 7452 7966 48 49 46"},
        {2, 1, "24 21844 22358 104 105 102"},
        {2, 3, "24 21844 22358 104 105 102"},
        {255, 255, "24 256 770 20 21 18"},
    };
    Listener listener;
    for (const auto& row : cases) {
        const std::string frame = ubxFrame(0x0A, kMonPt2, monPt2(row.first, row.second));
        ASSERT_TRUE(parse(frame, frame.size(), listener));
        EXPECT_EQ(listener.told.back(), std::string("MonPt2 1 252579084 319951120 387323156 ") + row.entries);
    }
}

TEST(ProductionResult, FrameTooShortForWhatItAnnouncesIsRefused) {
    const std::string start = "GpsProductionManager::parseGpsProductionData() : ";
    const struct {
        unsigned char id;
        std::string payload;
        std::string text;
    } cases[] = {
        {kMonPt, payloadOf(52, {}), start + "parseGpsProductionDataMonPt() = false\n"},
        {kMonPt2, monPt2(0, 0), start + "parseGpsProductionDataMonPt2() = false\n"},
        {kMonPt2, monPt2(2, 1), start + "parseGpsProductionDataMonPt2() = false\n"},
    };
    Listener listener;
    for (const auto& row : cases) {
        const std::string frame = ubxFrame(0x0A, row.id, row.payload);
        const std::size_t end = frame.size() - 2;  // of the payload
        const LogCapture log;
        Texts expected;
        for (std::size_t length = 4; length < end; ++length) {
            EXPECT_FALSE(parse(frame, length, listener)) << length;
            expected.push_back(row.text);
        }
        for (std::size_t size = 0; size < row.payload.size(); ++size) {  // whole frames with too short a payload
            const std::string shorter = ubxFrame(0x0A, row.id, row.payload.substr(0, size));
            EXPECT_FALSE(parse(shorter, shorter.size(), listener)) << size;
            expected.push_back(row.text);
        }
        EXPECT_THAT(listener.told, IsEmpty());
        for (std::size_t length = end; length <= frame.size(); ++length) {
            EXPECT_TRUE(parse(frame, length, listener)) << length;
        }
        EXPECT_EQ(std::exchange(listener.told, {}).size(), 3u);
        EXPECT_EQ(textsOf(log), expected);
    }
}

TEST(ProductionResult, OtherFramesAreIgnoredAndTheParsersRefuseThem) {
    Listener listener;
    {
        const LogCapture log;
        for (const std::string& chunk : {ubxFrame(0x0A, 4, std::string(200, 'x')),
                                         ubxFrame(0x0B, kMonPt, std::string(52, 'x')), "\xB5\x62\x0A"s, "text"s}) {
            EXPECT_TRUE(parse(chunk, chunk.size(), listener));
        }
        EXPECT_THAT(textsOf(log), IsEmpty());
    }
    const auto expect = [&](auto parser, const std::string& start, const std::string& text) {
        GpsProductionManager manager;
        const LogCapture log;
        EXPECT_FALSE((manager.*parser)((start + std::string(96, '\0')).data(), &listener, 100));
        EXPECT_THAT(textsOf(log), ElementsAre(text));
    };
    expect(&GpsProductionManager::parseGpsProductionDataMonPt, "\xB5\x63\x0A\x20",
           "GpsProductionManager:parseGpsProductionDataMonPt() Header Error [b5][63]\n");
    expect(&GpsProductionManager::parseGpsProductionDataMonPt, "\xB5\x62\x0A\x2B",
           "GpsProductionManager::parseGpsProductionDataMonPt() ID Error [0a][2b]\n");
    expect(&GpsProductionManager::parseGpsProductionDataMonPt2, "\x01\x62\x0A\x2B",
           "GpsProductionManager::parseGpsProductionDataMonPt2() Header Error [01][62]\n");
    expect(&GpsProductionManager::parseGpsProductionDataMonPt2, "\xB5\x62\xFF\x2B",
           "GpsProductionManager::parseGpsProductionDataMonPt2() ID Error [ff][2b]\n");
    EXPECT_THAT(listener.told, IsEmpty());
}

TEST(Version, IsToldAtOnceAndNothingIsSent) {
    MemoryReceiver receiver;
    GpsVersionManager manager;
    Listener listener;
    const LogCapture log;
    EXPECT_TRUE(manager.requestGpsVersionInfo(&listener));
    EXPECT_THAT(listener.told, ElementsAre("version u-blox 7c" + std::string(119, '\0')));
    EXPECT_FALSE(manager.requestGpsVersionInfo(nullptr));
    EXPECT_THAT(textsOf(log), ElementsAre("GpsVersionManager::requestGpsVersionInfo() Argument Error"));
    EXPECT_EQ(receiver.peer().written(), "");
}

}  // namespace
