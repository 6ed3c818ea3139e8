#include "cli/cli.h"

#include <iostream>

namespace velkor::cli {

int RunDecode(const Options&) {
    std::cerr << "velkorc: the decode command is not available yet\n";
    return kExitUsage;
}

} // namespace velkor::cli
