#include "tools/common/Program.h"
#include "tools/gps-monitor/Monitor.h"
#include "tools/gps-monitor/Options.h"

int main(int argc, char** argv) {
    return tool::runProgram("gps-monitor", argc, argv, &monitor::parseOptions, &monitor::runMonitor);
}
