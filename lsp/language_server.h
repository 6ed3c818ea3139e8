// The language server: JSON-RPC messages in, responses and notifications out. It is driven from outside
// (stdio_server.cpp, the tests, the fuzz target): Receive takes bytes as they arrive, Process answers
// what has been received, and RunDue compiles the documents whose changes have settled.
#pragma once

#include "compiler/symbol_table.h"
#include "lsp/message_framing.h"
#include "lsp/text_document.h"
#include "lsp/unit_analysis.h"

#include <nlohmann/json_fwd.hpp>

#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace velkor::lsp {

using TClock = std::chrono::steady_clock;

class TLanguageServer {
public:
    // `send` writes framed messages to the client.
    explicit TLanguageServer(std::function<void(const std::string&)> send);
    ~TLanguageServer();
    TLanguageServer(const TLanguageServer&) = delete;
    TLanguageServer& operator=(const TLanguageServer&) = delete;

    // Takes bytes from the client; the messages they complete wait for Process.
    void Receive(std::string_view bytes);
    // Handles every waiting message; a request cancelled while it waited is answered as cancelled.
    void Process();
    // When the next document compile is due, if one is.
    std::optional<TClock::time_point> NextDue() const;
    // Compiles the documents due by `now` and publishes their diagnostics.
    void RunDue(TClock::time_point now);

    bool ExitRequested() const { return exitRequested_; }
    // 0 after shutdown then exit, 1 for an exit without shutdown.
    int ExitCode() const { return shutdown_ ? 0 : 1; }

private:
    struct TOpenDocument {
        std::string Uri;
        std::filesystem::path File; // empty for a document that is not a file
        std::string Name;           // the name its compile records
        int Version = 0;
        std::unique_ptr<TTextDocument> Text;
        std::optional<TClock::time_point> Due; // a compile is pending
        std::shared_ptr<const TUnitAnalysis> Analysis;
        std::shared_ptr<const TUnitAnalysis> LastGood; // the last compile without errors
    };

    // --- dispatch (language_server.cpp)
    void Handle(const std::string& body);
    void HandleRequest(const nlohmann::json& id, const std::string& method, const nlohmann::json& params);
    void HandleNotification(const std::string& method, const nlohmann::json& params);
    void Respond(const nlohmann::json& id, nlohmann::json result);
    void RespondError(const nlohmann::json& id, int code, const std::string& message);
    void Notify(const std::string& method, nlohmann::json params);
    void Send(const nlohmann::json& message);

    nlohmann::json Initialize(const nlohmann::json& params);
    void ReadSettings(const nlohmann::json& settings);

    // --- documents and diagnostics
    void DidOpen(const nlohmann::json& params);
    void DidChange(const nlohmann::json& params);
    void DidSave(const nlohmann::json& params);
    void DidClose(const nlohmann::json& params);
    TOpenDocument& Document(const nlohmann::json& params); // by params.textDocument.uri
    TOpenDocument* DocumentOfFile(const std::filesystem::path& file);
    // Schedules a compile of the document and of every open unit that reads it.
    void Schedule(TOpenDocument& doc, TClock::time_point when);
    void Analyse(TOpenDocument& doc);
    void EnsureAnalysed(TOpenDocument& doc);
    // Sends the diagnostics of every file whose diagnostics changed, and of the documents just compiled.
    void PublishDiagnostics(const std::set<std::string>& analysed = {});
    // The text of a file: the editor's when it is open, else the disk's (empty when unreadable).
    std::string FileText(const std::filesystem::path& file);

    // --- features (server_features.cpp)
    nlohmann::json Completion(const nlohmann::json& params);
    nlohmann::json Hover(const nlohmann::json& params);
    nlohmann::json SignatureHelp(const nlohmann::json& params);
    nlohmann::json Definition(const nlohmann::json& params);
    nlohmann::json DocumentSymbols(const nlohmann::json& params);
    nlohmann::json WorkspaceSymbols(const nlohmann::json& params);
    nlohmann::json References(const nlohmann::json& params);
    nlohmann::json SemanticTokens(const nlohmann::json& params);

    // The symbol of a name in a document's analysis, else in its last good one.
    std::optional<TSymbol> FindSymbol(const TOpenDocument& doc, std::string_view name,
                                      const TUnitAnalysis** from = nullptr) const;
    // A location of a symbol's declaration: its file's URI and the range of its name on its line; the
    // name as written there goes to `written`.
    std::optional<nlohmann::json> DeclarationLocation(const TUnitAnalysis& analysis, const TSymbol& symbol,
                                                      std::string* written = nullptr);
    nlohmann::json RangeOnLine(const std::filesystem::path& file, int line, std::size_t column,
                               std::size_t length);

    std::function<void(const std::string&)> send_;
    TMessageReader reader_;
    std::deque<std::string> queue_;                  // received message bodies not yet handled
    std::set<std::string> cancelled_;                // ids (as JSON text) of waiting requests cancelled
    std::map<std::string, TOpenDocument> documents_; // by URI
    std::map<std::string, std::string> published_;   // URI -> the diagnostics last sent for it
    std::vector<std::string> searchPaths_;
    std::chrono::milliseconds debounce_{60};
    bool utf16_ = true;
    bool initialized_ = false;
    bool shutdown_ = false;
    bool exitRequested_ = false;
};

// file:// URIs and paths.
std::filesystem::path PathOfUri(std::string_view uri);
std::string UriOfPath(const std::filesystem::path& path);

} // namespace velkor::lsp
