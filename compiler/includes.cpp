// Included source and string files, #FILE compilations, the search path and the output path.
#include "compiler/build_text.h"
#include "compiler/compiler.h"
#include "compiler/source_host.h"
#include "compiler/symbol_table.h"
#include "iff/build_chain.h"
#include "iff/iff_compiler.h"
#include "iff/iff_strings.h"
#include "platform/named_folders.h"
#include "platform/numbers.h"
#include "platform/path_resolver.h"
#include "platform/strings.h"
#include "platform/text_file.h"
#include "scanner/scanner.h"

#include <algorithm>

namespace velkor {

namespace {

std::string WithTrailingBackslash(std::string folder) {
    if (folder.empty() || (folder.back() != '\\' && folder.back() != '/')) folder += '\\';
    return folder;
}

// The file-name part without its extension, upper-cased: the name a string table goes by.
std::string TableName(std::string_view path) {
    std::string name = UpperCase(FileNamePart(path));
    const size_t dot = name.rfind('.');
    if (dot != std::string::npos) name.erase(dot);
    return ShortString(name);
}

// The source text of a file found on the search path: the host's, else the file's.
std::string ReadSourceText(TSourceHost* host, const std::filesystem::path& found) {
    if (host)
        if (auto text = host->SourceText(found)) return NormaliseLineBreaks(*text);
    return LoadTextFile(found);
}

// Tells the host that a nested compile of a file runs, for as long as this lives.
class HostScope {
public:
    HostScope(TSourceHost* host, const std::filesystem::path& file, const std::string& fileName)
        : host_(host) {
        if (host_) host_->Entered(file, fileName);
    }
    ~HostScope() {
        if (host_) host_->Left();
    }
    HostScope(const HostScope&) = delete;
    HostScope& operator=(const HostScope&) = delete;

private:
    TSourceHost* host_;
};

} // namespace

// --- search path and output path

void TCompiler::AddToSearchPath(const std::string& folder) {
    const std::string expanded = WithTrailingBackslash(ExpandPath(folder));
    if (!FindExisting(expanded)) Hint(expanded + " doesn't exist");
    if (std::find(SearchPath.begin(), SearchPath.end(), expanded) == SearchPath.end())
        SearchPath.push_back(expanded);
    Output(1, expanded + " added to searchpath");
}

void TCompiler::SetOutputPath(const std::string& folder) {
    OutputPath = WithTrailingBackslash(ExpandPath(folder));
    Output(1, "output path set to " + OutputPath);
}

bool TCompiler::FindInSearchPath(std::string& name, bool keepFolders, std::filesystem::path& found) const {
    if (auto direct = FindExistingFile(name)) {
        found = *direct;
        return true;
    }
    if (!keepFolders) name = FileNamePart(name);
    for (const auto& folder : SearchPath) {
        std::string candidate = WithTrailingBackslash(folder) + name;
        if (auto hit = FindExistingFile(candidate)) {
            name = std::move(candidate);
            found = *hit;
            return true;
        }
    }
    return false;
}

// --- file lists

// Names separated by "," (identifiers or strings), up to the ";" that ends the list, which is left for
// the caller: the list is read whole before any file is handled, so an error with one name neither skips
// the others nor the declaration after the list.
StringList TCompiler::ReadFileList() {
    StringList names;
    for (;;) {
        const std::string next = PeekToken();
        if (TokenKind() == tkSemicolon || TokenKind() == tkEndOfText || TokenKind() == tkComma) {
            Expected("<filename>", next);
            return names;
        }
        names.push_back(NextToken());
        if (PeekToken() != ",") return names;
        NextToken();
    }
}

// The list starts empty: the unit's own file is not in it, so an include naming the unit back compiles
// it once more as a child, whose own include of it then finds it.
bool TCompiler::AlreadyIncluded(const std::string& written) const {
    const std::string key = UpperCase(FileNamePart(written));
    return std::any_of(IncludedFiles->begin(), IncludedFiles->end(),
                       [&](const IncludedFile& f) { return f.Name == key; });
}

// --- source files

void TCompiler::IncludeSourceFiles() {
    for (const auto& name : ReadFileList()) IncludeSourceFile(name);
    Expect(";");
}

void TCompiler::IncludeSourceFile(const std::string& written) {
    std::string name = written + ".pas";
    std::filesystem::path found;
    const bool exists = FindInSearchPath(name, false, found);
    if (AlreadyIncluded(written)) {
        Output(1, name + " already included");
        return;
    }
    Output(1, "Including file " + name);
    if (!exists) {
        Error("could not include file " + name + " - was not found!");
        return;
    }
    if (IncludeDepth >= kMaxIncludeDepth) {
        Error("could not include file " + name + " - includes nest deeper than " +
              std::to_string(kMaxIncludeDepth) + " files");
        return;
    }
    std::string text;
    try {
        text = ReadSourceText(SourceHost, found);
    } catch (const EInOutError& e) {
        Error(e.what());
        return;
    }
    IncludedFiles->push_back({UpperCase(FileNamePart(written)), nullptr});

    TCompiler child(symbols_, Rooms, Defines, KillBoard, IncludedFiles);
    child.Options() = Options();
    child.SearchPath = SearchPath;
    child.OutputPath = OutputPath;
    child.IncludeDepth = IncludeDepth + 1;
    child.fileChain_ = fileChain_;
    child.SetSource(std::move(text));
    child.SetFileName(name);
    {
        HostScope hosted(SourceHost, found, child.FileName);
        try {
            child.Compile();
        } catch (...) {
            ErrorCount += child.ErrorCount;
            throw;
        }
    }
    ErrorCount += child.ErrorCount;
    data_->CodeList.Append(child.Data().CodeList);
    for (int i = 0; i < TCompData::kListCount; ++i) {
        auto& from = child.Data().List(i);
        auto& to = data_->List(i);
        to.insert(to.end(), std::make_move_iterator(from.begin()), std::make_move_iterator(from.end()));
    }
}

// --- string files

void TCompiler::IncludeStringFiles() {
    for (const auto& name : ReadFileList()) IncludeStringFile(name);
    Expect(";");
}

void TCompiler::IncludeStringFile(const std::string& written) {
    std::string name = written + ".eng";
    std::filesystem::path found;
    const bool exists = FindInSearchPath(name, false, found);
    if (AlreadyIncluded(written)) {
        Output(1, name + " already included");
        return;
    }
    Output(1, "Including string file " + name);
    if (!exists) {
        Error("could not include string file " + name + " - was not found!");
        return;
    }
    auto table = std::make_shared<TIffStringList>();
    try {
        table->LoadFromFile(found);
    } catch (const Exception& e) {
        Error(std::string(e.what()) + " (" + name + ")");
        return;
    }
    IncludedFiles->push_back({UpperCase(FileNamePart(written)), std::move(table)});
    TSymbol symbol;
    symbol.Name = TableName(name);
    symbol.Kind = skStringTable;
    symbol.FileNumber = FileNumber;
    symbol.Line = Line();
    symbol.Text = ShortString(name);
    AddSymbol(std::move(symbol));
}

// A failed lookup is an error like any other: when not halting, recovery skips the rest of the reference.
std::int32_t TCompiler::StringNumber(const TSymbol& table, const std::string& text) {
    const TIffStringList* strings = nullptr;
    for (const auto& f : *IncludedFiles)
        if (f.Strings && ShortString(f.Name) == table.Name) strings = f.Strings.get();
    if (!strings) {
        Error("FATAL - strings (" + table.Name +
              ") in symbol table but not in used units. - This should never happen!");
        return -1;
    }
    const bool prefix = !text.empty() && text.back() == '*';
    const std::string wanted = prefix ? text.substr(0, text.size() - 1) : text;
    const int number = prefix ? strings->IndexOfText(wanted) : strings->IndexOf(wanted);
    if (number < 0) {
        Error(text + " was not found in \"" + table.Name +
              "\" and adding strings is not supported and this message is pretty long");
        return -1;
    }
    Output(1, std::string(prefix ? "loading substring \"" : "loading string \"") + wanted + "\" from " +
                  table.Name + ": string #" + std::to_string(number));
    return number;
}

// --- #FILE

void TCompiler::CompileFiles() {
    const StringList names = ReadFileList();
    if (!SymbolsOnly)
        for (const auto& name : names) CompileFile(name);
    Expect(";");
}

void TCompiler::CompileFile(const std::string& written) {
    std::string name = written;
    std::filesystem::path found;
    const bool exists = FindInSearchPath(name, true, found);
    Output(1, "compiling file " + name);
    if (!exists) {
        Error("could not compile file " + name + " - was not found!");
        return;
    }
    if (!fileChain_) {
        fileChain_ = std::make_shared<std::vector<std::filesystem::path>>();
        if (auto own = FindExistingFile(FileName))
            fileChain_->push_back(std::filesystem::weakly_canonical(*own));
    }
    const std::filesystem::path canonical = std::filesystem::weakly_canonical(found);
    // The same file under another name counts too: on Windows "A.PAS" is "a.pas".
    const auto sameFile = [&](const std::filesystem::path& open) {
        std::error_code ec;
        return open == canonical || std::filesystem::equivalent(open, canonical, ec);
    };
    if (std::find_if(fileChain_->begin(), fileChain_->end(), sameFile) != fileChain_->end()) {
        Error("could not compile file " + name + " - it is already being compiled (#FILE cycle)");
        return;
    }
    if (fileChain_->size() > static_cast<size_t>(kMaxFileDepth)) {
        Error("could not compile file " + name + " - #FILE units nest deeper than " +
              std::to_string(kMaxFileDepth));
        return;
    }
    std::string text;
    try {
        text = ReadSourceText(SourceHost, found);
    } catch (const EInOutError& e) {
        Error(e.what());
        return;
    }

    TBuildText linked;
    {
        TCompiler unit;
        unit.SearchPath = SearchPath;
        *unit.Defines = *Defines;
        // The unit's folder and output path are set before it takes the settings, while it has no sink yet:
        // its "added to searchpath" and "output path set to" lines (and a missing folder's hint) are not
        // shown.
        unit.AddToSearchPath(std::filesystem::absolute(found).parent_path().string());
        if (!OutputPath.empty()) unit.SetOutputPath(OutputPath);
        unit.Options() = Options();
        unit.fileChain_ = fileChain_;
        unit.SetSource(std::move(text));
        unit.SetFileName(name);
        HostScope hosted(SourceHost, found, unit.FileName);
        fileChain_->push_back(canonical);
        struct PopChain {
            std::vector<std::filesystem::path>& chain;
            ~PopChain() { chain.pop_back(); }
        } pop{*fileChain_};
        try {
            unit.Compile();
            unit.Finish();
            linked = LinkForBuild(unit);
        } catch (...) {
            ErrorCount += unit.ErrorCount;
            throw;
        }
        ErrorCount += unit.ErrorCount;
    }
    if (!CheckOnly) AssembleLinkedText(std::move(linked), found.parent_path());
}

void TCompiler::AssembleLinkedText(TBuildText text, const std::filesystem::path& unitFolder) {
    try {
        KeepLinkedText(text);
    } catch (const EInOutError& e) {
        Error(e.what());
        return;
    }
    std::vector<std::string> writeFailures;
    BuildOutputs outputs;
    outputs.Place = [this](const std::string& name) {
        return PlaceOutputFile ? PlaceOutputFile(name) : ResolvePath(name);
    };
    outputs.Report = [this](const std::string& name, const std::filesystem::path& path, std::size_t size) {
        Output(0, "** " + name + " ** (" + FormatThousands(static_cast<std::int64_t>(size)) + " bytes)");
        if (OnFileWritten) OnFileWritten(path, size);
    };
    // Reported once the assembly is over, as errors of the unit that named the #FILE.
    outputs.Failed = [&writeFailures](const std::string& message) { writeFailures.push_back(message); };
    TIffCompiler assembler;
    assembler.OnMessage = [this](int level, const std::string& line) { Output(level, line); };
    // The assembler takes the text from memory, so that compilers running side by side cannot read each
    // other's file, and finds FILE values beside the unit.
    const auto feed = SetAssemblerInput(assembler, text, unitFolder);
    if (const auto error = AssembleToFiles(assembler, outputs)) {
        // The assembler has reported the error through Output already.
        ++ErrorCount;
        ErrorLine = Line();
        if (HaltOnError) throw ECompiler(*error);
    }
    for (const auto& failure : writeFailures) ErrorNoSkip(failure);
}

} // namespace velkor
