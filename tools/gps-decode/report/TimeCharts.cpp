#include "tools/gps-decode/report/TimeCharts.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <cmath>
#include <iterator>
#include <span>

#include "tools/gps-decode/Markup.h"
#include "tools/gps-decode/UtcClock.h"

namespace decode {

using namespace std::chrono;
using namespace std::chrono_literals;

namespace {

// Charts are drawn in a box of this size and stretched to the width of the page.
constexpr double kWidth = 1000;
constexpr double kHeight = 100;

milliseconds lengthOf(const LogSummary& log) {
    return std::max<milliseconds>(log.time.position(), 1s);
}

double xOf(const LogSummary& log, milliseconds position) {
    return kWidth * static_cast<double>(position.count()) / static_cast<double>(lengthOf(log).count());
}

/** Labels of the time axis: about six, at round times, as precise as the step needs. */
void writeTimeAxis(const LogSummary& log, std::string& text) {
    constexpr milliseconds kSteps[] = {1s, 2s, 5s, 10s, 30s, 1min, 2min, 5min, 10min, 30min,
                                       1h, 2h, 6h, 12h, 24h, 48h,  120h, 240h, 720h};
    constexpr double kCloser = kWidth / 9;
    const auto least = lengthOf(log) / 7;
    const milliseconds* step =
        std::find_if(std::begin(kSteps), std::end(kSteps), [&](milliseconds any) { return any >= least; });
    if (step == std::end(kSteps)) --step;
    double last = -kWidth;
    text += "<div class=\"row\"><div></div><div class=\"x\">";
    const auto& sections = log.time.sections();
    for (std::size_t i = 0; i < sections.size(); ++i) {
        const auto& [begin, time] = sections[i];
        const milliseconds end = i + 1 < sections.size() ? sections[i + 1].begin : lengthOf(log);
        for (auto at = begin + (*step - time.since % *step) % *step; at <= end; at += *step) {
            const double x = xOf(log, at);
            if (x < last + kCloser) continue;
            const std::tm calendar = calendarOf(time.since + (at - begin));
            const char* const format = *step >= 24h ? "{:%m-%d}" : *step >= 1min ? "{:%H:%M}" : "{:%T}";
            put(text, "<span style=\"left:{:.1f}%\">{}</span>", x / 10, fmt::format(fmt::runtime(format), calendar));
            last = x;
        }
    }
    text += "</div></div>\n";
}

/** The background of every curve: times without a fix, and where the receiver or a section of the log starts. */
void writeBackground(const LogSummary& log, std::string& text) {
    constexpr std::size_t kMostMarks = 100;
    for (const Outage& outage : log.outages) {
        put(text,
            "<rect class=\"lost\" x=\"{:.1f}\" width=\"{:.1f}\" height=\"100\"><title>no fix for {:%T}</title></rect>",
            xOf(log, outage.begin), std::max(xOf(log, outage.length), 1.0), floor<seconds>(outage.length));
    }
    const auto mark = [&](milliseconds position) {
        put(text, "<path class=\"mark\" d=\"M{:.1f} 0V100\"/>", xOf(log, position));
    };
    for (const milliseconds start : log.starts)
        mark(start);
    const std::span sections(log.time.sections());
    for (const auto& section : sections.first(std::min(sections.size(), kMostMarks)))
        if (section.begin > 0ms) mark(section.begin);
}

/** A scale of round numbers that covers a range of values. */
struct Scale {
    double low;
    double high;
    double step;

    double yOf(double value) const { return kHeight * (high - value) / (high - low); }
};

Scale scaleOf(double lowest, double highest, double leastStep) {
    const double step = std::max(roundStep((highest - lowest) / 4), leastStep);
    const double low = std::floor(lowest / step) * step;
    return {low, std::max(std::ceil(highest / step) * step, low + step), step};
}

std::string curvePath(const LogSummary& log, const Buckets<Extremes>& curve, const Scale& scale) {
    std::string path;
    curve.forEach([&](milliseconds position, const Extremes& bucket) {
        const double x = xOf(log, position);
        const char join = path.empty() || bucket.beginsLine ? 'M' : 'L';
        put(path, "{}{:.1f} {:.1f}", join, x, scale.yOf(bucket.first));
        if (join == 'M' && bucket.count == 1) path += "h.1";  // a dot, in case nothing follows
        if (bucket.count == 1) return;
        for (const double value : {bucket.lowest, bucket.highest, bucket.last})
            put(path, "V{:.1f}", scale.yOf(value));
    });
    return path;
}

void writeCurve(const LogSummary& log, const Buckets<Extremes>& curve, const char* title, double leastStep,
                std::string& text) {
    const Extremes all = curve.total();
    if (all.isEmpty()) return;
    const Scale scale = scaleOf(all.lowest, all.highest, leastStep);
    std::string labels;
    std::string grid;
    for (int line = 0; scale.low + line * scale.step < scale.high + scale.step / 2; ++line) {
        const double value = scale.low + line * scale.step;
        put(labels, "<span style=\"top:{:.1f}%\">{:.6g}</span>", scale.yOf(value), value);
        put(grid, "M0 {:.1f}H1000", scale.yOf(value));
    }
    put(text, "<h2>{}</h2><figure class=\"chart\"><div class=\"row\"><div class=\"y\">{}</div><div>", title, labels);
    put(text, "<svg viewBox=\"0 0 1000 100\" preserveAspectRatio=\"none\" role=\"img\"><title>{}</title>", title);
    put(text, "<path class=\"grid\" d=\"{}\"/>", grid);
    writeBackground(log, text);
    put(text, "<path class=\"line\" d=\"{}\"/></svg></div></div>\n", curvePath(log, curve, scale));
    writeTimeAxis(log, text);
    text += "</figure>\n";
}

/** The class of the style that colours a state, and its name. States are numbered from 1. */
struct State {
    const char* colour;
    const char* name;
};
using States = std::span<const State>;

/** A row of colours over time. */
class Strip {
public:
    /** @param hold how long a state lasts when no other follows */
    Strip(const LogSummary& log, States states, milliseconds hold)
        : mLog(log), mStates(states), mHold(hold), mPaths(states.size()) {}

    void add(milliseconds position, unsigned state) {
        if (state != mState || position > mUntil) close(position);
        if (mState == 0) mBegin = position;
        mState = state;
        mUntil = position + mHold;
    }

    void write(const std::string& label, const std::string& title, std::string& text) {
        close(lengthOf(mLog));
        put(text, "<div class=\"row strip\"><div class=\"label\">{}</div><div>", label);
        put(text, "<svg viewBox=\"0 0 1000 10\" preserveAspectRatio=\"none\" role=\"img\"><title>{}</title>", title);
        for (std::size_t i = 0; i < mPaths.size(); ++i) {
            if (!mPaths[i].empty()) put(text, "<path class=\"{}\" d=\"{}\"/>", mStates[i].colour, mPaths[i]);
        }
        text += "</svg></div></div>\n";
    }

private:
    /** Ends the current state. */
    void close(milliseconds position) {
        constexpr double kLeast = 1;  // still visible
        if (mState == 0) return;
        const double width = std::max(xOf(mLog, std::min(position, mUntil) - mBegin), kLeast);
        put(mPaths[mState - 1], "M{0:.1f} 0h{1:.1f}v10h-{1:.1f}z", xOf(mLog, mBegin), width);
        mState = 0;
    }

    const LogSummary& mLog;
    const States mStates;
    const milliseconds mHold;
    std::vector<std::string> mPaths;  // by state
    unsigned mState = 0;              // 0: none
    milliseconds mBegin{0};
    milliseconds mUntil{0};
};

/** Writes a strip of buckets; `stateOf` gives the state of a bucket. */
template <class Bucket, class StateOf>
void writeStrip(const LogSummary& log, const Buckets<Bucket>& buckets, States states, const std::string& label,
                const std::string& title, std::string& text, StateOf stateOf) {
    Strip strip(log, states, std::max<milliseconds>(10s, 2 * buckets.width()));
    buckets.forEach([&](milliseconds at, const Bucket& bucket) { strip.add(at, stateOf(bucket)); });
    strip.write(label, title, text);
}

void writeLegend(States states, std::string& text) {
    text += "<p class=\"dim legend\">";
    for (const auto& [colour, name] : states) {
        put(text,
            "<span><svg class=\"key\" viewBox=\"0 0 1 1\"><rect class=\"{}\" width=\"1\" "
            "height=\"1\"/></svg>{}</span> ",
            colour, name);
    }
    text += "</p>\n";
}

}  // namespace

double roundStep(double least) {
    const double power = std::pow(10, std::floor(std::log10(std::max(least, 1e-9))));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (factor * power >= least) return factor * power;
    }
    return 10 * power;
}

char systemLetter(const std::string& talker) {
    constexpr struct {
        std::string_view talker;
        char letter;
    } kSystems[] = {{"GP", 'G'}, {"GL", 'R'}, {"GA", 'E'}, {"GB", 'C'}, {"BD", 'C'}};
    for (const auto& system : kSystems) {
        if (talker == system.talker) return system.letter;
    }
    return 'O';
}

std::string satelliteName(const std::string& talker, unsigned number) {
    const char letter = systemLetter(talker);
    return fmt::format("{}{:02}", letter == 'O' ? escaped(talker) : std::string(1, letter), number);
}

void writeCurves(const LogSummary& log, std::string& text) {
    constexpr struct {
        Curve curve;
        const char* title;
        double leastStep;
    } kAll[] = {{kSpeed, "Speed, km/h", 0.1},
                {kAltitude, "Altitude above mean sea level, m", 0.5},
                {kSatellitesUsed, "Satellites used", 1},
                {kHdop, "Horizontal dilution of precision", 0.1}};
    for (const auto& one : kAll)
        writeCurve(log, log.curves[one.curve], one.title, one.leastStep, text);
}

void writeStates(const LogSummary& log, std::string& text) {
    constexpr State kFixStates[] = {{"good", "3D"}, {"fair", "fix"}, {"warn", "2D"}, {"bad", "no fix"}};
    constexpr State kAntennaStates[] = {{"good", "antenna OK"}, {"warn", "open"}, {"bad", "short"}};
    constexpr State kEpochStates[] = {{"good", "epoch complete"}, {"warn", "lacks a sentence"}};
    const auto worst = [](const WorstState& bucket) { return bucket.state; };
    text += "<h2>Fix, antenna and epochs</h2><figure>\n";
    writeStrip(log, log.fixState, kFixStates, "Fix", "fix", text, worst);
    writeStrip(log, log.antennaState, kAntennaStates, "Antenna", "antenna status", text, worst);
    unsigned everSeen = 0;
    for (std::size_t kind = 0; kind < log.lackingCount.size(); ++kind)
        if (log.lackingCount[kind] < log.wholeEpochs) everSeen |= 2U << kind;
    writeStrip(log, log.lacking, kEpochStates, "Epochs", "epochs that lack a sentence", text,
               [everSeen](const Flags& bucket) { return (bucket.bits & everSeen) != 0 ? 2U : 1U; });
    writeTimeAxis(log, text);
    for (const States states : {States(kFixStates), States(kAntennaStates), States(kEpochStates)})
        writeLegend(states, text);
    text += "</figure>\n";
}

void writeSignals(const LogSummary& log, std::string& text) {
    constexpr State kStates[] = {{"s1", "in view, not tracked"},
                                 {"s2", "below 20"},
                                 {"s3", "20 to 30"},
                                 {"s4", "30 to 40"},
                                 {"s5", "40 dB-Hz and more"}};
    const auto stateOf = [](const Mean& bucket) {
        const double signal = bucket.value();
        return signal <= 0 ? 1U : signal < 20 ? 2U : signal < 30 ? 3U : signal < 40 ? 4U : 5U;
    };
    if (log.satellites.empty()) return;
    text += "<h2>Signal strength of each satellite</h2><figure>\n";
    for (const auto& [key, satellite] : log.satellites) {
        const std::string name = satelliteName(key.first, key.second);
        const double mean = satellite.tracked.isEmpty() ? 0 : satellite.tracked.value();
        writeStrip(
            log, satellite.signal, kStates, fmt::format("{} <b>{:.0f}</b>", name, satellite.strongest),
            fmt::format("{}: {:.1f} dB-Hz on average while tracked, {:.0f} at best", name, mean, satellite.strongest),
            text, stateOf);
    }
    writeTimeAxis(log, text);
    writeLegend(kStates, text);
    text += "<p class=\"dim\">The number beside the name is the strongest signal, dB-Hz.</p></figure>\n";
}

}  // namespace decode
