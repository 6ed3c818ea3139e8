// The token reader of the textual-IFF assembler, which the instruction assembler of WCP_ASM blocks reads
// from too: tokens with their kinds, the named constants tokens resolve through, and the error path that
// reports "[error] line N: <text>" and raises EIffCompiler.
#pragma once

#include "iff/name_table.h"
#include "platform/exception.h"
#include "platform/source_location.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace velkor {

class TScanner;

class EIffCompiler : public Exception {
public:
    using Exception::Exception;
};

class IffTokenSource {
public:
    using MessageCallback = std::function<void(int level, const std::string& text)>;

    // Errors are reported through `onMessage`, which the owner may assign after this is made.
    explicit IffTokenSource(const MessageCallback& onMessage);
    ~IffTokenSource();
    IffTokenSource(const IffTokenSource&) = delete;
    IffTokenSource& operator=(const IffTokenSource&) = delete;

    // Starts reading the text with a new scanner of the selected class, line markers on (the messages name
    // the line of every token); the constants start empty.
    void Start(std::string text);
    // Lets go of the scanner and the constants.
    void Stop();

    // Views into the scanner's text, which stays put for the whole run.
    std::string_view Next();
    std::string_view Peek();
    // Only for the delimiters "," ";" "{" "}" "[" "]".
    bool PeekIs(char punctuation);
    bool NextIs(char punctuation);
    // The kind of the last token read or peeked.
    std::int32_t Kind() const { return kind_; }
    // Plain numbers and the "," behind each, straight from the text: see TScanner::NextPlainNumbers.
    std::size_t NextPlainNumbers(std::uint32_t max, std::span<std::uint32_t> values);
    // True for the end of the text and for the empty token that does not advance: reading on gets nothing.
    bool Stuck(std::string_view token) const;
    void Expect(std::string_view punctuation);
    std::string_view ReadName(std::string_view expected);
    // Identifiers, strings and keywords: whatever may stand for a name.
    static bool IsNameKind(std::int32_t kind);
    const TScanner& Scanner() const { return *scanner_; }

    [[noreturn]] void Error(const std::string& text, SourceLocation where = SourceLocation::current());
    [[noreturn]] void ExpectError(std::string_view expected, std::string_view found,
                                  SourceLocation where = SourceLocation::current());

    // Named constants: keyed by the name checksum of the lower-cased name, the first definition wins.
    void DefineConstant(std::string_view name, std::string value);
    // The constant's value, or the text itself when it names no constant.
    std::string_view ResolveConstant(std::string_view text) const;
    // A signed 32-bit integer, or the error "<text> is not a valid integer value.".
    std::int32_t ConvertInt(std::string_view text, SourceLocation where = SourceLocation::current());

private:
    const MessageCallback& onMessage_;  // the owner's message callback
    std::unique_ptr<TScanner> scanner_; // the token reader of the run
    std::int32_t kind_ = 0;             // kind of the last token read or peeked
    TNameTable constants_;              // constant values by name checksum
};

} // namespace velkor
