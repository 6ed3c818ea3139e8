#include "cli/cli.h"

#include <iostream>

namespace velkor::cli {

int RunSymbols(const Options&) {
    std::cerr << "velkorc: the symbols command is not available yet\n";
    return kExitUsage;
}

} // namespace velkor::cli
