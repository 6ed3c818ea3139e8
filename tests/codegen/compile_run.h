// Compiles a unit in memory through TCompiler and keeps what it produced, for the code generator's tests.
#pragma once

#include "codegen/codegen.h"
#include "compiler/compiler.h"
#include "compiler/symbol_table.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace velkor::test {

struct CompileRun {
    std::vector<std::string> messages;                                   // every message, as OnOutput got it
    std::unique_ptr<TCompiler> compiler = std::make_unique<TCompiler>(); // the unit's compiler
    std::string failure;                                                 // the ECompiler text that ended it

    // Source lines are joined with CR LF, as every loaded source is.
    explicit CompileRun(const std::vector<std::string>& source, bool halt = true, std::uint8_t verbosity = 3,
                        bool finish = false) {
        std::string text;
        for (const auto& line : source) text += line + "\r\n";
        compiler->HaltOnError = halt;
        compiler->Verbosity = verbosity;
        compiler->Optimize = false;
        compiler->OnOutput = [this](const std::string& m) { messages.push_back(m); };
        compiler->SetSource(text);
        try {
            compiler->Compile();
            if (finish) compiler->Finish();
        } catch (const ECompiler& e) {
            failure = e.what();
        }
    }

    bool Has(const std::string& m) const {
        return std::find(messages.begin(), messages.end(), m) != messages.end();
    }
    int Count(const std::string& m) const {
        return static_cast<int>(std::count(messages.begin(), messages.end(), m));
    }
    // Messages that contain "ERROR: ".
    std::vector<std::string> Errors() const {
        std::vector<std::string> errors;
        for (const auto& m : messages)
            if (m.find("] ERROR: ") != std::string::npos) errors.push_back(m);
        return errors;
    }
    StringList Code() const { return compiler->Data().CodeList.Lines(); }
    const StringList& Objects() const { return compiler->Data().Objects; }
    const StringList& Objectives() const { return compiler->Data().Objectives; }
    const TSymbol* Symbol(const std::string& name) const {
        const int i = compiler->Symbols().Find(name);
        return i < 0 ? nullptr : &compiler->Symbols().Get(i);
    }
};

// The listing lines of one function from its FUNC line to its closing brace.
inline StringList FunctionLines(const StringList& code, const std::string& funcLine) {
    StringList lines;
    auto it = std::find(code.begin(), code.end(), funcLine);
    for (; it != code.end(); ++it) {
        lines.push_back(*it);
        if (*it == "}") break;
    }
    return lines;
}

} // namespace velkor::test
