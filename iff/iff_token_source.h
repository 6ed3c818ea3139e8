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
#include <vector>

namespace velkor {

class TScanner;
struct LineToken;

// One of the lines below, with the id that it shares with every other line of its text.
struct SplicedLine {
    // The id of a line that is the only one of its text.
    static constexpr std::uint32_t kOnce = ~std::uint32_t{0};
    std::string_view text;
    std::uint32_t id = kOnce;
};

// Lines that a text leaves out and hands over in order instead: the instruction listing of a unit, which
// the build takes from the compiler as it stands rather than from the text it would be written to.
class SplicedLines {
public:
    virtual ~SplicedLines() = default;
    // The next lines, a run at a time; none after the last. They stay valid until a Release after the next
    // call.
    virtual std::span<const SplicedLine> NextLines() = 0;
    // Nothing handed out before the last line taken is looked at any more: the lines of earlier runs may go.
    virtual void Release() = 0;
    // Characters of the lines not handed out yet.
    virtual std::size_t CharsLeft() const = 0;
};

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

    // The text leaves out `lines` behind its line `line`, the line of the "{" that opens a WCP_ASM block;
    // they are read in their place once TakeSplice finds the block there. Set after Start.
    void Splice(SplicedLines& lines, std::int32_t line, std::int32_t count);
    // Called behind the "{" of a WCP_ASM block: true when the left-out lines start here, and from here on
    // the tokens are theirs until the last, then the text's again.
    bool TakeSplice();
    // True while left-out lines wait for their place.
    bool SplicePending() const { return splice_ != nullptr && !spliceTaken_; }
    // Characters of the left-out lines not read yet.
    std::size_t SplicedCharsLeft() const;
    // Lines read before this no longer need to stay in memory.
    void ReleaseSpliced();
    // The left-out line whose tokens come next, while none of them has been read, or null: a caller that
    // reads the whole line by itself then passes it with SkipSplicedLine, as if it had read its tokens.
    const SplicedLine* FreshSplicedLine() {
        if (!inSplice_) return nullptr;
        if (tokenized_) {
            if (nextToken_ < tokenCount_) {
                if (nextToken_ > 0) return nullptr;
            } else if (!FetchSplicedLine()) {
                return nullptr;
            }
        }
        return line_;
    }
    void SkipSplicedLine() {
        reportedSpliceLine_ = spliceLineNumber_;
        lineFromSplice_ = true;
        PassSplicedLine();
    }
    // As SkipSplicedLine, for a line without tokens: the line an error names stays where it was.
    void PassSplicedLine() {
        tokenized_ = true;
        tokenCount_ = nextToken_ = 0;
    }

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

    // Whether the next token comes from the left-out lines; reads their next line when the last is used up.
    bool InSplice();
    // The next left-out line, or false after the last, when the text's tokens follow again.
    bool FetchSplicedLine() {
        if (runAt_ + 1 >= run_.size()) return FetchSplicedRun();
        line_ = &run_[++runAt_];
        ++spliceLineNumber_;
        tokenized_ = false;
        return true;
    }
    bool FetchSplicedRun();
    // The line an error names, counted in the whole text.
    std::int32_t ReportedLine() const;

    SplicedLines* splice_ = nullptr;      // the left-out lines, or null
    bool spliceTaken_ = false;            // their place was found
    bool inSplice_ = false;               // tokens come from them now
    std::int32_t spliceLine_ = 0;         // the line behind which they stand
    std::int32_t spliceCount_ = 0;        // how many there are
    std::int32_t lineOffset_ = 0;         // added to the scanner's line once they are read
    std::int32_t spliceLineNumber_ = 0;   // the line of lineTokens_ in the whole text
    std::int32_t reportedSpliceLine_ = 0; // the line the scanner would name, while it is theirs
    bool lineFromSplice_ = false;         // the line an error names is one of theirs
    bool wrapLines_ = false;              // the scanner reads five-digit line markers
    std::span<const SplicedLine> run_;    // their run handed over last
    std::size_t runAt_ = 0;               // the current line's place in it
    const SplicedLine* line_ = nullptr;   // their current line
    bool tokenized_ = true;               // lineTokens_ are line_'s (true before the first line)
    std::vector<LineToken> lineTokens_;   // the tokens of their current line
    std::size_t tokenCount_ = 0;          // how many
    std::size_t nextToken_ = 0;           // the next of them
};

} // namespace velkor
