#include "iff/iff_token_source.h"

#include "iff/checksum.h"
#include "platform/numbers.h"
#include "platform/strings.h"
#include "scanner/scanner.h"

namespace velkor {

IffTokenSource::IffTokenSource(const MessageCallback& onMessage) : onMessage_(onMessage) {}
IffTokenSource::~IffTokenSource() = default;

void IffTokenSource::Start(std::string text) {
    scanner_ = CreateScanner();
    scanner_->LineMarkers = true;
    scanner_->LoadFromString(std::move(text));
    constants_.clear();
    kind_ = 0;
    splice_ = nullptr;
    spliceTaken_ = inSplice_ = lineFromSplice_ = false;
    lineOffset_ = 0;
    wrapLines_ = GetScannerClass() == ScannerClass::Standard;
}

void IffTokenSource::Stop() {
    scanner_.reset();
    constants_.clear();
    splice_ = nullptr;
    inSplice_ = false;
    lineTokens_.clear();
    tokenCount_ = nextToken_ = 0;
    run_ = {};
    line_ = nullptr;
}

void IffTokenSource::Splice(SplicedLines& lines, std::int32_t line, std::int32_t count) {
    splice_ = &lines;
    spliceLine_ = line;
    spliceCount_ = count;
    spliceTaken_ = inSplice_ = false;
}

// The place is the "{" on the line before the left-out ones, with nothing behind it on its line: the text
// was cut right there.
bool IffTokenSource::TakeSplice() {
    if (!SplicePending() || inSplice_ || kind_ != tkDelimiter) return false;
    const std::int32_t expected = wrapLines_ ? spliceLine_ % 100000 : spliceLine_;
    const std::size_t at = static_cast<std::size_t>(scanner_->Position());
    if (scanner_->Line() != expected || at < 2 || at > scanner_->Text().size() ||
        scanner_->Text()[at - 1] != '\r')
        return false;
    if (scanner_->Text()[at - 2] != '{') return false;
    spliceTaken_ = inSplice_ = true;
    spliceLineNumber_ = spliceLine_;
    tokenCount_ = nextToken_ = 0;
    run_ = {};
    runAt_ = 0;
    tokenized_ = true; // no line yet: the first read fetches one
    return true;
}

bool IffTokenSource::FetchSplicedRun() {
    run_ = splice_->NextLines();
    runAt_ = 0;
    if (run_.empty()) {
        inSplice_ = false;
        tokenCount_ = nextToken_ = 0;
        lineOffset_ = spliceCount_;
        return false;
    }
    line_ = run_.data();
    ++spliceLineNumber_;
    tokenized_ = false;
    return true;
}

bool IffTokenSource::InSplice() {
    if (!inSplice_) return false;
    for (;;) {
        if (!tokenized_) {
            // The lines were checked before they were left out of the text.
            if (!ReadLineTokens(line_->text, lineTokens_))
                throw Exception("a left-out listing line cannot be read");
            tokenized_ = true;
            tokenCount_ = lineTokens_.size();
            nextToken_ = 0;
        }
        if (nextToken_ < tokenCount_) return true;
        if (!FetchSplicedLine()) return false;
    }
}

std::size_t IffTokenSource::SplicedCharsLeft() const {
    return splice_ ? splice_->CharsLeft() : 0;
}

void IffTokenSource::ReleaseSpliced() {
    if (inSplice_) splice_->Release();
}

// A stray character that is the text's very last one reads as an empty token of other characters, which
// does not advance; it is a token like any other, so the grammar refuses it where it stands.
std::string_view IffTokenSource::Next() {
    if (InSplice()) {
        const LineToken& token = lineTokens_[nextToken_++];
        kind_ = token.kind;
        reportedSpliceLine_ = spliceLineNumber_;
        lineFromSplice_ = true;
        return token.text;
    }
    const std::string_view token = scanner_->NextTokenView();
    kind_ = scanner_->TokenKind();
    lineFromSplice_ = false;
    return token;
}

// A peek leaves the line an error names where it was, as the scanner's does.
std::string_view IffTokenSource::Peek() {
    if (InSplice()) {
        const LineToken& token = lineTokens_[nextToken_];
        kind_ = token.kind;
        return token.text;
    }
    const std::string_view token = scanner_->PeekTokenView();
    kind_ = scanner_->TokenKind();
    return token;
}

std::size_t IffTokenSource::NextPlainNumbers(std::uint32_t max, std::span<std::uint32_t> values) {
    // The general path reads the left-out lines' numbers: they are the same items.
    if (InSplice()) return 0;
    lineFromSplice_ = false;
    const std::size_t n = scanner_->NextPlainNumbers(max, values);
    kind_ = scanner_->TokenKind();
    return n;
}

bool IffTokenSource::Stuck(std::string_view token) const {
    return kind_ == tkEndOfText || (kind_ == tkOther && token.empty());
}

// Each of these delimiters is always a token of its own, so one look at the next character after the blanks
// tells, without scanning a whole token twice as PeekToken would.
bool IffTokenSource::PeekIs(char punctuation) {
    if (InSplice()) {
        // Passing the blanks moves the scanner's line to the next token's.
        reportedSpliceLine_ = spliceLineNumber_;
        lineFromSplice_ = true;
        const LineToken& token = lineTokens_[nextToken_];
        return token.kind != tkString && !token.text.empty() && token.text[0] == punctuation;
    }
    lineFromSplice_ = false;
    scanner_->SkipBlanks();
    return !scanner_->AtEnd() &&
           scanner_->Text()[static_cast<size_t>(scanner_->Position()) - 1] == punctuation;
}

bool IffTokenSource::NextIs(char punctuation) {
    if (!PeekIs(punctuation)) return false;
    Next();
    return true;
}

bool IffTokenSource::IsNameKind(std::int32_t kind) {
    return kind == tkIdentifier || kind == tkString || (kind >= tkAnd && kind <= tkProperty) ||
           kind == tkBegin || kind == tkEnd;
}

void IffTokenSource::Expect(std::string_view punctuation) {
    const std::string_view token = Next();
    if (token != punctuation || kind_ == tkString) ExpectError(punctuation, token);
}

std::string_view IffTokenSource::ReadName(std::string_view expected) {
    const std::string_view token = Next();
    if (!IsNameKind(kind_)) ExpectError(expected, token);
    return token;
}

void IffTokenSource::Error(const std::string& text, SourceLocation where) {
    // The text quotes the assembled text's own bytes.
    std::string line = "[error] line " + std::to_string(ReportedLine()) + ": " + VisibleBytes(text);
    if (onMessage_) {
        onMessage_(0, line);
        onMessage_(0, "  raised in " + RoutineName(where) + ", line " + std::to_string(where.line()));
    }
    throw EIffCompiler(line);
}

// Five-digit line markers wrap after line 99999; the lines of the text read in place of the left-out
// ones count on behind them.
std::int32_t IffTokenSource::ReportedLine() const {
    if (!scanner_) return 0;
    if (lineFromSplice_) return wrapLines_ ? reportedSpliceLine_ % 100000 : reportedSpliceLine_;
    if (lineOffset_ == 0) return scanner_->Line();
    const std::int32_t line = scanner_->Line() + lineOffset_;
    return wrapLines_ ? line % 100000 : line;
}

void IffTokenSource::ExpectError(std::string_view expected, std::string_view found, SourceLocation where) {
    std::string text = "expected ";
    text += expected;
    text += ", but found ";
    text += found;
    Error(text, where);
}

void IffTokenSource::DefineConstant(std::string_view name, std::string value) {
    constants_.Add(LowerNameHash(name), std::move(value));
}

std::string_view IffTokenSource::ResolveConstant(std::string_view text) const {
    if (constants_.empty()) return text;
    if (const std::string* value = constants_.Find(LowerNameHash(text))) return *value;
    return text;
}

std::int32_t IffTokenSource::ConvertInt(std::string_view text, SourceLocation where) {
    const std::int32_t value = StrToIntDef(text, kNoValue);
    if (value == kNoValue) Error(std::string(text) + " is not a valid integer value.", where);
    return value;
}

} // namespace velkor
