#include "cli/cli.h"

#include <iostream>

namespace velkor::cli {

int RunAsm(const Options&) {
    std::cerr << "velkorc: the asm command is not available yet\n";
    return kExitUsage;
}

} // namespace velkor::cli
