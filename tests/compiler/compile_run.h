// A compiler run over a source text held in memory, with its messages collected.
#pragma once

#include "compiler/compiler.h"
#include "compiler/symbol_table.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace velkor::test {

struct CompileRun {
    std::vector<std::string> messages;                                   // every line OnOutput received
    std::unique_ptr<TCompiler> compiler = std::make_unique<TCompiler>(); // the unit's compiler
    bool threw = false;                                                  // Compile ended with ECompiler

    CompileRun() {
        compiler->OnOutput = [this](const std::string& m) { messages.push_back(m); };
    }
    explicit CompileRun(const std::string& source, bool halt = true, std::uint8_t verbosity = 3)
        : CompileRun() {
        compiler->HaltOnError = halt;
        compiler->Verbosity = verbosity;
        Run(source);
    }
    void Run(const std::string& source) {
        compiler->SetSource(source);
        try {
            compiler->Compile();
        } catch (const ECompiler&) {
            threw = true;
        }
    }
    bool Has(const std::string& m) const {
        return std::find(messages.begin(), messages.end(), m) != messages.end();
    }
    // How many messages contain the text.
    int Count(const std::string& part) const {
        return static_cast<int>(std::count_if(messages.begin(), messages.end(), [&](const std::string& m) {
            return m.find(part) != std::string::npos;
        }));
    }
    // Position of a message, or -1.
    int IndexOf(const std::string& m) const {
        auto it = std::find(messages.begin(), messages.end(), m);
        return it == messages.end() ? -1 : static_cast<int>(it - messages.begin());
    }
    const TSymbol* Symbol(const std::string& name) const {
        int i = compiler->Symbols().Find(name);
        return i < 0 ? nullptr : &compiler->Symbols().Get(i);
    }
    std::string All() const {
        std::string all;
        for (const auto& m : messages) all += m + "\n";
        return all;
    }
};

} // namespace velkor::test
