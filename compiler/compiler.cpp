#include "compiler/compiler.h"

#include "codegen/codegen.h"
#include "codegen/optimizer.h"
#include "compiler/compiler_version.h"
#include "compiler/symbol_table.h"
#include "compiler/unit_forms.h"
#include "iff/checksum.h"
#include "platform/path_resolver.h"
#include "platform/strings.h"
#include "scanner/scanner.h"

#include <algorithm>
#include <mutex>

namespace velkor {

namespace {

std::mutex gFileNamesMutex;
std::vector<std::string>& FileNames() {
    static std::vector<std::string> names;
    return names;
}

} // namespace

std::int32_t FileNumberOf(const std::string& name) {
    if (name.empty()) return -1;
    std::lock_guard lock(gFileNamesMutex);
    auto& names = FileNames();
    for (size_t i = 0; i < names.size(); ++i)
        if (names[i] == name) return static_cast<std::int32_t>(i);
    names.push_back(name);
    return static_cast<std::int32_t>(names.size() - 1);
}

std::string FileNameOf(std::int32_t number) {
    std::lock_guard lock(gFileNamesMutex);
    auto& names = FileNames();
    if (number < 0 || static_cast<size_t>(number) >= names.size()) return {};
    return names[static_cast<size_t>(number)];
}

TCompiler::TCompiler(std::shared_ptr<TSymbolTable> symbols, std::shared_ptr<StringList> rooms,
                     std::shared_ptr<TDefines> defines, std::shared_ptr<StringList> killBoard,
                     std::shared_ptr<IncludedFileList> includedFiles)
    : Rooms(rooms ? std::move(rooms) : std::make_shared<StringList>(StringList{"cerberus.rom"})),
      KillBoard(killBoard ? std::move(killBoard) : std::make_shared<StringList>()),
      Defines(defines ? std::move(defines) : std::make_shared<TDefines>(TDefines{"VER122"})),
      IncludedFiles(includedFiles ? std::move(includedFiles) : std::make_shared<IncludedFileList>()),
      scanner_(CreateScanner()), symbols_(symbols ? std::move(symbols) : std::make_shared<TSymbolTable>()),
      data_(std::make_unique<TCompData>(*this)), codegen_(std::make_unique<TCodeGen>(*this)) {}

TCompiler::~TCompiler() = default;

std::string TCompiler::Version() {
    return kCompilerVersion;
}

void TCompiler::SetSource(std::string text) {
    // Editors on Windows start UTF-8 files with a byte-order mark; it is no part of the unit.
    if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
    scanner_->LineMarkers = LineMarkers;
    // Only an iff unit passes its source on. The fast scanner keeps the text as given, so a copy is needed
    // only for the standard one, which rewrites it; a large mission is not copied for nothing.
    if (dynamic_cast<const TFastScanner*>(scanner_.get()))
        std::string().swap(data_->Source);
    else
        data_->Source = text;
    scanner_->SetText(std::move(text));
}

void TCompiler::SetFileName(const std::string& name) {
    FileName = name;
    FileNumber = FileNumberOf(name);
}

// --- messages

void TCompiler::Output(int level, std::string_view text, std::int32_t line) {
    if (!Wants(level)) return;
    if (line < 0) line = Line();
    std::string message = "[" + VisibleBytes(UnitName) + ", " + std::to_string(line) + "] ";
    message += text;
    OnOutput(message);
}

// Messages quote the unit's own bytes; the line breaks are the messages' own.
void TCompiler::Report(const std::string& message, std::int32_t line, const SourceLocation& where) {
    const std::string text = VisibleBytes(message, true);
    if (line < 0) line = Line();
    Output(0, "ERROR: " + text, line);
    Output(0, "  raised in " + RoutineName(where) + ", line " + std::to_string(where.line()), line);
    ErrorLine = line;
    ++ErrorCount;
    if (HaltOnError) throw ECompiler(text);
}

void TCompiler::ErrorNoSkip(const std::string& text, std::int32_t line, SourceLocation where) {
    Report(text, line, where);
    // Recovering all the same: only the skip is left out, as the construct goes on being compiled.
    Output(0, "recovering from error...");
}

void TCompiler::Error(const std::string& text, std::int32_t line, SourceLocation where) {
    Report(text, line, where);
    Output(0, "recovering from error...");
    while (!AtEnd()) {
        PeekView();
        if (TokenKind() == tkSemicolon) break;
        NextView();
    }
}

void TCompiler::Hint(const std::string& text, std::int32_t line) {
    Output(0, "HINT: " + VisibleBytes(text, true), line);
}

void TCompiler::Expected(std::string_view wanted, std::string_view found, SourceLocation where) {
    std::string text = "expected \"";
    text += wanted;
    text += "\" but found \"";
    text += VisibleBytes(Trim(found));
    text += '"';
    Error(text, -1, where);
}

bool TCompiler::Expect(std::string_view wanted, SourceLocation where) {
    const std::string_view token = NextView();
    if (SameText(token, wanted)) return true;
    Expected(wanted, token, where);
    return false;
}

// --- tokens

std::string TCompiler::NextToken() {
    return std::string(NextView());
}

std::string TCompiler::PeekToken() {
    return std::string(PeekView());
}

std::string TCompiler::PeekAhead(int n) {
    std::string token = scanner_->PeekAhead(n);
    Checked(token);
    return token;
}

// --- the three steps

void TCompiler::Compile() {
    std::string first = NextToken();
    switch (TokenKind()) {
    case tkUnit: UnitKind = ukUnit; break;
    case tkMission:
        UnitKind = ukMission;
        data_->CrcNames.push_back("_ObjType_DO_NOT_MODIFY");
        data_->CrcNames.push_back("FLO_Main");
        break;
    case tkSector:
        UnitKind = ukSector;
        data_->CrcNames.push_back("_ObjType_DO_NOT_MODIFY");
        break;
    case tkSeries:
        UnitKind = ukSeries;
        data_->CrcNames.push_back("FLO_Main");
        break;
    case tkProject: UnitKind = ukProject; break;
    case tkIff: {
        UnitKind = ukIff;
        std::string name = NextToken();
        UnitName = name;
        if (!OutputPath.empty()) name = OutputPath + FileNamePart(name);
        data_->RawList.push_back("IFF \"" + name + "\"");
        // The unit's header line becomes a comment of the textual IFF; the rest passes on as it stands.
        std::string raw = JoinLinesCrLf(data_->RawList);
        raw += "// ";
        raw += dynamic_cast<const TFastScanner*>(scanner_.get()) ? scanner_->Text() : data_->Source;
        data_->RawList = SplitLines(raw);
        return;
    }
    default: Expected("unit", first); break;
    }
    // Only an iff unit passes its source on; a copy of a large mission would be kept to the end for nothing.
    std::string().swap(data_->Source);
    UnitName = NextToken();
    Expect(";");
    DeclarationLoop();
    symbols_->RemoveLocals();
    Output(2, "size of SymbolTable: " + std::to_string(symbols_->Count() * 160) + " uint8s");
}

void TCompiler::Finish() {
    for (int i = 0; i < symbols_->Count(); ++i) {
        const TSymbol s = symbols_->Get(i);
        if (s.Kind == skUserFunction && s.Value == 0)
            Error("user function " + s.Text + " not implemented", s.Line);
        else if (s.Kind == skObject && s.Value == 0)
            Error("object " + s.Text + " not implemented", s.Line);
    }
    if (Optimize && (UnitKind == ukMission || UnitKind == ukSeries)) {
        TOptimizer optimizer;
        optimizer.Verbosity = Verbosity;
        optimizer.OnOutput = OnOutput;
        optimizer.Load(data_->CodeList.Lines());
        optimizer.Run();
        data_->CodeList = TListing(optimizer.Result());
    }
}

namespace {
// Room for the linked text, reserved at once: a text of many megabytes grown by doubling would be copied
// several times over. Generous per line (indentation, keyword, CR LF; names of globals appear in several
// lines): room that stays unused costs address space, not memory.
std::size_t LinkedTextBound(const TCompData& data, std::size_t rooms, std::size_t killBoard) {
    constexpr std::size_t kPerLine = 128;
    std::size_t size = std::size_t{1} << 16;
    size += data.CodeList.TextSize() + data.CodeList.size() * 16;
    for (const StringList* list :
         {&data.CrcNames, &data.Globals, &data.Objects, &data.Objectives, &data.RawList})
        for (const auto& line : *list) size += 2 * line.size() + kPerLine;
    return size + (rooms + killBoard) * kPerLine;
}
} // namespace

std::string TCompiler::Link() {
    return Link(nullptr);
}

std::string TCompiler::Link(std::size_t* listingAt) {
    Output(1, "now linking it all together...");
    std::string text;
    if (listingAt) {
        *listingAt = std::string::npos;
        text.reserve(LinkedTextBound(*data_, Rooms->size(), KillBoard->size()) - data_->CodeList.TextSize() -
                     data_->CodeList.size() * 16);
    } else {
        text.reserve(LinkedTextBound(*data_, Rooms->size(), KillBoard->size()));
    }
    switch (UnitKind) {
    case ukMission: LinkMission(*this, text, listingAt); break;
    case ukSector: LinkSector(*this, text); break;
    case ukSeries: LinkSeries(*this, text, listingAt); break;
    case ukUnit:
    case ukIff:
    case ukProject: break;
    default: Error("unknown unit type: " + std::to_string(static_cast<int>(UnitKind))); break;
    }
    for (const auto& l : data_->RawList) {
        text += l;
        text += "\r\n";
    }
    return text;
}

} // namespace velkor
