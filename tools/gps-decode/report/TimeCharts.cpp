#include "tools/gps-decode/report/TimeCharts.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <cmath>
#include <iterator>
#include <span>

#include "tools/gps-decode/Markup.h"

namespace decode {

using namespace std::chrono;
using namespace std::chrono_literals;

namespace {

// Charts are drawn in a box of this size, which is stretched to the width of the page.
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
        const milliseconds end = i + 1 < sections.size() ? sections[i + 1].begin : lengthOf(log);
        auto time = ceil<milliseconds>(sections[i].time.since);
        time += (*step - time % *step) % *step;
        for (; sections[i].begin + (time - sections[i].time.since) <= end; time += *step) {
            const double x = xOf(log, sections[i].begin + (time - sections[i].time.since));
            if (x < last + kCloser) continue;
            const std::tm calendar = fmt::gmtime(floor<seconds>(time).count());
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
    double lowest = INFINITY;
    double highest = -INFINITY;
    curve.forEach([&](milliseconds, const Extremes& bucket) {
        lowest = std::min(lowest, bucket.lowest);
        highest = std::max(highest, bucket.highest);
    });
    if (lowest > highest) return;
    const Scale scale = scaleOf(lowest, highest, leastStep);
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

/** A row of colours over time: `classes[state]` names the colour of each state from 1 on. */
class Strip {
public:
    /** @param hold how long a state lasts when no other follows */
    Strip(const LogSummary& log, std::span<const char* const> classes, milliseconds hold)
        : mLog(log), mClasses(classes), mHold(hold), mPaths(classes.size()) {}

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
        for (std::size_t state = 1; state < mPaths.size(); ++state) {
            if (!mPaths[state].empty()) put(text, "<path class=\"{}\" d=\"{}\"/>", mClasses[state], mPaths[state]);
        }
        text += "</svg></div></div>\n";
    }

private:
    /** Ends the state that lasts. */
    void close(milliseconds position) {
        constexpr double kLeast = 1;  // to be seen
        if (mState == 0) return;
        const double width = std::max(xOf(mLog, std::min(position, mUntil) - mBegin), kLeast);
        put(mPaths[mState], "M{0:.1f} 0h{1:.1f}v10h-{1:.1f}z", xOf(mLog, mBegin), width);
        mState = 0;
    }

    const LogSummary& mLog;
    const std::span<const char* const> mClasses;
    const milliseconds mHold;
    std::vector<std::string> mPaths;
    unsigned mState = 0;
    milliseconds mBegin{0};
    milliseconds mUntil{0};
};

void writeLegend(std::span<const char* const> colours, std::span<const char* const> names, std::string& text) {
    text += "<p class=\"dim legend\">";
    for (std::size_t i = 1; i < names.size(); ++i) {
        put(text,
            "<span><svg class=\"key\" viewBox=\"0 0 1 1\"><rect class=\"{}\" width=\"1\" "
            "height=\"1\"/></svg>{}</span> ",
            colours[i], names[i]);
    }
    text += "</p>\n";
}

/** How long a value holds when no other follows. */
template <class Bucket>
milliseconds holdOf(const Buckets<Bucket>& buckets) {
    return std::max<milliseconds>(10s, 2 * buckets.width());
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
    constexpr const char* kFixColours[] = {"", "good", "fair", "warn", "bad"};
    constexpr const char* kFixNames[] = {"", "3D", "fix", "2D", "no fix"};
    constexpr const char* kAntennaColours[] = {"", "good", "warn", "bad"};
    constexpr const char* kAntennaNames[] = {"", "antenna OK", "open", "short"};
    constexpr const char* kEpochColours[] = {"", "good", "warn"};
    constexpr const char* kEpochNames[] = {"", "epoch complete", "lacks a sentence"};
    text += "<h2>Fix, antenna and epochs</h2><figure>\n";
    Strip fix(log, kFixColours, holdOf(log.fixState));
    log.fixState.forEach([&](milliseconds at, const WorstState& bucket) { fix.add(at, bucket.state); });
    fix.write("Fix", "fix", text);
    Strip antenna(log, kAntennaColours, holdOf(log.antennaState));
    log.antennaState.forEach([&](milliseconds at, const WorstState& bucket) { antenna.add(at, bucket.state); });
    antenna.write("Antenna", "antenna status", text);
    unsigned everSeen = 0;
    for (std::size_t kind = 0; kind < log.lackingCount.size(); ++kind)
        if (log.lackingCount[kind] < log.wholeEpochs) everSeen |= 2U << kind;
    Strip epochs(log, kEpochColours, holdOf(log.lacking));
    log.lacking.forEach(
        [&](milliseconds at, const Flags& bucket) { epochs.add(at, (bucket.bits & everSeen) != 0 ? 2 : 1); });
    epochs.write("Epochs", "epochs that lack a sentence", text);
    writeTimeAxis(log, text);
    writeLegend(kFixColours, kFixNames, text);
    writeLegend(kAntennaColours, kAntennaNames, text);
    writeLegend(kEpochColours, kEpochNames, text);
    text += "</figure>\n";
}

void writeSignals(const LogSummary& log, std::string& text) {
    constexpr const char* kColours[] = {"", "s1", "s2", "s3", "s4", "s5"};
    constexpr const char* kNames[] = {"",         "in view, not tracked", "below 20", "20 to 30",
                                      "30 to 40", "40 dB-Hz and more"};
    const auto stateOf = [](double signal) {
        return signal <= 0 ? 1U : signal < 20 ? 2U : signal < 30 ? 3U : signal < 40 ? 4U : 5U;
    };
    if (log.satellites.empty()) return;
    text += "<h2>Signal strength of each satellite</h2><figure>\n";
    for (const auto& [key, satellite] : log.satellites) {
        Strip strip(log, kColours, holdOf(satellite.signal));
        satellite.signal.forEach([&](milliseconds at, const Mean& bucket) { strip.add(at, stateOf(bucket.value())); });
        const std::string name = satelliteName(key.first, key.second);
        const double mean = satellite.tracked.isEmpty() ? 0 : satellite.tracked.value();
        strip.write(
            fmt::format("{} <b>{:.0f}</b>", name, satellite.strongest),
            fmt::format("{}: {:.1f} dB-Hz on average while tracked, {:.0f} at best", name, mean, satellite.strongest),
            text);
    }
    writeTimeAxis(log, text);
    writeLegend(kColours, kNames, text);
    text += "<p class=\"dim\">The number beside the name is the strongest signal, dB-Hz.</p></figure>\n";
}

}  // namespace decode
