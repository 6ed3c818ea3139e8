#include "iff/iff_compiler.h"

#include "iff/checksum.h"
#include "iff/iff_writer.h"
#include "iff/plain_rows_assembler.h"
#include "iff/wcp_assembler.h"
#include "platform/byte_order.h"
#include "platform/c_file.h"
#include "platform/path_resolver.h"
#include "platform/strings.h"
#include "platform/text_file.h"
#include "scanner/scanner.h"

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
    spliced_ = nullptr;
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
    spliced_ = nullptr;
}

void TIffCompiler::TakeInputText(std::string text, const std::filesystem::path& baseFolder,
                                 SplicedLines& lines, std::size_t at, std::int32_t count) {
    std::string rest = text.substr(std::min(at, text.size()));
    text.resize(std::min(at, text.size()));
    NormaliseLineBreaksInPlace(text);
    const auto line = static_cast<std::int32_t>(std::count(text.begin(), text.end(), '\r'));
    NormaliseLineBreaksInPlace(rest);
    text += rest;
    TakeInputText(std::move(text), baseFolder);
    spliced_ = &lines;
    splicedLine_ = line;
    splicedCount_ = count;
}

void TIffCompiler::Compile() {
    if (FastValueRows && !spliced_ && OnBinaryOutput && AssemblePlainRowsText()) return;
    RunGuard guard([this] {
        writer_.reset();
        tokens_.Stop();
        types_.clear();
        handingOver_ = false;
    });
    tokens_.Start(fromMemory_ ? std::exchange(inputText_, {}) : LoadTextFile(inputPath_));
    if (spliced_) tokens_.Splice(*std::exchange(spliced_, nullptr), splicedLine_, splicedCount_);
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

bool TIffCompiler::AssemblePlainRowsText() {
    std::optional<std::vector<PlainRowsBlock>> blocks;
    if (fromMemory_) {
        blocks = AssemblePlainRows(inputText_);
        if (blocks) inputText_.clear(); // taken over, as the general path takes it
    } else {
        // Whatever cannot be read here is read again by the general path, which names the fault.
        std::error_code ec;
        if (!std::filesystem::is_regular_file(inputPath_, ec)) return false;
        const std::uintmax_t size = std::filesystem::file_size(inputPath_, ec);
        const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(OpenCFile(inputPath_, "rb"), &std::fclose);
        if (!file) return false;
        blocks = AssemblePlainRows(file.get(), ec ? 0 : size);
    }
    if (!blocks) return false;
    for (PlainRowsBlock& block : *blocks) {
        OnBinaryOutput(block.writer->Bytes(), block.fileName);
        block.writer->Discard();
    }
    return true;
}

// ---- type aliases ----

std::string_view TIffCompiler::ResolveType(std::string_view name) const {
    if (types_.empty()) return name;
    if (const std::string* type = types_.Find(LowerNameHash(name))) return *type;
    return name;
}

// ---- the grammar ----

void TIffCompiler::Run() {
    for (;;) {
        const std::string_view token = tokens_.Next();
        if (tokens_.Kind() == tkEndOfText) return;
        if (SameText(token, "IFF"))
            OutputBlock();
        else if (SameText(token, "TRE") || SameText(token, "FLAT"))
            continue; // reserved for output kinds still to come
        else
            ExpectError("IFF, TRE or FLAT", token);
    }
}

void TIffCompiler::OutputBlock() {
    outputName_ = WithoutLineMarkers(tokens_.ReadName("<filename>"));
    tokens_.Expect("{");
    OpenBlockWriter();
    while (!tokens_.PeekIs('}')) {
        const std::string_view keyword = tokens_.Peek();
        if (SameText(keyword, "form")) {
            Form();
        } else if (SameText(keyword, "const")) {
            ConstSection();
        } else if (SameText(keyword, "type")) {
            TypeSection();
        } else {
            const std::string_view token = tokens_.Next(); // consumed so that the message names its line
            ExpectError("CONST, TYPE or FORM", token);
        }
    }
    tokens_.Expect("}");
    // The text was cut inside the block that holds the listing: no block may go out without it.
    if (tokens_.SplicePending()) Error("the instruction listing was not reached");
    if (streamed_) {
        handingOver_ = true;
        OnFileOutput(*writer_, outputName_);
        handingOver_ = false;
        writer_.reset();
        return;
    }
    if (!OnBinaryOutput) Error("Output callback not assigned!");
    handingOver_ = true;
    OnBinaryOutput(writer_->Bytes(), outputName_);
    handingOver_ = false;
    writer_->Discard();
    writer_.reset();
}

void TIffCompiler::OpenBlockWriter() {
    streamed_ = false;
    if (OnPlaceOutput && OnFileOutput) {
        handingOver_ = true;
        const std::optional<std::filesystem::path> target = OnPlaceOutput(outputName_);
        handingOver_ = false;
        if (target) {
            try {
                writer_ = std::make_unique<TIffWriter>(*target, TIffWriter::Atomic);
                streamed_ = true;
                return;
            } catch (const EInOutError&) {
                // Kept in memory: writing it at the end meets the same fault and reports it there.
            }
        }
    }
    writer_ = std::make_unique<TIffWriter>("_velkor.iff", TIffWriter::InMemory);
    // What a block assembles is usually smaller than the text that is left; room that stays unwritten
    // costs address space only. The cap keeps a huge text from asking for that much at once.
    constexpr std::size_t kMaxReserve = std::size_t{256} << 20;
    const std::size_t read = static_cast<std::size_t>(std::max(tokens_.Scanner().Position(), 0));
    const std::size_t size = tokens_.Scanner().Text().size();
    writer_->Reserve(std::min(size - std::min(read, size) + tokens_.SplicedCharsLeft(), kMaxReserve));
}

void TIffCompiler::ConstSection() {
    const std::string_view keyword = tokens_.Next();
    if (!SameText(keyword, "const")) ExpectError("const", keyword);
    do {
        const std::string_view name = tokens_.ReadName("<name>");
        tokens_.Expect("=");
        tokens_.DefineConstant(name, std::string(tokens_.Next()));
    } while (tokens_.NextIs(','));
}

void TIffCompiler::TypeSection() {
    const std::string_view keyword = tokens_.Next();
    if (!SameText(keyword, "type")) ExpectError("type", keyword);
    do {
        const std::string_view name = tokens_.ReadName("<name>");
        tokens_.Expect("=");
        types_.Add(LowerNameHash(name), std::string(tokens_.ReadName("<name>")));
    } while (tokens_.NextIs(','));
}

// Nested forms are followed with a depth count rather than recursion, so no text can exhaust the stack.
void TIffCompiler::Form() {
    OpenFormHeader();
    int depth = 1;
    while (depth > 0) {
        if (tokens_.NextIs('}')) {
            writer_->CloseForm();
            --depth;
            continue;
        }
        const std::string_view token = tokens_.Peek();
        if (SameText(token, "form")) {
            if (depth >= kMaxNesting) {
                tokens_.Next();
                Error("forms nested deeper than " + std::to_string(kMaxNesting) + " levels");
            }
            OpenFormHeader();
            ++depth;
        } else if (SameText(token, "chunk")) {
            Chunk();
        } else if (SameText(token, "file")) {
            tokens_.Next();
            WriteFileContents(tokens_.ReadName("<filename>"));
        } else {
            tokens_.Next();
            ExpectError("form or chunk", token);
        }
    }
}

void TIffCompiler::OpenFormHeader() {
    const std::string_view keyword = tokens_.Next();
    if (!SameText(keyword, "form")) ExpectError("FORM", keyword);
    const std::string_view name = tokens_.ReadName("<name>");
    if (name.size() < 4) Error(ERangeError().what());
    writer_->OpenForm(name.substr(0, 4));
    tokens_.Expect("{");
}

void TIffCompiler::Chunk() {
    const std::string_view keyword = tokens_.Next();
    if (!SameText(keyword, "chunk")) ExpectError("chunk", keyword);
    const std::string_view token = tokens_.Next();
    std::string id;
    if (tokens_.Kind() == tkNumber) {
        // The id is the number's four bytes in little-endian order: $44434241 is "ABCD".
        for (std::uint8_t byte : LittleEndian32(static_cast<std::uint32_t>(tokens_.ConvertInt(token))))
            id += static_cast<char>(byte);
    } else if (tokens_.IsNameKind(tokens_.Kind())) {
        if (token.size() < 4) Error(ERangeError().what());
        id = token.substr(0, 4);
    } else {
        ExpectError("<name>", token);
    }
    writer_->OpenChunk(id);
    tokens_.Expect("{");
    while (!tokens_.NextIs('}')) Value();
    writer_->CloseChunk();
}

void TIffCompiler::WriteFileContents(std::string_view name) {
    const auto found = FindExistingFile(name, baseFolder_);
    if (!found) Error("Couldn't find file " + std::string(name));
    std::error_code ec;
    CheckOutputSize(std::filesystem::file_size(*found, ec));
    std::vector<std::uint8_t> bytes = ReadFileBytes(*found);
    writer_->Write(bytes);
}

void TIffCompiler::CheckOutputSize(std::uint64_t adding) {
    if (writer_->GetPosition() + adding > MaxOutputSize) Error(TooLargeText());
}

std::string TIffCompiler::TooLargeText() const {
    return "output file larger than " +
           (MaxOutputSize == kMaxOutputSize ? std::string("4 GB") : std::to_string(MaxOutputSize) + " bytes");
}

} // namespace velkor

namespace velkor {

void TIffCompiler::AssembleWcpAsm() {
    WcpAssembler(tokens_, *writer_, *this, wcpLines_).AssembleWcpAsm();
}

} // namespace velkor
