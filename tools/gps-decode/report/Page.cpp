#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <numbers>

#include "tools/gps-decode/Markup.h"
#include "tools/gps-decode/report/LogSummary.h"
#include "tools/gps-decode/report/Style.h"
#include "tools/gps-decode/report/TimeCharts.h"

namespace decode {

using namespace std::chrono;

namespace {

std::string timeText(const std::optional<UtcTime>& time) {
    if (!time) return "-";
    std::string text = isoText(*time);
    std::replace(text.begin(), text.end(), 'T', ' ');
    return text;
}

std::string lengthText(milliseconds length) {
    const auto whole = floor<days>(length);
    return (whole.count() != 0 ? fmt::format("{} d ", whole.count()) : "") +
           fmt::format("{:%T}", floor<seconds>(length - whole));
}

std::string distanceText(double metres) {
    return metres < 1000 ? fmt::format("{:.0f} m", metres) : fmt::format("{:.1f} km", metres / 1000);
}

double share(unsigned long part, unsigned long whole) {
    return whole == 0 ? 0 : 100.0 * static_cast<double>(part) / static_cast<double>(whole);
}

/** The lowest and highest value of a curve; "-" when it has none. */
std::string rangeText(const Buckets<Extremes>& curve) {
    const Extremes all = curve.total();
    const auto rounded = [](double value) { return std::round(value * 10) / 10; };
    return all.isEmpty() ? "-" : fmt::format("{} to {}", rounded(all.lowest), rounded(all.highest));
}

void writeHead(const LogSummary& log, std::string& text) {
    const std::string name = escaped(log.name);
    const auto& sections = log.time.sections();
    put(text,
        "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">"
        "<meta name=\"viewport\" content=\"width=device-width\">\n<title>{}</title><style>{}</style></head><body>\n",
        name, kStyle);
    put(text, "<header><h1>{}</h1><p class=\"dim\">{} to {} UTC</p></header>\n<dl>", name,
        timeText(sections.empty() ? std::nullopt : std::optional(sections.front().time)), timeText(log.time.last()));
    const std::pair<const char*, std::string> tiles[] = {
        {"Duration", lengthText(log.time.position())},
        {"Distance", distanceText(log.distance)},
        {"Times with a fix",
         fmt::format("{} <small>of {} ({:.1f} %)</small>", log.fixes, log.epochs, share(log.fixes, log.epochs))},
        {"Speed, km/h", rangeText(log.curves[kSpeed])},
        {"Altitude, m", rangeText(log.curves[kAltitude])},
        {"Satellites used", rangeText(log.curves[kSatellitesUsed])},
        {"Sentences and frames", std::to_string(log.chunks)}};
    for (const auto& [what, value] : tiles)
        put(text, "<div><dt>{}</dt><dd>{}</dd></div>", what, value);
    text += "</dl>\n";
}

/** Maps degrees to the box of the track: equal scales east and north at the middle latitude. */
class Map {
public:
    static constexpr double kWidth = 640;
    static constexpr double kHeight = 440;

    explicit Map(const std::vector<SparsePath::Line>& lines) {
        constexpr double kInfinity = std::numeric_limits<double>::infinity();
        SparsePath::Point low{kInfinity, kInfinity};
        SparsePath::Point high{-kInfinity, -kInfinity};
        for (const auto& line : lines) {
            for (const auto& point : line) {
                low = {std::min(low.x, point.x), std::min(low.y, point.y)};
                high = {std::max(high.x, point.x), std::max(high.y, point.y)};
            }
        }
        mMiddle = {(low.x + high.x) / 2, (low.y + high.y) / 2};
        mMetresEast = kMetresNorth * std::cos(mMiddle.y * std::numbers::pi / 180);
        constexpr double kMargin = 1.1;
        constexpr double kLeastMetres = 10;
        const double metres = std::max({(high.x - low.x) * mMetresEast / kWidth,
                                        (high.y - low.y) * kMetresNorth / kHeight, kLeastMetres / kHeight});
        mScale = 1 / (metres * kMargin);
    }

    SparsePath::Point place(SparsePath::Point degrees) const {
        return {kWidth / 2 + (degrees.x - mMiddle.x) * mMetresEast * mScale,
                kHeight / 2 - (degrees.y - mMiddle.y) * kMetresNorth * mScale};
    }
    SparsePath::Point middle() const { return mMiddle; }
    double perMetre() const { return mScale; }

private:
    static constexpr double kMetresNorth = 111195;  // of a degree

    SparsePath::Point mMiddle{};
    double mMetresEast = 0;
    double mScale = 0;
};

/** Path data of lines; single points become dots. */
template <class Place>
std::string pathOf(const std::vector<SparsePath::Line>& lines, Place place) {
    std::string path;
    for (const auto& line : lines) {
        for (const auto& point : line) {
            const SparsePath::Point at = place(point);
            put(path, "{}{:.1f} {:.1f}", &point == line.data() ? 'M' : 'L', at.x, at.y);
        }
        if (line.size() == 1) path += "h.1";
    }
    return path;
}

/** Where lines cross a side of that length: in its middle, and every step from there. */
std::vector<double> gridPlaces(double length, double step) {
    std::vector<double> places{std::fmod(length / 2, step)};
    while (places.back() + step < length)
        places.push_back(places.back() + step);
    return places;
}

void writeTrack(const LogSummary& log, std::string& text) {
    text += "<section><h2>Track</h2>";
    if (!log.start) {
        text += "<p class=\"dim\">There is no position in this log.</p></section>\n";
        return;
    }
    const auto& lines = log.track.lines();
    const Map map(lines);
    const auto place = [&map](SparsePath::Point point) { return map.place(point); };
    const double square = roundStep(Map::kWidth / map.perMetre() / 8);
    const double step = square * map.perMetre();
    put(text, "<figure><svg viewBox=\"0 0 {} {}\" role=\"img\"><title>track</title>", Map::kWidth, Map::kHeight);
    std::string grid;
    for (const double x : gridPlaces(Map::kWidth, step))
        put(grid, "M{:.1f} 0v{}", x, Map::kHeight);
    for (const double y : gridPlaces(Map::kHeight, step))
        put(grid, "M0 {:.1f}h{}", y, Map::kWidth);
    put(text, "<path class=\"grid\" d=\"{}\"/>", grid);
    for (const auto& [from, to] : log.jumps)
        put(text, "<path class=\"dash\" d=\"{}\"/>", pathOf({{from, to}}, place));
    put(text, "<path class=\"line\" d=\"{}\"/>", pathOf(lines, place));
    const auto start = place(*log.start);
    const auto end = place(*log.end);
    put(text, "<circle class=\"begin\" cx=\"{:.1f}\" cy=\"{:.1f}\" r=\"6\"/>", start.x, start.y);
    put(text, "<rect class=\"end\" x=\"{:.1f}\" y=\"{:.1f}\" width=\"9\" height=\"9\"/></svg>", end.x - 4.5,
        end.y - 4.5);
    put(text,
        "<figcaption>From the circle to the square; dashes join the ends of segments. North is up, a square of the "
        "grid is {}. Centre {:.6f}, {:.6f}.</figcaption></figure></section>\n",
        distanceText(square), map.middle().y, map.middle().x);
}

/** Places for labels that touch neither each other nor a dot. */
class Labels {
public:
    void takeDot(SparsePath::Point at) { mTaken.push_back({at, 9, 5}); }
    void takeLabel(SparsePath::Point at) { mTaken.push_back({at, 16, 8}); }

    /** A free place next to a dot; none when there is no room. */
    std::optional<SparsePath::Point> place(SparsePath::Point dot) {
        constexpr SparsePath::Point kShifts[] = {{0, -6},  {0, 6},    {11, 0}, {-11, 0},
                                                 {10, -6}, {-10, -6}, {10, 6}, {-10, 6}};
        for (const SparsePath::Point shift : kShifts) {
            const SparsePath::Point at = {dot.x + shift.x, dot.y + shift.y};
            if (!isFree(at)) continue;
            takeLabel(at);
            return at;
        }
        return std::nullopt;
    }

private:
    struct Taken {
        SparsePath::Point at;
        double width;  // between its middle and that of another label
        double height;
    };

    bool isFree(SparsePath::Point at) const {
        return std::none_of(mTaken.begin(), mTaken.end(), [at](const Taken& other) {
            return std::fabs(other.at.x - at.x) < other.width && std::fabs(other.at.y - at.y) < other.height;
        });
    }

    std::vector<Taken> mTaken;
};

void writeSky(const LogSummary& log, std::string& text) {
    constexpr struct {
        const char* letter;
        SparsePath::Point at;
    } kCompass[] = {{"N", {0, -98}}, {"E", {98, 0}}, {"S", {0, 98}}, {"W", {-98, 0}}};
    text +=
        "<section><h2>Sky</h2><figure><svg viewBox=\"-106 -106 212 212\" role=\"img\">"
        "<title>paths of the satellites</title>"
        "<g class=\"box\"><circle r=\"90\"/><circle r=\"60\"/><circle r=\"30\"/><path d=\"M-90 0H90M0-90V90\"/></g>";
    Labels labels;
    for (const auto& [letter, at] : kCompass) {
        put(text, "<text x=\"{}\" y=\"{}\">{}</text>", at.x, at.y, letter);
        labels.takeLabel(at);
    }
    const auto down = [](SparsePath::Point point) { return SparsePath::Point{point.x, -point.y}; };
    for (const auto& [key, satellite] : log.satellites)
        if (satellite.isInSky) labels.takeDot(down(satellite.place));
    std::string names;
    for (const auto& [key, satellite] : log.satellites) {
        const auto& lines = satellite.path.lines();
        if (lines.empty()) continue;
        const char letter = systemLetter(key.first);
        const std::string name = satelliteName(key.first, key.second);
        const auto at = down(satellite.place);
        put(text, "<g style=\"stroke:var(--{})\"><path class=\"path\" d=\"{}\"><title>{}</title></path></g>", letter,
            pathOf(lines, down), name);
        put(text, "<circle r=\"2\" cx=\"{:.1f}\" cy=\"{:.1f}\" style=\"fill:var(--{})\"/>", at.x, at.y, letter);
        if (const auto label = labels.place(at))
            put(names, "<text x=\"{:.1f}\" y=\"{:.1f}\">{}</text>", label->x, label->y, name);
    }
    text += names;
    text +=
        "</svg><figcaption>The zenith is in the middle, the horizon outside; circles every 30°. A dot is the last "
        "place. G GPS, R GLONASS, E Galileo, C BeiDou.</figcaption></figure></section>\n";
}

/** Begins a table. False, with `nothing` written instead, when it is empty. */
bool beginTable(const char* title, bool isEmpty, const char* nothing, std::initializer_list<std::string_view> columns,
                std::string& text) {
    put(text, "<section><h2>{}</h2>", title);
    if (isEmpty) {
        put(text, "<p class=\"dim\">{}</p></section>\n", nothing);
        return false;
    }
    text += "<table><tr>";
    for (const std::string_view column : columns)
        put(text, "<th{}>{}</th>", column == "Count" || column == "Duration" ? " class=\"n\"" : "", column);
    text += "</tr>\n";
    return true;
}

void writeOutages(const LogSummary& log, std::string& text) {
    constexpr std::size_t kMost = 20;
    if (!beginTable("Times without a fix", log.outages.empty(), "There was always a fix.", {"From", "To", "Duration"},
                    text))
        return;
    auto longest = log.outages;
    std::sort(longest.begin(), longest.end(), [](const Outage& a, const Outage& b) { return a.length > b.length; });
    longest.resize(std::min(longest.size(), kMost));
    std::sort(longest.begin(), longest.end(), [](const Outage& a, const Outage& b) { return a.begin < b.begin; });
    for (const Outage& outage : longest) {
        put(text, "<tr><td class=\"t\">{}</td><td class=\"t\">{}</td><td class=\"n\">{}</td></tr>\n",
            timeText(outage.from), outage.to ? timeText(outage.to) : "end of the log", lengthText(outage.length));
    }
    put(text, "</table><p class=\"dim\">{} in all, of {} together", log.outageCount, lengthText(log.outageTime));
    text += log.outageCount > kMost ? "; these are the longest.</p></section>\n" : ".</p></section>\n";
}

void writeEpochs(const LogSummary& log, std::string& text) {
    const bool isComplete = std::ranges::count(log.lackingCount, 0UL) == std::ssize(log.lackingCount);
    if (!beginTable("Epochs that lacked a sentence", isComplete, "Every epoch had all its sentences.",
                    {"Sentence", "Count", "Share"}, text))
        return;
    for (std::size_t kind = 0; kind < log.lackingCount.size(); ++kind) {
        if (log.lackingCount[kind] == 0) continue;
        put(text, "<tr><td>{}</td><td class=\"n\">{}</td><td>{:.3g} %{}</td></tr>\n", kEpochKinds[kind],
            log.lackingCount[kind], share(log.lackingCount[kind], log.wholeEpochs),
            log.lackingCount[kind] == log.wholeEpochs ? ", not sent at all" : "");
    }
    put(text, "</table><p class=\"dim\">Of {} epochs between the first and the last one.</p></section>\n",
        log.wholeEpochs);
}

void writeRefusals(const LogSummary& log, std::string& text) {
    constexpr const char* kReasons[] = {"",
                                        "The checksum is missing or wrong",
                                        "Longer than 128 characters",
                                        "Ends in LF alone",
                                        "A field is missing or out of range",
                                        "Not served in the wanted datum",
                                        "Sentences of a kind without a record",
                                        "Texts of the receiver",
                                        "UBX frames that are no production result"};
    static_assert(std::size(kReasons) == static_cast<std::size_t>(Refusal::Count));
    const bool isEmpty = log.refusals[0].count == log.chunks;
    if (!beginTable("Without a record", isEmpty, "Every sentence gave a record.", {"Reason", "Count", "First"}, text))
        return;
    const auto row = [&text](std::string_view reason, const RefusalNote& note) {
        put(text, "<tr><td>{}</td><td class=\"n\">{}</td><td class=\"t\">{}</td></tr>\n", reason, note.count,
            timeText(note.first));
    };
    for (std::size_t reason = 1; reason < log.refusals.size(); ++reason) {
        if (log.refusals[reason].count == 0) continue;
        row(kReasons[reason], log.refusals[reason]);
        if (reason != static_cast<std::size_t>(Refusal::Field)) continue;
        for (const auto& [field, note] : log.missingFields)
            row("&nbsp;&nbsp;" + escaped(field), note);
    }
    text += "</table></section>\n";
}

void writeNotes(const LogSummary& log, std::string& text) {
    if (!beginTable("Receiver and antenna", log.notes.empty(), "The receiver sent no texts.", {"Time", "Count", "Text"},
                    text))
        return;
    for (const Note& note : log.notes) {
        put(text, "<tr><td class=\"t\">{}</td><td class=\"n\">{}</td><td>{}</td></tr>\n", timeText(note.first),
            note.count, escaped(note.text));
    }
    text += "</table>";
    if (log.furtherNotes > 0) put(text, "<p class=\"dim\">And {} more.</p>", log.furtherNotes);
    text += "</section>\n";
}

}  // namespace

void writePage(const LogSummary& log, std::string& text) {
    writeHead(log, text);
    text += "<div class=\"pair\">";
    writeTrack(log, text);
    writeSky(log, text);
    text += "</div>\n";
    writeCurves(log, text);
    writeStates(log, text);
    writeSignals(log, text);
    text += "<div class=\"pair\">";
    writeOutages(log, text);
    writeEpochs(log, text);
    writeRefusals(log, text);
    writeNotes(log, text);
    text += "</div>\n</body></html>\n";
}

}  // namespace decode
