// TCompiler turns one source unit into one textual-IFF text: Compile reads the unit header and every
// declaration (filling the symbol table and the unit's six text lists, with code generated while parsing),
// Finish checks that everything declared was implemented and optimises, Link joins the unit-level forms.
// Included files are compiled by nested compilers that share the symbol table and bookkeeping lists;
// units named by #FILE get a fresh compiler and go on to binary files.
#pragma once

#include "compiler/comp_data.h"
#include "compiler/defines.h"
#include "iff/build_chain.h" // LinkedTextFile, for the callers that show the linked text
#include "platform/exception.h"
#include "platform/source_location.h"
#include "scanner/scanner.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velkor {

class TSymbolTable;
class TCodeGen;
class TIffStringList;
class TSourceHost;
struct TSymbol;
struct TBuildText;
struct TSymbolSite;

class ECompiler : public Exception {
public:
    using Exception::Exception;
};

enum TUnitKind : std::int32_t {
    ukUnit = 0,
    ukMission = 1,
    ukSector = 2,
    ukSeries = 3,
    ukIff = 4,
    ukProject = 5
};

// A file already included: its name as the include names it and, for a string file, its table. Source and
// string files share one list of names without the extension the compiler appends, so a string file and a
// source file of the same name block each other.
struct IncludedFile {
    std::string Name;                        // upper-cased file-name part, without ".pas" or ".eng"
    std::shared_ptr<TIffStringList> Strings; // the loaded string file; none for a source file
};
using IncludedFileList = std::vector<IncludedFile>;

// A compiler's settings, set by the caller after construction. Include children and #FILE units take their
// parent's in one assignment.
struct TCompilerOptions {
    std::function<void(const std::string&)> OnOutput; // message sink; unassigned means silent
    std::uint8_t Verbosity = 3;                       // messages of a higher level are not passed on
    bool Optimize = true;                             // run the optimiser in Finish
    bool SymbolsOnly = false;                         // declarations only: silent, no #FILE compilations
    bool HaltOnError = true;                          // an error raises ECompiler instead of recovering
    bool LineMarkers = true;                          // handed to the scanner with every source text
    // Where a file written by a #FILE compilation goes: the name as the unit's IFF line gives it -> the
    // path to write. Default: the name resolved against the current folder.
    std::function<std::filesystem::path(const std::string&)> PlaceOutputFile;
    // Told of every file a #FILE compilation wrote: where it went and its size in bytes.
    std::function<void(const std::filesystem::path&, std::size_t)> OnFileWritten;
    // Hands in an editor's texts of included files and hears which file is being read; shared with every
    // nested compile. None: files are read from disk.
    TSourceHost* SourceHost = nullptr;
    // Units named by #FILE are compiled for their messages but neither assembled nor written, as a
    // language server checks a unit on every change.
    bool CheckOnly = false;
};

class TCompiler : public TCompilerOptions {
public:
    // Each shared object that is not given is made by this compiler (Defines then holds "VER122", Rooms
    // "cerberus.rom"). Include children get all five of their parent.
    explicit TCompiler(std::shared_ptr<TSymbolTable> symbols = {}, std::shared_ptr<StringList> rooms = {},
                       std::shared_ptr<TDefines> defines = {}, std::shared_ptr<StringList> killBoard = {},
                       std::shared_ptr<IncludedFileList> includedFiles = {});
    ~TCompiler();
    TCompiler(const TCompiler&) = delete;
    TCompiler& operator=(const TCompiler&) = delete;

    // --- settings (the members of TCompilerOptions), as one value
    TCompilerOptions& Options() { return *this; }
    const TCompilerOptions& Options() const { return *this; }

    // --- operations, in the order a caller uses them
    void SetSource(std::string text);
    void SetFileName(const std::string& name);
    void AddToSearchPath(const std::string& folder);
    void SetOutputPath(const std::string& folder);
    void Compile();
    void Finish();
    // The linked text. The instruction listing moves into it: CodeList is empty afterwards.
    std::string Link();
    // As Link, leaving the listing in CodeList and out of the text: *listingAt is where its lines would
    // start, npos for a unit kind without one.
    std::string Link(std::size_t* listingAt);
    static std::string Version(); // "1.0 R24d"

    // --- unit state
    std::string UnitName;                            // the word after the unit-kind keyword
    TUnitKind UnitKind = ukUnit;                     // chosen by the unit's first word
    std::int32_t NameNumber = 1;                     // set by the NAME command
    std::string SectorFile = "e.sec";                // set by #SECTOR
    std::int32_t Background = 1;                     // set by #BACKGROUND
    std::shared_ptr<StringList> Rooms;               // set by #SETROOMS; shared with include children
    std::shared_ptr<StringList> KillBoard;           // set by #SETKILLBOARD; shared with include children
    std::shared_ptr<TDefines> Defines;               // conditional symbols; shared with include children
    std::shared_ptr<IncludedFileList> IncludedFiles; // files already included; shared with include children
    StringList SearchPath;                           // folders searched for included files, in order
    std::string OutputPath;                          // prefixed to output names; ends in "\" once set
    std::int32_t ErrorLine = -1;                     // line of the last error
    std::string FileName;                            // the source file
    std::int32_t FileNumber = -1;                    // its number in the process-wide file-name list
    std::int32_t ConditionalState = -1;              // -1 outside #IFDEF; else 1 defined, 0 not
    bool InElse = false;                             // #ELSE seen
    int ErrorCount = 0;                              // errors reported here and by children
    int IncludeDepth = 0;                            // include children between this unit and the top

    // How deep include files and #FILE units may nest before the compile refuses to go on.
    static constexpr int kMaxIncludeDepth = 64;
    static constexpr int kMaxFileDepth = 16;

    TScanner& Scanner() { return *scanner_; }
    TSymbolTable& Symbols() { return *symbols_; }
    const std::shared_ptr<TSymbolTable>& SharedSymbols() const { return symbols_; }
    TCompData& Data() { return *data_; }
    TCodeGen& CodeGen() { return *codegen_; }

    // --- services for the parsers of the compiler and the code generator
    // Sends "[<unit>, <line>] <text>" to OnOutput when level <= Verbosity and not SymbolsOnly; line -1
    // means the scanner's current line.
    void Output(int level, std::string_view text, std::int32_t line = -1);
    // Whether Output passes a message of that level on: for the callers that would otherwise build the text
    // of a message at every expression only to have it dropped.
    bool Wants(int level) const { return OnOutput && level <= Verbosity && !SymbolsOnly; }
    // "ERROR: <text>" and the "  raised in ..." line at level 0, ErrorLine set, ErrorCount raised; then
    // ECompiler when halting, else "recovering from error..." and tokens skipped up to the next ";".
    void Error(const std::string& text, std::int32_t line = -1,
               SourceLocation where = SourceLocation::current());
    // As Error ("recovering from error..." included), but when not halting the compile goes on where it
    // is, without skipping: for the checks after which the construct is "compiled anyway" (unit-kind
    // rules, initialised externals, ...).
    void ErrorNoSkip(const std::string& text, std::int32_t line = -1,
                     SourceLocation where = SourceLocation::current());
    void Hint(const std::string& text, std::int32_t line = -1);
    // The error `expected "<wanted>" but found "<found, trimmed>"`.
    void Expected(std::string_view wanted, std::string_view found,
                  SourceLocation where = SourceLocation::current());
    // Reads a token; when it differs from `wanted` (compared without case) reports Expected. Returns
    // whether it matched.
    bool Expect(std::string_view wanted, SourceLocation where = SourceLocation::current());

    // Token access; never loops forever: a scanner that cannot move on reads as the end of the text.
    std::string NextToken();
    std::string PeekToken();
    // The same as views into the unit's text, valid while it compiles: for the expression parser, which
    // peeks several times at every operand and operator.
    std::string_view NextView() { return Checked(scanner_->NextTokenView()); }
    std::string_view PeekView() { return Checked(scanner_->PeekTokenView()); }
    std::string PeekAhead(int n);
    std::int32_t TokenKind() const { return stuck_ ? tkEndOfText : scanner_->TokenKind(); }
    std::int32_t Line() const { return scanner_->Line(); }
    // The next token is the end of the text.
    bool AtEnd() {
        PeekView();
        return TokenKind() == tkEndOfText;
    }

    // Number conversion for constants and command arguments: "%" binary, "$" hexadecimal, else decimal,
    // with the errors of the language ("<digits> doesn't fit into a long", "<char> in binary constant ?!?
    // What are you smoking?", `"<text>" is not a valid integer value`). Nothing after a reported error.
    std::optional<std::int32_t> ConvertNumber(std::string_view text);
    // The value reader: kind 0 integer, 1 floating-point number, 2 text; signs joined, constants and
    // string-table references resolved. Returns the value text.
    std::string ReadValue(int kind);
    // The number of `text` in the string table that `table` (a kind-10 symbol) names; a trailing "*"
    // makes it a prefix lookup. Reports the "loading ..." message, or the error when it is missing.
    std::int32_t StringNumber(const TSymbol& table, const std::string& text);
    // Handles "#" + directive when the next tokens are one (the "#" not yet read); returns whether it did.
    bool HandleDirective();

    // Variable and constant lists, the keyword already read: names separated by "," and ended by ";",
    // continued while the next token is a plain identifier (so Pascal-style blocks read naturally).
    void DeclareVariables(std::int32_t kind);
    void DeclareConstants(std::int32_t kind);
    void DeclareEnums();

    // Symbols declared where the text now stands (symbol_declarations.cpp). A name already in the table is
    // the error `identifier "<NAME>" redeclared`, named as the record holds it, and is added all the same.
    void AddSymbol(TSymbol symbol);
    // A variable: its record from the table, the "adding ..." message, the register limit ("Expression too
    // complex"), and a global or static variable's storage name in the globals and CRC lists. Returns the
    // record as made, before the table cut its texts.
    TSymbol AddVariable(const std::string& name, std::int32_t kind, std::int32_t initialValue);
    TSymbol AddPassVariable(const std::string& name);
    void AddConstant(const std::string& name, const std::string& value, std::int32_t kind);

private:
    // An empty token of "other" characters is the scanner failing to move on (a blank or a stray character
    // as the text's last character); reading it as the end keeps every parsing loop finite.
    std::string_view Checked(std::string_view token) {
        stuck_ = scanner_->TokenKind() == tkOther && token.empty();
        return token;
    }
    void Report(const std::string& text, std::int32_t line, const SourceLocation& where);
    // The file, line and function a declaration read now gets.
    TSymbolSite Site() const;
    void DeclarationLoop();
    void DeclareOne(); // one declaration, directive or command, by its first token

    // preprocessor.cpp
    void HandleCommand();
    bool NextIsDirective(std::string_view word1, std::string_view word2);
    std::string SkipConditional(std::string_view trace, std::string_view word1, std::string_view word2);
    bool ReadFolderArgument(std::string& folder);

    // includes.cpp
    StringList ReadFileList();
    bool FindInSearchPath(std::string& name, bool keepFolders, std::filesystem::path& found) const;
    // Whether a file written as `written` (the extension the compiler appends left off) is included already.
    bool AlreadyIncluded(const std::string& written) const;
    void IncludeSourceFiles();
    void IncludeSourceFile(const std::string& written);
    void IncludeStringFiles();
    void IncludeStringFile(const std::string& written);
    void CompileFiles();
    void CompileFile(const std::string& written);
    void AssembleLinkedText(TBuildText text, const std::filesystem::path& unitFolder);

    std::unique_ptr<TScanner> scanner_;     // the selected scanner class, made in the constructor
    std::shared_ptr<TSymbolTable> symbols_; // own or the parent's
    std::unique_ptr<TCompData> data_;       // the unit's six text lists
    std::unique_ptr<TCodeGen> codegen_;     // emits listing lines while the parser runs
    bool stuck_ = false;                    // the last token read or peeked could not move on
    // The units of the #FILE chain that leads here, as found on disk; shared down the chain so that a unit
    // naming one of its callers is refused instead of compiled forever.
    std::shared_ptr<std::vector<std::filesystem::path>> fileChain_;
};

// The process-wide file-name list: a file's number is its index, appended on first use; "" is -1.
std::int32_t FileNumberOf(const std::string& name);
std::string FileNameOf(std::int32_t number);

} // namespace velkor
