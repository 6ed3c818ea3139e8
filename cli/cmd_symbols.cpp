// velkorc symbols: the symbol table of a unit's declarations, as the editor's symbol browser gets it.
#include "cli/cli.h"
#include "cli/unit_compiler.h"
#include "compiler/compiler.h"
#include "compiler/symbol_table.h"

#include <iostream>

namespace velkor::cli {

int RunSymbols(const Options& options) {
    UnitCompiler run;
    try {
        run = PrepareUnitCompiler(options, true);
    } catch (const EInOutError& e) {
        PrintMessage(e.what());
        return kExitUsage;
    }
    TCompiler& c = *run.compiler;
    bool failed = false;
    // A declarations-only run is silent; the message of an error that ends it is still worth seeing.
    try {
        c.Compile();
    } catch (const Exception& e) {
        PrintMessage(e.what());
        failed = true;
    }

    const TSymbolTable table(c.Symbols());
    std::string out;
    for (int i = 0; i < table.Count(); ++i) {
        const TSymbol& s = table.Get(i);
        out += s.Name;
        out += '\t';
        out += std::to_string(s.Kind);
        out += '\t';
        out += FileNameOf(s.FileNumber);
        out += '\t';
        out += std::to_string(s.Line);
        out += '\t';
        out += s.Text;
        out += '\t';
        out += std::to_string(s.Register);
        out += '\t';
        out += std::to_string(s.Value);
        out += '\n';
    }
    std::cout << out << std::flush;
    return failed || c.ErrorCount > 0 ? kExitReported : kExitOk;
}

} // namespace velkor::cli
