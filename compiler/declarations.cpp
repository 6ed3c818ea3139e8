// The declaration loop of a unit and the variable, constant and enumeration declarations.
#include "codegen/codegen.h"
#include "compiler/compiler.h"
#include "compiler/symbol_table.h"
#include "platform/numbers.h"
#include "platform/strings.h"
#include "scanner/scanner.h"

namespace velkor {

void TCompiler::DeclarationLoop() {
    while (!AtEnd()) {
        const std::int32_t start = scanner_->Position();
        DeclareOne();
        // A handler that gave up without reading anything would be handed the same token forever.
        if (scanner_->Position() == start && !AtEnd()) NextToken();
    }
}

void TCompiler::DeclareOne() {
    const std::string_view token = PeekView();
    switch (TokenKind()) {
    case tkSemicolon: NextView(); break;
    case tkVar:
        NextToken();
        if (UnitKind == ukSector || UnitKind == ukProject)
            ErrorNoSkip("global vars not allowed in PROJECT and SECTOR");
        DeclareVariables(skGlobalVar);
        break;
    case tkExternal:
        NextToken();
        if (UnitKind == ukSector || UnitKind == ukProject)
            ErrorNoSkip("external vars not allowed in PROJECT and SECTOR");
        DeclareVariables(skExternalVar);
        break;
    case tkStatic:
        NextToken();
        ErrorNoSkip("Only local variables can be static!");
        DeclareVariables(skGlobalVar);
        break;
    case tkConst:
        NextToken();
        DeclareConstants(skGlobalConst);
        break;
    case tkFunction:
        if (UnitKind == ukSector) ErrorNoSkip("function not allowed in SECTOR");
        codegen_->CompileFunctionDeclaration();
        break;
    case tkObject: codegen_->CompileObject(); break;
    case tkObjective:
        if (UnitKind == ukSector || UnitKind == ukSeries || UnitKind == ukProject)
            ErrorNoSkip("objectives not allowed in PROJET, SECTOR and SERIES");
        codegen_->CompileObjective();
        break;
    case tkProperty:
        NextToken();
        Error("Property not supported!");
        break;
    case tkInclude:
        NextToken();
        IncludeSourceFiles();
        break;
    default:
        if (token == "#") {
            if (!HandleDirective()) HandleCommand();
        } else if (TokenKind() == tkIdentifier && SameText(token, "ENUM")) {
            NextToken();
            DeclareEnums();
        } else {
            NextToken();
            Expected("<Declaration>", token);
        }
        break;
    }
}

void TCompiler::DeclareVariables(std::int32_t kind) {
    std::string separator;
    do {
        std::int32_t varKind = kind;
        std::string name = NextToken();
        if (TokenKind() == tkStatic) {
            if (kind == skLocalVar || kind == skStaticVar)
                varKind = skStaticVar;
            else
                ErrorNoSkip("Only local variables can be static!");
            name = NextToken();
        }
        if (TokenKind() != tkIdentifier) {
            Expected("<Identifier>", name);
            return;
        }
        std::int32_t value = varKind == skLocalVar ? kNoValue : 0;
        PeekToken();
        if (TokenKind() == tkOperator && PeekToken() == "=") {
            NextToken();
            if (varKind == skExternalVar) ErrorNoSkip("external variables cannot be initialized");
            if (varKind == skStaticVar) ErrorNoSkip("static variables are always initialized to 0");
            // The value reader has converted the number, or reported why it could not.
            if (auto v = StrToInt(ReadValue(0))) value = *v;
        }
        AddVariable(name, varKind, value);
        separator = NextToken();
    } while (TokenKind() == tkComma);
    if (TokenKind() != tkSemicolon) Expected(";", separator);
}

void TCompiler::DeclareConstants(std::int32_t kind) {
    std::string separator;
    do {
        std::string name = NextToken();
        if (TokenKind() != tkIdentifier) {
            Expected("<Identifier>", name);
            return;
        }
        if (!Expect("=")) return;
        std::string value = NextToken();
        if (TokenKind() == tkString) {
            value = "\"" + value + "\"";
        } else if (value == "+" || value == "-") {
            value += NextToken();
        } else if (TokenKind() == tkIdentifier) {
            // A constant name stands for its value text, one level deep.
            int found = symbols_->Find(value);
            if (found >= 0) value = symbols_->Get(found).Text;
        }
        AddConstant(name, value, kind);
        separator = NextToken();
    } while (TokenKind() == tkComma);
    if (TokenKind() != tkSemicolon) Expected(";", separator);
}

void TCompiler::DeclareEnums() {
    std::int32_t next = 0;
    std::string separator;
    do {
        std::string name = NextToken();
        if (TokenKind() != tkIdentifier) {
            Expected("<Identifier>", name);
            return;
        }
        PeekToken();
        if (TokenKind() == tkOperator && PeekToken() == "=") {
            NextToken();
            if (auto v = StrToInt(ReadValue(0))) next = *v;
        }
        AddConstant(name, std::to_string(next), skEnum);
        ++next;
        separator = NextToken();
    } while (TokenKind() == tkComma);
    if (TokenKind() != tkSemicolon) Expected(";", separator);
}

} // namespace velkor
