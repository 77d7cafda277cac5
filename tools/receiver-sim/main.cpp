#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <string>
#include <variant>

#include "Options.h"
#include "Simulator.h"

namespace {

/** What is written to a stream that the caller has closed must not end up at the receiver's port. */
void keepStandardStreams() {
    int descriptor = open("/dev/null", O_RDWR);
    while (descriptor >= 0 && descriptor <= STDERR_FILENO)
        descriptor = open("/dev/null", O_RDWR);
    if (descriptor >= 0) close(descriptor);
}

int complain(std::string problem, int status) {
    std::replace(problem.begin(), problem.end(), '\n', ' ');
    std::cerr << "receiver-sim: " << problem << "\n";
    return status;
}

int runSimulator(int argc, char** argv) {
    const auto options = sim::parseOptions(argc, argv);
    if (std::holds_alternative<int>(options)) return std::get<int>(options);
    sim::Simulator simulator(std::get<sim::Options>(options));
    std::cout << simulator.devicePath() << std::endl;
    simulator.run();
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    constexpr int kBadUseStatus = 2;
    keepStandardStreams();
    signal(SIGPIPE, SIG_IGN);
    try {
        return runSimulator(argc, argv);
    } catch (const sim::BadUse& problem) {
        return complain(problem.what(), kBadUseStatus);
    } catch (const std::exception& problem) {
        return complain(problem.what(), 1);
    }
}
