#include "tools/gps-monitor/Options.h"

#include <fmt/format.h>

#include <algorithm>

#include "tools/common/CommandLine.h"
#include "tools/gps-monitor/model/Names.h"
#include "tools/gps-monitor/view/Keys.h"

namespace monitor {

namespace {

constexpr int kLongestRun = 365 * 24 * 3600;

std::string checkSetting(const std::string& name) {
    return findSetting(name) ? "" : "no setting has the name " + name;
}

std::string footer() {
    std::string text = "Keys on the screen (* asks first):\n";
    for (const Key& key : kKeys)
        text += fmt::format("  {:<6}{}{}\n", key.name, key.description, key.asksFirst ? " *" : "");
    text += "\nSettings:\n";
    for (const auto& [name, description] : kSettings) {
        if (!description.empty()) text += fmt::format("  {:<35} {}\n", name, description);
    }
    return text;
}

/** Values that parseOptions converts. */
struct Texts {
    std::string datum = "wgs84";
    std::string coordinates = std::string(kCoordinateFormatNames[0]);
    std::string units = std::string(kSpeedUnitNames[0]);
    std::vector<std::string> settings;
    int seconds = 0;
};

template <class Names>
CLI::IsMember memberOf(const Names& names) {
    return CLI::IsMember(std::vector<std::string>(names.begin(), names.end()));
}

/** The enumerator with this name, which is one of `names`. */
template <class Choice, class Names>
Choice choice(const Names& names, const std::string& name) {
    return static_cast<Choice>(std::find(names.begin(), names.end(), name) - names.begin());
}

void addOptions(CLI::App& app, Options& options, Texts& texts) {
    app.add_option("--device", options.device, "Receiver's serial device (default: GPSHAL_DEVICE of the environment)")
        ->type_name("PATH");
    app.add_option("--baud", options.baud, "9600, 38400 or 115200 (default: GPSHAL_BAUD of the environment)")
        ->option_text("SPEED")
        ->check(CLI::IsMember({"9600", "38400", "115200"}));
    app.add_option("--datum", texts.datum, "Datum of the sentences: wgs84 (default) or tokyo")
        ->option_text("DATUM")
        ->check(CLI::IsMember({"wgs84", "tokyo"}));
    app.add_option("--setting", texts.settings,
                   "Request this setting after the start, and wait for its answer; repeatable")
        ->type_name("NAME")
        ->allow_extra_args(false)
        ->check(checkSetting);
    app.add_option("--record", options.record, "Append the raw sentences to this file")->type_name("FILE");
    app.add_option("--coordinates", texts.coordinates, "Format of coordinates: minutes (default), degrees or dms")
        ->option_text("FORMAT")
        ->check(memberOf(kCoordinateFormatNames));
    app.add_option("--units", texts.units, "Unit of speed: kmh (default), knots, mph or m/s")
        ->option_text("UNIT")
        ->check(memberOf(kSpeedUnitNames));
    app.add_option("--seconds", texts.seconds, "End after this many seconds")
        ->option_text("N")
        ->check(CLI::Range(1, kLongestRun));
    app.add_flag("--set-location", options.setsLocation, "Publish a location once a second");
    app.add_flag("--plain", options.isPlain, "One line per notification instead of the screen");
}

}  // namespace

std::variant<Options, int> parseOptions(int argc, char** argv) {
    CLI::App app("Shows what the GPS service delivers to its clients.", "gps-monitor");
    app.footer(footer());
    Options options;
    Texts texts;
    addOptions(app, options, texts);
    if (const auto status = tool::parseCommandLine(app, argc, argv)) return *status;
    if (texts.datum == "tokyo") options.datum = GEODETIC_SYSTEM_TOKYO;
    options.coordinates = choice<CoordinateFormat>(kCoordinateFormatNames, texts.coordinates);
    options.speed = choice<SpeedUnit>(kSpeedUnitNames, texts.units);
    for (const std::string& name : texts.settings)
        options.settings.push_back(*findSetting(name));
    if (texts.seconds > 0) options.runTime = std::chrono::seconds(texts.seconds);
    return options;
}

}  // namespace monitor
