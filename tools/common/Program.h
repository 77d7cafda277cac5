#ifndef TOOLS_COMMON_PROGRAM_H
#define TOOLS_COMMON_PROGRAM_H

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>
#include <variant>

/** What the tools' main functions have in common. */
namespace tool {

/** The command line asks for something that cannot be done; the text names the option. */
class BadUse : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/** Opens closed standard streams to /dev/null, so that no file gets their numbers; reading or writing them fails. */
inline void keepStandardStreams() {
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(fd, F_GETFD) < 0) open("/dev/null", fd == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
}

/** Prints a problem on one line and returns the exit status. */
inline int complain(const char* program, std::string problem, int status) {
    std::replace(problem.begin(), problem.end(), '\n', ' ');
    std::fprintf(stderr, "%s: %s\n", program, problem.c_str());
    return status;
}

/**
 * Parses the options and runs a tool. A problem is one line on standard error.
 * @return exit status: that of `parse` or `run`, 2 for bad use, 1 for any other problem
 */
template <class Options, class Run>
int runProgram(const char* program, int argc, char** argv, std::variant<Options, int> (*parse)(int, char**), Run run) {
    keepStandardStreams();
    signal(SIGPIPE, SIG_IGN);
    try {
        const auto options = parse(argc, argv);
        return std::holds_alternative<int>(options) ? std::get<int>(options) : run(std::get<Options>(options));
    } catch (const BadUse& problem) {
        return complain(program, problem.what(), 2);
    } catch (const std::exception& problem) {
        return complain(program, problem.what(), 1);
    }
}

}  // namespace tool

#endif
