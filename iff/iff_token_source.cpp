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
}

void IffTokenSource::Stop() {
    scanner_.reset();
    constants_.clear();
}

// A stray character that is the text's very last one reads as an empty token of other characters, which
// does not advance; it is a token like any other, so the grammar refuses it where it stands.
std::string_view IffTokenSource::Next() {
    const std::string_view token = scanner_->NextTokenView();
    kind_ = scanner_->TokenKind();
    return token;
}

std::string_view IffTokenSource::Peek() {
    const std::string_view token = scanner_->PeekTokenView();
    kind_ = scanner_->TokenKind();
    return token;
}

std::size_t IffTokenSource::NextPlainNumbers(std::uint32_t max, std::span<std::uint32_t> values) {
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
    std::string line =
        "[error] line " + std::to_string(scanner_ ? scanner_->Line() : 0) + ": " + VisibleBytes(text);
    if (onMessage_) {
        onMessage_(0, line);
        onMessage_(0, "  raised in " + RoutineName(where) + ", line " + std::to_string(where.line()));
    }
    throw EIffCompiler(line);
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
