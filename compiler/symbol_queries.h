// What code assistance and the symbol lists ask of a symbol table: which rows a list shows, the text a
// symbol is inserted as, prefix lookup, and the parameters and call around the caret for parameter hints.
// Plain text in, plain text out, so the rules are tested without windows.
#pragma once

#include "compiler/symbol_table.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velkor {

// Kind mask bits of the symbol lists.
enum TSymbolMask : int {
    smConstants = 1, // global and local constants
    smVariables = 2, // every variable kind
    smObjects = 4,   // objects and objectives
    smFunctions = 8, // script and game functions
    smAll = 15,      // the symbol browser
};

// The list bit a kind belongs to, or 0 for kinds no list shows (string tables, enumeration values).
int SymbolMaskBit(std::int32_t kind);
// The "Type" column: "Function", "Object", "Objective", "Constant", "Variable", or empty.
std::string SymbolTypeCaption(std::int32_t kind);
// The name a row shows and Insert types: the name as written where the record keeps it, the upper-cased
// name where the text field holds something else (a constant's value), an objective's name in lower case.
std::string SymbolDisplayName(const TSymbol& symbol);
bool IsFunctionKind(std::int32_t kind);

// Positions of the rows a list shows, in table order: the kind selected by `mask` (game functions left
// out when `hideWcp`), and `search` (any case) somewhere in the upper-cased name when it is not empty.
std::vector<int> FilterSymbols(const TSymbolTable& table, int mask, std::string_view search, bool hideWcp);

// Positions of the symbols whose name starts with `prefix` (any case); a name declared twice counts once.
std::vector<int> SymbolsWithPrefix(const TSymbolTable& table, std::string_view prefix);

// The parameter list written in a function's declaration: looks for "function <name>" at or after line
// `line` (from 1) of `source` and returns the names between its parentheses, e.g. {"ship", "nav"}.
// Nothing when the declaration is not there (the file changed since the compile).
std::optional<std::vector<std::string>> DeclaredParameters(std::string_view source, int line,
                                                           std::string_view name);

// The call the caret is in: the identifier before the innermost unclosed "(" left of `column` on the
// line, and the number of the argument the caret is in (from 0). Strings and nested brackets are skipped.
struct TCallAtCaret {
    std::string Name; // the function's name as written
    int Argument = 0; // 0 for the first argument
};
std::optional<TCallAtCaret> CallAtCaret(std::string_view lineText, int column);

// The parameter hint's text: "Name(a, b)", with "p1, p2, ..." standing in for unknown names.
std::string ParameterHintText(const TSymbol& function, const std::optional<std::vector<std::string>>& names);

// The mouse hint of a symbol: "<Type or kind> <name> - <file part> (<line>)", plus " = <value>" for
// constants.
std::string SymbolHintText(const TSymbol& symbol);

} // namespace velkor
