#include "tools/gps-monitor/Options.h"

#include "tools/common/CommandLine.h"
#include "tools/gps-monitor/model/Names.h"
#include "tools/gps-monitor/terminal/Keys.h"

namespace monitor {

namespace {

constexpr int kLongestRun = 365 * 24 * 3600;

std::string checkSetting(const std::string& name) {
    return findSetting(name) ? "" : "no setting has the name " + name;
}

std::string footer() {
    std::string text = "Keys on the screen:\n";
    for (const Key& key : kKeys)
        text += std::string("  ") + key.key + "  " + std::string(key.description) + '\n';
    text += "\nSettings:\n";
    for (const std::string_view name : kSettingNames)
        text += "  " + std::string(name) + '\n';
    return text;
}

/** Values of options that are not yet what Options holds. */
struct Texts {
    std::string datum = "wgs84";
    std::vector<std::string> settings;
    int seconds = 0;
};

void addOptions(CLI::App& app, Options& options, Texts& texts) {
    app.add_option("--device", options.device, "Receiver's serial device (default: GPSHAL_DEVICE of the environment)")
        ->type_name("PATH");
    app.add_option("--baud", options.baud, "Speed of the device (default: GPSHAL_BAUD of the environment)")
        ->check(CLI::IsMember({"9600", "38400", "115200"}));
    app.add_option("--datum", texts.datum, "Datum of the sentences to be told: wgs84 (default) or tokyo")
        ->check(CLI::IsMember({"wgs84", "tokyo"}));
    app.add_option("--setting", texts.settings,
                   "Request this setting after the start, and wait for its answer; repeatable")
        ->type_name("NAME")
        ->allow_extra_args(false)
        ->check(checkSetting);
    app.add_option("--seconds", texts.seconds, "End after this many seconds")->check(CLI::Range(1, kLongestRun));
    app.add_flag("--set-location", options.setsLocation, "Publish a location once a second");
    app.add_flag("--plain", options.isPlain, "One line per notification instead of the screen");
}

}  // namespace

std::variant<Options, int> parseOptions(int argc, char** argv) {
    CLI::App app("Shows what the GPS service tells its clients.", "gps-monitor");
    app.footer(footer());
    Options options;
    Texts texts;
    addOptions(app, options, texts);
    if (const auto status = tool::parseCommandLine(app, argc, argv)) return *status;
    if (texts.datum == "tokyo") options.datum = GEODETIC_SYSTEM_TOKYO;
    for (const std::string& name : texts.settings)
        options.settings.push_back(*findSetting(name));
    if (texts.seconds > 0) options.runTime = std::chrono::seconds(texts.seconds);
    return options;
}

}  // namespace monitor
