// The two tokenizers of the language. TScanner rewrites the whole text first (line markers "##nnnnn" after
// every line break, comments blanked, the text trimmed) and then reads tokens from it; TFastScanner reads
// the text as given and skips comments and counts lines as it goes. Both keep the original tool's quirks:
// a collecting loop never takes the text's last character, and TScanner blanks comments inside strings.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace velkor {

// TokenKind values. Kind 3 is never produced.
enum : std::int32_t {
    tkNumber = 0,
    tkIdentifier = 1,
    tkOperator = 2,
    tkDelimiter = 4, // ".", "[", "]", "{", "}"
    tkString = 5,
    tkOther = 6,
    tkEndOfText = 7,
    tkAnd = 8,
    tkOr = 9,
    tkUnit = 10,
    tkInclude = 11,
    tkVar = 12,
    tkConst = 13,
    tkFunction = 14,
    tkWcp = 15,
    tkObject = 16,
    tkForward = 17,
    tkObjective = 18,
    tkMission = 19,
    tkSector = 20,
    tkSeries = 21,
    tkExternal = 22,
    tkStatic = 23,
    tkIff = 24,
    tkProject = 25,
    tkProperty = 26,
    tkSemicolon = 27,
    tkComma = 28,
    tkOpenParen = 29,
    tkCloseParen = 30,
    tkBegin = 31,
    tkEnd = 32,
};

// The keyword table: lower-case word and its kind; used by the scanner and the editor's highlighter.
struct ScannerKeyword {
    std::string_view word;
    std::int32_t kind;
};
std::span<const ScannerKeyword> ScannerKeywords();
// Words the statement compiler dispatches on or treats specially; not scanner keywords. With the table
// above, the words the editors show as keywords.
std::span<const std::string_view> StatementWords();

class TScanner {
public:
    TScanner() = default;
    virtual ~TScanner() = default;
    TScanner(const TScanner&) = delete;
    TScanner& operator=(const TScanner&) = delete;

    // Advances over blanks (and line markers) to the next token.
    virtual void SkipBlanks();
    // Takes a new source text; TScanner rewrites it as described above.
    virtual void SetText(std::string text);
    // Takes a stream's whole content; the text then ends in one NUL byte, which reads as the end.
    virtual void LoadFromStream(std::string_view content);
    // Loads a file through the text loader (line breaks normalised) and calls LoadFromStream.
    void LoadFromFile(const std::filesystem::path& path);

    // Takes a whole content as LoadFromStream does, without copying it.
    void LoadFromString(std::string content);

    // The token reads below come in two forms. The views point into the scanner's text and stay valid until
    // the text is replaced: the assembler reads millions of tokens and should not copy each one.
    std::string_view NextTokenView() {
        if (!HasPeeked()) return ScanToken();
        TakePeekedState();
        pos_ = peeked_.to;
        line_ = peeked_.line;
        return peeked_.token;
    }
    // The next token's text without consuming it; TokenKind is left at the peeked token's kind.
    std::string_view PeekTokenView() {
        if (!HasPeeked()) return PeekAheadView(0);
        TakePeekedState();
        return peeked_.token;
    }
    // Skips n tokens, then as PeekToken; position and line are restored, TokenKind is not.
    std::string_view PeekAheadView(int n);

    // Reads plain numbers straight from the text, as many as `values` holds, each one a number token that
    // NextTokenView would read ("$" and one to eight hexadecimal digits, or one to nine decimal digits) and
    // whose value is at most `max` and not kNoValue, and a "," behind each when there is one. Stops before
    // anything else, having passed at most the blanks in front of it, so that NextTokenView reads it as ever.
    // Returns how many it read; TokenKind is that of the last token taken.
    std::size_t NextPlainNumbers(std::uint32_t max, std::span<std::uint32_t> values);

    std::string NextToken() { return std::string(NextTokenView()); }
    std::string PeekToken() { return std::string(PeekTokenView()); }
    std::string PeekAhead(int n) { return std::string(PeekAheadView(n)); }

    std::int32_t Position() const { return static_cast<std::int32_t>(pos_); }
    std::int32_t Line() const { return line_; }
    std::int32_t TokenKind() const { return tokenKind_; }
    std::int32_t MarkerEnd() const { return static_cast<std::int32_t>(markerEnd_); }
    const std::string& Text() const { return text_; }
    // True once the position is past the text or on its NUL terminator.
    bool AtEnd() const { return pos_ > text_.size() || text_[pos_ - 1] == '\0'; }

    bool LineMarkers = false; // TScanner only: embed and read "##nnnnn" line markers

protected:
    char At(size_t p) const { return text_[p - 1]; } // 1-based, as positions are
    void ForgetPeek() { peeked_.from = 0; }          // the text changed under the kept peek

    std::string text_;                     // the source text (TScanner: rewritten)
    size_t pos_ = 1;                       // 1-based index of the next character
    std::int32_t line_ = 1;                // current line
    std::int32_t tokenKind_ = tkEndOfText; // kind of the last token read or peeked
    size_t markerEnd_ = 0;                 // position just behind the last line marker read

private:
    // The parsers peek at nearly every token before they read it. The last peek is kept, so that a peek or
    // a read from the same place takes its result instead of scanning the token again.
    struct PeekedToken {
        size_t from = 0;           // position the peek started at; 0 when none is kept
        std::int32_t fromLine = 0; // the line there
        bool markers = false;      // LineMarkers then
        size_t to = 0;             // position behind the token
        std::int32_t line = 0;     // line behind the token
        std::int32_t kind = 0;     // the token's kind
        bool passedMarker = false; // the blanks before the token held a line marker, which set markerEnd_
        size_t markerEnd = 0;      // markerEnd_ then
        std::string_view token;    // the token's text
    };
    bool HasPeeked() const {
        return peeked_.from == pos_ && peeked_.fromLine == line_ && peeked_.markers == LineMarkers;
    }
    void TakePeekedState() {
        tokenKind_ = peeked_.kind;
        if (peeked_.passedMarker) markerEnd_ = peeked_.markerEnd;
    }
    // Reads the token at the position, as NextTokenView does when no peek is kept.
    std::string_view ScanToken();

    void Rewrite();

    PeekedToken peeked_; // the last peek, valid while the text stays
};

class TFastScanner : public TScanner {
public:
    void SkipBlanks() override;
    void SetText(std::string text) override;
    void LoadFromStream(std::string_view content) override;
};

// The process-wide choice of scanner class for new compilers and assemblers.
enum class ScannerClass { Standard, Fast };
void SetScannerClass(ScannerClass cls);
ScannerClass GetScannerClass();
std::unique_ptr<TScanner> CreateScanner();

// One token of a line read on its own.
struct LineToken {
    std::string_view text; // as NextTokenView gives it: a string without its quotes
    std::int32_t kind;
};

// The tokens of one line of a text, as either scanner class reads them where the line stands inside a text,
// with more lines after it. False for a line whose reading depends on the class or on the lines around it:
// one holding a line break, NUL, "#", "/" other than a "//" that ends the line as a comment, or a string
// that does not end on the line.
bool ReadLineTokens(std::string_view line, std::vector<LineToken>& tokens);

// The token's text without the line markers TScanner put behind each line break inside it (a string that
// spans lines holds them).
std::string WithoutLineMarkers(std::string_view token);

} // namespace velkor
