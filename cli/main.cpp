// velkorc: argument parsing and dispatch; each command lives in its own file.
#include "cli/cli.h"
#include "compiler/compiler_version.h"
#include "platform/numbers.h"
#include "platform/standard_streams.h"

#include <cstdio>
#include <cstring>
#include <exception>
#include <iostream>
#include <string_view>

namespace velkor::cli {

namespace {

constexpr const char* kToolHelp =
    "Usage: velkorc COMMAND [OPTIONS] ARGS\n"
    "\n"
    "Commands:\n"
    "  compile [OPTIONS] UNIT      Compile, Finish, Link; the linked textual IFF goes to stdout (or -o "
    "FILE)\n"
    "  build   [OPTIONS] UNIT      compile, then assemble the linked text into the binary files it names\n"
    "  asm     [OPTIONS] TEXT      assemble a textual-IFF file into the binary files it names\n"
    "  decode  [OPTIONS] FILE...   decode binary IFF files into FILE + \".pas\" (or -o OUT for one file)\n"
    "  tokens  [OPTIONS] FILE      print each token as \"<line>\\t<kind>\\t<text>\", end of text included\n"
    "  symbols [OPTIONS] UNIT      declarations only; print the symbol table, one symbol a line,\n"
    "                              tab-separated: name, kind, file, line, text, register, value\n"
    "  map     [OPTIONS] UNIT|FILE draw the objects of a unit or binary IFF file as SVG (-o FILE)\n"
    "  lsp                         language server over stdio (LSP 3.17), for editors other than the IDE\n"
    "  --version                   print the compiler version\n"
    "\n"
    "Options:\n"
    "  -v N, --verbosity N         message level 0 to 3 (default 1)\n"
    "  --no-halt                   recover from errors instead of stopping at the first\n"
    "  -O, --optimize              run the optimiser (default off)\n"
    "  --fast-scanner              use TFastScanner (default TScanner)\n"
    "  --no-line-markers           tokens only: TScanner without line markers\n"
    "  -I DIR, --search-path DIR   add DIR after the unit's own folder and before $compiler$\\lib\n"
    "  --out-dir DIR               folder for output files whose names have no folder (default: current)\n"
    "  --max-decode-size N         decode limit in bytes (default 1024)\n"
    "  --exact-floats              decode only: write floats in the shortest form that reads back exactly\n"
    "  --no-disassemble            decode only: write function records as byte rows, not WCP_ASM listings\n"
    "  -o FILE                     output file of compile, of a single decode or of map\n"
    "  --view top|side|both        map only: the views drawn (default both)\n"
    "  --dark                      map only: dark colours\n"
    "  --allow-output-anywhere     let a unit or text write its binary files outside the output folder,\n"
    "                              its own folder and the named folders (default: refused)\n"
    "\n"
    "Messages of the compiler and the assembler go to stderr, one line each.\n"
    "In token texts CR, LF, tab, NUL and backslash are written as \\r, \\n, \\t, \\0 and \\\\.\n"
    "Exit status: 0 no error reported, 1 the compiler or assembler reported an error,\n"
    "2 usage or input/output error.\n"
    "\n"
    "Files: every write replaces its target atomically and keeps its mode; no output may be an input\n"
    "of the same run. Binary files that a unit or text names are written only inside the output folder\n"
    "(--out-dir, else the current folder), below the unit's or text's own folder, or inside a named\n"
    "folder ($compiler$, the game folders, user-defined folders), unless --allow-output-anywhere.\n";

struct CommandHelp {
    std::string_view name;
    std::string_view text;
};

constexpr CommandHelp kCommandHelp[] = {
    {"compile", "Usage: velkorc compile [OPTIONS] UNIT\n"
                "Compiles UNIT (Compile, Finish, Link) and writes the linked textual IFF to stdout, or to\n"
                "the file given by -o. Options: -v N, --no-halt, -O, --fast-scanner, -I DIR, --out-dir DIR,\n"
                "-o FILE, --allow-output-anywhere. Units named by #FILE are assembled into their binary\n"
                "files.\n"},
    {"build", "Usage: velkorc build [OPTIONS] UNIT\n"
              "Compiles UNIT and assembles the linked text into the binary files it names; names without\n"
              "a folder go into --out-dir. Prints one line per written file with its size.\n"
              "Options: -v N, --no-halt, -O, --fast-scanner, -I DIR, --out-dir DIR,\n"
              "--allow-output-anywhere (write files outside the output folder, the unit's folder and\n"
              "the named folders).\n"},
    {"asm", "Usage: velkorc asm [OPTIONS] TEXT\n"
            "Assembles the textual-IFF file TEXT into the binary files it names; names without a folder\n"
            "go into --out-dir. Prints one line per written file with its size.\n"
            "Options: --fast-scanner, --out-dir DIR, --allow-output-anywhere (write files outside the\n"
            "output folder, the text's folder and the named folders).\n"},
    {"decode", "Usage: velkorc decode [OPTIONS] FILE...\n"
               "Decodes binary IFF files into textual IFF, each into FILE.pas (or -o OUT for one file).\n"
               "Chunks larger than --max-decode-size N bytes (default 1024) go to side files beside the\n"
               "output. --exact-floats writes floats in the shortest form that reads back exactly.\n"
               "A truncated file or a form of odd size is decoded all the same, with a note on stderr\n"
               "that the text is not exact.\n"
               "Script functions are written as WCP_ASM listings whatever their size, with names beside\n"
               "the ids that stand for names; --no-disassemble writes them as byte rows instead.\n"},
    {"tokens", "Usage: velkorc tokens [OPTIONS] FILE\n"
               "Prints each token of FILE as \"<line>\\t<kind>\\t<text>\", end of text included.\n"
               "Options: --fast-scanner, --no-line-markers.\n"},
    {"symbols", "Usage: velkorc symbols [OPTIONS] UNIT\n"
                "Compiles the declarations of UNIT only and prints the symbol table, one symbol a line,\n"
                "tab-separated: name, kind, file, line, text, register, value.\n"
                "Options: -v N, --no-halt, --fast-scanner, -I DIR.\n"},
    {"map", "Usage: velkorc map [OPTIONS] UNIT|FILE\n"
            "Draws the game objects of a mission or sector as SVG: a top view (x, z) and a side view\n"
            "(x, y), each object a symbol of its type with its name, a scale bar in game units and a\n"
            "legend. A unit is compiled first and textual IFF assembled in memory (nothing is written);\n"
            "a binary IFF file (starting with FORM) is read as it is, its objects named by their name\n"
            "checksum. The SVG goes to stdout, or to the file given by -o.\n"
            "Objects without a position are left out and named on stderr; when there are no objects, or\n"
            "none has a position, nothing is written and the exit status is 1.\n"
            "Options: --view top|side|both, --dark, -o FILE, and for units -v N, --no-halt, -O,\n"
            "--fast-scanner, -I DIR, --out-dir DIR.\n"},
    {"lsp", "Usage: velkorc lsp\n"
            "Runs the language server on standard input and output (JSON-RPC with LSP 3.17 framing):\n"
            "diagnostics, completion, hover, signature help, definition, document and workspace symbols,\n"
            "references and semantic tokens. Settings come from the client's \"velkor\" section:\n"
            "searchPath (folders after the unit's own, before $compiler$\\lib) and debounceMilliseconds.\n"},
};

int UsageError(const std::string& message) {
    std::cerr << "velkorc: " << message << "\nTry 'velkorc --help'.\n";
    return kExitUsage;
}

bool ParseInt(std::string_view text, int& out) {
    auto v = StrToInt(text);
    if (!v) return false;
    out = *v;
    return true;
}

} // namespace

void PrintMessage(const std::string& line) {
    std::fwrite(line.data(), 1, line.size(), stderr);
    std::fputc('\n', stderr);
}

int Main(int argc, char** argv) {
    if (argc < 2) return UsageError("no command given");
    std::string_view first = argv[1];
    if (first == "--version") {
        std::cout << kCompilerVersion << "\n";
        return kExitOk;
    }
    if (first == "--help" || first == "-h") {
        std::cout << kToolHelp;
        return kExitOk;
    }

    Options o;
    o.command = first;
    const CommandHelp* help = nullptr;
    for (const auto& h : kCommandHelp)
        if (h.name == o.command) help = &h;
    if (!help) return UsageError("unknown command \"" + o.command + "\"");

    for (int i = 2; i < argc; ++i) {
        std::string_view a = argv[i];
        auto value = [&](std::string_view& out) {
            if (i + 1 >= argc) return false;
            out = argv[++i];
            return true;
        };
        std::string_view v;
        if (a == "--help" || a == "-h") {
            std::cout << help->text;
            return kExitOk;
        } else if (a == "-v" || a == "--verbosity") {
            if (!value(v) || !ParseInt(v, o.verbosity) || o.verbosity < 0 || o.verbosity > 3)
                return UsageError("-v needs a level from 0 to 3");
        } else if (a == "--no-halt") {
            o.noHalt = true;
        } else if (a == "-O" || a == "--optimize") {
            o.optimize = true;
        } else if (a == "--fast-scanner") {
            o.fastScanner = true;
        } else if (a == "--no-line-markers") {
            o.noLineMarkers = true;
        } else if (a == "--allow-output-anywhere") {
            o.allowOutputAnywhere = true;
        } else if (a == "--exact-floats") {
            o.exactFloats = true;
        } else if (a == "--no-disassemble") {
            o.noDisassemble = true;
        } else if (a == "-I" || a == "--search-path") {
            if (!value(v)) return UsageError(std::string(a) + " needs a folder");
            o.searchPaths.emplace_back(v);
        } else if (a == "--out-dir") {
            if (!value(v)) return UsageError("--out-dir needs a folder");
            o.outDir = v;
        } else if (a == "--max-decode-size") {
            if (!value(v) || !ParseInt(v, o.maxDecodeSize) || o.maxDecodeSize < 0)
                return UsageError("--max-decode-size needs a number of bytes");
        } else if (a == "--view") {
            if (!value(v) || (v != "top" && v != "side" && v != "both"))
                return UsageError("--view needs top, side or both");
            o.mapView = v;
        } else if (a == "--dark") {
            o.dark = true;
        } else if (a == "-o") {
            if (!value(v)) return UsageError("-o needs a file name");
            o.output = v;
        } else if (a.size() > 1 && a[0] == '-') {
            return UsageError("unknown option \"" + std::string(a) + "\"");
        } else {
            o.files.emplace_back(a);
        }
    }

    if (o.command == "lsp") {
        if (!o.files.empty()) return UsageError("lsp takes no file");
        return RunLsp(o);
    }
    if (o.files.empty()) return UsageError(o.command + " needs a file");
    if (o.command != "decode" && o.files.size() > 1) return UsageError(o.command + " takes one file");
    if (o.command == "decode" && !o.output.empty() && o.files.size() > 1)
        return UsageError("-o names the output of a single decode");

    try {
        if (o.command == "compile") return RunCompile(o);
        if (o.command == "build") return RunBuild(o);
        if (o.command == "asm") return RunAsm(o);
        if (o.command == "decode") return RunDecode(o);
        if (o.command == "tokens") return RunTokens(o);
        if (o.command == "map") return RunMap(o);
        return RunSymbols(o);
    } catch (const std::exception& e) {
        std::cerr << "velkorc: " << e.what() << "\n";
        return kExitUsage;
    }
}

} // namespace velkor::cli

int main(int argc, char** argv) {
    velkor::UseBinaryStandardStreams();
    return velkor::cli::Main(argc, argv);
}
