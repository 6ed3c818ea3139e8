#include "iff/iff_compiler.h"

#include "compiler/scanner.h"
#include "iff/checksum.h"
#include "iff/iff_writer.h"
#include "platform/path_resolver.h"
#include "platform/strings.h"
#include "platform/text_file.h"

#include <algorithm>
#include <utility>

namespace velkor {

namespace {

// Resets the per-run state however the run ends.
class RunGuard {
public:
    explicit RunGuard(std::function<void()> cleanup) : cleanup_(std::move(cleanup)) {}
    ~RunGuard() { cleanup_(); }
    RunGuard(const RunGuard&) = delete;
    RunGuard& operator=(const RunGuard&) = delete;

private:
    std::function<void()> cleanup_; // what to reset
};

} // namespace

TIffCompiler::TIffCompiler() = default;
TIffCompiler::~TIffCompiler() = default;

void TIffCompiler::SetInputFile(const std::string& fileName) {
    auto found = FindExisting(fileName);
    std::error_code ec;
    if (!found || std::filesystem::is_directory(*found, ec)) throw EIffCompiler(fileName + " doesn't exist");
    inputName_ = fileName;
    inputPath_ = *found;
    baseFolder_ = inputPath_.parent_path();
    fromMemory_ = false;
    inputText_.clear();
}

void TIffCompiler::SetInputText(std::string_view text, const std::filesystem::path& baseFolder) {
    TakeInputText(std::string(text), baseFolder);
}

void TIffCompiler::TakeInputText(std::string text, const std::filesystem::path& baseFolder) {
    inputName_.clear();
    inputPath_.clear();
    NormaliseLineBreaksInPlace(text);
    inputText_ = std::move(text);
    baseFolder_ = baseFolder;
    fromMemory_ = true;
}

void TIffCompiler::Compile() {
    scanner_ = CreateScanner();
    // With markers TScanner knows the line of every token, which the error messages name.
    scanner_->LineMarkers = true;
    RunGuard guard([this] {
        writer_.reset();
        scanner_.reset();
        constants_.clear();
        types_.clear();
        handingOver_ = false;
    });
    if (fromMemory_)
        scanner_->LoadFromString(std::exchange(inputText_, {}));
    else
        scanner_->LoadFromString(LoadTextFile(inputPath_));
    constants_.clear();
    types_.clear();
    try {
        Run();
    } catch (const EIffCompiler&) {
        throw;
    } catch (const Exception& e) {
        // A failure of the caller's own output callback is the caller's to report.
        if (handingOver_) throw;
        Error(e.what());
    }
}

// ---- token reading ----

// A stray character that is the text's very last one reads as an empty token of other characters, which
// does not advance; it is a token like any other, so the grammar refuses it where it stands.
std::string_view TIffCompiler::Next() {
    const std::string_view token = scanner_->NextTokenView();
    kind_ = scanner_->TokenKind();
    return token;
}

std::string_view TIffCompiler::Peek() {
    const std::string_view token = scanner_->PeekTokenView();
    kind_ = scanner_->TokenKind();
    return token;
}

bool TIffCompiler::Stuck(std::string_view token) const {
    return kind_ == tkEndOfText || (kind_ == tkOther && token.empty());
}

// Only for the delimiters "," ";" "{" "}" "[" "]": each is always a token of its own, so one look at the next
// character after the blanks tells, without scanning a whole token twice as PeekToken would.
bool TIffCompiler::PeekIs(char punctuation) {
    scanner_->SkipBlanks();
    return !scanner_->AtEnd() &&
           scanner_->Text()[static_cast<size_t>(scanner_->Position()) - 1] == punctuation;
}

bool TIffCompiler::NextIs(char punctuation) {
    if (!PeekIs(punctuation)) return false;
    Next();
    return true;
}

bool TIffCompiler::IsNameKind(std::int32_t kind) {
    return kind == tkIdentifier || kind == tkString || (kind >= tkAnd && kind <= tkProperty) ||
           kind == tkBegin || kind == tkEnd;
}

void TIffCompiler::Expect(std::string_view punctuation) {
    const std::string_view token = Next();
    if (token != punctuation || kind_ == tkString) ExpectError(punctuation, token);
}

std::string_view TIffCompiler::ReadName(std::string_view expected) {
    const std::string_view token = Next();
    if (!IsNameKind(kind_)) ExpectError(expected, token);
    return token;
}

// ---- error path ----

void TIffCompiler::Error(const std::string& text, SourceLocation where) {
    // The text quotes the assembled text's own bytes.
    std::string line =
        "[error] line " + std::to_string(scanner_ ? scanner_->Line() : 0) + ": " + VisibleBytes(text);
    if (OnMessage) {
        OnMessage(0, line);
        OnMessage(0, "  raised in " + RoutineName(where) + ", line " + std::to_string(where.line()));
    }
    throw EIffCompiler(line);
}

void TIffCompiler::ExpectError(std::string_view expected, std::string_view found, SourceLocation where) {
    std::string text = "expected ";
    text += expected;
    text += ", but found ";
    text += found;
    Error(text, where);
}

// ---- constant and type tables ----

void TIffCompiler::AddEntry(TNameTable& table, std::string_view name, std::string value) {
    table.Add(LowerNameHash(name), std::move(value));
}

const std::string* TIffCompiler::Lookup(const TNameTable& table, std::string_view name) const {
    if (table.empty()) return nullptr;
    return table.Find(LowerNameHash(name));
}

std::string_view TIffCompiler::ResolveConstant(std::string_view text) const {
    if (const std::string* value = Lookup(constants_, text)) return *value;
    return text;
}

// ---- the grammar ----

void TIffCompiler::Run() {
    for (;;) {
        const std::string_view token = Next();
        if (kind_ == tkEndOfText) return;
        if (SameText(token, "IFF"))
            OutputBlock();
        else if (SameText(token, "TRE") || SameText(token, "FLAT"))
            continue; // reserved for output kinds still to come
        else
            ExpectError("IFF, TRE or FLAT", token);
    }
}

void TIffCompiler::OutputBlock() {
    outputName_ = WithoutLineMarkers(ReadName("<filename>"));
    writer_ = std::make_unique<TIffWriter>("_velkor.iff", TIffWriter::InMemory);
    // What a block assembles is usually smaller than the text that is left; room that stays unwritten
    // costs address space only. The cap keeps a huge text from asking for that much at once.
    constexpr std::size_t kMaxReserve = std::size_t{256} << 20;
    const std::size_t read = static_cast<std::size_t>(std::max(scanner_->Position(), 0));
    const std::size_t size = scanner_->Text().size();
    writer_->Reserve(std::min(size - std::min(read, size), kMaxReserve));
    Expect("{");
    while (!PeekIs('}')) {
        const std::string_view keyword = Peek();
        if (SameText(keyword, "form")) {
            Form();
        } else if (SameText(keyword, "const")) {
            ConstSection();
        } else if (SameText(keyword, "type")) {
            TypeSection();
        } else {
            const std::string_view token = Next(); // consumed so that the message names its line
            ExpectError("CONST, TYPE or FORM", token);
        }
    }
    Expect("}");
    if (!OnBinaryOutput) Error("Output callback not assigned!");
    handingOver_ = true;
    OnBinaryOutput(writer_->Bytes(), outputName_);
    handingOver_ = false;
    writer_->Discard();
    writer_.reset();
}

void TIffCompiler::ConstSection() {
    const std::string_view keyword = Next();
    if (!SameText(keyword, "const")) ExpectError("const", keyword);
    do {
        const std::string_view name = ReadName("<name>");
        Expect("=");
        AddEntry(constants_, name, std::string(Next()));
    } while (NextIs(','));
}

void TIffCompiler::TypeSection() {
    const std::string_view keyword = Next();
    if (!SameText(keyword, "type")) ExpectError("type", keyword);
    do {
        const std::string_view name = ReadName("<name>");
        Expect("=");
        AddEntry(types_, name, std::string(ReadName("<name>")));
    } while (NextIs(','));
}

// Nested forms are followed with a depth count rather than recursion, so no text can exhaust the stack.
void TIffCompiler::Form() {
    OpenFormHeader();
    int depth = 1;
    while (depth > 0) {
        if (NextIs('}')) {
            writer_->CloseForm();
            --depth;
            continue;
        }
        const std::string_view token = Peek();
        if (SameText(token, "form")) {
            if (depth >= kMaxNesting) {
                Next();
                Error("forms nested deeper than " + std::to_string(kMaxNesting) + " levels");
            }
            OpenFormHeader();
            ++depth;
        } else if (SameText(token, "chunk")) {
            Chunk();
        } else if (SameText(token, "file")) {
            Next();
            WriteFileContents(ReadName("<filename>"));
        } else {
            Next();
            ExpectError("form or chunk", token);
        }
    }
}

void TIffCompiler::OpenFormHeader() {
    const std::string_view keyword = Next();
    if (!SameText(keyword, "form")) ExpectError("FORM", keyword);
    const std::string_view name = ReadName("<name>");
    if (name.size() < 4) Error(ERangeError().what());
    writer_->OpenForm(name.substr(0, 4));
    Expect("{");
}

void TIffCompiler::Chunk() {
    const std::string_view keyword = Next();
    if (!SameText(keyword, "chunk")) ExpectError("chunk", keyword);
    const std::string_view token = Next();
    std::string id;
    if (kind_ == tkNumber) {
        // The id is the number's four bytes in little-endian order: $44434241 is "ABCD".
        auto value = static_cast<std::uint32_t>(ConvertInt(token));
        for (int i = 0; i < 4; ++i) id += static_cast<char>(value >> (8 * i));
    } else if (IsNameKind(kind_)) {
        if (token.size() < 4) Error(ERangeError().what());
        id = token.substr(0, 4);
    } else {
        ExpectError("<name>", token);
    }
    writer_->OpenChunk(id);
    Expect("{");
    while (!NextIs('}')) Value();
    writer_->CloseChunk();
}

void TIffCompiler::WriteFileContents(std::string_view name) {
    auto found = FindExisting(name, baseFolder_);
    std::error_code ec;
    if (!found || !std::filesystem::is_regular_file(*found, ec))
        Error("Couldn't find file " + std::string(name));
    CheckOutputSize(std::filesystem::file_size(*found, ec));
    std::vector<std::uint8_t> bytes = ReadFileBytes(*found);
    writer_->Write(bytes);
}

void TIffCompiler::CheckOutputSize(std::uint64_t adding) {
    if (writer_->GetPosition() + adding > kMaxOutputSize) Error("output file larger than 4 GB");
}

} // namespace velkor
