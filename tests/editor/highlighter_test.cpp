// The highlighter reads the text as the scanner does; multi-line comments and strings carry over lines.
#include "editor/highlighter.h"
#include "editor_test_app.h"
#include "scanner/scanner.h"

#include <map>
#include <string>
#include <vector>

namespace velkor {
namespace {

// One letter per byte: d default, c comment, k keyword, n number, s string, p directive, o operator.
std::string Styles(std::string_view text, int state = lsCode, std::vector<int>* lineStates = nullptr) {
    std::string styles(text.size(), '?');
    StyleSourceText(text, state, styles.data(), [&](long line, int s) {
        if (lineStates) {
            EXPECT_EQ(line, static_cast<long>(lineStates->size()));
            lineStates->push_back(s);
        }
    });
    static const char letters[] = "dcknspo";
    for (char& c : styles) c = letters[static_cast<int>(c)];
    return styles;
}

TEST(Highlighter, StylesFromTheTable) {
    const std::map<QString, int> states = {
        {"code", lsCode}, {"comment", lsBlockComment}, {"string", lsString}};
    for (const QStringList& row : test::Rows("styles.txt")) {
        ASSERT_EQ(row.size(), 3);
        EXPECT_EQ(Styles(test::Unescape(row[1]), states.at(row[0])), row[2].toStdString())
            << row[1].toStdString();
    }
}

TEST(Highlighter, KeywordsAreTheScannersAndTheStatementWords) {
    for (const auto& k : ScannerKeywords()) EXPECT_TRUE(IsSourceKeyword(k.word)) << k.word;
    for (const char* w : {"if", "then", "else", "while", "do", "until", "for", "to", "break", "inc", "dec",
                          "not", "xor", "mod", "aint", "result", "BEGIN", "Mission"})
        EXPECT_TRUE(IsSourceKeyword(w)) << w;
    for (const char* w : {"", "x", "iff2", "beginning", "repeatedly_long_identifier_name"})
        EXPECT_FALSE(IsSourceKeyword(w)) << w;
}

TEST(Highlighter, CommentsAndStringsRunAcrossLines) {
    std::vector<int> states;
    EXPECT_EQ(Styles("a /* one\r\ntwo\r\nthree */ b\r\n\"s\r\nt\" c", lsCode, &states),
              "ddcccccccccccccccccccccddddssssssdd");
    EXPECT_EQ(states, (std::vector<int>{lsBlockComment, lsBlockComment, lsCode, lsString}));
}

class HighlighterInEditor : public test::EditorTest {
protected:
    int StyleAt(int line, int index) {
        edit->SendScintilla(QsciScintillaBase::SCI_COLOURISE, 0L, -1L);
        const long pos = edit->positionFromLineIndex(line, index);
        return static_cast<int>(edit->SendScintilla(QsciScintillaBase::SCI_GETSTYLEAT, pos));
    }
};

TEST_F(HighlighterInEditor, StylesASampleUnit) {
    Load(QStringLiteral("mission demo;\r\n#include x\r\nvar a := $FF; // count\r\n/* long\r\ncomment */ "
                        "b := \"text\";"));
    EXPECT_EQ(StyleAt(0, 0), hsKeyword);
    EXPECT_EQ(StyleAt(0, 8), hsDefault);
    EXPECT_EQ(StyleAt(1, 0), hsDirective);
    EXPECT_EQ(StyleAt(1, 5), hsDirective);
    EXPECT_EQ(StyleAt(2, 6), hsOperator);
    EXPECT_EQ(StyleAt(2, 9), hsNumber);
    EXPECT_EQ(StyleAt(2, 16), hsComment);
    EXPECT_EQ(StyleAt(3, 3), hsComment);
    EXPECT_EQ(StyleAt(4, 2), hsComment);
    EXPECT_EQ(StyleAt(4, 11), hsDefault);
    EXPECT_EQ(StyleAt(4, 16), hsString);
}

TEST_F(HighlighterInEditor, OpeningAndClosingACommentFarAboveRestylesBelow) {
    Load(test::NumberedLines(2000));
    EXPECT_EQ(StyleAt(1500, 0), hsDefault);
    edit->insertAt(QStringLiteral("/*"), 10, 0);
    EXPECT_EQ(StyleAt(1500, 0), hsComment);
    EXPECT_EQ(StyleAt(1999, 8), hsComment);
    edit->insertAt(QStringLiteral("*/"), 700, 0);
    EXPECT_EQ(StyleAt(699, 0), hsComment);
    EXPECT_EQ(StyleAt(700, 2), hsDefault);
    EXPECT_EQ(StyleAt(1500, 0), hsDefault);
    // Removing the opening mark uncomments everything again.
    edit->setSelection(10, 0, 10, 2);
    edit->removeSelectedText();
    EXPECT_EQ(StyleAt(300, 0), hsDefault);
    EXPECT_EQ(StyleAt(700, 0), hsOperator);
}

} // namespace
} // namespace velkor
