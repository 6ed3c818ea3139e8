// Statements of a function body. Control flow becomes "if v8" / "else" with braced blocks; loops jump to
// labels named after the source line where their condition starts.
#include "codegen/codegen.h"

#include "codegen/nesting_guard.h"
#include "compiler/compiler.h"
#include "compiler/symbol_table.h"
#include "platform/numbers.h"
#include "platform/strings.h"
#include "scanner/scanner.h"

namespace velkor {

namespace {

bool IsConstantKind(std::int32_t kind) {
    return kind == skGlobalConst || kind == skLocalConst || kind == skNumber || kind == skEnum;
}
bool IsRegisterKind(std::int32_t kind) {
    return kind == skLocalVar || kind == skPassVar;
}
bool IsGlobalKind(std::int32_t kind) {
    return kind == skGlobalVar || kind == skExternalVar || kind == skStaticVar;
}

std::string Reg(std::int32_t r) {
    return "v" + std::to_string(r);
}

} // namespace

std::string TCodeGen::LoopLabel(char letter) const {
    std::string number = std::to_string(compiler_.Line());
    if (number.size() < 3) number.insert(0, 3 - number.size(), '0');
    return "\"" + number + letter + "\"";
}

void TCodeGen::CompileStatement() {
    NestingGuard guard(*this);
    const std::string token = compiler_.PeekToken();
    const std::int32_t kind = compiler_.TokenKind();
    if (kind == tkSemicolon) {
        compiler_.NextToken();
        compiler_.Output(2, "NULL statement");
        return;
    }
    if (kind == tkIdentifier) {
        const std::string word = UpperCase(token);
        if (word == "IF") return CompileIf();
        if (word == "WHILE") return CompileWhile();
        if (word == "UNTIL") return CompileUntil();
        if (word == "FOR") return CompileFor();
        if (word == "INC") return CompileIncDec(true);
        if (word == "DEC") return CompileIncDec(false);
        if (word == "BREAK") return CompileBreak();
        if (word == "RESULT" && compiler_.Symbols().Find("RESULT") < 0) {
            compiler_.AddVariable("result", skLocalVar, kNoValue);
            return CompileAssignment();
        }
    }
    if (token == "#" && compiler_.HandleDirective()) return;

    const int index = kind == tkIdentifier ? compiler_.Symbols().Find(token) : -1;
    if (index < 0) {
        compiler_.Expected("<statement>", token);
        return;
    }
    const TSymbol symbol = compiler_.Symbols().Get(index);
    if (symbol.Kind == skUserFunction) {
        compiler_.NextToken();
        CompileUserCall(symbol);
    } else if (symbol.Kind == skGameFunction) {
        compiler_.NextToken();
        CompileGameCall(symbol);
    } else if (IsConstantKind(symbol.Kind)) {
        compiler_.Error("cannot assign to constant");
    } else if (IsRegisterKind(symbol.Kind) || IsGlobalKind(symbol.Kind)) {
        CompileAssignment();
    } else {
        compiler_.Error("FATAL - symbol \"" + token + "\" has unknown symbol type (" +
                        std::to_string(symbol.Kind) +
                        "). Don't know what do do with it. - This should never happen!");
    }
}

// A statement of the function body's own statement list: an abandoned nesting ends here, with the blocks
// it opened closed, and the list goes on after the ";" that recovery stopped at.
void TCodeGen::CompileOutermostStatement() {
    const std::size_t indent = indent_.size();
    const std::size_t loops = BreakStack.size();
    const int depth = StackDepth;
    try {
        CompileStatement();
    } catch (const ENestingAbandoned&) {
        while (indent_.size() > indent) EmitLine("}");
        BreakStack.resize(loops);
        StackDepth = depth;
    }
}

void TCodeGen::CompileCompound() {
    const bool outermost = compounds_++ == 0;
    struct Leave {
        int& count;
        ~Leave() { --count; }
    } leave{compounds_};
    EmitLine("{");
    compiler_.Expect("begin");
    while (!compiler_.AtEnd()) {
        compiler_.PeekToken();
        if (compiler_.TokenKind() == tkEnd) break;
        const auto before = compiler_.Scanner().Position();
        if (compiler_.PeekToken() == "#" && compiler_.HandleDirective()) continue;
        if (outermost) {
            CompileOutermostStatement();
        } else {
            CompileStatement();
        }
        compiler_.PeekToken();
        if (compiler_.TokenKind() != tkEnd) compiler_.Expect(";");
        // Recovery never stands still: a token that nothing consumed is dropped.
        if (compiler_.Scanner().Position() == before && !compiler_.AtEnd()) compiler_.NextToken();
    }
    compiler_.Expect("end");
    EmitLine("}");
}

void TCodeGen::CompileBody() {
    compiler_.PeekToken();
    if (compiler_.TokenKind() == tkBegin) {
        CompileCompound();
        return;
    }
    EmitLine("{");
    CompileStatement();
    EmitLine("}");
}

void TCodeGen::CompileAssignment() {
    compiler_.Output(2, "doing assignment...");
    const std::string name = compiler_.NextToken();
    const int index = compiler_.Symbols().Find(name);
    if (index < 0) {
        compiler_.Error("couln't find symbol \"" + name + "\"");
        return;
    }
    const TSymbol target = compiler_.Symbols().Get(index);
    if (!compiler_.Expect(":=")) return;
    CompileExpression();
    if (IsRegisterKind(target.Kind) || target.Kind == skStackVar) {
        EmitLine("movv " + Reg(target.Register) + " v8;");
    } else if (IsGlobalKind(target.Kind)) {
        EmitLine("movv " + target.Text + " v8;");
    } else {
        compiler_.Error("FATAL - symbol \"" + name + "\" has unknown symbol type (" +
                        std::to_string(target.Kind) +
                        "). Don't know how to store it. - This should never happen!");
    }
}

void TCodeGen::CompileIf() {
    compiler_.NextToken();
    if (!compiler_.Expect("(")) return;
    CompileExpression();
    if (!compiler_.Expect(")") || !compiler_.Expect("then")) return;
    EmitLine("if v8");
    CompileBody();
    const std::string next = compiler_.PeekToken();
    if (compiler_.TokenKind() == tkIdentifier && SameText(next, "ELSE")) {
        compiler_.NextToken();
        EmitLine("else");
        CompileBody();
    }
}

void TCodeGen::CompileWhile() {
    compiler_.NextToken();
    if (!compiler_.Expect("(")) return;
    const std::string top = LoopLabel('w');
    const std::string end = LoopLabel('e');
    EmitLine("label " + top + ";");
    CompileExpression();
    if (!compiler_.Expect(")") || !compiler_.Expect("do")) return;
    EmitLine("if v8");
    BreakStack.push_back(end);
    CompileBody();
    BreakStack.pop_back();
    EmitLine("else");
    EmitLine("{");
    EmitLine("goto " + end + ";");
    EmitLine("}");
    EmitLine("goto " + top + ";");
    EmitLine("label " + end + ";");
}

void TCodeGen::CompileUntil() {
    compiler_.NextToken();
    if (!compiler_.Expect("(")) return;
    const std::string top = LoopLabel('w');
    const std::string end = LoopLabel('e');
    EmitLine("label " + top + ";");
    CompileExpression();
    if (!compiler_.Expect(")") || !compiler_.Expect("do")) return;
    EmitLine("if v8");
    EmitLine("{");
    EmitLine("goto " + end + ";");
    EmitLine("}");
    EmitLine("else");
    BreakStack.push_back(end);
    CompileBody();
    BreakStack.pop_back();
    EmitLine("goto " + top + ";");
    EmitLine("label " + end + ";");
}

void TCodeGen::CompileFor() {
    compiler_.NextToken();
    const std::string name = compiler_.PeekToken();
    const int index = compiler_.TokenKind() == tkIdentifier ? compiler_.Symbols().Find(name) : -1;
    if (index < 0) {
        compiler_.Expected("<symbol>", name);
        return;
    }
    const TSymbol counter = compiler_.Symbols().Get(index);
    if (!IsRegisterKind(counter.Kind)) {
        compiler_.Error("for loop variable must be a local variable or parameter");
        return;
    }
    const int errors = compiler_.ErrorCount;
    CompileAssignment();
    if (ErrorSince(errors) || !compiler_.Expect("to")) return;
    compiler_.Output(2, "push final value for the loop counter onto the stack");
    CompileExpression();
    // The slot keeps the final value for the whole loop and is never popped: the depth stays one deeper
    // until the next function starts.
    const int slot = PushAccumulator();
    if (!compiler_.Expect("do")) return;
    const std::string top = LoopLabel('f');
    const std::string end = LoopLabel('e');
    const std::string r = Reg(counter.Register);
    EmitLine("label " + top + ";");
    EmitLine("opv " + r + " 4 " + Reg(slot) + ";");
    EmitLine("if v1");
    EmitLine("{");
    EmitLine("goto " + end + ";");
    EmitLine("}");
    EmitLine("else");
    BreakStack.push_back(end);
    CompileBody();
    BreakStack.pop_back();
    EmitLine("addc " + r + " " + r + " 1;");
    EmitLine("goto " + top + ";");
    EmitLine("label " + end + ";");
}

void TCodeGen::CompileBreak() {
    compiler_.NextToken();
    if (BreakStack.empty())
        compiler_.Error("break is not allowed here");
    else
        EmitLine("goto " + BreakStack.back() + ";");
    compiler_.Expect(";");
}

void TCodeGen::CompileIncDec(bool increment) {
    compiler_.NextToken();
    if (!compiler_.Expect("(")) return;
    const std::string name = compiler_.NextToken();
    const int index = compiler_.TokenKind() == tkIdentifier ? compiler_.Symbols().Find(name) : -1;
    if (index < 0) {
        compiler_.Expected("<Identifier>", name);
        return;
    }
    const TSymbol target = compiler_.Symbols().Get(index);
    // Every check reports; the statement is compiled on when not halting.
    if (IsConstantKind(target.Kind)) compiler_.ErrorNoSkip("cannot modify a constant");
    if (target.Kind == skStackVar) compiler_.ErrorNoSkip("FATAL: trying to access the stack (" + name + ")");
    if (target.Kind == skGameFunction || target.Kind == skUserFunction)
        compiler_.ErrorNoSkip("I don't think you want to assign a value to a function?");
    if (!IsRegisterKind(target.Kind) && !IsGlobalKind(target.Kind))
        compiler_.ErrorNoSkip("cannot modify a symbol of this type");

    compiler_.PeekToken();
    if (compiler_.TokenKind() == tkComma) {
        compiler_.NextToken();
        CompileExpression();
    } else {
        EmitLine("movc v8 1;");
    }
    const std::string op = increment ? "addv " : "subv ";
    if (IsRegisterKind(target.Kind)) {
        const std::string r = Reg(target.Register);
        EmitLine(op + r + " " + r + " v8;");
    } else if (IsGlobalKind(target.Kind)) {
        EmitLine(op + target.Text + " " + target.Text + " v8;");
    }
    compiler_.Expect(")");
}

} // namespace velkor
