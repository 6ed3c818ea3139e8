// Folds and block matching read from the text: which lines open a fold and how deep each line is, which
// word pairs with a begin, object, objective or end, and how the editor shows both while text is typed.
#include "editor/folding.h"
#include "editor/highlighter.h"
#include "editor_test_app.h"

#include <QTest>

#include <algorithm>
#include <string>

namespace velkor {
namespace {

// One entry per line: its depth at the start, "H" when it opens a fold.
std::string Folds(std::string_view text, TFoldState state = {}, TFoldState* end = nullptr) {
    std::string styles(text.size(), hsDefault);
    StyleSourceText(text, lsCode, styles.data(), [](long, int) {});
    std::string out;
    const TFoldState last = FoldSourceText(
        text, styles, state,
        [&](long, int depth, bool opens) {
            if (!out.empty()) out += ' ';
            out += std::to_string(depth) + (opens ? "H" : "");
        },
        [](long, TFoldState) {});
    if (end) *end = last;
    return out;
}

TEST(Folding, LinesOpenAndCloseBlocks) {
    for (const QStringList& row : test::Rows("folds.txt")) {
        ASSERT_EQ(row.size(), 3);
        EXPECT_EQ(Folds(test::Unescape(row[1])), row[2].toStdString()) << row[0].toStdString();
    }
}

TEST(Folding, StateCarriesFromOneRangeToTheNext) {
    TFoldState state;
    EXPECT_EQ(Folds("function A;\nvar a;\n", {}, &state), "0H 1");
    EXPECT_EQ(state, (TFoldState{1, true}));
    // The body's begin, styled later, still belongs to the header.
    EXPECT_EQ(Folds("begin\nend;\n", state, &state), "1 1");
    EXPECT_EQ(state, (TFoldState{0, false}));
    for (const TFoldState packed : {TFoldState{0, false}, TFoldState{1, true}, TFoldState{2999, false}}) {
        const int lineState = PackFoldState(packed) | lsBlockComment;
        EXPECT_EQ(UnpackFoldState(lineState), packed);
        EXPECT_EQ(lineState & kLexStateMask, lsBlockComment);
    }
}

TEST(Folding, BlockWordsFindTheirPartner) {
    for (const QStringList& row : test::Rows("block_match.txt")) {
        SCOPED_TRACE(row.join(u'\t').toStdString());
        ASSERT_EQ(row.size(), 2);
        std::string text = test::Unescape(row[1]);
        size_t caret = text.find('|');
        size_t partner = text.find('^');
        if (partner != std::string::npos && partner < caret) --caret;
        if (partner != std::string::npos && partner > caret) --partner;
        text.erase(std::remove(text.begin(), text.end(), '|'), text.end());
        text.erase(std::remove(text.begin(), text.end(), '^'), text.end());
        const std::optional<TBlockMatch> match = MatchBlockWord(text, lsCode, caret);
        if (partner == std::string::npos) {
            EXPECT_FALSE(match.has_value());
            continue;
        }
        ASSERT_TRUE(match.has_value());
        EXPECT_EQ(match->Partner.Start, partner);
        EXPECT_LE(match->Word.Start, caret);
        EXPECT_GE(match->Word.Start + match->Word.Length, caret);
    }
}

} // namespace

namespace test {
namespace {

class FoldingEditorTest : public EditorTest {
protected:
    int Level(int line) const {
        return static_cast<int>(edit->SendScintilla(QsciScintillaBase::SCI_GETFOLDLEVEL, line));
    }
    bool IsHeader(int line) const { return (Level(line) & QsciScintillaBase::SC_FOLDLEVELHEADERFLAG) != 0; }
    // One letter per line: "H" for a fold header, "v" for another line; "h" and "." where hidden.
    std::string Lines() const {
        std::string out;
        for (int line = 0; line < edit->lines(); ++line) {
            const bool shown = edit->SendScintilla(QsciScintillaBase::SCI_GETLINEVISIBLE, line) != 0;
            out += IsHeader(line) ? (shown ? 'H' : 'h') : (shown ? 'v' : '.');
        }
        return out;
    }
    // The runs of text the block match marks, as "line:text".
    std::string MarkedWords() const {
        std::string out;
        const auto marked = [this](long at) {
            return at >= 0 && edit->SendScintilla(QsciScintillaBase::SCI_INDICATORVALUEAT,
                                                  TSyntaxEdit::kBlockMatchIndicator, at) != 0;
        };
        for (long at = 0; at < edit->SendScintilla(QsciScintillaBase::SCI_GETLENGTH); ++at) {
            if (!marked(at)) continue;
            if (!marked(at - 1))
                out += (out.empty() ? "" : " ") +
                       std::to_string(edit->SendScintilla(QsciScintillaBase::SCI_LINEFROMPOSITION, at)) + ':';
            out += static_cast<char>(edit->SendScintilla(QsciScintillaBase::SCI_GETCHARAT, at));
        }
        return out;
    }
    void Settle() {
        QCoreApplication::processEvents();
        edit->viewport()->repaint();
    }
};

constexpr const char* kUnit = "mission M;\r\n"           // 0
                              "function Attack(a);\r\n"  // 1
                              "begin\r\n"                // 2
                              "  if (a) then\r\n"        // 3
                              "  begin\r\n"              // 4
                              "    a := 1;\r\n"          // 5
                              "  end;\r\n"               // 6
                              "end;\r\n"                 // 7
                              "object A (A) AS SHIP\r\n" // 8
                              "  x: (1 + 2); // (\r\n"   // 9
                              "end;\r\n";                // 10

TEST_F(FoldingEditorTest, FoldsBlockMatchesAndBracketsInTheEditor) {
    Load(QString::fromLatin1(kUnit));
    Settle();
    EXPECT_EQ(Lines(), "vHvvHvvvHvvv");
    // Clicking the fold box of the function hides its body, the next declaration stays.
    edit->foldLine(1);
    EXPECT_EQ(Lines(), "vH..h...Hvvv");
    edit->foldLine(1);
    EXPECT_EQ(Lines(), "vHvvHvvvHvvv");

    // The caret on a block word marks it and its partner: the inner pair, the object and its end.
    for (const auto& [line, index, marked] :
         {std::tuple{4, 3, "4:begin 6:end"}, {10, 3, "8:object 10:end"}, {5, 5, ""}}) {
        edit->SetCaret(line, index);
        Settle();
        EXPECT_EQ(MarkedWords(), marked) << line;
    }

    // Brackets match only in code.
    edit->SetCaret(9, 5);
    edit->moveToMatchingBrace();
    EXPECT_EQ(Caret(), std::make_pair(9, 12));
    // The "(" of the comment is no bracket of the code: the caret stays.
    edit->SetCaret(9, 17);
    edit->moveToMatchingBrace();
    EXPECT_EQ(Caret(), std::make_pair(9, 17));
}

TEST_F(FoldingEditorTest, TypingABlockMakesAFold) {
    Load(QString::fromLatin1("mission M;\r\nvar a;\r\n"), 1, 6);
    Settle();
    EXPECT_FALSE(IsHeader(1));
    QTest::keyClicks(edit.get(), QStringLiteral(" begin"));
    Settle();
    EXPECT_TRUE(IsHeader(1));
    // Typing end below closes it: the line after the end is back at the outer depth.
    edit->ExecuteCommand(ecLineBreak);
    QTest::keyClicks(edit.get(), QStringLiteral("end;"));
    edit->ExecuteCommand(ecLineBreak);
    QTest::keyClicks(edit.get(), QStringLiteral("var b;"));
    Settle();
    EXPECT_EQ(Level(3) & QsciScintillaBase::SC_FOLDLEVELNUMBERMASK, QsciScintillaBase::SC_FOLDLEVELBASE);
    EXPECT_EQ(Level(2) & QsciScintillaBase::SC_FOLDLEVELNUMBERMASK, QsciScintillaBase::SC_FOLDLEVELBASE + 1);
}

} // namespace
} // namespace test
} // namespace velkor
