// velkorc lsp: the language server for editors other than the IDE.
#include "cli/cli.h"
#include "lsp/stdio_server.h"

namespace velkor::cli {

int RunLsp(const Options&) {
    return lsp::RunStdioServer();
}

} // namespace velkor::cli
