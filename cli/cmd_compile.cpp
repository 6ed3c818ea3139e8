#include "cli/cli.h"

#include <iostream>

namespace velkor::cli {

int RunCompile(const Options&) {
    std::cerr << "velkorc: the compile command is not available yet\n";
    return kExitUsage;
}

} // namespace velkor::cli
