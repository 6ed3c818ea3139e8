// From an object on the map back to the text it came from: its declaration in a compiled unit, or its
// FORM "OBJ_" line in a page of textual IFF (a decoded file).
#pragma once

#include "compiler/symbol_table.h"
#include "iff/map_objects.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace velkor {

// The line (from 0) of the ordinal-th FORM "OBJ_" of the text, counted from 0 in text order; -1 when the
// text has fewer.
int ObjectFormLine(std::string_view text, int ordinal);

// The object's declaration among the symbols of a compile: the implemented object whose game name, read
// from its declaration line `object Name (GameName) ...`, hashes to the object's name hash; the object
// named like the game name when that line cannot be read. `lineOf(fileNumber, line)` gives a line of a
// declaring file (line from 1), empty when it cannot.
std::optional<TSymbol> ObjectDeclaration(const TSymbolTable& symbols, const TMapObject& object,
                                         const std::function<std::string(int, int)>& lineOf);

// The game name of an object declaration line: what stands between its first "(" and the ")" after it,
// without blanks and quotes; empty when the line has no such part.
std::string GameNameOfDeclaration(std::string_view line);

} // namespace velkor
