// Assembles textual IFF (forms, chunks, typed values, constants, types and WCP_ASM instruction listings) into
// binary IFF. Every finished output block is handed to OnBinaryOutput, or written as it is assembled into a
// temporary file that the caller's OnFileOutput puts in place of the target. The first error ends the run:
// it is reported as "[error] line N: <text>" and raised as EIffCompiler with that text.
#pragma once

#include "iff/iff_token_source.h"
#include "iff/name_table.h"
#include "iff/wcp_line_memo.h"
#include "platform/source_location.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velkor {

class TIffWriter;

class TIffCompiler {
public:
    using MessageCallback = std::function<void(int level, const std::string& text)>;
    using BinaryOutputCallback =
        std::function<void(const std::vector<std::uint8_t>& bytes, const std::string& fileName)>;
    using NameHashedCallback = std::function<void(std::string_view name, std::uint32_t hash)>;

    TIffCompiler();
    ~TIffCompiler();
    TIffCompiler(const TIffCompiler&) = delete;
    TIffCompiler& operator=(const TIffCompiler&) = delete;

    // The text file to assemble; FILE values are looked up relative to its folder. Throws EIffCompiler
    // "<name> doesn't exist" when there is no such file.
    void SetInputFile(const std::string& fileName);
    // Assembles a text held in memory instead of a file; FILE values are looked up relative to baseFolder
    // (the current folder when empty).
    // The text is handed to the next Compile, which takes it over.
    void SetInputText(std::string_view text, const std::filesystem::path& baseFolder = {});
    // As SetInputText, taking over the caller's text instead of copying it.
    void TakeInputText(std::string text, const std::filesystem::path& baseFolder = {});
    // As TakeInputText, for a text that leaves out `count` lines at `at`, the start of the line behind the
    // "{" of a WCP_ASM block: `lines` hands them over, and they are read in their place. Messages and bytes
    // are those of the whole text.
    void TakeInputText(std::string text, const std::filesystem::path& baseFolder, SplicedLines& lines,
                       std::size_t at, std::int32_t count);
    const std::string& InputFile() const { return inputName_; }

    // Assembles the whole input, handing each output block to OnBinaryOutput. Throws EIffCompiler on the
    // first error, after reporting it through OnMessage.
    void Compile();

    MessageCallback OnMessage;           // receives the error lines, at level 0
    BinaryOutputCallback OnBinaryOutput; // receives each finished output file
    // Optional, for a build that writes its files while it assembles them: where the block of that name
    // goes, or nothing to keep it in memory for OnBinaryOutput. A block whose file cannot be created is
    // kept in memory too, so that its fault is met where it would be without this.
    std::function<std::optional<std::filesystem::path>(const std::string& fileName)> OnPlaceOutput;
    // Receives each block written so, its writer to be closed, which replaces the file.
    std::function<void(TIffWriter& writer, const std::string& fileName)> OnFileOutput;
    NameHashedCallback OnNameHashed; // receives every crc32 value's text with its checksum

    // Rows of plain numbers (BYTE, WORD, LONG) are read straight from the text, and a text made of nothing
    // else is read in blocks as it comes; off, every item takes the general token path. Both give the same
    // bytes and messages; the switch is there to compare them.
    bool FastValueRows = true;

    // Nesting deeper than this is refused rather than followed.
    static constexpr int kMaxNesting = 10000;
    // IFF sizes are 32-bit: a larger output cannot be written, and constants or files repeated in a short
    // text could otherwise fill the memory before the writer notices.
    static constexpr std::uint64_t kMaxOutputSize = 0xFFFFFFFFu;
    // The largest output file allowed; a caller short of memory (a fuzzer) may lower it.
    std::uint64_t MaxOutputSize = kMaxOutputSize;
    // "output file larger than <the limit>", as the refusal of a larger output says it.
    std::string TooLargeText() const;

private:
    [[noreturn]] void Error(const std::string& text, SourceLocation where = SourceLocation::current()) {
        tokens_.Error(text, where);
    }
    [[noreturn]] void ExpectError(std::string_view expected, std::string_view found,
                                  SourceLocation where = SourceLocation::current()) {
        tokens_.ExpectError(expected, found, where);
    }

    // A text of nothing but forms, chunks and rows of plain numbers, read in one pass as it comes; false,
    // having handed over nothing, for any other text.
    bool AssemblePlainRowsText();
    // The textual-IFF grammar.
    void Run();
    void OutputBlock();
    // The writer of a block: into its file by way of OnPlaceOutput, or into memory.
    void OpenBlockWriter();
    void ConstSection();
    void TypeSection();
    void Form();
    void OpenFormHeader();
    void Chunk();
    void Value();
    // The instruction listing of a WCP_ASM value, handed to the instruction assembler.
    void AssembleWcpAsm();
    void WriteFileContents(std::string_view name);
    void CheckOutputSize(std::uint64_t adding);
    std::int32_t ReadInt();
    double ReadFloat();
    // The type a type alias stands for, or the name itself.
    std::string_view ResolveType(std::string_view name) const;

    std::string inputName_;              // the input file name as given
    std::filesystem::path inputPath_;    // the input file as found on disk
    std::string inputText_;              // the text when assembling from memory
    bool fromMemory_ = false;            // true when SetInputText gave the text
    SplicedLines* spliced_ = nullptr;    // lines the text leaves out, or null
    std::int32_t splicedLine_ = 0;       // the line of the "{" they stand behind
    std::int32_t splicedCount_ = 0;      // how many they are
    std::filesystem::path baseFolder_;   // where relative FILE names are looked up
    std::string outputName_;             // the output file of the block being assembled
    std::unique_ptr<TIffWriter> writer_; // the writer of the block being assembled
    bool streamed_ = false;              // writer_ writes the block's file as it goes
    IffTokenSource tokens_{OnMessage};   // tokens, constants and the error path of the run
    TNameTable types_;                   // type aliases by name checksum
    bool handingOver_ = false;           // true while an output callback runs
    std::vector<std::uint8_t> pending_;  // items of the value being assembled
    WcpLineMemo wcpLines_;               // the words of listing lines assembled before
};

} // namespace velkor
