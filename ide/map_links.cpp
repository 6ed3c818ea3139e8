#include "ide/map_links.h"

#include "iff/checksum.h"
#include "platform/strings.h"

namespace velkor {

namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

std::string_view Trimmed(std::string_view text) {
    while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
    return text;
}

} // namespace

int ObjectFormLine(std::string_view text, int ordinal) {
    int line = 0;
    int seen = 0;
    std::size_t start = 0;
    while (start <= text.size()) {
        std::size_t end = text.find('\n', start);
        if (end == std::string_view::npos) end = text.size();
        std::string_view content = Trimmed(text.substr(start, end - start));
        if (content.size() >= 4 && SameText(content.substr(0, 4), "FORM")) {
            content = Trimmed(content.substr(4));
            if (content.substr(0, 6) == "\"OBJ_\"" && seen++ == ordinal) return line;
        }
        if (end == text.size()) break;
        start = end + 1;
        ++line;
    }
    return -1;
}

std::string GameNameOfDeclaration(std::string_view line) {
    const std::size_t open = line.find('(');
    if (open == std::string_view::npos) return {};
    const std::size_t close = line.find(')', open);
    if (close == std::string_view::npos) return {};
    std::string_view name = Trimmed(line.substr(open + 1, close - open - 1));
    if (name.size() >= 2 && (name.front() == '"' || name.front() == '\'') && name.back() == name.front())
        name = name.substr(1, name.size() - 2);
    return std::string(name);
}

std::optional<TSymbol> ObjectDeclaration(const TSymbolTable& symbols, const TMapObject& object,
                                         const std::function<std::string(int, int)>& lineOf) {
    std::optional<TSymbol> byName;
    for (int i = 0; i < symbols.Count(); ++i) {
        const TSymbol& symbol = symbols.Get(i);
        if (symbol.Kind != skObject || symbol.Value == 0) continue;
        const std::string gameName = GameNameOfDeclaration(lineOf(symbol.FileNumber, symbol.Line));
        if (!gameName.empty()) {
            if (NameHash(gameName) == object.NameHash) return symbol;
        } else if (!byName && object.NameKnown && SameText(symbol.Text, object.Name)) {
            byName = symbol;
        }
    }
    return byName;
}

} // namespace velkor
