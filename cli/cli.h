// The command-line tool velkorc: options shared by every command, and one entry point per command.
#pragma once

#include <string>
#include <vector>

namespace velkor::cli {

// Exit statuses of every command.
inline constexpr int kExitOk = 0;       // no error reported
inline constexpr int kExitReported = 1; // the compiler or the assembler reported an error
inline constexpr int kExitUsage = 2;    // usage or input/output error

struct Options {
    std::string command;                  // compile, build, asm, decode, tokens, symbols, map, lsp
    int verbosity = 1;                    // -v, --verbosity: message level 0 to 3
    bool noHalt = false;                  // --no-halt: recover from errors
    bool optimize = false;                // -O, --optimize
    bool fastScanner = false;             // --fast-scanner
    bool noLineMarkers = false;           // --no-line-markers (tokens only)
    bool exactFloats = false;             // --exact-floats (decode only)
    bool noDisassemble = false;           // --no-disassemble (decode only)
    std::vector<std::string> searchPaths; // -I, --search-path, in order
    std::string outDir;                   // --out-dir; empty means the current folder
    int maxDecodeSize = 1024;             // --max-decode-size
    std::string output;                   // -o
    bool allowOutputAnywhere = false;     // --allow-output-anywhere: lift the confinement of output files
    std::string mapView = "both";         // --view (map only): top, side or both
    bool dark = false;                    // --dark (map only): the dark colours
    std::vector<std::string> files;       // the command's operands
};

int RunCompile(const Options& options);
int RunBuild(const Options& options);
int RunAsm(const Options& options);
int RunDecode(const Options& options);
int RunTokens(const Options& options);
int RunSymbols(const Options& options);
int RunMap(const Options& options);
int RunLsp(const Options& options);

// Writes one message line to stderr, as the output callbacks receive it.
void PrintMessage(const std::string& line);

} // namespace velkor::cli
