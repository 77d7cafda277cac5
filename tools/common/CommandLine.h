#ifndef TOOLS_COMMON_COMMAND_LINE_H
#define TOOLS_COMMON_COMMAND_LINE_H

#include <CLI/CLI.hpp>
#include <cerrno>
#include <iostream>
#include <optional>
#include <system_error>

#include "tools/common/Program.h"

namespace tool {

/**
 * Parses the options of `app`, --help and --version.
 * @return the exit status when help or the version was printed
 * @throws BadUse, or std::system_error when help or the version cannot be written; a closed pipe is no error
 */
inline std::optional<int> parseCommandLine(CLI::App& app, int argc, char** argv) {
    app.set_version_flag("--version", app.get_name() + " " QVGPS_VERSION);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& helpOrVersion) {
        const int status = app.exit(helpOrVersion);
        if (std::cout.flush() || errno == EPIPE) return status;
        throw std::system_error(errno, std::generic_category(), "cannot write standard output");
    } catch (const CLI::ParseError& error) {
        throw BadUse(error.what());
    }
    return std::nullopt;
}

}  // namespace tool

#endif
