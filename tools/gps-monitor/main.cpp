#include <cstdio>
#include <cstdlib>
#include <exception>

#include "tools/gps-monitor/Monitor.h"
#include "tools/gps-monitor/Options.h"

int main(int argc, char** argv) {
    try {
        const monitor::CommandLine commandLine = monitor::parseCommandLine(argc, argv);
        if (commandLine.exitCode) return *commandLine.exitCode;
        monitor::runMonitor(commandLine.options);
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "gps-monitor: %s\n", error.what());
        return 1;
    }
}
