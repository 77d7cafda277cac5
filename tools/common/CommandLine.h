#ifndef TOOLS_COMMON_COMMAND_LINE_H
#define TOOLS_COMMON_COMMAND_LINE_H

#include <CLI/CLI.hpp>
#include <optional>

#include "tools/common/Program.h"

namespace tool {

/**
 * Parses the options that `app` knows, and --version.
 * @return the exit status of a program that has said all there is to say (help, version)
 * @throws BadUse
 */
inline std::optional<int> parseCommandLine(CLI::App& app, int argc, char** argv) {
    app.set_version_flag("--version", app.get_name() + " " QVGPS_VERSION);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& helpOrVersion) {
        return app.exit(helpOrVersion);
    } catch (const CLI::ParseError& error) {
        throw BadUse(error.what());
    }
    return std::nullopt;
}

}  // namespace tool

#endif
