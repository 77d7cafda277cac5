#include "tools/gps-decode/Options.h"

#include <cstdio>
#include <map>

#include "tools/common/CommandLine.h"

namespace decode {

namespace {

constexpr char kDescription[] =
    "Decodes the byte stream that a receiver sent, by the rules of the GPS service, and writes what its listeners\n"
    "would get: one of raw sentences, one of parsed sentences, one of the antenna status and one of production\n"
    "results. Standard output is one JSON object a line for each notification, in order; other options write a track,\n"
    "a table or a page instead. The memory that processes share is not used.";

constexpr char kFooter[] =
    "TIME is UTC, such as 2026-11-16T01:02:03 or, on any day, 01:02:03. EVENT is raw, epoch, gga, gll, gsa, gsv, rmc,\n"
    "vtg, zda, pubx, antenna, production, check or the name of a notification.\n"
    "\n"
    "In the JSON, \"event\" is the notification's name; the record's fields follow under their own names. Bytes of a\n"
    "sentence below 0x20 or above 0x7E are \\u00XX. Integer fields have no point; doubles always have a point or an\n"
    "exponent and read back exactly, and a number that is not finite is null.\n"
    "\n"
    "The last line on standard error counts, for the whole stream,\n"
    "  chunks         NMEA sentences (\"$\" to line feed) and UBX frames with a good checksum found in the stream;\n"
    "  delivered      chunks for which at least one of the four listeners was notified, also if not written;\n"
    "  refused        all other chunks;\n"
    "  bytes dropped  bytes of the stream that belong to no chunk, an unfinished chunk at its end included.\n"
    "If there are chunks that gave no record and no antenna status, the line before it counts them by reason:\n"
    "  checksum  the checksum of a sentence is missing or wrong;\n"
    "  length    a sentence is longer than 128 characters;\n"
    "  line end  a sentence ends in LF alone;\n"
    "  field     a field of a sentence is missing or out of range;\n"
    "  datum     listeners of the wanted datum are not served;\n"
    "  kind      there is no record for a sentence of this kind;\n"
    "  text      a text of the receiver other than the antenna status;\n"
    "  frame     a UBX frame that is no production result.\n"
    "The raw-sentence listener also gets those of the first four reasons and of unknown kind.\n"
    "\n"
    "A track has one point for each time with an RMC or GGA fix, the elevation from GGA and the date from RMC or ZDA.\n"
    "A new segment begins where the fix was lost, the receiver started, time went back or more than --gap seconds\n"
    "passed. Input of known size over 1 MB has a progress line on standard error if that is a terminal and standard\n"
    "output is not.\n"
    "\n"
    "SIGINT (Ctrl-C), SIGTERM and SIGHUP end the input: what has been read is written and counted. The exit status is\n"
    "then 128 plus the signal's number; 0 at the end of the input and when the reader of the output closes it; 1 when\n"
    "something cannot be read or written; 2 for bad use.";

const std::map<std::string, GeodeticSystem> kDatums{{"wgs84", GEODETIC_SYSTEM_WGS84}, {"tokyo", GEODETIC_SYSTEM_TOKYO}};

constexpr struct {
    std::string_view option;
    std::string_view name;
} kEvents[] = {{"raw", "notifyReceiveNmeaSentence"},
               {"epoch", "notifyParseNmeaSentence"},
               {"gga", "notifyParseGgaSentence"},
               {"gll", "notifyParseGllSentence"},
               {"gsa", "notifyParseGsaSentence"},
               {"gsv", "notifyParseGsvSentence"},
               {"rmc", "notifyParseRmcSentence"},
               {"vtg", "notifyParseVtgSentence"},
               {"zda", "notifyParseZdaSentence"},
               {"pubx", "notifyParsePubxSentence"},
               {"antenna", "notifyGpsConnectionStatus"},
               {"production", "notifyReceiveGpsProductionData"},
               {"check", "notifyReceiveGpsProductionCheckData"}};

/** Values that parseOptions converts. */
struct Typed {
    std::string base = "wgs84";
    std::string wanted = "wgs84";
    std::string from;
    std::string to;
    bool isUnfinished = false;
    unsigned gap = 10;
};

/** The options that choose a form of output; they exclude each other. */
void addForms(CLI::App& app, Options& options) {
    using Form = Options::Form;
    const auto add = [&](const char* name, Form form, const char* help) {
        return app
            .add_flag_callback(
                name, [&options, form] { options.form = form; }, help)
            ->option_text(" ");
    };
    CLI::Option* const all[] = {
        add("--raw", Form::Raw, "Write exactly the bytes that the raw-sentence listener gets"),
        add("--gpx", Form::Gpx, "Write the positions as a GPX track"),
        add("--csv", Form::Csv, "Write the positions as comma-separated values"),
        app.add_option_function<std::string>(
               "--report",
               [&options](const std::string& file) {
                   options.form = Form::Report;
                   options.output = file;
               },
               "Write an HTML page with charts of the log to FILE (- for standard output)")
            ->option_text("FILE"),
        app.add_option("--event", options.setup.selection.names, "Write only these notifications (repeatable)")
            ->option_text("EVENT")
            ->allow_extra_args(false)};
    for (CLI::Option* const one : all) {
        for (CLI::Option* const other : all) {
            if (one != other) one->excludes(other);
        }
    }
}

void addOptions(CLI::App& app, Options& options, Typed& typed) {
    app.add_option("FILE", options.file, "The captured stream; standard input without it or with -")->option_text(" ");
    app.add_option("--base", typed.base, "Datum in which the receiver reports: wgs84 (default) or tokyo")
        ->option_text("DATUM")
        ->check(CLI::IsMember(kDatums));
    app.add_option("--want", typed.wanted, "Datum of the listeners: wgs84 (default) or tokyo")
        ->option_text("DATUM")
        ->check(CLI::IsMember(kDatums));
    app.add_flag("--unfinished", typed.isUnfinished, "The receiver has not finished changing its datum");
    app.add_flag("--lf", options.setup.readsLfAsCrLf, "Read LF at the end of a sentence as CR LF");
    addForms(app, options);
    app.add_option("--from", typed.from, "Write nothing before this time")->option_text("TIME");
    app.add_option("--to", typed.to, "Write nothing after this time")->option_text("TIME");
    app.add_option("--gap", typed.gap, "Time without a fix that begins a new track segment (default 10)")
        ->option_text("SECONDS");
    app.add_flag("--verbose", options.setup.isVerbose, "Show the library's messages on standard error");
}

/** The notification named by --event. */
std::string eventOf(const std::string& typed) {
    std::string known;
    for (const auto& event : kEvents) {
        if (typed == event.option || typed == event.name) return std::string(event.name);
        ((known += known.empty() ? "" : ", ") += event.option);
    }
    throw tool::BadUse("--event: " + typed + " is none of " + known);
}

std::optional<UtcTime> timeOf(const char* option, const std::string& typed) {
    using namespace std::chrono;
    if (typed.empty()) return std::nullopt;
    int y = 1970;
    unsigned month = 1, day = 1, hour = 0, minute = 0;
    double second = 0;
    const bool hasDate = std::sscanf(typed.c_str(), "%4d-%2u-%2uT", &y, &month, &day) == 3;
    const std::size_t timeAt = hasDate ? typed.find('T') + 1 : 0;
    int end = 0;
    std::sscanf(typed.c_str() + timeAt, "%2u:%2u:%lf%n", &hour, &minute, &second, &end);
    const std::string_view rest = std::string_view(typed).substr(timeAt + static_cast<std::size_t>(end));
    const auto date = year(y) / static_cast<int>(month) / static_cast<int>(day);
    if (end == 0 || !(rest.empty() || rest == "Z") || !date.ok() || hour > 23 || minute > 59 || !(second < 60)) {
        throw tool::BadUse(std::string(option) + ": " + typed + " is no time such as 2026-11-16T01:02:03 or 01:02:03");
    }
    return UtcTime{
        sys_days(date).time_since_epoch() + hours(hour) + minutes(minute) + milliseconds(std::llround(second * 1000)),
        hasDate};
}

}  // namespace

std::variant<Options, int> parseOptions(int argc, char** argv) {
    Options options;
    Typed typed;
    CLI::App app(kDescription, "gps-decode");
    app.footer(kFooter);
    addOptions(app, options, typed);
    if (const auto status = tool::parseCommandLine(app, argc, argv)) return *status;
    options.setup.base = kDatums.at(typed.base);
    options.setup.wanted = kDatums.at(typed.wanted);
    options.setup.settingFinished = !typed.isUnfinished;
    for (std::string& name : options.setup.selection.names)
        name = eventOf(name);
    options.setup.selection.from = timeOf("--from", typed.from);
    options.setup.selection.to = timeOf("--to", typed.to);
    options.gap = std::chrono::seconds(typed.gap);
    if (options.form == Options::Form::Gpx && options.setup.wanted != GEODETIC_SYSTEM_WGS84) {
        throw tool::BadUse("--gpx excludes --want tokyo: a track is in WGS84");
    }
    return options;
}

}  // namespace decode
