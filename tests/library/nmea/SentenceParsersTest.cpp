#include <gmock/gmock.h>

#include <sstream>

#include "NmeaSupport.h"
#include "tests/support/LogCapture.h"

namespace {

constexpr auto kUnknown = static_cast<GeodeticSystem>(2);
constexpr char kEndOfText[] = "GpsParseNmeaManager::getNextToken() lpData = '";

class EveryKind : public testing::TestWithParam<SentenceKind> {
protected:
    /** Parses with a manager of its own. */
    Parsed parse(const char* input, const Registry& registry, GeodeticSystem base = kWgs84, bool finished = true) {
        GpsParseNmeaManager manager;
        return GetParam().parse(manager, input, registry, base, finished);
    }
    void expectRefused(const char* input, const Registry& registry, const std::vector<std::string>& messages) {
        EXPECT_FALSE(parse(input, registry).result);
        EXPECT_EQ(log.texts(), messages);
        EXPECT_EQ(log.lines().back().function, GetParam().function);
        EXPECT_EQ(log.take().back().file, "src/Public/Gps/private/NMEA/GpsParseNmeaManager");
    }

    LogCapture log;
    Recorder listener;
    const Registry one = {{&listener, kWgs84}};
    const std::string text = sentence(GetParam().body);
};

TEST_P(EveryKind, IsReadIntoItsRecordAndDelivered) {
    const Parsed parsed = parse(text.c_str(), one);
    EXPECT_TRUE(parsed.result);
    EXPECT_EQ(parsed.record, GetParam().record);
    EXPECT_EQ(listener.kinds(), GetParam().name);
    EXPECT_EQ(listener.last(GetParam().name), GetParam().record);
    EXPECT_THAT(log.texts(), testing::IsEmpty());
}

TEST_P(EveryKind, NamesTheFirstThingThatIsMissing) {
    std::istringstream messages(GetParam().missing);
    std::string message;
    std::getline(messages, message, '|');
    expectRefused(nullptr, one, {GetParam().prefix + message});
    if (GetParam().needsListeners) {
        expectRefused(text.c_str(), {}, {GetParam().prefix + message});
    } else {
        EXPECT_TRUE(parse(text.c_str(), {}).result);
    }
    std::size_t start = 0;
    while (std::getline(messages, message, '|')) {
        SCOPED_TRACE(message);
        const std::size_t separator = text.find_first_of(",*", start);
        message = GetParam().prefix + message;
        expectRefused(text.substr(0, start).c_str(), one, {kEndOfText, message});
        if (separator != start) {  // the field is there, but nothing ends it
            expectRefused(text.substr(0, separator).c_str(), one, {message});
        }
        start = separator + 1;
    }
    EXPECT_EQ(text[start - 1], '*') << "every field is needed";
    EXPECT_THAT(listener.told, testing::IsEmpty());
}

TEST_P(EveryKind, IsDeliveredByTheDatumRule) {
    enum Outcome { AsParsed, Converted, Stops };
    const struct {
        GeodeticSystem base, wanted;
        bool finished;
        Outcome outcome;
    } rules[] = {
        {kWgs84, kWgs84, false, AsParsed}, {kWgs84, kWgs84, true, AsParsed},   {kWgs84, kTokyo, true, Stops},
        {kWgs84, kUnknown, true, Stops},   {kTokyo, kTokyo, true, AsParsed},   {kTokyo, kTokyo, false, Stops},
        {kTokyo, kWgs84, true, Converted}, {kTokyo, kWgs84, false, Converted}, {kTokyo, kUnknown, true, Stops},
        {kUnknown, kWgs84, true, Stops},   {kUnknown, kTokyo, true, Stops},    {kUnknown, kUnknown, true, Stops},
    };
    for (const auto& rule : rules) {
        SCOPED_TRACE(testing::Message() << rule.base << rule.wanted << rule.finished);
        Recorder first, second;
        const Registry registry = {{nullptr, kUnknown}, {&first, rule.wanted}, {&second, rule.wanted}};
        const Parsed parsed = parse(text.c_str(), registry, rule.base, rule.finished);
        EXPECT_EQ(parsed.result, rule.outcome != Stops);
        EXPECT_EQ(parsed.record, GetParam().record) << "in the base datum again";
        const std::string told = rule.outcome == Converted ? parsed.wgs84 : parsed.record;
        EXPECT_EQ(first.last(GetParam().name), rule.outcome == Stops ? "" : told);
        EXPECT_EQ(second.told, first.told);
    }
}

TEST_P(EveryKind, IsToldToNobodyBehindAListenerThatCannotBeServed) {
    for (const bool finished : {false, true}) {
        const Registry registry = {{&listener, kWgs84}, {&listener, kTokyo}, {&listener, kWgs84}};
        const Parsed parsed = parse(text.c_str(), registry, kTokyo, finished);
        EXPECT_EQ(parsed.result, finished);
        std::vector<std::pair<std::string, std::string>> expected = {{GetParam().name, parsed.wgs84}};
        if (finished) expected.insert(expected.end(), {{GetParam().name, parsed.record}, expected[0]});
        EXPECT_EQ(std::exchange(listener.told, {}), expected);
    }
}

INSTANTIATE_TEST_SUITE_P(Sentences, EveryKind, testing::ValuesIn(sentenceKinds()),
                         [](const auto& param) { return param.param.name; });

TEST(PositionSentences, KeepWhatWasReadBeforeAMissingField) {
    LogCapture log;
    GPRMC record = {};
    record.Mode = 77;
    EXPECT_FALSE(GpsParseNmeaManager().parseRmcSentence("$GPRMC,123519,A,3539.1,S,13942.5,W,1.5,,160926,3.5,W*00\r",
                                                        nullptr, 0, &record, kWgs84, false));
    EXPECT_EQ(fields(record), "1 12 35 19 0 1 -3539.1 -35 39.1 -13942.5 -139 42.5 1.5 0 26 9 16 -3.5 77");
}

}  // namespace
