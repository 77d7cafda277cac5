#include "tools/gps-decode/UtcClock.h"

#include <fmt/chrono.h>

#include <algorithm>

namespace decode {

using namespace std::chrono;
using namespace std::chrono_literals;

namespace {

/** The value of a text of digits, if it is within the limits. */
std::optional<int> numberOf(std::string_view text, int lowest, int highest) {
    int number = 0;
    for (const char digit : text) {
        if (digit < '0' || digit > '9') return std::nullopt;
        number = number * 10 + (digit - '0');
    }
    if (text.empty() || number < lowest || number > highest) return std::nullopt;
    return number;
}

/** Of hhmmss.sss; digits after the third decimal are ignored. */
std::optional<milliseconds> timeOfDay(std::string_view field) {
    if (field.size() < 6) return std::nullopt;
    const auto hour = numberOf(field.substr(0, 2), 0, 23);
    const auto minute = numberOf(field.substr(2, 2), 0, 59);
    const auto second = numberOf(field.substr(4, 2), 0, 59);
    if (!hour || !minute || !second) return std::nullopt;
    std::string fraction(field.size() > 7 ? field.substr(7, 3) : "0");
    fraction.resize(3, '0');
    return hours(*hour) + minutes(*minute) + seconds(*second) + milliseconds(numberOf(fraction, 0, 999).value_or(0));
}

std::optional<days> dateOf(std::string_view day, std::string_view month, std::optional<int> calendarYear) {
    const auto dayNumber = numberOf(day, 1, 31);
    const auto monthNumber = numberOf(month, 1, 12);
    if (!dayNumber || !monthNumber || !calendarYear) return std::nullopt;
    const auto date = year(*calendarYear) / *monthNumber / *dayNumber;
    if (!date.ok()) return std::nullopt;
    return sys_days(date).time_since_epoch();
}

std::optional<days> noDate(std::string_view) {
    return std::nullopt;
}

std::optional<days> rmcDate(std::string_view sentence) {
    constexpr int kFirstYear = 80;  // GPS time begins in 1980
    const std::string_view field = fieldOf(sentence, 9);
    if (field.size() != 6) return std::nullopt;
    auto year = numberOf(field.substr(4), 0, 99);
    if (year) *year += *year < kFirstYear ? 2000 : 1900;
    return dateOf(field.substr(0, 2), field.substr(2, 2), year);
}

std::optional<days> zdaDate(std::string_view sentence) {
    return dateOf(fieldOf(sentence, 2), fieldOf(sentence, 3), numberOf(fieldOf(sentence, 4), 1980, 2999));
}

constexpr struct {
    std::string_view kind;  // the characters after the talker
    unsigned timeField;
    std::optional<days> (*date)(std::string_view sentence);
} kTimes[] = {
    {"RMC,", 1, rmcDate}, {"GGA,", 1, noDate}, {"GLL,", 5, noDate}, {"ZDA,", 1, zdaDate}, {"X,00", 2, noDate}};

}  // namespace

std::tm calendarOf(milliseconds since) {
    const auto day = floor<days>(since);
    const year_month_day date{sys_days(day)};
    const hh_mm_ss time(floor<seconds>(since - day));
    std::tm calendar{};
    calendar.tm_year = static_cast<int>(date.year()) - 1900;
    calendar.tm_mon = static_cast<int>(static_cast<unsigned>(date.month())) - 1;
    calendar.tm_mday = static_cast<int>(static_cast<unsigned>(date.day()));
    calendar.tm_hour = static_cast<int>(time.hours().count());
    calendar.tm_min = static_cast<int>(time.minutes().count());
    calendar.tm_sec = static_cast<int>(time.seconds().count());
    return calendar;
}

std::string isoText(const UtcTime& time) {
    const auto fraction = (time.since - floor<seconds>(time.since)).count();
    const std::tm calendar = calendarOf(time.since);
    std::string text = time.hasDate ? fmt::format("{:%FT%T}", calendar) : fmt::format("{:%T}", calendar);
    if (fraction != 0) text += fmt::format(".{:03}", fraction);
    return text + 'Z';
}

std::string_view fieldOf(std::string_view sentence, unsigned number) {
    for (; number > 0; --number)
        sentence.remove_prefix(std::min(sentence.find(','), sentence.size() - 1) + 1);
    return sentence.substr(0, sentence.find_first_of(",*\r\n"));
}

bool UtcClock::read(std::string_view sentence) {
    constexpr std::size_t kKindAt = 3;
    if (sentence.size() < kKindAt + 4) return false;
    for (const auto& row : kTimes) {
        if (sentence.substr(kKindAt, 4) != row.kind) continue;
        const auto time = timeOfDay(fieldOf(sentence, row.timeField));
        if (!time) return false;
        const auto date = row.date(sentence);
        const bool isAfterMidnight = mNow && mNow->ofDay() - *time > 12h;
        const days lastDay = mNow ? floor<days>(mNow->since) + days(isAfterMidnight ? 1 : 0) : days(0);
        mNow = {date.value_or(lastDay) + *time, date || (mNow && mNow->hasDate)};
        return true;
    }
    return false;
}

}  // namespace decode
