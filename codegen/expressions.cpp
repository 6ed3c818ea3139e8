// Expressions: six recursive levels from relations down to factors, each leaving its value in v8. A left
// operand waits in an expression-stack slot (__ST<depth>) while its right operand is compiled into v8; the
// right operand then moves to v9 and the left one comes back into v8.
#include "codegen/codegen.h"

#include "codegen/decimal_text.h"
#include "codegen/nesting_guard.h"
#include "compiler/compiler.h"
#include "compiler/symbol_table.h"
#include "platform/numbers.h"
#include "platform/strings.h"
#include "scanner/scanner.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

namespace velkor {

namespace {

using BinaryOperator = TCodeGen::BinaryOperator;

// A keyword operator is a plain word; a string token that happens to read "or" is none.
bool IsWord(const TCompiler& c, std::string_view token, std::string_view word) {
    return c.TokenKind() != tkString && SameText(token, word);
}

// The operators of each level, by the token read there; None for a token that is none of them.
BinaryOperator RelationOf(const TCompiler& c, std::string_view token) {
    if (c.TokenKind() == tkOperator) {
        if (token == "=") return BinaryOperator::Equal;
        if (token == "<") return BinaryOperator::Less;
        if (token == ">") return BinaryOperator::Greater;
        if (token == "<>") return BinaryOperator::NotEqual;
        return BinaryOperator::None;
    }
    return IsWord(c, token, "AINT") ? BinaryOperator::NotEqual : BinaryOperator::None;
}

// The operators of the simple-expression level, and the signs. XOR is deliberately not among them.
BinaryOperator AdditiveOf(const TCompiler& c, std::string_view token) {
    if (c.TokenKind() == tkOperator) {
        if (token == "+") return BinaryOperator::Add;
        if (token == "-") return BinaryOperator::Subtract;
        return BinaryOperator::None;
    }
    return IsWord(c, token, "OR") ? BinaryOperator::Or : BinaryOperator::None;
}

BinaryOperator MultiplicativeOf(const TCompiler& c, std::string_view token) {
    if (c.TokenKind() == tkOperator) {
        if (token == "*") return BinaryOperator::Multiply;
        if (token == "/") return BinaryOperator::Divide;
        return BinaryOperator::None;
    }
    if (IsWord(c, token, "AND")) return BinaryOperator::And;
    return IsWord(c, token, "MOD") ? BinaryOperator::Mod : BinaryOperator::None;
}

// A binary "%" literal that the number conversion accepts without a report.
bool IsBinaryLiteral(const std::string& text) {
    if (text.size() < 2 || text.size() > 32 || text[0] != '%') return false;
    return text.find_first_not_of("01", 1) == std::string::npos;
}

// "__ST<depth>", the name of an expression-stack slot, written into `buffer` without a heap string: every
// binary operator looks two of them up.
std::string_view StackSlotName(std::array<char, 16>& buffer, int depth) {
    std::memcpy(buffer.data(), "__ST", 4);
    const auto end = std::to_chars(buffer.data() + 4, buffer.data() + buffer.size(), depth).ptr;
    return {buffer.data(), static_cast<std::size_t>(end - buffer.data())};
}

// "<before><register><after>" into `buffer`: the listing copies the line, so it need not live longer.
std::string_view RegisterLine(std::array<char, 32>& buffer, std::string_view before, int r,
                              std::string_view after) {
    char* at = std::copy(before.begin(), before.end(), buffer.data());
    at = std::to_chars(at, buffer.data() + buffer.size() - after.size(), r).ptr;
    at = std::copy(after.begin(), after.end(), at);
    return {buffer.data(), static_cast<std::size_t>(at - buffer.data())};
}

} // namespace

void TCodeGen::CompileExpression() {
    NestingGuard guard(*this);
    const bool negate = IsWord(compiler_, compiler_.PeekView(), "NOT");
    if (negate) compiler_.NextView();
    CompileSimpleExpression();
    for (BinaryOperator op; (op = RelationOf(compiler_, compiler_.PeekView())) != BinaryOperator::None;) {
        compiler_.NextView();
        CompileBinaryOperator(op);
    }
    if (negate) {
        EmitLine("opc v8 0 0;");
        EmitLine("movv v8 v1;");
    }
}

void TCodeGen::CompileSimpleExpression() {
    CompileSignedTerm();
    for (BinaryOperator op; (op = AdditiveOf(compiler_, compiler_.PeekView())) != BinaryOperator::None;) {
        compiler_.NextView();
        CompileBinaryOperator(op);
    }
}

void TCodeGen::CompileSignedTerm() {
    const BinaryOperator sign = AdditiveOf(compiler_, compiler_.PeekView());
    if (sign != BinaryOperator::None) compiler_.NextView();
    CompileTerm();
    if (sign == BinaryOperator::Subtract) {
        EmitLine("movc v9 0;");
        EmitLine("subv v8 v9 v8;");
    }
}

void TCodeGen::CompileTerm() {
    CompileSignedFactor();
    for (BinaryOperator op;
         (op = MultiplicativeOf(compiler_, compiler_.PeekView())) != BinaryOperator::None;) {
        compiler_.NextView();
        CompileBinaryOperator(op);
    }
}

void TCodeGen::CompileSignedFactor() {
    const BinaryOperator sign = AdditiveOf(compiler_, compiler_.PeekView());
    if (sign != BinaryOperator::None) compiler_.NextView();
    CompileFactor();
    if (sign == BinaryOperator::Subtract) {
        EmitLine("movc v9 0;");
        EmitLine("subv v8 v9 v8;");
    }
}

// The operator token is already read: save the left operand, compile the right one at the next-higher
// level, bring both into v8 and v9 and emit the operation.
void TCodeGen::CompileBinaryOperator(BinaryOperator op) {
    PushAccumulator();
    switch (op) {
    case BinaryOperator::Add:
    case BinaryOperator::Subtract:
    case BinaryOperator::Or: CompileSignedTerm(); break;
    case BinaryOperator::Mod:
        // The game has no remainder instruction; the lines below are emitted all the same.
        compiler_.ErrorNoSkip("mod not implemented!");
        CompileSignedFactor();
        break;
    case BinaryOperator::Multiply:
    case BinaryOperator::Divide:
    case BinaryOperator::And: CompileSignedFactor(); break;
    default: CompileSimpleExpression(); break;
    }
    EmitLine("movv v9 v8;");
    PopAccumulator();

    switch (op) {
    case BinaryOperator::Add: EmitLine("addv v8 v8 v9;"); break;
    case BinaryOperator::Subtract: EmitLine("subv v8 v8 v9;"); break;
    case BinaryOperator::Or: EmitLine("orv v8 v8 v9;"); break;
    case BinaryOperator::Multiply: EmitLine("mulv v8 v8 v9;"); break;
    case BinaryOperator::Divide: EmitLine("divv v8 v8 v9;"); break;
    case BinaryOperator::And: EmitLine("andv v8 v8 v9;"); break;
    case BinaryOperator::Mod:
        EmitLine("divv v8 v8 v9;");
        EmitLine("mulc v8 v8 v9;");
        break;
    case BinaryOperator::Equal:
    case BinaryOperator::Less:
    case BinaryOperator::Greater:
        EmitLine(op == BinaryOperator::Equal  ? "opv v8 0 v9;"
                 : op == BinaryOperator::Less ? "opv v8 2 v9;"
                                              : "opv v8 4 v9;");
        EmitLine("movv v8 v1;");
        break;
    default: // "<>" and AINT
        EmitLine("opv v8 0 v9;");
        EmitLine("movv v8 v1;");
        EmitLine("opc v8 0 0;");
        EmitLine("movv v8 v1;");
        break;
    }
}

void TCodeGen::CompileFactor() {
    const std::string_view token = compiler_.PeekView();
    const std::int32_t kind = compiler_.TokenKind();
    if (kind == tkOpenParen) {
        compiler_.NextView();
        CompileExpression();
        compiler_.Expect(")");
        return;
    }
    if (kind == tkNumber) {
        compiler_.NextView();
        if (auto value = compiler_.ConvertNumber(token)) EmitJoined({"movc v8 ", DecimalText(*value), ";"});
        return;
    }
    // A delimiter that ends the statement stays for the recovery to stop at.
    const bool ends = kind == tkSemicolon || kind == tkComma || kind == tkCloseParen || kind == tkEnd ||
                      kind == tkEndOfText;
    if (!ends) compiler_.NextView();
    const int index = ends || kind == tkString ? -1 : compiler_.Symbols().Find(token);
    if (index < 0) {
        compiler_.Expected("<symbol>", std::string(token));
        return;
    }
    // Loading a variable or an object only writes a line; anything else gets a copy of its record, as
    // compiling a call may add symbols and move the table's records.
    const TSymbol& symbol = compiler_.Symbols().Get(index);
    switch (symbol.Kind) {
    case skLocalVar:
    case skPassVar:
    case skStackVar:
    case skGlobalVar:
    case skExternalVar:
    case skStaticVar:
    case skObject: LoadSymbol(symbol); break;
    default: LoadSymbol(TSymbol(symbol)); break;
    }
}

void TCodeGen::LoadSymbol(const TSymbol& symbol) {
    switch (symbol.Kind) {
    case skLocalVar:
    case skPassVar:
    case skStackVar: {
        std::array<char, 32> line;
        EmitLine(RegisterLine(line, "movv v8 v", symbol.Register, ";"));
        break;
    }
    case skGlobalVar:
    case skExternalVar:
    case skStaticVar: EmitJoined({"movv v8 ", symbol.Text, ";"}); break;
    case skGlobalConst:
    case skLocalConst:
    case skNumber:
    case skEnum: EmitJoined({"movc v8 ", ConstantOperand(symbol.Text), ";"}); break;
    case skObject: EmitJoined({"movc v8 ", symbol.Text, ";"}); break;
    case skStringTable: {
        const int errors = compiler_.ErrorCount;
        if (!compiler_.Expect("[")) return;
        const std::int32_t number = compiler_.StringNumber(symbol, compiler_.NextToken());
        if (ErrorSince(errors) || !compiler_.Expect("]")) return;
        EmitJoined({"movc v8 ", DecimalText(number), ";"});
        break;
    }
    case skGameFunction:
        CompileGameCall(symbol);
        EmitLine("movv v8 v0;");
        break;
    case skUserFunction:
        CompileUserCall(symbol);
        EmitLine("movv v8 v0;");
        break;
    default:
        compiler_.Error("FATAL - symbol \"" + symbol.Text + "\" has unknown symbol type (" +
                        std::to_string(symbol.Kind) +
                        "). Don't know what do do with it. - This should never happen!");
        break;
    }
}

std::string TCodeGen::ConstantOperand(const std::string& value) {
    if (IsBinaryLiteral(value)) {
        if (auto number = compiler_.ConvertNumber(value)) return std::to_string(*number);
        return value;
    }
    if (auto number = StrToInt(value)) return std::to_string(*number);
    return value; // a text, a float or a name: the assembler takes it as written
}

std::optional<std::int32_t> TCodeGen::KnownSlotRegister(int depth) const {
    if (compiler_.Symbols().Generation() != slotGeneration_ || depth < 0 ||
        static_cast<std::size_t>(depth) >= slotRegisters_.size())
        return std::nullopt;
    return slotRegisters_[static_cast<std::size_t>(depth)];
}

void TCodeGen::KnowSlotRegister(int depth, std::int32_t r) {
    if (depth < 0) return;
    if (compiler_.Symbols().Generation() != slotGeneration_) {
        slotRegisters_.clear();
        slotGeneration_ = compiler_.Symbols().Generation();
    }
    if (static_cast<std::size_t>(depth) >= slotRegisters_.size())
        slotRegisters_.resize(static_cast<std::size_t>(depth) + 1);
    slotRegisters_[static_cast<std::size_t>(depth)] = r;
}

int TCodeGen::PushAccumulator() {
    std::array<char, 16> nameBuffer;
    const std::string_view name = StackSlotName(nameBuffer, StackDepth);
    std::optional<std::int32_t> known = KnownSlotRegister(StackDepth);
    if (!known) {
        auto& symbols = compiler_.Symbols();
        const int index = symbols.Find(name);
        known = index >= 0 ? symbols.Get(index).Register
                           : compiler_.AddVariable(std::string(name), skStackVar, 0).Register;
        KnowSlotRegister(StackDepth, *known);
    }
    const std::int32_t r = *known;
    if (compiler_.Wants(2)) compiler_.Output(2, "push " + std::string(name));
    std::array<char, 32> line;
    EmitLine(RegisterLine(line, "movv v", r, " v8;"));
    ++StackDepth;
    return r;
}

void TCodeGen::PopAccumulator() {
    --StackDepth;
    std::array<char, 16> nameBuffer;
    const std::string_view name = StackSlotName(nameBuffer, StackDepth);
    if (compiler_.Wants(2)) compiler_.Output(2, "pop " + std::string(name));
    std::optional<std::int32_t> known = KnownSlotRegister(StackDepth);
    if (!known) {
        const int index = compiler_.Symbols().Find(name);
        if (index < 0) {
            compiler_.Error("stack over/under-flow (" + std::string(name) + ")");
            return;
        }
        known = compiler_.Symbols().Get(index).Register;
        KnowSlotRegister(StackDepth, *known);
    }
    std::array<char, 32> line;
    EmitLine(RegisterLine(line, "movv v8 v", *known, ";"));
}

} // namespace velkor
