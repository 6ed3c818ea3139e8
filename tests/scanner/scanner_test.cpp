#include "scanner/scanner.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

namespace velkor {
namespace {

struct Tok {
    std::int32_t line;
    std::int32_t kind;
    std::string text;
    bool operator==(const Tok&) const = default;
};

std::ostream& operator<<(std::ostream& os, const Tok& t) {
    return os << "{" << t.line << ", " << t.kind << ", \"" << t.text << "\"}";
}

std::vector<Tok> Scan(TScanner& s, const std::string& text, size_t limit = 1000) {
    s.SetText(text);
    std::vector<Tok> out;
    while (out.size() < limit) {
        std::string t = s.NextToken();
        out.push_back({s.Line(), s.TokenKind(), t});
        if (s.TokenKind() == tkEndOfText) break;
    }
    return out;
}

std::vector<Tok> ScanStandard(const std::string& text, bool markers = true) {
    TScanner s;
    s.LineMarkers = markers;
    return Scan(s, text);
}

std::vector<Tok> ScanFast(const std::string& text) {
    TFastScanner s;
    return Scan(s, text);
}

TEST(Scanner, EmptyTextAndCommentsOnlyAreEndOfText) {
    for (auto* text : {"", "// nothing\r\n", "/* a\r\nb */", "   \r\n"}) {
        EXPECT_EQ(ScanStandard(text).front().kind, tkEndOfText) << text;
        EXPECT_EQ(ScanFast(text).front().kind, tkEndOfText) << text;
    }
}

TEST(Scanner, TokenClassesAndKeywordsKeepTheirSpelling) {
    auto toks = ScanStandard("Mission m; MISSION x:=-1 $1F %1010 2.5E+3 1e5 (a,b) [.] {} \"s t\" # ?!x\r\n");
    std::vector<Tok> want = {
        {1, tkMission, "Mission"}, {1, tkIdentifier, "m"},  {1, tkSemicolon, ";"},  {1, tkMission, "MISSION"},
        {1, tkIdentifier, "x"},    {1, tkOperator, ":=-"},  {1, tkNumber, "1"},     {1, tkNumber, "$1F"},
        {1, tkNumber, "%1010"},    {1, tkNumber, "2.5E+3"}, {1, tkNumber, "1e5"},   {1, tkOpenParen, "("},
        {1, tkIdentifier, "a"},    {1, tkComma, ","},       {1, tkIdentifier, "b"}, {1, tkCloseParen, ")"},
        {1, tkDelimiter, "["},     {1, tkDelimiter, "."},   {1, tkDelimiter, "]"},  {1, tkDelimiter, "{"},
        {1, tkDelimiter, "}"},     {1, tkString, "s t"},    {1, tkOther, "#"},      {1, tkOther, "?"},
        {1, tkOperator, "!"},      {1, tkIdentifier, "x"},  {2, tkEndOfText, ""},
    };
    EXPECT_EQ(toks, want);
}

TEST(Scanner, EveryKeywordHasItsKind) {
    std::string text;
    for (const auto& k : ScannerKeywords()) text += std::string(k.word) + " ";
    text += "x";
    auto toks = ScanFast(text);
    ASSERT_EQ(toks.size(), ScannerKeywords().size() + 2);
    for (size_t i = 0; i < ScannerKeywords().size(); ++i) EXPECT_EQ(toks[i].kind, ScannerKeywords()[i].kind);
}

TEST(Scanner, LastCharacterNeverExtendsAToken) {
    // The unit's final identifier loses its last character to a token of its own.
    auto std1 = ScanStandard("unit abc");
    std::vector<Tok> want = {
        {1, tkUnit, "unit"}, {1, tkIdentifier, "ab"}, {1, tkIdentifier, "c"}, {1, tkEndOfText, ""}};
    EXPECT_EQ(std1, want);
    EXPECT_EQ(ScanFast("unit abc"), want);
    // A one-character token at the end is unaffected.
    auto dot = ScanFast("end.");
    EXPECT_EQ(dot[1], (Tok{1, tkDelimiter, "."}));
    // TScanner trims, so trailing blanks do not protect the last identifier.
    EXPECT_EQ(ScanStandard("x yz  \t", false)[1].text, "y");
    // A string never closed runs to the end of the text, short of the last character.
    EXPECT_EQ(ScanFast("\"abcd").front(), (Tok{1, tkString, "abc"}));
}

TEST(Scanner, LineMarkersGiveLineNumbers) {
    auto toks = ScanStandard("a\r\nb\r\n\r\nc\r\n");
    std::vector<Tok> want = {
        {1, tkIdentifier, "a"}, {2, tkIdentifier, "b"}, {4, tkIdentifier, "c"}, {5, tkEndOfText, ""}};
    EXPECT_EQ(toks, want);
    EXPECT_EQ(ScanFast("a\r\nb\r\n\r\nc\r\n"), want);
    // Without markers TScanner stays on line 1.
    auto flat = ScanStandard("a\r\nb\r\n", false);
    EXPECT_EQ(flat[1], (Tok{1, tkIdentifier, "b"}));
}

TEST(Scanner, RewrittenTextHoldsFiveDigitMarkers) {
    TScanner s;
    s.LineMarkers = true;
    s.SetText("a // c\r\nb\r\n");
    EXPECT_EQ(s.Text(), "##00001a     \r\n##00002b\r\n##00003");
}

TEST(Scanner, CommentsDifferBetweenTheScanners) {
    const std::string text = "x := \"a//b\"; y\r\nz";
    // TScanner blanks from "//" to the line end, closing quote included: the string runs on.
    auto standard = ScanStandard(text);
    EXPECT_EQ(standard[2].kind, tkString);
    EXPECT_EQ(standard[2].text, "a       \r\n##00002");
    // TFastScanner reads the line as one string.
    auto fast = ScanFast(text);
    EXPECT_EQ(fast[2], (Tok{1, tkString, "a//b"}));
    EXPECT_EQ(fast[3], (Tok{1, tkSemicolon, ";"}));
    EXPECT_EQ(fast[5], (Tok{2, tkIdentifier, "z"}));
}

TEST(Scanner, BlockCommentLines) {
    const std::string text = "a /* one\r\ntwo\r\n */ b\r\nc\r\n";
    // TScanner: the markers inside the comment were blanked, so b keeps the comment's first line.
    auto standard = ScanStandard(text);
    EXPECT_EQ(standard[1], (Tok{1, tkIdentifier, "b"}));
    EXPECT_EQ(standard[2], (Tok{4, tkIdentifier, "c"}));
    auto fast = ScanFast(text);
    EXPECT_EQ(fast[1], (Tok{3, tkIdentifier, "b"}));
    EXPECT_EQ(fast[2], (Tok{4, tkIdentifier, "c"}));
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

TEST(Scanner, UserHashesAreNotMarkers) {
    TScanner s;
    s.LineMarkers = true;
    s.SetText("a\r\n##xyz b\r\nc");
    EXPECT_EQ(s.NextToken(), "a");
    EXPECT_EQ(s.NextToken(), "##");
    EXPECT_EQ(s.TokenKind(), tkOther);
    EXPECT_EQ(s.Line(), 2);
    EXPECT_EQ(s.NextToken(), "xyz");
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

namespace velkor {
namespace {

TEST(Scanner, MarkersBehindEveryCrIncludingRunsAndTheEnd) {
    TScanner s;
    s.LineMarkers = true;
    s.SetText("a\r\rb\r");
    EXPECT_EQ(s.Text(), "##00001a\r\r##00002b##00003\r##00004");
    s.SetText("x\r");
    EXPECT_EQ(s.Text(), "##00001x\r##00002");
}

} // namespace
} // namespace velkor
