#include <variant>

#include "tools/common/Program.h"
#include "tools/gps-monitor/Monitor.h"
#include "tools/gps-monitor/Options.h"

namespace {

int run(int argc, char** argv) {
    const auto options = monitor::parseOptions(argc, argv);
    if (std::holds_alternative<int>(options)) return std::get<int>(options);
    monitor::runMonitor(std::get<monitor::Options>(options));
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    return tool::runProgram("gps-monitor", [&] { return run(argc, argv); });
}
