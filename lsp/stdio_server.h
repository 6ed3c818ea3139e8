// The language server on the process's standard input and output.
#pragma once

namespace velkor::lsp {

// Serves until the client's exit notification or the end of input; returns the exit status.
int RunStdioServer();

} // namespace velkor::lsp
