#include "compiler/symbol_queries.h"

#include "compiler/compiler.h"
#include "platform/path_resolver.h"
#include "platform/strings.h"

#include <algorithm>
#include <unordered_set>

namespace velkor {
namespace {

bool IsIdentChar(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

std::size_t SkipBlanks(std::string_view text, std::size_t at) {
    while (at < text.size() && (text[at] == ' ' || text[at] == '\t' || text[at] == '\r' || text[at] == '\n'))
        ++at;
    return at;
}

// How far past the declaration line a declaration is looked for: enough for a header split over lines,
// little enough that a file which changed since the compile is not read to its end.
constexpr std::size_t kDeclarationWindow = 4096;

// Offset of the start of line `line` (from 1), or npos when the text is shorter.
std::size_t LineStart(std::string_view text, int line) {
    std::size_t at = 0;
    for (int n = 1; n < line; ++n) {
        const std::size_t next = text.find_first_of("\r\n", at);
        if (next == std::string_view::npos) return std::string_view::npos;
        at = next + 1;
        if (text[next] == '\r' && at < text.size() && text[at] == '\n') ++at;
    }
    return at;
}

} // namespace

bool IsFunctionKind(std::int32_t kind) {
    return kind == skGameFunction || kind == skUserFunction;
}

int SymbolMaskBit(std::int32_t kind) {
    switch (kind) {
    case skGameFunction:
    case skUserFunction: return smFunctions;
    case skObject:
    case skNumber: return smObjects;
    // Enumeration values are constants to the compiler, but no list shows them: the lists keep to the
    // declared "const" kinds.
    case skGlobalConst:
    case skLocalConst: return smConstants;
    case skGlobalVar:
    case skLocalVar:
    case skPassVar:
    case skExternalVar:
    case skStackVar:
    case skStaticVar: return smVariables;
    default: return 0;
    }
}

std::string SymbolTypeCaption(std::int32_t kind) {
    switch (SymbolMaskBit(kind)) {
    case smFunctions: return "Function";
    case smObjects: return kind == skObject ? "Object" : "Objective";
    case smConstants: return "Constant";
    case smVariables: return "Variable";
    default: return {};
    }
}

std::string SymbolDisplayName(const TSymbol& symbol) {
    switch (symbol.Kind) {
    case skGlobalVar:
    case skLocalVar:
    case skPassVar:
    case skGameFunction:
    case skUserFunction:
    case skObject:
    case skExternalVar:
    case skStackVar: return symbol.Text.empty() ? symbol.Name : symbol.Text;
    case skNumber: return LowerCase(symbol.Name);
    default: return symbol.Name;
    }
}

std::vector<int> FilterSymbols(const TSymbolTable& table, int mask, std::string_view search, bool hideWcp) {
    const std::string wanted = UpperCase(search);
    std::vector<int> rows;
    for (int i = 0; i < table.Count(); ++i) {
        const TSymbol& symbol = table.Get(i);
        if ((SymbolMaskBit(symbol.Kind) & mask) == 0) continue;
        if (hideWcp && symbol.Kind == skGameFunction) continue;
        if (!wanted.empty() && UpperCase(symbol.Name).find(wanted) == std::string::npos) continue;
        rows.push_back(i);
    }
    return rows;
}

std::vector<int> SymbolsWithPrefix(const TSymbolTable& table, std::string_view prefix) {
    const std::string wanted = UpperCase(prefix);
    std::vector<int> found;
    std::unordered_set<std::string> seen;
    for (int i = 0; i < table.Count(); ++i) {
        const TSymbol& symbol = table.Get(i);
        const std::string name = UpperCase(symbol.Name);
        if (name.compare(0, wanted.size(), wanted) != 0) continue;
        if (seen.insert(name).second) found.push_back(i);
    }
    return found;
}

std::optional<std::vector<std::string>> DeclaredParameters(std::string_view source, int line,
                                                           std::string_view name) {
    if (line < 1 || name.empty()) return std::nullopt;
    const std::size_t start = LineStart(source, line);
    if (start == std::string_view::npos) return std::nullopt;
    const std::string_view window = source.substr(start, kDeclarationWindow);
    std::size_t pos = 0;
    while (pos < window.size()) {
        const std::size_t hit = FindNoCase(window.substr(pos), "function");
        if (hit == std::string_view::npos) return std::nullopt;
        std::size_t p = pos + hit + 8;
        const bool wordStart = pos + hit == 0 || !IsIdentChar(window[pos + hit - 1]);
        pos = p;
        if (!wordStart || (p < window.size() && IsIdentChar(window[p]))) continue;
        p = SkipBlanks(window, p);
        const std::size_t nameStart = p;
        while (p < window.size() && IsIdentChar(window[p])) ++p;
        if (!SameText(window.substr(nameStart, p - nameStart), name)) continue;
        p = SkipBlanks(window, p);
        std::vector<std::string> names;
        if (p >= window.size() || window[p] != '(') return names;
        const std::size_t close = window.find(')', p);
        if (close == std::string_view::npos) return std::nullopt;
        std::string_view list = window.substr(p + 1, close - p - 1);
        while (!list.empty()) {
            const std::size_t comma = list.find(',');
            const std::string_view part = Trim(list.substr(0, comma));
            if (!part.empty()) names.emplace_back(part);
            if (comma == std::string_view::npos) break;
            list.remove_prefix(comma + 1);
        }
        return names;
    }
    return std::nullopt;
}

std::optional<TCallAtCaret> CallAtCaret(std::string_view lineText, int column) {
    struct Open {
        std::size_t At; // offset of the "("
        int Commas;     // commas seen at its level
    };
    std::vector<Open> open;
    const std::size_t end = std::min(lineText.size(), static_cast<std::size_t>(std::max(column, 0)));
    bool inString = false;
    for (std::size_t i = 0; i < end; ++i) {
        const char c = lineText[i];
        if (inString) {
            if (c == '"') inString = false;
            continue;
        }
        if (c == '"') {
            inString = true;
        } else if (c == '/' && i + 1 < end && lineText[i + 1] == '/') {
            return std::nullopt;
        } else if (c == '(') {
            open.push_back({i, 0});
        } else if (c == ')') {
            if (!open.empty()) open.pop_back();
        } else if (c == ',' && !open.empty()) {
            ++open.back().Commas;
        }
    }
    while (!open.empty()) {
        std::size_t p = open.back().At;
        while (p > 0 && (lineText[p - 1] == ' ' || lineText[p - 1] == '\t')) --p;
        std::size_t nameEnd = p;
        while (p > 0 && IsIdentChar(lineText[p - 1])) --p;
        if (nameEnd > p && !(lineText[p] >= '0' && lineText[p] <= '9'))
            return TCallAtCaret{std::string(lineText.substr(p, nameEnd - p)), open.back().Commas};
        // A bracket of an expression: the call, if any, is further out.
        open.pop_back();
    }
    return std::nullopt;
}

std::string ParameterHintText(const TSymbol& function, const std::optional<std::vector<std::string>>& names) {
    std::string text = SymbolDisplayName(function) + "(";
    const int count = std::max(function.Register, 0);
    for (int i = 0; i < count; ++i) {
        if (i > 0) text += ", ";
        if (names && static_cast<std::size_t>(i) < names->size())
            text += (*names)[static_cast<std::size_t>(i)];
        else
            text += "p" + std::to_string(i + 1);
    }
    return text + ")";
}

std::string SymbolHintText(const TSymbol& symbol) {
    const bool constant = SymbolMaskBit(symbol.Kind) == smConstants || symbol.Kind == skEnum;
    std::string type = symbol.Kind == skEnum ? "Constant" : SymbolTypeCaption(symbol.Kind);
    if (type.empty()) type = symbol.Kind == skStringTable ? "Strings" : "Symbol";
    std::string text = type + " " + SymbolDisplayName(symbol);
    if (IsFunctionKind(symbol.Kind))
        text +=
            " (" + std::to_string(symbol.Register) + (symbol.Register == 1 ? " parameter)" : " parameters)");
    if (constant) text += " = " + symbol.Text;
    const std::string file = FileNameOf(symbol.FileNumber);
    if (!file.empty()) text += " - " + FileNamePart(file) + " (" + std::to_string(symbol.Line) + ")";
    return text;
}

} // namespace velkor
