#include "tools/gps-decode/Options.h"

#include <map>

#include "tools/common/CommandLine.h"

namespace decode {

namespace {

constexpr char kDescription[] =
    "Tells what the listeners of the GPS service would be told for a captured byte stream: one of raw sentences, one\n"
    "of parsed sentences, one of the antenna status and one of production results. Standard output gets one JSON\n"
    "object a line for every notification, in order. Nothing that processes share is touched.";

constexpr char kFooter[] =
    "In the JSON, \"event\" is the notification's name; the record's fields follow under their own names. Bytes of a\n"
    "sentence below 0x20 or above 0x7E are \\u00XX. Integer fields have no point; doubles always have a point or an\n"
    "exponent and read back exactly, and a number that is not finite is null.\n"
    "\n"
    "The last line on standard error counts\n"
    "  chunks         NMEA sentences (\"$\" to line feed) and UBX frames with a good checksum found in the stream;\n"
    "  delivered      chunks of which at least one of the four listeners was told something, also where --raw or\n"
    "                 --gpx does not show it;\n"
    "  refused        all other chunks: those that nobody listens for and those that may not be or cannot be\n"
    "                 delivered;\n"
    "  bytes dropped  bytes of the stream that belong to no chunk, an unfinished chunk at its end included.\n"
    "\n"
    "A track has one point for each time with an RMC or GGA fix, the elevation from GGA and the date from RMC. It is\n"
    "interrupted where the fix is lost. Input of known size over 1 MB has a progress line on standard error if that\n"
    "is a terminal and standard output is not.\n"
    "\n"
    "Ctrl-C ends the input: what has been read is written and counted. The exit status is then 130; 0 at the end of\n"
    "the input and when the reader of the output has had enough; 1 when something cannot be read or written; 2 for\n"
    "bad use.";

const std::map<std::string, GeodeticSystem> kDatums{{"wgs84", GEODETIC_SYSTEM_WGS84}, {"tokyo", GEODETIC_SYSTEM_TOKYO}};

/** Option values as typed; parseOptions turns them into what they mean. */
struct Typed {
    std::string base = "wgs84";
    std::string wanted = "wgs84";
    bool isUnfinished = false;
};

void addOptions(CLI::App& app, Options& options, Typed& typed) {
    app.add_option("FILE", options.file, "The captured stream; standard input without it or with -")->option_text(" ");
    app.add_option("--base", typed.base, "Datum in which the receiver reports: wgs84 (default) or tokyo")
        ->option_text("DATUM")
        ->check(CLI::IsMember(kDatums));
    app.add_option("--want", typed.wanted, "Datum that the listeners want: wgs84 (default) or tokyo")
        ->option_text("DATUM")
        ->check(CLI::IsMember(kDatums));
    app.add_flag("--unfinished", typed.isUnfinished, "The receiver has not finished changing its datum");
    auto* raw =
        app.add_flag("--raw", options.isRaw, "Write the very bytes that the raw-sentence listener gets instead");
    app.add_flag("--gpx", options.isGpx, "Write the positions as a GPX track instead")->excludes(raw);
    app.add_flag("--verbose", options.isVerbose, "Show the library's messages on standard error");
}

}  // namespace

std::variant<Options, int> parseOptions(int argc, char** argv) {
    Options options;
    Typed typed;
    CLI::App app(kDescription, "gps-decode");
    app.footer(kFooter);
    addOptions(app, options, typed);
    if (const auto status = tool::parseCommandLine(app, argc, argv)) return *status;
    options.setup = {kDatums.at(typed.base), kDatums.at(typed.wanted), !typed.isUnfinished};
    if (options.isGpx && options.setup.wanted != GEODETIC_SYSTEM_WGS84) {
        throw tool::BadUse("--gpx excludes --want tokyo: a track is in WGS84");
    }
    return options;
}

}  // namespace decode
