#include <iostream>
#include <variant>

#include "Options.h"
#include "Simulator.h"
#include "tools/common/Program.h"

namespace {

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
    return tool::runProgram("receiver-sim", [&] { return runSimulator(argc, argv); });
}
