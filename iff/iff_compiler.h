// Assembles textual IFF (forms, chunks, typed values, constants, types and WCP_ASM instruction listings) into
// binary IFF. Every finished output block is handed to OnBinaryOutput; the assembler never writes the target
// file itself. The first error ends the run: it is reported as "[error] line N: <text>" and raised as
// EIffCompiler with that text.
#pragma once

#include "iff/name_table.h"
#include "platform/exception.h"
#include "platform/source_location.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace velkor {

class TScanner;
class TIffWriter;

class EIffCompiler : public Exception {
public:
    using Exception::Exception;
};

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
    const std::string& InputFile() const { return inputName_; }

    // Assembles the whole input, handing each output block to OnBinaryOutput. Throws EIffCompiler on the
    // first error, after reporting it through OnMessage.
    void Compile();

    MessageCallback OnMessage;           // receives the error lines, at level 0
    BinaryOutputCallback OnBinaryOutput; // receives each finished output file
    NameHashedCallback OnNameHashed;     // receives every crc32 value's text with its checksum

    // Nesting deeper than this is refused rather than followed.
    static constexpr int kMaxNesting = 10000;
    // IFF sizes are 32-bit: a larger output cannot be written, and constants or files repeated in a short
    // text could otherwise fill the memory before the writer notices.
    static constexpr std::uint64_t kMaxOutputSize = 0xFFFFFFFFu;

private:
    // Token reading.
    // Views into the scanner's text, which stays put for the whole run.
    std::string_view Next();
    std::string_view Peek();
    bool PeekIs(char punctuation);
    bool NextIs(char punctuation);
    // True for the end of the text and for the empty token that does not advance: reading on gets nothing.
    bool Stuck(std::string_view token) const;
    void Expect(std::string_view punctuation);
    std::string_view ReadName(std::string_view expected);
    static bool IsNameKind(std::int32_t kind);

    // Error path.
    [[noreturn]] void Error(const std::string& text, SourceLocation where = SourceLocation::current());
    [[noreturn]] void ExpectError(std::string_view expected, std::string_view found,
                                  SourceLocation where = SourceLocation::current());

    // Constant and type tables: keyed by the name checksum of the lower-cased name, first definition wins.
    void AddEntry(TNameTable& table, std::string_view name, std::string value);
    const std::string* Lookup(const TNameTable& table, std::string_view name) const;
    // The constant's value, or the text itself when it names no constant.
    std::string_view ResolveConstant(std::string_view text) const;

    // The textual-IFF grammar.
    void Run();
    void OutputBlock();
    void ConstSection();
    void TypeSection();
    void Form();
    void OpenFormHeader();
    void Chunk();
    void Value();
    void WriteFileContents(std::string_view name);
    void CheckOutputSize(std::uint64_t adding);
    std::int32_t ReadInt();
    std::int32_t ConvertInt(std::string_view text);
    double ReadFloat();

    // The instruction assembler of WCP_ASM blocks (codegen/wcp_asm.cpp).
    void AssembleWcpAsm();
    void AssembleFunction();
    void WriteParameterDescriptors(std::string_view function, std::uint32_t count);
    void AssembleBlock();
    void EmitInstruction(int index, std::span<const std::uint8_t> kinds, bool semicolonRequired);
    void EmitNativeCall(std::string_view name);
    std::uint32_t ReadOperand(int kind);
    void EmitWord(std::uint32_t word);

    std::string inputName_;              // the input file name as given
    std::filesystem::path inputPath_;    // the input file as found on disk
    std::string inputText_;              // the text when assembling from memory
    bool fromMemory_ = false;            // true when SetInputText gave the text
    std::filesystem::path baseFolder_;   // where relative FILE names are looked up
    std::string outputName_;             // the output file of the block being assembled
    std::unique_ptr<TIffWriter> writer_; // the writer of the block being assembled
    std::unique_ptr<TScanner> scanner_;  // the token reader of the run
    TNameTable constants_;               // constant values by name checksum
    TNameTable types_;                   // type aliases by name checksum
    std::int32_t kind_ = 0;              // kind of the last token read or peeked
    bool handingOver_ = false;           // true while OnBinaryOutput runs
    std::vector<std::uint8_t> pending_;  // items of the value being assembled
    std::vector<std::uint8_t> code_;     // the function record being assembled
};

} // namespace velkor
