// A unit's compilation as a case: the unit's lines in, its listing, lists and messages out.
#pragma once

#include "compiler/compiler.h"
#include "tests/compiler/case_file.h"

#include <sstream>

namespace velkor::test {

// A case's first input line may set up the run: `@ verbosity=N nohalt finish optimize objects` (objects
// shows the object and objective texts). Source lines are joined with CR LF, as every loaded source is.
inline std::vector<std::string> CompileCase(const Case& c) {
    int verbosity = 3;
    bool halt = true, finish = false, objects = false, optimize = false;
    const bool setup = c.input.at(0).starts_with("@ ");
    if (setup) {
        std::istringstream words(c.input[0].substr(2));
        for (std::string w; words >> w;) {
            if (w.starts_with("verbosity=")) verbosity = std::stoi(w.substr(10));
            halt &= w != "nohalt";
            finish |= w == "finish";
            objects |= w == "objects";
            optimize |= w == "optimize";
        }
    }
    std::string text;
    for (const auto& line : c.Framed(setup ? 1 : 0)) text += line + "\r\n";
    std::vector<std::string> messages, out;
    TCompiler compiler;
    compiler.HaltOnError = halt;
    compiler.Verbosity = static_cast<std::uint8_t>(verbosity);
    compiler.Optimize = optimize;
    // Where an error was raised in the compiler's own source is no part of its behaviour.
    compiler.OnOutput = [&](const std::string& m) {
        if (m.find("]   raised in ") == std::string::npos) messages.push_back("message " + m);
    };
    compiler.SetSource(text);
    try {
        compiler.Compile();
        if (finish) compiler.Finish();
    } catch (const ECompiler& e) {
        messages.push_back(std::string("failure ") + e.what());
    }
    const TCompData& data = compiler.Data();
    out = data.CodeList.Lines();
    const auto list = [&](const char* what, const StringList& lines) {
        for (const auto& line : lines) out.push_back(what + line);
    };
    list("crc ", data.CrcNames);
    list("global ", data.Globals);
    list("raw ", data.RawList);
    if (objects) {
        list("object ", data.Objects);
        list("objective ", data.Objectives);
    }
    if (!data.MainProc.empty()) out.push_back("mainproc " + data.MainProc);
    if (!data.GfProc.empty()) out.push_back("gfproc " + data.GfProc);
    out.insert(out.end(), messages.begin(), messages.end());
    return out;
}

} // namespace velkor::test
