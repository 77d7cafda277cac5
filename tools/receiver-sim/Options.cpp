#include "tools/receiver-sim/Options.h"

#include <cstdio>
#include <map>

#include "tools/common/CommandLine.h"
#include "tools/receiver-sim/PortSpeed.h"

namespace sim {

namespace {

constexpr char kDescription[] =
    "A simulated u-blox 7c receiver on a pseudo-terminal, whose path is the first line on standard output.";

constexpr char kFooter[] =
    "The receiver starts when a client first opens the terminal. Without a client, a drive continues and a replay\n"
    "pauses. At the end of a log the receiver sends nothing more but still answers. While the client's terminal\n"
    "speed differs from the port's, the client reads noise and its commands are lost. The receiver has no fix\n"
    "while the antenna is open. SIGINT, SIGTERM and SIGHUP end the simulator.";

const std::map<std::string, Antenna> kAntennas{{"ok", Antenna::Ok}, {"open", Antenna::Open}, {"short", Antenna::Short}};

/** Option values as typed; parseOptions converts them. */
struct Typed {
    unsigned rate = 1;
    std::vector<std::string> antenna{"ok"};
    double antennaEvery = 5.0;
    std::string fixLoss = "0,0";
    bool refusesAll = false;
    unsigned refusesOnce = 0;
    std::string startTime;
    double seconds = 0.0;
    bool doesNotWait = false;
};

std::string isoTimeProblem(const std::string& text) {
    return parseIsoTime(text) ? "" : text + " is not a UTC time such as 2024-05-01T12:00:00Z";
}

/** Reads "AT,SECONDS". */
std::optional<std::pair<double, double>> parseFixLoss(const std::string& text) {
    std::pair<double, double> loss;
    char rest = 0;
    const int read = std::sscanf(text.c_str(), "%lf,%lf%c", &loss.first, &loss.second, &rest);
    const auto isPossible = [](double seconds) { return seconds >= 0.0 && seconds <= 1e6; };
    return read == 2 && isPossible(loss.first) && isPossible(loss.second) ? std::optional(loss) : std::nullopt;
}

std::string fixLossProblem(const std::string& text) {
    return parseFixLoss(text) ? "" : text + " is not a pair of seconds such as 30,10";
}

std::vector<unsigned> knownBauds() {
    std::vector<unsigned> bauds;
    for (const PortSpeed& speed : kPortSpeeds)
        bauds.push_back(speed.baud);
    return bauds;
}

void addReceiverOptions(CLI::App& app, Options& options, Typed& typed) {
    auto& receiver = options.receiver;
    app.add_option("--rate", typed.rate, "Epochs per second: 1 (default) or 5")
        ->option_text("RATE")
        ->check(CLI::IsMember({1, 5}));
    app.add_option("--baud", receiver.baud, "Speed of the port at the start (default 9600)")
        ->option_text("BAUD")
        ->check(CLI::IsMember(knownBauds()));
    app.add_option("--antenna", typed.antenna, "States of the antenna in turn, such as ok,open,short")
        ->option_text("STATE,...")
        ->delimiter(',')
        ->check(CLI::IsMember(kAntennas));
    app.add_option("--antenna-every", typed.antennaEvery, "How long each of them lasts (default 5)")
        ->option_text("SECONDS")
        ->check(CLI::Range(0.001, 1e6));
    app.add_option("--fix-loss", typed.fixLoss, "Lose the fix AT seconds after the start, for SECONDS")
        ->option_text("AT,SECONDS")
        ->check(fixLossProblem);
    auto* all = app.add_flag("--nak", typed.refusesAll, "Refuse every configuration message");
    app.add_option("--nak-once", typed.refusesOnce, "Refuse the Nth configuration message only")
        ->option_text("N")
        ->check(CLI::Range(1u, 1000000u))
        ->excludes(all);
}

void addReplayOptions(CLI::App& app, Options& options) {
    auto* log = app.add_option("--log", options.log, "Replay a captured log, an epoch (from RMC to RMC) at a time")
                    ->option_text("FILE")
                    ->check(CLI::ExistingFile)
                    ->excludes("--antenna", "--antenna-every", "--fix-loss", "--start-time", "--truth");
    auto* loop = app.add_flag("--loop", options.isLooping, "Repeat the log")->needs(log);
    app.add_flag("--fast", options.isFast, "Replay as fast as the client reads")->needs(log)->excludes("--no-wait");
    app.add_flag("--exit-at-end", options.endsWithLog, "End after the log, once no client is there")
        ->needs(log)
        ->excludes(loop);
}

void addRunOptions(CLI::App& app, Options& options, Typed& typed) {
    app.add_option("--start-time", typed.startTime,
                   "UTC of the first epoch, such as 2024-05-01T12:00:00Z (default: now)")
        ->option_text("TIME")
        ->check(isoTimeProblem);
    app.add_option("--seconds", typed.seconds, "End this many seconds after the start of the receiver")
        ->option_text("N")
        ->check(CLI::Range(0.001, 1e9));
    app.add_option("--link", options.link, "Make a symbolic link to the terminal")->option_text("PATH");
    app.add_flag("--no-wait", typed.doesNotWait, "Start and continue whether or not a client is there");
    app.add_option("--report", options.reportFile, "Write all that went over the wire, as JSON Lines")
        ->option_text("FILE");
    app.add_option("--truth", options.truthFile, "Write time, WGS84 latitude and longitude of every epoch")
        ->option_text("FILE");
}

Milliseconds milliseconds(double seconds) {
    return Milliseconds(static_cast<long long>(seconds * 1000.0));
}

}  // namespace

std::variant<Options, int> parseOptions(int argc, char** argv) {
    Options options;
    Typed typed;
    CLI::App app(kDescription, "receiver-sim");
    app.footer(kFooter);
    addReceiverOptions(app, options, typed);
    addRunOptions(app, options, typed);
    addReplayOptions(app, options);
    if (const auto status = tool::parseCommandLine(app, argc, argv)) return *status;
    options.receiver.interval = Milliseconds(1000 / typed.rate);
    options.receiver.antenna.clear();
    for (const std::string& name : typed.antenna)
        options.receiver.antenna.push_back(kAntennas.at(name));
    options.receiver.antennaEvery = milliseconds(typed.antennaEvery);
    const auto [lostAt, lostFor] = parseFixLoss(typed.fixLoss).value();
    options.receiver.fixLostAt = milliseconds(lostAt);
    options.receiver.fixLostFor = milliseconds(lostFor);
    options.receiver.refuses = [typed](MessageId, unsigned number) {
        return typed.refusesAll || number == typed.refusesOnce;
    };
    options.startTime = parseIsoTime(typed.startTime);
    if (app.count("--seconds") > 0) options.seconds = typed.seconds;
    options.waitsForClient = !typed.doesNotWait;
    return options;
}

}  // namespace sim
