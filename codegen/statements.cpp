// Statements of a function body. Control flow becomes "if v8" / "else" with braced blocks; loops jump to
// labels named after the source line where their condition starts.
#include "codegen/codegen.h"

#include "codegen/decimal_text.h"
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

} // namespace

std::string TCodeGen::LoopLabel(char letter) const {
    const DecimalText line(compiler_.Line());
    const std::string_view number = line;
    std::string label = "\"";
    if (number.size() < 3) label.append(3 - number.size(), '0');
    label += number;
    label += letter;
    label += '"';
    return label;
}

void TCodeGen::CompileStatement() {
    NestingGuard guard(*this);
    const std::string_view token = compiler_.PeekView();
    const std::int32_t kind = compiler_.TokenKind();
    if (kind == tkSemicolon) {
        compiler_.NextView();
        compiler_.Output(2, "NULL statement");
        return;
    }
    if (kind == tkIdentifier) {
        if (SameText(token, "IF")) return CompileIf();
        if (SameText(token, "WHILE")) return CompileWhile();
        if (SameText(token, "UNTIL")) return CompileUntil();
        if (SameText(token, "FOR")) return CompileFor();
        if (SameText(token, "INC")) return CompileIncDec(true);
        if (SameText(token, "DEC")) return CompileIncDec(false);
        if (SameText(token, "BREAK")) return CompileBreak();
        if (SameText(token, "RESULT") && compiler_.Symbols().Find("RESULT") < 0) {
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
    const std::int32_t symbolKind = compiler_.Symbols().Get(index).Kind;
    if (symbolKind == skUserFunction || symbolKind == skGameFunction) {
        // A copy: compiling the call may add symbols and move the table's records.
        const TSymbol function = compiler_.Symbols().Get(index);
        compiler_.NextView();
        if (symbolKind == skUserFunction)
            CompileUserCall(function);
        else
            CompileGameCall(function);
    } else if (IsConstantKind(symbolKind)) {
        compiler_.Error("cannot assign to constant");
    } else if (IsRegisterKind(symbolKind) || IsGlobalKind(symbolKind)) {
        CompileAssignment();
    } else {
        compiler_.Error("FATAL - symbol \"" + std::string(token) + "\" has unknown symbol type (" +
                        std::to_string(symbolKind) +
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
        const std::string_view next = compiler_.PeekView();
        if (compiler_.TokenKind() == tkEnd) break;
        const auto before = compiler_.Scanner().Position();
        if (next == "#" && compiler_.HandleDirective()) continue;
        if (outermost) {
            CompileOutermostStatement();
        } else {
            CompileStatement();
        }
        compiler_.PeekView();
        if (compiler_.TokenKind() != tkEnd) compiler_.Expect(";");
        // Recovery never stands still: a token that nothing consumed is dropped.
        if (compiler_.Scanner().Position() == before && !compiler_.AtEnd()) compiler_.NextView();
    }
    compiler_.Expect("end");
    EmitLine("}");
}

void TCodeGen::CompileBody() {
    compiler_.PeekView();
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
    const std::string_view name = compiler_.NextView();
    const int index = compiler_.Symbols().Find(name);
    if (index < 0) {
        compiler_.Error("couln't find symbol \"" + std::string(name) + "\"");
        return;
    }
    // The target's fields, not a reference: compiling the expression may add symbols and move the records.
    const TSymbol& found = compiler_.Symbols().Get(index);
    const std::int32_t kind = found.Kind;
    const std::int32_t r = found.Register;
    const std::string text = IsGlobalKind(kind) ? found.Text : std::string();
    if (!compiler_.Expect(":=")) return;
    CompileExpression();
    if (IsRegisterKind(kind) || kind == skStackVar) {
        EmitJoined({"movv ", RegisterName(r), " v8;"});
    } else if (IsGlobalKind(kind)) {
        EmitJoined({"movv ", text, " v8;"});
    } else {
        compiler_.Error("FATAL - symbol \"" + std::string(name) + "\" has unknown symbol type (" +
                        std::to_string(kind) + "). Don't know how to store it. - This should never happen!");
    }
}

void TCodeGen::CompileIf() {
    compiler_.NextView();
    if (!compiler_.Expect("(")) return;
    CompileExpression();
    if (!compiler_.Expect(")") || !compiler_.Expect("then")) return;
    EmitLine("if v8");
    CompileBody();
    const std::string_view next = compiler_.PeekView();
    if (compiler_.TokenKind() == tkIdentifier && SameText(next, "ELSE")) {
        compiler_.NextView();
        EmitLine("else");
        CompileBody();
    }
}

void TCodeGen::CompileWhile() {
    compiler_.NextView();
    if (!compiler_.Expect("(")) return;
    const std::string top = LoopLabel('w');
    const std::string end = LoopLabel('e');
    EmitJoined({"label ", top, ";"});
    CompileExpression();
    if (!compiler_.Expect(")") || !compiler_.Expect("do")) return;
    EmitLine("if v8");
    BreakStack.push_back(end);
    CompileBody();
    BreakStack.pop_back();
    EmitLine("else");
    EmitLine("{");
    EmitJoined({"goto ", end, ";"});
    EmitLine("}");
    EmitJoined({"goto ", top, ";"});
    EmitJoined({"label ", end, ";"});
}

void TCodeGen::CompileUntil() {
    compiler_.NextView();
    if (!compiler_.Expect("(")) return;
    const std::string top = LoopLabel('w');
    const std::string end = LoopLabel('e');
    EmitJoined({"label ", top, ";"});
    CompileExpression();
    if (!compiler_.Expect(")") || !compiler_.Expect("do")) return;
    EmitLine("if v8");
    EmitLine("{");
    EmitJoined({"goto ", end, ";"});
    EmitLine("}");
    EmitLine("else");
    BreakStack.push_back(end);
    CompileBody();
    BreakStack.pop_back();
    EmitJoined({"goto ", top, ";"});
    EmitJoined({"label ", end, ";"});
}

void TCodeGen::CompileFor() {
    compiler_.NextView();
    const std::string_view name = compiler_.PeekView();
    const int index = compiler_.TokenKind() == tkIdentifier ? compiler_.Symbols().Find(name) : -1;
    if (index < 0) {
        compiler_.Expected("<symbol>", name);
        return;
    }
    const std::int32_t counter = compiler_.Symbols().Get(index).Register;
    if (!IsRegisterKind(compiler_.Symbols().Get(index).Kind)) {
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
    const DecimalText r = RegisterName(counter);
    EmitJoined({"label ", top, ";"});
    EmitJoined({"opv ", r, " 4 ", RegisterName(slot), ";"});
    EmitLine("if v1");
    EmitLine("{");
    EmitJoined({"goto ", end, ";"});
    EmitLine("}");
    EmitLine("else");
    BreakStack.push_back(end);
    CompileBody();
    BreakStack.pop_back();
    EmitJoined({"addc ", r, " ", r, " 1;"});
    EmitJoined({"goto ", top, ";"});
    EmitJoined({"label ", end, ";"});
}

void TCodeGen::CompileBreak() {
    compiler_.NextView();
    if (BreakStack.empty())
        compiler_.Error("break is not allowed here");
    else
        EmitJoined({"goto ", BreakStack.back(), ";"});
    compiler_.Expect(";");
}

void TCodeGen::CompileIncDec(bool increment) {
    compiler_.NextView();
    if (!compiler_.Expect("(")) return;
    const std::string_view name = compiler_.NextView();
    const int index = compiler_.TokenKind() == tkIdentifier ? compiler_.Symbols().Find(name) : -1;
    if (index < 0) {
        compiler_.Expected("<Identifier>", name);
        return;
    }
    // A copy: compiling the expression may add symbols and move the table's records.
    const TSymbol target = compiler_.Symbols().Get(index);
    // Every check reports; the statement is compiled on when not halting.
    if (IsConstantKind(target.Kind)) compiler_.ErrorNoSkip("cannot modify a constant");
    if (target.Kind == skStackVar)
        compiler_.ErrorNoSkip("FATAL: trying to access the stack (" + std::string(name) + ")");
    if (target.Kind == skGameFunction || target.Kind == skUserFunction)
        compiler_.ErrorNoSkip("I don't think you want to assign a value to a function?");
    if (!IsRegisterKind(target.Kind) && !IsGlobalKind(target.Kind))
        compiler_.ErrorNoSkip("cannot modify a symbol of this type");

    compiler_.PeekView();
    if (compiler_.TokenKind() == tkComma) {
        compiler_.NextView();
        CompileExpression();
    } else {
        EmitLine("movc v8 1;");
    }
    const std::string_view op = increment ? "addv " : "subv ";
    if (IsRegisterKind(target.Kind)) {
        const DecimalText r = RegisterName(target.Register);
        EmitJoined({op, r, " ", r, " v8;"});
    } else if (IsGlobalKind(target.Kind)) {
        EmitJoined({op, target.Text, " ", target.Text, " v8;"});
    }
    compiler_.Expect(")");
}

} // namespace velkor
