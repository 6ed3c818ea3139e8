// Declarations into the shared symbol table. The table fills the records; the messages, the errors and the
// globals and CRC lists belong to the compiler whose text declares them, include children included.
#include "codegen/codegen.h"
#include "compiler/compiler.h"
#include "compiler/symbol_table.h"
#include "iff/checksum.h"
#include "platform/numbers.h"

namespace velkor {

namespace {

std::string CrcOf(const std::string& text) {
    return IntToHex(NameHash(text), 8);
}

} // namespace

TSymbolSite TCompiler::Site() const {
    return {FileNumber, Line(), codegen_->CurrentFunction};
}

void TCompiler::AddSymbol(TSymbol symbol) {
    symbol.Name = ShortString(symbol.Name);
    if (symbols_->Find(symbol.Name) >= 0) Error("identifier \"" + symbol.Name + "\" redeclared");
    symbols_->Add(std::move(symbol));
}

TSymbol TCompiler::AddVariable(const std::string& name, std::int32_t kind, std::int32_t initialValue) {
    TSymbol s = symbols_->MakeVariable(name, kind, initialValue, Site());
    switch (kind) {
    case skGlobalVar:
        if (Wants(2)) Output(2, "adding global variable: " + name + ", CRC: " + CrcOf(name));
        data_->Globals.push_back(name);
        data_->CrcNames.push_back(name);
        break;
    case skLocalVar:
        if (Wants(2))
            Output(2, "adding local variable: " + name + " [reg: " + std::to_string(s.Register) + "]");
        if (s.Register >= 32) Error("Expression too complex");
        break;
    case skExternalVar:
        Output(1, "adding external variable: " + name + ", CRC: " + CrcOf(name));
        Output(1, "   don't forget to declare it in series!");
        break;
    case skStackVar:
        if (Wants(2))
            Output(2, "adding stack variable: " + name + " [reg: " + std::to_string(s.Register) + "]");
        if (s.Register >= 32) Error("Expression too complex");
        break;
    case skStaticVar:
        Output(2, "adding static variable: Symbol:" + name + ", Name: " + s.Name + ", CRC: " + CrcOf(s.Text));
        data_->Globals.push_back(s.Text);
        data_->CrcNames.push_back(s.Text);
        break;
    default:
        Error("FATAL - variable \"" + name + "\" has unknown scope (" + std::to_string(kind) +
              "). Don't know what do do with it. - This should never happen!");
        break;
    }
    AddSymbol(s);
    return s;
}

TSymbol TCompiler::AddPassVariable(const std::string& name) {
    TSymbol s = symbols_->MakePassVariable(name, Site());
    // The message counts local variables, not parameters; the stored register is right.
    if (Wants(3))
        Output(3, "adding pass variable: " + name +
                      " [reg: " + std::to_string(16 + symbols_->CountOfKind(skLocalVar)) + "]");
    AddSymbol(s);
    return s;
}

void TCompiler::AddConstant(const std::string& name, const std::string& value, std::int32_t kind) {
    TSymbol s = symbols_->MakeConstant(name, value, kind, Site());
    if (kind == skGlobalConst)
        Output(3, "adding global const " + s.Name + " with value " + value);
    else if (kind == skLocalConst)
        Output(2, "adding local const " + s.Name + " with value " + value);
    else if (kind == skEnum)
        Output(3, "adding global enum " + s.Name + " with value " + value);
    AddSymbol(std::move(s));
}

} // namespace velkor
