#include "cli/cli.h"

#include <iostream>

namespace velkor::cli {

int RunBuild(const Options&) {
    std::cerr << "velkorc: the build command is not available yet\n";
    return kExitUsage;
}

} // namespace velkor::cli
