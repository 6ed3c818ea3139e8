// Expressions: six recursive levels from relations down to factors, each leaving its value in v8. A left
// operand waits in an expression-stack slot (__ST<depth>) while its right operand is compiled into v8; the
// right operand then moves to v9 and the left one comes back into v8.
#include "codegen/codegen.h"

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

// A keyword operator is a plain word; a string token that happens to read "or" is none.
bool IsWord(const TCompiler& c, std::string_view token, std::string_view word) {
    return c.TokenKind() != tkString && SameText(token, word);
}

bool IsRelation(const TCompiler& c, std::string_view token) {
    if (c.TokenKind() == tkOperator) return token == "=" || token == "<" || token == ">" || token == "<>";
    return IsWord(c, token, "AINT");
}

// The operators of the simple-expression level, and the signs. XOR is deliberately not among them.
bool IsAdditive(const TCompiler& c, std::string_view token) {
    if (c.TokenKind() == tkOperator) return token == "+" || token == "-";
    return IsWord(c, token, "OR");
}

bool IsMultiplicative(const TCompiler& c, std::string_view token) {
    if (c.TokenKind() == tkOperator) return token == "*" || token == "/";
    return IsWord(c, token, "AND") || IsWord(c, token, "MOD");
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
    for (std::string_view op = compiler_.PeekView(); IsRelation(compiler_, op); op = compiler_.PeekView()) {
        compiler_.NextView();
        CompileBinaryOperator(UpperCase(op));
    }
    if (negate) {
        EmitLine("opc v8 0 0;");
        EmitLine("movv v8 v1;");
    }
}

void TCodeGen::CompileSimpleExpression() {
    CompileSignedTerm();
    for (std::string_view op = compiler_.PeekView(); IsAdditive(compiler_, op); op = compiler_.PeekView()) {
        compiler_.NextView();
        CompileBinaryOperator(UpperCase(op));
    }
}

void TCodeGen::CompileSignedTerm() {
    const std::string_view sign = compiler_.PeekView();
    const bool isSign = IsAdditive(compiler_, sign);
    if (isSign) compiler_.NextView();
    CompileTerm();
    if (isSign && sign == "-") {
        EmitLine("movc v9 0;");
        EmitLine("subv v8 v9 v8;");
    }
}

void TCodeGen::CompileTerm() {
    CompileSignedFactor();
    for (std::string_view op = compiler_.PeekView(); IsMultiplicative(compiler_, op);
         op = compiler_.PeekView()) {
        compiler_.NextView();
        CompileBinaryOperator(UpperCase(op));
    }
}

void TCodeGen::CompileSignedFactor() {
    const std::string_view sign = compiler_.PeekView();
    const bool isSign = IsAdditive(compiler_, sign);
    if (isSign) compiler_.NextView();
    CompileFactor();
    if (isSign && sign == "-") {
        EmitLine("movc v9 0;");
        EmitLine("subv v8 v9 v8;");
    }
}

// The operator token is already read: save the left operand, compile the right one at the next-higher
// level, bring both into v8 and v9 and emit the operation.
void TCodeGen::CompileBinaryOperator(const std::string& op) {
    PushAccumulator();
    if (op == "+" || op == "-" || op == "OR" || op == "XOR") {
        CompileSignedTerm();
    } else if (op == "*" || op == "/" || op == "AND" || op == "MOD") {
        // The game has no remainder instruction; the lines below are emitted all the same.
        if (op == "MOD") compiler_.ErrorNoSkip("mod not implemented!");
        CompileSignedFactor();
    } else {
        CompileSimpleExpression();
    }
    EmitLine("movv v9 v8;");
    PopAccumulator();

    if (op == "+")
        EmitLine("addv v8 v8 v9;");
    else if (op == "-")
        EmitLine("subv v8 v8 v9;");
    else if (op == "OR")
        EmitLine("orv v8 v8 v9;");
    else if (op == "XOR")
        EmitLine("xorv v8 v8 v9;");
    else if (op == "*")
        EmitLine("mulv v8 v8 v9;");
    else if (op == "/")
        EmitLine("divv v8 v8 v9;");
    else if (op == "AND")
        EmitLine("andv v8 v8 v9;");
    else if (op == "MOD") {
        EmitLine("divv v8 v8 v9;");
        EmitLine("mulc v8 v8 v9;");
    } else if (op == "=" || op == "<" || op == ">") {
        const char* relation = op == "=" ? "0" : op == "<" ? "2" : "4";
        EmitLine(std::string("opv v8 ") + relation + " v9;");
        EmitLine("movv v8 v1;");
    } else { // "<>" and AINT
        EmitLine("opv v8 0 v9;");
        EmitLine("movv v8 v1;");
        EmitLine("opc v8 0 0;");
        EmitLine("movv v8 v1;");
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
        if (auto value = compiler_.ConvertNumber(token)) EmitLine("movc v8 " + std::to_string(*value) + ";");
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
    case skStaticVar: EmitLine("movv v8 " + symbol.Text + ";"); break;
    case skGlobalConst:
    case skLocalConst:
    case skNumber:
    case skEnum: EmitLine("movc v8 " + ConstantOperand(symbol.Text) + ";"); break;
    case skObject: EmitLine("movc v8 " + symbol.Text + ";"); break;
    case skStringTable: {
        const int errors = compiler_.ErrorCount;
        if (!compiler_.Expect("[")) return;
        const std::int32_t number = compiler_.StringNumber(symbol, compiler_.NextToken());
        if (ErrorSince(errors) || !compiler_.Expect("]")) return;
        EmitLine("movc v8 " + std::to_string(number) + ";");
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

int TCodeGen::PushAccumulator() {
    std::array<char, 16> nameBuffer;
    const std::string_view name = StackSlotName(nameBuffer, StackDepth);
    auto& symbols = compiler_.Symbols();
    const int index = symbols.Find(name);
    const std::int32_t r = index >= 0 ? symbols.Get(index).Register
                                      : compiler_.AddVariable(std::string(name), skStackVar, 0).Register;
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
    const int index = compiler_.Symbols().Find(name);
    if (index < 0) {
        compiler_.Error("stack over/under-flow (" + std::string(name) + ")");
        return;
    }
    std::array<char, 32> line;
    EmitLine(RegisterLine(line, "movv v8 v", compiler_.Symbols().Get(index).Register, ";"));
}

} // namespace velkor
