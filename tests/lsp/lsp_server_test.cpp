// The language server in-process, where the order of arrival is ours to choose: framing split anywhere,
// cancellation of a waiting request, the debounce of changes, and positions counted in UTF-16 or UTF-8.
#include "lsp/language_server.h"
#include "lsp/message_framing.h"
#include "lsp/text_document.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <string>
#include <vector>

namespace velkor::lsp {
namespace {

using nlohmann::json;

std::vector<std::string> Bodies(std::string_view stream, std::size_t piece) {
    TMessageReader reader;
    std::vector<TFramedMessage> out;
    for (std::size_t at = 0; at < stream.size(); at += piece) reader.Feed(stream.substr(at, piece), out);
    std::vector<std::string> bodies;
    for (const auto& m : out) bodies.push_back(m.Error.empty() ? m.Body : "<" + m.Error + ">");
    return bodies;
}

TEST(MessageFramingTest, MessagesComeWholeHoweverTheBytesArrive) {
    const std::string stream =
        FrameMessage("{\"a\":1}") + "content-length:  3 \r\nContent-Type: x\r\n\r\n[1]" +
        "Content-Length: nine\r\n\r\n" + "Content-Length: 99999999999\r\n\r\n" + FrameMessage("{}");
    const std::vector<std::string> want = {"{\"a\":1}", "[1]", "<bad Content-Length>", "<content too long>"};
    for (std::size_t piece : {1u, 2u, 7u, 1000u}) EXPECT_EQ(Bodies(stream, piece), want) << piece;
}

TEST(MessageFramingTest, TheContentOfAnOversizedMessageIsSkippedAndTheNextOneRead) {
    const std::size_t n = TMessageReader::kMaxContentLength + 1;
    std::string stream =
        "Content-Length: " + std::to_string(n) + "\r\n\r\n" + std::string(n, 'x') + FrameMessage("{}");
    EXPECT_EQ(Bodies(stream, 1 << 20), (std::vector<std::string>{"<content too long>", "{}"}));
}

struct Server {
    std::vector<json> replies;
    TLanguageServer server{[this](const std::string& bytes) {
        TMessageReader reader;
        std::vector<TFramedMessage> out;
        reader.Feed(bytes, out);
        for (const auto& m : out) replies.push_back(json::parse(m.Body));
    }};
    // A request when it has an id, a notification when not.
    void Send(const std::string& method, const json& params = nullptr, int id = 0) {
        json message = {{"jsonrpc", "2.0"}, {"method", method}};
        if (id) message["id"] = id;
        if (!params.is_null()) message["params"] = params;
        server.Receive(FrameMessage(message.dump()));
    }
    std::vector<json> Named(const std::string& method) const {
        std::vector<json> out;
        for (const auto& r : replies)
            if (r.value("method", "") == method) out.push_back(r);
        return out;
    }
    const json* Reply(int id) const {
        for (const auto& r : replies)
            if (r.contains("id") && r["id"] == id) return &r;
        return nullptr;
    }
};

// A unit in an existing folder, so that its folder on the search path draws no hint.
const std::string kUri = UriOfPath(std::filesystem::temp_directory_path() / "velkor-lsp-unit.pas");

const json kInitialize = {{"capabilities", json::object()}};

TEST(LanguageServerTest, ARequestCancelledWhileItWaitsIsAnsweredAsCancelled) {
    Server s;
    s.Send("initialize", kInitialize, 1);
    s.Send("workspace/symbol", {{"query", ""}}, 2);
    s.Send("workspace/symbol", {{"query", ""}}, 3);
    s.Send("$/cancelRequest", {{"id", 2}});
    s.Send("$/cancelRequest", {{"id", 77}});
    s.server.Process();
    ASSERT_EQ(s.replies.size(), 3u);
    EXPECT_EQ(s.Reply(2)->at("error").at("code"), -32800);
    EXPECT_TRUE(s.Reply(3)->at("result").is_array());
    // Cancelling an answered request changes nothing.
    s.Send("$/cancelRequest", {{"id", 3}});
    s.server.Process();
    EXPECT_EQ(s.replies.size(), 3u);
}

TEST(LanguageServerTest, ChangesAreCompiledOnceTheyHaveSettled) {
    Server s;
    s.Send("initialize",
           {{"capabilities", json::object()}, {"initializationOptions", {{"debounceMilliseconds", 500}}}}, 1);
    s.Send("textDocument/didOpen",
           {{"textDocument",
             {{"uri", kUri}, {"languageId", "velkor"}, {"version", 1}, {"text", "unit u;\r\nvar a;\r\n"}}}});
    s.server.Process();
    s.server.RunDue(TClock::now());
    ASSERT_EQ(s.Named("textDocument/publishDiagnostics").size(), 1u);

    const auto change = [&](int version, const std::string& text) {
        s.Send("textDocument/didChange", {{"textDocument", {{"uri", kUri}, {"version", version}}},
                                          {"contentChanges", {{{"text", text}}}}});
        s.server.Process();
    };
    const TClock::time_point before = TClock::now();
    change(2, "unit u;\r\nvar a\r\n");
    change(3, "unit u;\r\nvar a;\r\nvar a;\r\n");
    const auto due = s.server.NextDue();
    ASSERT_TRUE(due);
    EXPECT_GE(*due - before, std::chrono::milliseconds(500));
    s.server.RunDue(*due - std::chrono::milliseconds(1));
    EXPECT_EQ(s.Named("textDocument/publishDiagnostics").size(), 1u);
    s.server.RunDue(*due);
    const auto published = s.Named("textDocument/publishDiagnostics");
    ASSERT_EQ(published.size(), 2u);
    EXPECT_EQ(published[1]["params"]["version"], 3);
    // The errors; hints may tell of a missing library folder beside the test program.
    json diagnostics = json::array();
    for (const auto& d : published[1]["params"]["diagnostics"])
        if (d["severity"] == 1) diagnostics.push_back(d);
    ASSERT_EQ(diagnostics.size(), 1u) << diagnostics.dump();
    EXPECT_EQ(diagnostics[0]["message"], "identifier \"A\" redeclared");
    EXPECT_EQ(diagnostics[0]["range"]["start"]["line"], 2);
    EXPECT_FALSE(s.server.NextDue());
}

TEST(LanguageServerTest, ExitEndsTheServerWithTheStatusTheProtocolGives) {
    for (bool shutdownFirst : {true, false}) {
        Server s;
        s.Send("initialize", kInitialize, 1);
        if (shutdownFirst) s.Send("shutdown", nullptr, 2);
        s.Send("exit");
        s.Send("shutdown", nullptr, 3);
        s.server.Process();
        EXPECT_TRUE(s.server.ExitRequested());
        EXPECT_EQ(s.server.ExitCode(), shutdownFirst ? 0 : 1);
        EXPECT_EQ(s.Reply(3), nullptr) << "nothing is handled after exit";
    }
}

TEST(TextDocumentTest, RangedEditsCountCharactersInTheAgreedUnits) {
    // "é" is two bytes and one UTF-16 unit; the rocket four bytes and two units.
    const std::string original = "aéb\r\n🚀cd\nlast";
    const struct {
        bool utf16;
        TPosition from, to;
        std::string text, expected;
    } cases[] = {
        {true, {0, 2}, {0, 3}, "X", "aéX\r\n🚀cd\nlast"}, {false, {0, 3}, {0, 4}, "X", "aéX\r\n🚀cd\nlast"},
        {true, {1, 2}, {1, 3}, "", "aéb\r\n🚀d\nlast"},   {false, {1, 4}, {1, 5}, "", "aéb\r\n🚀d\nlast"},
        {true, {0, 99}, {1, 0}, "", "aéb🚀cd\nlast"},     {true, {2, 4}, {9, 9}, "!\n", "aéb\r\n🚀cd\nlast!\n"},
    };
    for (const auto& c : cases) {
        TTextDocument doc(original, c.utf16);
        doc.Replace(c.from, c.to, c.text);
        EXPECT_EQ(doc.Text(), c.expected) << c.from.Line << ":" << c.from.Character << " utf16 " << c.utf16;
    }
    TTextDocument doc(original, true);
    EXPECT_EQ(doc.LineCount(), 3);
    EXPECT_EQ(doc.LineText(1), "🚀cd");
    EXPECT_EQ(doc.Character(1, 4), 2);
    EXPECT_EQ(doc.ByteColumn(1, 3), 5u);
}

} // namespace
} // namespace velkor::lsp
