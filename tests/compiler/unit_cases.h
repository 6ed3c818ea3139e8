// A unit's compilation as a case: the unit's lines in, its listing, lists and messages out.
#pragma once

#include "compiler/build_text.h"
#include "compiler/compiler.h"
#include "compiler/defines.h"
#include "compiler/symbol_table.h"
#include "iff/iff_compiler.h"
#include "iff/iff_strings.h"
#include "platform/path_resolver.h"
#include "platform/strings.h"
#include "tests/compiler/case_file.h"
#include "tests/support/run_tool.h"

#include <optional>

#include <sstream>

namespace velkor::test {

// The files and messages of an assembly, or where the two assemblies of one unit part.
inline std::vector<std::string> AssembledFiles(TIffCompiler& assembler) {
    std::vector<std::string> out;
    assembler.OnMessage = [&](int, const std::string& line) { out.push_back("message " + line); };
    assembler.OnBinaryOutput = [&](const std::vector<std::uint8_t>& bytes, const std::string& name) {
        out.push_back("file " + name + " " + std::string(bytes.begin(), bytes.end()));
    };
    try {
        assembler.Compile();
    } catch (const Exception& e) {
        out.push_back(std::string("failure ") + e.what());
    }
    return out;
}

// A build reads the listing in its place instead of from the linked text: both give the same files and
// messages. The listing is the one the unit had before linking.
inline std::optional<std::string> StructuredBuildDiffers(TCompiler& compiler, const std::string& linked,
                                                         const TListing& listing) {
    TIffCompiler whole;
    whole.SetInputText(linked);
    const auto expected = AssembledFiles(whole);
    compiler.Data().CodeList = listing;
    const auto onOutput = std::exchange(compiler.OnOutput, nullptr); // "now linking" was shown once
    TBuildText build = LinkForBuild(compiler);
    compiler.OnOutput = onOutput;
    TIffCompiler structured;
    const auto feed = SetAssemblerInput(structured, build, {});
    const auto actual = AssembledFiles(structured);
    if (actual == expected) return std::nullopt;
    for (std::size_t i = 0; i < std::min(actual.size(), expected.size()); ++i)
        if (actual[i] != expected[i])
            return "structured build differs: " + VisibleBytes(actual[i]).substr(0, 200);
    return "structured build differs in its count of files and messages";
}

// A case's first input line may set up the run: `@ verbosity=N nohalt finish optimize objects state link
// raw symbolsonly`. objects shows the object and objective texts, state the unit's settings and symbols, link
// the linked text. Lines `@file <name>` and `@strings <name>` start files in a folder of their own (a string
// file's lines are its strings); the first file is compiled with that folder as its search path, its
// #FILE outputs go to out/ there, and the folder is shown as <dir> in every line out. Source lines are
// joined with CR LF, as every loaded source is, or with raw as they stand (escapes give the line ends).
inline std::vector<std::string> CompileCase(const Case& c) {
    int verbosity = 3;
    bool halt = true, finish = false, objects = false, optimize = false, state = false, raw = false,
         link = false, symbolsOnly = false;
    const bool setup = c.input.at(0).starts_with("@ ");
    if (setup) {
        std::istringstream words(c.input[0].substr(2));
        for (std::string w; words >> w;) {
            if (w.starts_with("verbosity=")) verbosity = std::stoi(w.substr(10));
            halt &= w != "nohalt";
            finish |= w == "finish";
            objects |= w == "objects";
            optimize |= w == "optimize";
            state |= w == "state";
            raw |= w == "raw";
            link |= w == "link";
            symbolsOnly |= w == "symbolsonly";
        }
    }
    std::string text;
    std::vector<std::string> messages, out;
    TCompiler compiler;
    TempDir dir;
    const PrivateTempFolder tmp(dir / "tmp");
    std::string first;
    std::optional<TIffStringList> strings;
    std::filesystem::path file;
    const auto flush = [&] {
        if (strings)
            strings->SaveToFile(file);
        else if (!file.empty())
            WriteFile(file, text);
        if (first.empty()) first = text;
        strings.reset();
        text.clear();
    };
    for (const auto& line : c.Framed(setup ? 1 : 0)) {
        if (line.starts_with("@file ") || line.starts_with("@strings ")) {
            flush();
            file = dir / line.substr(line.find(' ') + 1);
            std::filesystem::create_directories(file.parent_path());
            if (line.starts_with("@strings ")) {
                strings.emplace();
                strings->InfoText1 = "English"; // odd lengths: the texts carry their terminating zero
                strings->InfoText2 = "Default";
            } else if (first.empty()) {
                compiler.SetFileName(file.string());
            }
        } else if (strings) {
            strings->Lines.push_back(line);
        } else {
            text += raw ? line : line + "\r\n";
        }
    }
    if (!file.empty()) {
        flush();
        text = first;
        compiler.AddToSearchPath(dir.path().string());
        compiler.PlaceOutputFile = [&](const std::string& name) {
            messages.push_back("place " + name);
            return dir / "out" / FileNamePart(name);
        };
        compiler.OnFileWritten = [&](const std::filesystem::path& p, std::size_t size) {
            // The same line on every system: the separators of Windows paths would differ.
            messages.push_back("wrote <dir>/" + std::filesystem::relative(p, dir.path()).generic_string() +
                               " " + std::to_string(size));
        };
        std::filesystem::create_directories(dir / "out");
    }
    compiler.HaltOnError = halt;
    compiler.Verbosity = static_cast<std::uint8_t>(verbosity);
    compiler.Optimize = optimize;
    compiler.SymbolsOnly = symbolsOnly;
    // Where an error was raised in the compiler's own source is no part of its behaviour.
    compiler.OnOutput = [&](const std::string& m) {
        if (m.find("]   raised in ") == std::string::npos) messages.push_back("message " + m);
    };
    compiler.SetSource(text);
    // Relative names are looked up in an empty folder of the case's own, wherever the test runs.
    const std::filesystem::path workingFolder = std::filesystem::current_path();
    std::filesystem::create_directories(dir / "cwd");
    std::filesystem::current_path(dir / "cwd");
    try {
        compiler.Compile();
        if (finish) compiler.Finish();
    } catch (const ECompiler& e) {
        messages.push_back(std::string("failure ") + e.what());
    }
    std::filesystem::current_path(workingFolder);
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
    if (state) {
        const auto join = [](const StringList& items) {
            std::string all;
            for (const auto& item : items) all += "[" + item + "]";
            return all;
        };
        out.push_back("unit " + compiler.UnitName + " kind " + std::to_string(compiler.UnitKind) + " name " +
                      std::to_string(compiler.NameNumber) + " sector " + compiler.SectorFile +
                      " background " + std::to_string(compiler.Background));
        out.push_back("rooms " + join(*compiler.Rooms) + " killboard " + join(*compiler.KillBoard) +
                      " defines " + join(compiler.Defines->Names()));
        out.push_back("searchpath " + join(compiler.SearchPath) + " output " + compiler.OutputPath);
        out.push_back("errors " + std::to_string(compiler.ErrorCount) + " conditional " +
                      std::to_string(compiler.ConditionalState) + (compiler.InElse ? " in else" : ""));
        const TSymbolTable& symbols = compiler.Symbols();
        for (int i = 0; i < symbols.Count(); ++i) {
            const TSymbol& y = symbols.Get(i);
            out.push_back("symbol " + y.Name + " kind " + std::to_string(y.Kind) + " line " +
                          std::to_string(y.Line) + " text " + y.Text + " register " +
                          std::to_string(y.Register) + " value " + std::to_string(y.Value));
        }
    }
    if (!data.MainProc.empty()) out.push_back("mainproc " + data.MainProc);
    if (!data.GfProc.empty()) out.push_back("gfproc " + data.GfProc);
    if (link && (messages.empty() || !messages.back().starts_with("failure "))) {
        const TListing listing = compiler.Data().CodeList;
        const std::string linked = compiler.Link();
        if (auto differs = StructuredBuildDiffers(compiler, linked, listing)) out.push_back(*differs);
        for (std::size_t at = 0, end; (end = linked.find("\r\n", at)) != std::string::npos; at = end + 2)
            out.push_back("link " + linked.substr(at, end - at));
        if (!linked.ends_with("\r\n")) out.push_back("linked text ends without CR LF");
    }
    out.insert(out.end(), messages.begin(), messages.end());
    if (!file.empty())
        for (auto& line : out)
            for (const std::string& folder : {dir.path().string(), LowerCase(dir.path().string())})
                for (std::size_t at; (at = line.find(folder)) != std::string::npos;)
                    line.replace(at, folder.size(), "<dir>");
    return out;
}

} // namespace velkor::test
