#include "lsp/language_server.h"

#include "lsp/json_params.h"

#include "platform/text_file.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace velkor::lsp {

using nlohmann::json;

namespace {

// JSON-RPC and LSP error codes.
constexpr int kParseError = -32700;
constexpr int kInvalidRequest = -32600;
constexpr int kMethodNotFound = -32601;
constexpr int kInvalidParams = -32602;
constexpr int kInternalError = -32603;
constexpr int kServerNotInitialized = -32002;
constexpr int kRequestCancelled = -32800;

std::string Dump(const json& j) {
    // Source texts need not be UTF-8; what is not is sent replaced rather than refused.
    return j.dump(-1, ' ', false, json::error_handler_t::replace);
}

bool ValidId(const json& id) {
    return id.is_number_integer() || id.is_string();
}

int HexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

} // namespace

std::filesystem::path PathOfUri(std::string_view uri) {
    constexpr std::string_view scheme = "file://";
    if (uri.substr(0, scheme.size()) != scheme) return {};
    uri.remove_prefix(scheme.size());
    // file://host/path: only the local host is ours.
    const std::size_t slash = uri.find('/');
    if (slash == std::string_view::npos) return {};
    const std::string_view host = uri.substr(0, slash);
    if (!host.empty() && host != "localhost") return {};
    uri.remove_prefix(slash);
    std::string path;
    for (std::size_t i = 0; i < uri.size(); ++i) {
        if (uri[i] == '%' && i + 2 < uri.size() && HexValue(uri[i + 1]) >= 0 && HexValue(uri[i + 2]) >= 0) {
            path += static_cast<char>(HexValue(uri[i + 1]) * 16 + HexValue(uri[i + 2]));
            i += 2;
        } else {
            path += uri[i];
        }
    }
    if (path.find('\0') != std::string::npos) return {};
    return std::filesystem::path(path).lexically_normal();
}

std::string UriOfPath(const std::filesystem::path& path) {
    static const char* hex = "0123456789ABCDEF";
    std::string uri = "file://";
    for (unsigned char c : path.generic_string()) {
        if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '/' ||
            c == '-' || c == '.' || c == '_' || c == '~') {
            uri += static_cast<char>(c);
        } else {
            uri += '%';
            uri += hex[c >> 4];
            uri += hex[c & 15];
        }
    }
    return uri;
}

TLanguageServer::TLanguageServer(std::function<void(const std::string&)> send) : send_(std::move(send)) {}
TLanguageServer::~TLanguageServer() = default;

// --- messages

void TLanguageServer::Receive(std::string_view bytes) {
    std::vector<TFramedMessage> messages;
    reader_.Feed(bytes, messages);
    for (auto& m : messages) {
        if (!m.Error.empty()) continue; // a broken header: nothing to answer, the stream goes on
        // A cancellation is noted as it arrives, so that the request it names, waiting behind it, is not run.
        if (m.Body.find("$/cancelRequest") != std::string::npos) {
            const json j = json::parse(m.Body, nullptr, false);
            if (j.is_object() && Member(j, "method") == "$/cancelRequest") {
                const json& id = Member(Member(j, "params"), "id");
                if (ValidId(id)) cancelled_.insert(Dump(id));
                continue;
            }
        }
        queue_.push_back(std::move(m.Body));
    }
}

void TLanguageServer::Process() {
    while (!queue_.empty() && !exitRequested_) {
        const std::string body = std::move(queue_.front());
        queue_.pop_front();
        Handle(body);
    }
    if (queue_.empty()) cancelled_.clear();
}

void TLanguageServer::Send(const json& message) {
    send_(FrameMessage(Dump(message)));
}

void TLanguageServer::Respond(const json& id, json result) {
    Send(json{{"jsonrpc", "2.0"}, {"id", id}, {"result", std::move(result)}});
}

void TLanguageServer::RespondError(const json& id, int code, const std::string& message) {
    Send(json{{"jsonrpc", "2.0"}, {"id", id}, {"error", {{"code", code}, {"message", message}}}});
}

void TLanguageServer::Notify(const std::string& method, json params) {
    Send(json{{"jsonrpc", "2.0"}, {"method", method}, {"params", std::move(params)}});
}

void TLanguageServer::Handle(const std::string& body) {
    const json message = json::parse(body, nullptr, false);
    if (message.is_discarded()) {
        RespondError(nullptr, kParseError, "Parse error");
        return;
    }
    if (!message.is_object()) {
        RespondError(nullptr, kInvalidRequest, "Invalid Request");
        return;
    }
    const json& id = Member(message, "id");
    const json& method = Member(message, "method");
    const bool hasId = message.contains("id");
    if (!method.is_string()) {
        // A response to a request of ours (none are sent), or nothing at all.
        if (hasId && !message.contains("result") && !message.contains("error"))
            RespondError(ValidId(id) ? id : json(nullptr), kInvalidRequest, "Invalid Request");
        return;
    }
    if (hasId && !ValidId(id)) {
        RespondError(nullptr, kInvalidRequest, "Invalid Request");
        return;
    }
    const json& params = Member(message, "params");
    if (!hasId) {
        try {
            HandleNotification(method.get<std::string>(), params);
        } catch (const std::exception&) {
            // A notification has no answer, not even an error.
        }
        return;
    }
    if (cancelled_.count(Dump(id))) {
        RespondError(id, kRequestCancelled, "Request cancelled");
        return;
    }
    try {
        HandleRequest(id, method.get<std::string>(), params);
    } catch (const EInvalidParams& e) {
        RespondError(id, kInvalidParams, e.what());
    } catch (const json::exception& e) {
        RespondError(id, kInvalidParams, e.what());
    } catch (const std::exception& e) {
        RespondError(id, kInternalError, e.what());
    }
}

void TLanguageServer::HandleRequest(const json& id, const std::string& method, const json& params) {
    if (method == "initialize") {
        if (initialized_) return RespondError(id, kInvalidRequest, "already initialized");
        json result = Initialize(params);
        initialized_ = true;
        return Respond(id, std::move(result));
    }
    if (!initialized_) return RespondError(id, kServerNotInitialized, "Server not initialized");
    if (shutdown_) return RespondError(id, kInvalidRequest, "Server is shut down");
    if (method == "shutdown") {
        shutdown_ = true;
        return Respond(id, nullptr);
    }
    using Feature = json (TLanguageServer::*)(const json&);
    static const std::map<std::string, Feature, std::less<>> features = {
        {"textDocument/completion", &TLanguageServer::Completion},
        {"textDocument/hover", &TLanguageServer::Hover},
        {"textDocument/signatureHelp", &TLanguageServer::SignatureHelp},
        {"textDocument/definition", &TLanguageServer::Definition},
        {"textDocument/documentSymbol", &TLanguageServer::DocumentSymbols},
        {"textDocument/references", &TLanguageServer::References},
        {"textDocument/semanticTokens/full", &TLanguageServer::SemanticTokens},
        {"workspace/symbol", &TLanguageServer::WorkspaceSymbols},
    };
    const auto it = features.find(method);
    if (it == features.end()) return RespondError(id, kMethodNotFound, "Unhandled method " + method);
    Respond(id, (this->*(it->second))(params));
}

void TLanguageServer::HandleNotification(const std::string& method, const json& params) {
    if (method == "exit") {
        exitRequested_ = true;
        return;
    }
    if (!initialized_ || shutdown_) return;
    if (method == "textDocument/didOpen") return DidOpen(params);
    if (method == "textDocument/didChange") return DidChange(params);
    if (method == "textDocument/didSave") return DidSave(params);
    if (method == "textDocument/didClose") return DidClose(params);
    if (method == "workspace/didChangeConfiguration") {
        ReadSettings(Member(Member(params, "settings"), "velkor"));
        for (auto& [uri, doc] : documents_) Schedule(doc, TClock::now());
    }
}

// --- lifecycle

void TLanguageServer::ReadSettings(const json& settings) {
    const json& paths = Member(settings, "searchPath");
    if (paths.is_array()) {
        searchPaths_.clear();
        for (const auto& p : paths)
            if (p.is_string()) searchPaths_.push_back(p.get<std::string>());
    }
    const json& debounce = Member(settings, "debounceMilliseconds");
    if (debounce.is_number_integer())
        debounce_ =
            std::chrono::milliseconds(std::clamp<std::int64_t>(debounce.get<std::int64_t>(), 0, 10000));
}

json TLanguageServer::Initialize(const json& params) {
    // UTF-8 positions when the client can take them: no counting of UTF-16 units then.
    utf16_ = true;
    const json& encodings = Member(Member(Member(params, "capabilities"), "general"), "positionEncodings");
    if (encodings.is_array())
        for (const auto& e : encodings)
            if (e == "utf-8") utf16_ = false;
    ReadSettings(Member(params, "initializationOptions"));

    json capabilities = {
        {"positionEncoding", utf16_ ? "utf-16" : "utf-8"},
        {"textDocumentSync", {{"openClose", true}, {"change", 2}, {"save", {{"includeText", false}}}}},
        {"completionProvider", {{"triggerCharacters", {"[", "\""}}}},
        {"hoverProvider", true},
        {"signatureHelpProvider", {{"triggerCharacters", {"(", ","}}, {"retriggerCharacters", {","}}}},
        {"definitionProvider", true},
        {"documentSymbolProvider", true},
        {"workspaceSymbolProvider", true},
        {"referencesProvider", true},
        {"semanticTokensProvider",
         {{"legend",
           {{"tokenTypes", {"function", "variable", "enumMember", "class", "namespace"}},
            {"tokenModifiers", {"declaration", "readonly", "defaultLibrary"}}}},
          {"full", true}}},
    };
    return {{"capabilities", std::move(capabilities)},
            {"serverInfo", {{"name", "velkorc lsp"}, {"version", TCompiler::Version()}}}};
}

// --- documents

TLanguageServer::TOpenDocument& TLanguageServer::Document(const json& params) {
    const std::string uri = StringMember(Member(params, "textDocument"), "uri");
    const auto it = documents_.find(uri);
    if (it == documents_.end()) throw EInvalidParams("document not open: " + uri);
    return it->second;
}

TLanguageServer::TOpenDocument* TLanguageServer::DocumentOfFile(const std::filesystem::path& file) {
    if (file.empty()) return nullptr;
    for (auto& [uri, doc] : documents_)
        if (doc.File == file) return &doc;
    return nullptr;
}

void TLanguageServer::DidOpen(const json& params) {
    const json& item = Member(params, "textDocument");
    const std::string uri = StringMember(item, "uri");
    std::string text = StringMember(item, "text");
    const json& version = Member(item, "version");
    TOpenDocument doc;
    doc.Uri = uri;
    doc.File = CleanPath(PathOfUri(uri));
    doc.Name = doc.File.empty() ? uri : doc.File.string();
    doc.Version = version.is_number_integer() ? version.get<int>() : 0;
    doc.Text = std::make_unique<TTextDocument>(std::move(text), utf16_);
    auto& stored = documents_[uri] = std::move(doc);
    Schedule(stored, TClock::now());
}

void TLanguageServer::DidChange(const json& params) {
    TOpenDocument& doc = Document(params);
    const json& changes = Member(params, "contentChanges");
    if (!changes.is_array()) throw EInvalidParams("\"contentChanges\" must be an array");
    for (const auto& change : changes) {
        std::string text = StringMember(change, "text");
        if (change.contains("range")) {
            const json& range = Member(change, "range");
            doc.Text->Replace(PositionMember(range, "start"), PositionMember(range, "end"), text);
        } else {
            doc.Text->SetText(std::move(text));
        }
    }
    const json& version = Member(Member(params, "textDocument"), "version");
    if (version.is_number_integer()) doc.Version = version.get<int>();
    Schedule(doc, TClock::now() + debounce_);
}

void TLanguageServer::DidSave(const json& params) {
    Schedule(Document(params), TClock::now());
}

void TLanguageServer::DidClose(const json& params) {
    TOpenDocument& doc = Document(params);
    const std::filesystem::path file = doc.File;
    const std::string uri = doc.Uri;
    documents_.erase(uri);
    // The units that read it read the disk's text again.
    for (auto& [otherUri, other] : documents_) {
        if (!other.Analysis) continue;
        const auto& files = other.Analysis->Files;
        if (std::find(files.begin(), files.end(), file) != files.end()) Schedule(other, TClock::now());
    }
    PublishDiagnostics();
}

void TLanguageServer::Schedule(TOpenDocument& doc, TClock::time_point when) {
    doc.Due = when;
    if (doc.File.empty()) return;
    for (auto& [uri, other] : documents_) {
        if (&other == &doc || !other.Analysis) continue;
        const auto& files = other.Analysis->Files;
        if (std::find(files.begin(), files.end(), doc.File) != files.end()) other.Due = when;
    }
}

std::optional<TClock::time_point> TLanguageServer::NextDue() const {
    std::optional<TClock::time_point> next;
    for (const auto& [uri, doc] : documents_)
        if (doc.Due && (!next || *doc.Due < *next)) next = doc.Due;
    return next;
}

void TLanguageServer::RunDue(TClock::time_point now) {
    std::set<std::string> analysed;
    for (auto& [uri, doc] : documents_) {
        if (!doc.Due || *doc.Due > now) continue;
        Analyse(doc);
        analysed.insert(uri);
    }
    if (!analysed.empty()) PublishDiagnostics(analysed);
}

std::string TLanguageServer::FileText(const std::filesystem::path& file) {
    if (const TOpenDocument* doc = DocumentOfFile(file)) return doc->Text->Text();
    try {
        return LoadTextFile(file);
    } catch (const std::exception&) {
        return {};
    }
}

void TLanguageServer::Analyse(TOpenDocument& doc) {
    doc.Due.reset();
    TAnalysisInput input;
    input.File = doc.File;
    input.Name = doc.Name;
    input.Text = doc.Text->Text();
    input.SearchPaths = searchPaths_;
    input.OpenText = [this](const std::filesystem::path& file) -> std::optional<std::string> {
        if (const TOpenDocument* open = DocumentOfFile(file)) return open->Text->Text();
        return std::nullopt;
    };
    auto analysis = std::make_shared<const TUnitAnalysis>(AnalyseUnit(input));
    if (analysis->ErrorCount == 0) doc.LastGood = analysis;
    doc.Analysis = std::move(analysis);
}

void TLanguageServer::EnsureAnalysed(TOpenDocument& doc) {
    if (doc.Due || !doc.Analysis) {
        Analyse(doc);
        PublishDiagnostics({doc.Uri});
    }
}

void TLanguageServer::PublishDiagnostics(const std::set<std::string>& analysed) {
    // Every open unit's messages, gathered by the file they belong to: an include's errors show in the
    // include, whichever unit read it.
    std::map<std::string, json> byUri;
    std::map<std::string, std::set<std::string>> seen;
    for (const auto& [uri, doc] : documents_) {
        byUri.emplace(uri, json::array());
        if (!doc.Analysis) continue;
        for (const auto& d : doc.Analysis->Diagnostics) {
            const std::filesystem::path& file = d.File.empty() ? doc.File : d.File;
            const std::string target = file.empty() ? uri : UriOfPath(file);
            const int line = std::max(0, d.Line - 1);
            const std::string key =
                std::to_string(line) + '\n' + std::to_string(int(d.Severity)) + '\n' + d.Message;
            if (!seen[target].insert(key).second) continue;
            // The whole line, from its first non-blank character.
            std::string text;
            if (const TOpenDocument* open = file.empty() ? &doc : DocumentOfFile(file))
                text = std::string(open->Text->LineText(line));
            else
                text = std::string(TTextDocument(FileText(file), utf16_).LineText(line));
            std::size_t from = 0;
            while (from < text.size() && (text[from] == ' ' || text[from] == '\t')) ++from;
            if (from == text.size()) from = 0;
            json diagnostic = {
                {"range",
                 {{"start", {{"line", line}, {"character", CharacterOf(text, from, utf16_)}}},
                  {"end", {{"line", line}, {"character", CharacterOf(text, text.size(), utf16_)}}}}},
                {"severity", int(d.Severity)},
                {"source", "velkor"},
                {"message", d.Message}};
            byUri[target].push_back(std::move(diagnostic));
        }
    }
    for (const auto& [uri, text] : published_)
        if (!byUri.count(uri)) byUri.emplace(uri, json::array());
    for (auto& [uri, diagnostics] : byUri) {
        json params = {{"uri", uri}, {"diagnostics", diagnostics}};
        const auto open = documents_.find(uri);
        if (open != documents_.end()) params["version"] = open->second.Version;
        std::string text = Dump(params);
        const auto old = published_.find(uri);
        if (old != published_.end() && old->second == text && !analysed.count(uri)) continue;
        Notify("textDocument/publishDiagnostics", std::move(params));
        if (diagnostics.empty() && open == documents_.end())
            published_.erase(uri);
        else
            published_[uri] = std::move(text);
    }
}

} // namespace velkor::lsp
