// Function declarations and bodies, and calls. User functions take their arguments pushed and are called
// by name; game functions take theirs in registers counted down from v15 and are called as an instruction
// named after the function. Every function returns its value in v0.
#include "codegen/codegen.h"

#include "codegen/decimal_text.h"
#include "compiler/compiler.h"
#include "compiler/symbol_table.h"
#include "platform/numbers.h"
#include "platform/strings.h"
#include "scanner/scanner.h"

namespace velkor {

namespace {
std::string Reg(std::int32_t r) {
    return std::string(RegisterName(r));
}
} // namespace

void TCodeGen::CompileFunctionDeclaration() {
    auto& symbols = compiler_.Symbols();
    compiler_.NextToken(); // "function"
    symbols.RemoveLocals();
    StackDepth = 0;
    BreakStack.clear();
    functionSymbols_ = symbols.Count();

    std::string name = compiler_.NextToken();
    if (compiler_.TokenKind() != tkIdentifier) {
        compiler_.Expected("<Identifier>", name);
        return;
    }
    name = ShortString(name);
    CurrentFunction = name;
    functionLine_ = compiler_.Line();

    int parameters = 0;
    compiler_.PeekToken();
    if (compiler_.TokenKind() == tkOpenParen) {
        compiler_.NextToken();
        compiler_.PeekToken();
        if (compiler_.TokenKind() != tkCloseParen) {
            for (;;) {
                const std::string parameter = compiler_.NextToken();
                if (compiler_.TokenKind() != tkIdentifier) {
                    compiler_.Expected("<Identifier>", parameter);
                    return;
                }
                compiler_.AddPassVariable(parameter);
                ++parameters;
                compiler_.PeekToken();
                if (compiler_.TokenKind() != tkComma) break;
                compiler_.NextToken();
            }
        }
        if (!compiler_.Expect(")")) return;
    }
    if (!compiler_.Expect(";")) return;

    compiler_.PeekToken();
    switch (compiler_.TokenKind()) {
    case tkExternal:
        compiler_.NextToken();
        DeclareFunctionSymbol(name, skGameFunction, parameters, false);
        compiler_.Output(3, "adding WCP function " + name);
        compiler_.Expect(";");
        break;
    case tkForward:
        compiler_.NextToken();
        DeclareFunctionSymbol(name, skUserFunction, parameters, false);
        compiler_.Output(1, "*adding USER function forward declaration: " + name);
        compiler_.Expect(";");
        break;
    case tkStatic:
    case tkVar:
    case tkConst:
    case tkBegin:
        DeclareFunctionSymbol(name, skUserFunction, parameters, true);
        EmitJoined({"FUNC ", name, " ", DecimalText(parameters)});
        CompileFunctionBody();
        compiler_.Expect(";");
        break;
    default:
        DeclareFunctionSymbol(name, skUserFunction, parameters, false);
        compiler_.Output(2, "*adding USER function forward declaration: " + name);
        break;
    }
    symbols.RemoveLocals();
}

// A body replaces whatever symbol the name finds, whatever its kind: the checks read the old record's
// fields as a function's, so a variable with an initial value counts as implemented. Declarations without
// a body are added, so that a name declared twice is reported as redeclared.
void TCodeGen::DeclareFunctionSymbol(const std::string& name, std::int32_t kind, int parameters,
                                     bool implemented) {
    auto& symbols = compiler_.Symbols();
    TSymbol function;
    function.Name = UpperCase(name);
    function.Text = name;
    function.Kind = kind;
    function.FileNumber = compiler_.FileNumber;
    function.Line = functionLine_;
    function.Register = parameters;
    function.Value = implemented ? 1 : 0;

    const int existing = implemented ? symbols.Find(name) : -1;
    if (existing >= 0) {
        const TSymbol old = symbols.Get(existing);
        if (old.Value != 0) compiler_.ErrorNoSkip("\r\nfunction \"" + name + "\" already implemented");
        if (old.Register != parameters)
            compiler_.ErrorNoSkip("parameter list differs from previous declaration");
        symbols.At(existing) = function;
        return;
    }
    compiler_.AddSymbol(function);
}

void TCodeGen::CompileFunctionBody() {
    auto& symbols = compiler_.Symbols();
    compiler_.Output(1, "doing user function..." + CurrentFunction);
    for (;;) {
        compiler_.PeekToken();
        const std::int32_t kind = compiler_.TokenKind();
        if (kind == tkStatic || kind == tkVar) {
            compiler_.NextToken();
            compiler_.DeclareVariables(skLocalVar);
        } else if (kind == tkConst) {
            compiler_.NextToken();
            compiler_.DeclareConstants(skLocalConst);
        } else {
            break;
        }
    }

    auto& code = compiler_.Data().CodeList;
    const std::size_t insertAt = code.size() + 1; // behind the body's "{"
    CompileCompound();

    // The head of the body, in its final order: the register map, "alloc", then the initial values. Each
    // part lists its symbols last declared first.
    const int registers = symbols.CountOfKind(skLocalVar) + symbols.CountOfKind(skStackVar);
    std::vector<std::string> head;
    std::vector<std::string> initialValues;
    for (int i = symbols.Count() - 1; i >= functionSymbols_; --i) {
        const TSymbol& s = symbols.Get(i);
        if (s.Kind != skPassVar && s.Kind != skLocalVar && s.Kind != skStackVar) continue;
        head.push_back("  //symbol: " + s.Name + ", reg: " + std::to_string(s.Register));
        if (s.Kind == skLocalVar && s.Value != kNoValue)
            initialValues.push_back("  movc " + Reg(s.Register) + " " + std::to_string(s.Value) + ";");
    }
    if (registers > 0) {
        head.push_back("  alloc " + std::to_string(registers) + ";");
        head.insert(head.end(), initialValues.begin(), initialValues.end());
    }
    InsertLines(insertAt, head);

    // Whatever symbol the name finds returns its register field: a unit-level "result" has none, and every
    // function then returns v0.
    const int result = symbols.Find("RESULT");
    if (result >= 0) InsertLine(code.size() - 1, "  return " + Reg(symbols.Get(result).Register) + ";");
    if (code.size() == insertAt + 1) {
        compiler_.Output(0, "WARNING: Empty function body (" + CurrentFunction + ")");
        InsertLine(code.size() - 1, "  movc v8 0;");
    }
    compiler_.Output(1, "function used " + std::to_string(registers) + " registers");
}

void TCodeGen::CompileUserCall(const TSymbol& function) {
    compiler_.Output(2, "doing USER function call...");
    const int parameters = function.Register;
    // A call without parameters is the bare name: a following "()" is left to the caller, which reports it.
    if (parameters > 0 && compiler_.Expect("(")) {
        bool failed = false;
        for (int i = 0; i < parameters && !failed; ++i) {
            const int errors = compiler_.ErrorCount;
            CompileExpression();
            EmitLine("push v8;");
            // After a failed argument the rest of the statement is gone; do not report each missing one.
            failed = ErrorSince(errors);
            compiler_.PeekView();
            if (!failed && compiler_.TokenKind() == tkComma) compiler_.NextView();
        }
        if (!failed) compiler_.Expect(")");
    }
    EmitJoined({"call ", function.Text, " ", DecimalText(parameters), ";"});
}

void TCodeGen::CompileGameCall(const TSymbol& function) {
    compiler_.Output(2, "doing WCP function call...");
    const int parameters = function.Register;
    std::string operands;
    if (parameters > 0 && compiler_.Expect("(")) {
        bool failed = false;
        int byName = 0;
        for (int i = 0; i < parameters && !failed; ++i) {
            const int errors = compiler_.ErrorCount;
            const std::string_view next = compiler_.PeekView();
            if (compiler_.TokenKind() == tkOperator && next == "@") {
                compiler_.NextView();
                const std::string name = compiler_.NextToken();
                operands += ' ';
                operands += ByNameOperand(name, compiler_.TokenKind() == tkString);
                ++byName;
            } else {
                CompileExpression();
                const int r = 15 - i + byName;
                const DecimalText reg = RegisterName(r);
                EmitJoined({"movv ", reg, " v8;"});
                operands += ' ';
                operands += std::string_view(reg);
                // From here on the arguments reach the registers that expressions work in.
                if (r < 9 && compiler_.Wants(2))
                    compiler_.Output(2, "warning: using " + Reg(r) + " for wcp function call");
            }
            failed = ErrorSince(errors) || (i + 1 < parameters && !compiler_.Expect(","));
        }
        if (!failed) compiler_.Expect(")");
    }
    EmitJoined({function.Text, operands, ";"});
}

// A by-name argument names a symbol; the game function gets the symbol's own operand (a register, a
// global's storage name, a constant's value). A name the unit does not know is passed as written, so the
// assembler hashes it like any other name.
std::string TCodeGen::ByNameOperand(const std::string& name, bool quoted) {
    const int index = quoted ? -1 : compiler_.Symbols().Find(name);
    if (index < 0) return quoted ? "\"" + name + "\"" : name;
    const TSymbol symbol = compiler_.Symbols().Get(index);
    switch (symbol.Kind) {
    case skLocalVar:
    case skPassVar:
    case skStackVar: return Reg(symbol.Register);
    case skGlobalConst:
    case skLocalConst:
    case skNumber:
    case skEnum: return ConstantOperand(symbol.Text);
    case skStringTable: return symbol.Name;
    default: return symbol.Text;
    }
}

} // namespace velkor
