#include "scanner/scanner.h"
#include "tests/compiler/case_file.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velkor {
namespace {

// Every token up to the end of the text, as "<line> <kind> <text>", or up to a token that does not move on.
std::vector<std::string> Scan(TScanner& s, const std::string& text) {
    s.SetText(text);
    std::vector<std::string> out;
    for (std::int32_t before = -1; before != s.Position();) {
        before = s.Position();
        const std::string t = s.NextToken();
        out.push_back(std::to_string(s.Line()) + " " + std::to_string(s.TokenKind()) + " " + t);
        if (s.TokenKind() == tkEndOfText) return out;
    }
    out.push_back("stays at " + std::to_string(s.Position()));
    return out;
}

// A text in; the standard scanner's text with its line markers and its tokens out, then what the scanner
// without markers and the fast scanner read where it differs.
TEST(ScannerCases, Tokens) {
    test::RunCaseFolder(
        std::filesystem::path(VELKOR_SOURCE_DIR) / "tests/cases/scanner", [](const test::Case& c) {
            std::string text;
            for (const auto& line : c.input) text += line;
            TScanner standard, plain;
            TFastScanner fast;
            standard.LineMarkers = true;
            std::vector<std::string> out = Scan(standard, text);
            out.insert(out.begin(), "text " + standard.Text());
            for (auto [scanner, what] : {std::pair<TScanner*, const char*>{&plain, "without markers:"},
                                         std::pair<TScanner*, const char*>{&fast, "fast:"}}) {
                const std::vector<std::string> other = Scan(*scanner, text);
                if (other == std::vector<std::string>(out.begin() + 1, out.end())) continue;
                out.push_back(what);
                out.insert(out.end(), other.begin(), other.end());
            }
            return out;
        });
}

TEST(Scanner, EveryKeywordHasItsKind) {
    std::string text;
    for (const auto& k : ScannerKeywords()) text += std::string(k.word) + " ";
    TFastScanner s;
    s.SetText(text + "x");
    for (const auto& k : ScannerKeywords()) {
        s.NextToken();
        EXPECT_EQ(s.TokenKind(), k.kind) << k.word;
    }
}

TEST(Scanner, FastScannerStopsAtBareLineFeed) {
    TFastScanner s;
    s.SetText("a\nb");
    EXPECT_EQ(s.NextToken(), "a");
    std::int32_t before = s.Position();
    EXPECT_EQ(s.NextToken(), "");
    EXPECT_EQ(s.TokenKind(), tkOther);
    EXPECT_EQ(s.Position(), before);
}

TEST(Scanner, StreamTextEndsInNul) {
    TFastScanner fast;
    fast.LoadFromStream("abc ");
    EXPECT_EQ(fast.NextToken(), "abc");
    EXPECT_EQ(fast.NextToken(), "");
    EXPECT_EQ(fast.TokenKind(), tkEndOfText);
    TScanner standard;
    standard.LoadFromStream("abc");
    EXPECT_EQ(standard.Text(), "abc"); // the NUL is trimmed away with the other control characters
}

TEST(Scanner, PeekRestoresPositionAndLineButNotKind) {
    for (bool fast : {false, true}) {
        std::unique_ptr<TScanner> s =
            fast ? std::unique_ptr<TScanner>(new TFastScanner) : std::make_unique<TScanner>();
        s->LineMarkers = true;
        s->SetText("a;\r\n42 x");
        EXPECT_EQ(s->NextToken(), "a");
        EXPECT_EQ(s->TokenKind(), tkIdentifier);
        std::int32_t pos = s->Position(), line = s->Line();
        EXPECT_EQ(s->PeekAhead(1), "42");
        EXPECT_EQ(s->TokenKind(), tkNumber);
        EXPECT_EQ(s->Position(), pos);
        EXPECT_EQ(s->Line(), line);
        EXPECT_EQ(s->PeekToken(), ";");
        EXPECT_EQ(s->TokenKind(), tkSemicolon);
        EXPECT_EQ(s->NextToken(), ";");
    }
}

TEST(Scanner, MarkerReaderTakesFiveDigits) {
    TScanner s;
    s.LineMarkers = true;
    std::string text;
    for (int i = 0; i < 100001; ++i) text += "x\r\n";
    s.SetText(text);
    std::int32_t last = 0;
    int count = 0;
    while (true) {
        s.NextToken();
        if (s.TokenKind() == tkEndOfText) break;
        EXPECT_EQ(s.TokenKind(), tkIdentifier);
        last = s.Line();
        ++count;
    }
    EXPECT_EQ(count, 100001);
    EXPECT_EQ(last, 1); // line 100001 reads back as its last five digits
}

TEST(Scanner, ProcessWideClassChoice) {
    EXPECT_EQ(GetScannerClass(), ScannerClass::Standard);
    EXPECT_EQ(typeid(*CreateScanner()), typeid(TScanner));
    SetScannerClass(ScannerClass::Fast);
    EXPECT_EQ(typeid(*CreateScanner()), typeid(TFastScanner));
    SetScannerClass(ScannerClass::Standard);
}

} // namespace
} // namespace velkor
