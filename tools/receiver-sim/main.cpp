#include <iostream>

#include "tools/common/Program.h"
#include "tools/receiver-sim/Options.h"
#include "tools/receiver-sim/Simulator.h"

namespace {

int runSimulator(const sim::Options& options) {
    sim::Simulator simulator(options);
    std::cout << simulator.devicePath() << std::endl;
    simulator.run();
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    return tool::runProgram("receiver-sim", argc, argv, &sim::parseOptions, &runSimulator);
}
