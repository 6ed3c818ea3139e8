// Number conversion and the value reader shared by constants, header commands and objectives.
#include "compiler/compiler.h"
#include "compiler/symbol_table.h"
#include "platform/numbers.h"
#include "platform/strings.h"
#include "scanner/scanner.h"

namespace velkor {

std::optional<std::int32_t> TCompiler::ConvertNumber(std::string_view text) {
    if (!text.empty() && text[0] == '%') {
        const std::string digits(text.substr(1));
        if (digits.size() > 31) {
            Error(digits + " doesn't fit into a long");
            return std::nullopt;
        }
        std::int64_t value = 0;
        for (char c : digits) {
            if (c != '0' && c != '1') {
                Error(std::string(1, c) + " in binary constant ?!? What are you smoking?");
                return std::nullopt;
            }
            value = value * 2 + (c - '0');
        }
        // The original's conversion keeps binary constants below 2^30.
        if (value >= (std::int64_t{1} << 30)) throw ERangeError();
        return static_cast<std::int32_t>(value);
    }
    if (auto v = StrToInt(text)) return v;
    Error("\"" + std::string(text) + "\" is not a valid integer value");
    return std::nullopt;
}

std::string TCompiler::ReadValue(int kind) {
    std::string text = NextToken();
    if (text == "+" || text == "-" || SameText(text, "OR")) text += NextToken();
    // A string's text is looked up like any other: a text naming a symbol stands for its value text.
    const int found = symbols_->Find(text);
    if (found >= 0) {
        const TSymbol symbol = symbols_->Get(found);
        if (symbol.Kind == skStringTable) {
            Expect("[");
            std::string wanted = NextToken();
            const int errors = ErrorCount;
            text = std::to_string(StringNumber(symbol, wanted));
            // A failed lookup has skipped the rest of the reference already.
            if (ErrorCount == errors) Expect("]");
        } else {
            text = symbol.Text;
        }
    }
    if (kind == 0) {
        if (auto v = ConvertNumber(text)) return std::to_string(*v);
        return text;
    }
    if (kind == 1) {
        if (!StrToFloat(text)) Error("\"" + text + "\" is not a valid floating point value");
        return text;
    }
    // A string constant keeps its quotes for the listing; as a text value it is the bare string.
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"') return text.substr(1, text.size() - 2);
    return text;
}

} // namespace velkor
