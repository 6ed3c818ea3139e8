// The requests that read a document's symbols: completion, hover, signature help, definition, symbols,
// references and semantic tokens. Each answers from the document's latest compile and, for names the
// text being typed has lost, from its last compile without errors.
#include "lsp/json_params.h"
#include "lsp/language_server.h"
#include "lsp/source_words.h"

#include "compiler/symbol_queries.h"
#include "platform/strings.h"
#include "scanner/scanner.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <unordered_set>

namespace velkor::lsp {

using nlohmann::json;

namespace {

// LSP CompletionItemKind and SymbolKind values.
enum {
    ciFunction = 3,
    ciVariable = 6,
    ciClass = 7,
    ciModule = 9,
    ciKeyword = 14,
    ciText = 1,
    ciEnumMember = 20,
    ciConstant = 21,
    ciEvent = 23
};
enum {
    lsModule = 2,
    lsFunction = 12,
    lsVariable = 13,
    lsConstant = 14,
    lsObject = 19,
    lsEnumMember = 22,
    lsEvent = 24
};

int CompletionKind(std::int32_t kind) {
    switch (kind) {
    case skGameFunction:
    case skUserFunction: return ciFunction;
    case skGlobalConst:
    case skLocalConst: return ciConstant;
    case skObject: return ciClass;
    case skNumber: return ciEvent;
    case skEnum: return ciEnumMember;
    case skStringTable: return ciModule;
    default: return ciVariable;
    }
}

// The SymbolKind of a document symbol; 0 for kinds the outline leaves out.
int OutlineKind(std::int32_t kind) {
    switch (kind) {
    case skGameFunction:
    case skUserFunction: return lsFunction;
    case skObject: return lsObject;
    case skNumber: return lsEvent;
    case skGlobalConst: return lsConstant;
    case skGlobalVar:
    case skExternalVar: return lsVariable;
    case skEnum: return lsEnumMember;
    case skStringTable: return lsModule;
    default: return 0;
    }
}

std::string Detail(const TSymbol& s) {
    std::string caption = SymbolTypeCaption(s.Kind);
    if (s.Kind == skGameFunction) caption = "Game function";
    if (IsFunctionKind(s.Kind))
        caption += ", " + std::to_string(s.Register) + (s.Register == 1 ? " parameter" : " parameters");
    if ((s.Kind == skGlobalConst || s.Kind == skLocalConst) && !s.Text.empty()) caption += " = " + s.Text;
    if (s.Kind == skStringTable) caption = "String table " + s.Text;
    return caption;
}

} // namespace

std::optional<TSymbol> TLanguageServer::FindSymbol(const TOpenDocument& doc, std::string_view name,
                                                   const TUnitAnalysis** from) const {
    for (const auto* analysis : {doc.Analysis.get(), doc.LastGood.get()}) {
        if (!analysis) continue;
        const int index = analysis->Symbols->Find(name);
        if (index < 0) continue;
        if (from) *from = analysis;
        return analysis->Symbols->Get(index);
    }
    return std::nullopt;
}

json TLanguageServer::RangeOnLine(const std::filesystem::path& file, int line, std::size_t column,
                                  std::size_t length) {
    std::string text;
    if (const TOpenDocument* doc = DocumentOfFile(file))
        text = std::string(doc->Text->LineText(line));
    else
        text = std::string(TTextDocument(FileText(file), utf16_).LineText(line));
    return {{"start", {{"line", line}, {"character", CharacterOf(text, column, utf16_)}}},
            {"end", {{"line", line}, {"character", CharacterOf(text, column + length, utf16_)}}}};
}

std::optional<json> TLanguageServer::DeclarationLocation(const TUnitAnalysis& analysis, const TSymbol& symbol,
                                                         std::string* written) {
    const std::filesystem::path file = analysis.FileOf(symbol);
    if (file.empty() || symbol.Line < 1) return std::nullopt;
    const int line = symbol.Line - 1;
    const std::string lineText(TTextDocument(FileText(file), utf16_).LineText(line));
    std::size_t column = FindWord(lineText, symbol.Name);
    std::size_t length = symbol.Name.size();
    if (column == std::string_view::npos) column = length = 0;
    if (written) *written = length ? lineText.substr(column, length) : SymbolDisplayName(symbol);
    return json{{"uri", UriOfPath(file)}, {"range", RangeOnLine(file, line, column, length)}};
}

json TLanguageServer::Completion(const json& params) {
    TOpenDocument& doc = Document(params);
    EnsureAnalysed(doc);
    const TPosition pos = PositionMember(params, "position");
    const std::string_view line = doc.Text->LineText(pos.Line);
    const std::size_t column = doc.Text->ByteColumn(pos.Line, pos.Character);
    const std::string_view left = line.substr(0, column);
    json items = json::array();

    // Name[ "...: the lines of the string table. The text typed so far (after the quote, if any) is replaced.
    std::size_t at = left.size();
    while (at > 0 && left[at - 1] != '"' && left[at - 1] != '[' && left[at - 1] != ']') --at;
    const std::size_t replaceFrom = at > 0 && left[at - 1] == '"' ? at - 1 : at;
    if (at > 0 && left[at - 1] == '"') {
        --at;
        while (at > 0 && (left[at - 1] == ' ' || left[at - 1] == '\t')) --at;
    }
    if (at > 0 && left[at - 1] == '[') {
        std::size_t end = at - 1;
        while (end > 0 && (left[end - 1] == ' ' || left[end - 1] == '\t')) --end;
        const TWordAt table = WordAt(left, end);
        const TUnitAnalysis* from = nullptr;
        const auto symbol = table.Text.empty() ? std::nullopt : FindSymbol(doc, table.Text, &from);
        if (symbol && symbol->Kind == skStringTable && table.Column + table.Text.size() == end) {
            if (const auto* lines = from->StringTable(*symbol)) {
                const json range = {
                    {"start",
                     {{"line", pos.Line}, {"character", doc.Text->Character(pos.Line, replaceFrom)}}},
                    {"end", {{"line", pos.Line}, {"character", doc.Text->Character(pos.Line, column)}}}};
                std::unordered_set<std::string> done;
                for (std::size_t i = 0; i < lines->size(); ++i) {
                    const std::string& s = (*lines)[i];
                    if (s.empty() || !done.insert(s).second) continue;
                    const std::string quoted = "\"" + s + "\"";
                    items.push_back({{"label", s},
                                     {"kind", ciText},
                                     {"detail", symbol->Name + " #" + std::to_string(i)},
                                     {"filterText", quoted},
                                     {"textEdit", {{"range", range}, {"newText", quoted}}}});
                }
                return {{"isIncomplete", false}, {"items", std::move(items)}};
            }
        }
    }

    const TWordAt word = WordAt(left, left.size());
    const std::string prefix(word.Text);
    std::unordered_set<std::string> names;
    for (const auto* analysis : {doc.Analysis.get(), doc.LastGood.get()}) {
        if (!analysis) continue;
        for (int index : SymbolsWithPrefix(*analysis->Symbols, prefix)) {
            const TSymbol& s = analysis->Symbols->Get(index);
            if (!names.insert(s.Name).second) continue;
            json item = {
                {"label", SymbolDisplayName(s)}, {"kind", CompletionKind(s.Kind)}, {"detail", Detail(s)}};
            items.push_back(std::move(item));
        }
    }
    const std::string lowerPrefix = LowerCase(prefix);
    auto keyword = [&](std::string_view w) {
        if (w.substr(0, lowerPrefix.size()) != lowerPrefix || !names.insert(UpperCase(w)).second) return;
        items.push_back({{"label", std::string(w)}, {"kind", ciKeyword}});
    };
    for (const auto& k : ScannerKeywords()) keyword(k.word);
    for (const auto w : StatementWords()) keyword(w);
    return {{"isIncomplete", false}, {"items", std::move(items)}};
}

json TLanguageServer::Hover(const json& params) {
    TOpenDocument& doc = Document(params);
    EnsureAnalysed(doc);
    const TPosition pos = PositionMember(params, "position");
    const std::string_view line = doc.Text->LineText(pos.Line);
    const TWordAt word = WordAt(line, doc.Text->ByteColumn(pos.Line, pos.Character));
    if (word.Text.empty()) return nullptr;
    const TUnitAnalysis* from = nullptr;
    const auto symbol = FindSymbol(doc, word.Text, &from);
    if (!symbol) return nullptr;
    std::string text = SymbolHintText(*symbol);
    if (IsFunctionKind(symbol->Kind)) {
        const std::filesystem::path file = from->FileOf(*symbol);
        const auto names =
            file.empty() ? std::nullopt : DeclaredParameters(FileText(file), symbol->Line, symbol->Name);
        text = ParameterHintText(*symbol, names) + "\n\n" + text;
    }
    return {{"contents", {{"kind", "plaintext"}, {"value", text}}},
            {"range",
             {{"start", {{"line", pos.Line}, {"character", doc.Text->Character(pos.Line, word.Column)}}},
              {"end",
               {{"line", pos.Line},
                {"character", doc.Text->Character(pos.Line, word.Column + word.Text.size())}}}}}};
}

json TLanguageServer::SignatureHelp(const json& params) {
    TOpenDocument& doc = Document(params);
    EnsureAnalysed(doc);
    const TPosition pos = PositionMember(params, "position");
    const std::string_view line = doc.Text->LineText(pos.Line);
    const auto call = CallAtCaret(line, static_cast<int>(doc.Text->ByteColumn(pos.Line, pos.Character)));
    if (!call) return nullptr;
    const TUnitAnalysis* from = nullptr;
    const auto symbol = FindSymbol(doc, call->Name, &from);
    if (!symbol || !IsFunctionKind(symbol->Kind)) return nullptr;
    const std::filesystem::path file = from->FileOf(*symbol);
    const auto names =
        file.empty() ? std::nullopt : DeclaredParameters(FileText(file), symbol->Line, symbol->Name);
    const std::string label = ParameterHintText(*symbol, names);
    // The parameters as offsets into the label, between its brackets and commas.
    json parameters = json::array();
    const std::size_t open = label.find('(');
    if (open != std::string::npos && symbol->Register > 0) {
        std::size_t start = open + 1;
        for (;;) {
            while (start < label.size() && label[start] == ' ') ++start;
            std::size_t to = label.find(',', start);
            const bool last = to == std::string::npos;
            if (last) to = label.rfind(')');
            if (to == std::string::npos || to < start) break;
            parameters.push_back(
                {{"label", {CharacterOf(label, start, true), CharacterOf(label, to, true)}}});
            if (last) break;
            start = to + 1;
        }
    }
    json signature = {
        {"label", label}, {"parameters", parameters}, {"documentation", SymbolHintText(*symbol)}};
    const int active =
        parameters.empty() ? 0 : std::min<int>(call->Argument, static_cast<int>(parameters.size()) - 1);
    return {{"signatures", json::array({signature})}, {"activeSignature", 0}, {"activeParameter", active}};
}

json TLanguageServer::Definition(const json& params) {
    TOpenDocument& doc = Document(params);
    EnsureAnalysed(doc);
    const TPosition pos = PositionMember(params, "position");
    const TWordAt word = WordAt(doc.Text->LineText(pos.Line), doc.Text->ByteColumn(pos.Line, pos.Character));
    if (word.Text.empty()) return nullptr;
    const TUnitAnalysis* from = nullptr;
    const auto symbol = FindSymbol(doc, word.Text, &from);
    if (!symbol) return nullptr;
    auto location = DeclarationLocation(*from, *symbol);
    return location ? *location : json(nullptr);
}

json TLanguageServer::DocumentSymbols(const json& params) {
    TOpenDocument& doc = Document(params);
    EnsureAnalysed(doc);
    json result = json::array();
    if (!doc.Analysis) return result;
    const TSymbolTable& table = *doc.Analysis->Symbols;
    std::unordered_set<std::string> done;
    for (int i = 0; i < table.Count(); ++i) {
        const TSymbol& s = table.Get(i);
        const int kind = OutlineKind(s.Kind);
        if (!kind || s.Line < 1 || !done.insert(s.Name).second) continue;
        const std::filesystem::path file = doc.Analysis->FileOf(s);
        if (file != doc.File && !(doc.File.empty() && FileNameOf(s.FileNumber) == doc.Name)) continue;
        const int line = s.Line - 1;
        const std::string_view lineText = doc.Text->LineText(line);
        std::size_t column = FindWord(lineText, s.Name);
        std::size_t length = s.Name.size();
        if (column == std::string_view::npos) column = length = 0;
        const json selection = {
            {"start", {{"line", line}, {"character", doc.Text->Character(line, column)}}},
            {"end", {{"line", line}, {"character", doc.Text->Character(line, column + length)}}}};
        const json range = {
            {"start", {{"line", line}, {"character", 0}}},
            {"end", {{"line", line}, {"character", doc.Text->Character(line, lineText.size())}}}};
        // The name as the declaration writes it.
        const std::string name = length ? std::string(lineText.substr(column, length)) : SymbolDisplayName(s);
        result.push_back({{"name", name},
                          {"detail", Detail(s)},
                          {"kind", kind},
                          {"range", range},
                          {"selectionRange", selection}});
    }
    return result;
}

json TLanguageServer::WorkspaceSymbols(const json& params) {
    const json& q = Member(params, "query");
    if (!q.is_string()) throw EInvalidParams("\"query\" must be a string");
    const std::string query = UpperCase(q.get<std::string>());
    json result = json::array();
    std::unordered_set<std::string> done;
    for (auto& [uri, doc] : documents_) {
        EnsureAnalysed(doc);
        if (!doc.Analysis) continue;
        const TSymbolTable& table = *doc.Analysis->Symbols;
        for (int i = 0; i < table.Count() && result.size() < 2000; ++i) {
            const TSymbol& s = table.Get(i);
            const int kind = OutlineKind(s.Kind);
            if (!kind || s.Kind == skGameFunction || s.Name.find(query) == std::string::npos) continue;
            const std::filesystem::path file = doc.Analysis->FileOf(s);
            if (file.empty() || !done.insert(s.Name + '\n' + file.string()).second) continue;
            std::string name;
            auto location = DeclarationLocation(*doc.Analysis, s, &name);
            if (!location) continue;
            result.push_back({{"name", name},
                              {"kind", kind},
                              {"containerName", file.filename().string()},
                              {"location", *location}});
        }
    }
    return result;
}

json TLanguageServer::References(const json& params) {
    TOpenDocument& doc = Document(params);
    EnsureAnalysed(doc);
    const TPosition pos = PositionMember(params, "position");
    const TWordAt word = WordAt(doc.Text->LineText(pos.Line), doc.Text->ByteColumn(pos.Line, pos.Character));
    if (word.Text.empty()) return nullptr;
    const TUnitAnalysis* from = nullptr;
    const auto symbol = FindSymbol(doc, word.Text, &from);
    if (!symbol) return nullptr;
    const bool withDeclaration = Member(Member(params, "context"), "includeDeclaration") == true;
    const std::filesystem::path declaredIn = from->FileOf(*symbol);

    json result = json::array();
    std::vector<std::filesystem::path> files = doc.Analysis->Files;
    if (files.empty()) files.push_back(doc.File);
    for (const auto& file : files) {
        const std::string text = file.empty() || file == doc.File ? doc.Text->Text() : FileText(file);
        const std::string uri = file.empty() || file == doc.File ? doc.Uri : UriOfPath(file);
        const TTextDocument lines(text, utf16_);
        ForEachWord(text, [&](const TSourceWord& w) {
            if (!SameText(w.Text, symbol->Name)) return;
            if (!withDeclaration && file == declaredIn && w.Line == symbol->Line - 1) return;
            result.push_back(
                {{"uri", uri},
                 {"range",
                  {{"start", {{"line", w.Line}, {"character", lines.Character(w.Line, w.Column)}}},
                   {"end",
                    {{"line", w.Line}, {"character", lines.Character(w.Line, w.Column + w.Text.size())}}}}}});
        });
    }
    return result;
}

json TLanguageServer::SemanticTokens(const json& params) {
    TOpenDocument& doc = Document(params);
    EnsureAnalysed(doc);
    // Token types: function, variable, enumMember, class, namespace; modifiers: declaration, readonly,
    // defaultLibrary (bits 1, 2, 4).
    std::vector<int> data;
    int lastLine = 0, lastStart = 0;
    const TTextDocument& text = *doc.Text;
    ForEachWord(text.Text(), [&](const TSourceWord& w) {
        const TUnitAnalysis* from = nullptr;
        const auto symbol = FindSymbol(doc, w.Text, &from);
        if (!symbol) return;
        int type = 1, modifiers = 0;
        switch (symbol->Kind) {
        case skGameFunction: type = 0, modifiers = 4; break;
        case skUserFunction: type = 0; break;
        case skGlobalConst:
        case skLocalConst: type = 1, modifiers = 2; break;
        case skObject: type = 3; break;
        case skNumber:
        case skEnum: type = 2; break;
        case skStringTable: type = 4; break;
        default: type = 1; break;
        }
        if (w.Line == symbol->Line - 1 && from->FileOf(*symbol) == doc.File) modifiers |= 1;
        const int start = text.Character(w.Line, w.Column);
        const int length = text.Character(w.Line, w.Column + w.Text.size()) - start;
        data.insert(data.end(), {w.Line - lastLine, w.Line == lastLine ? start - lastStart : start, length,
                                 type, modifiers});
        lastLine = w.Line;
        lastStart = start;
    });
    return {{"data", std::move(data)}};
}

} // namespace velkor::lsp
