// Search and replace with each option bit of the find dialog.
#include "editor_test_app.h"

#include <vector>

namespace velkor::test {
namespace {

const QString kText = QStringLiteral("Alpha alpha ALPHA\r\nalphabet beta_alpha x.alpha\r\nend alpha");

class Search : public EditorTest {
protected:
    // The selection as "line:from-to" (a selection within one line).
    QString Sel() {
        int a = 0, b = 0, c = 0, d = 0;
        edit->getSelection(&a, &b, &c, &d);
        return QStringLiteral("%1:%2-%3").arg(a).arg(b).arg(d);
    }
    // Every match found by repeating a search from the start, space-separated.
    QString FindAll(const QString& what, unsigned options) {
        QStringList out;
        edit->setCursorPosition(0, 0);
        while (edit->Search(what, {}, options) && out.size() < 50) out << Sel();
        return out.join(u' ');
    }
};

TEST_F(Search, EachOptionFindsItsMatches) {
    struct Case {
        const char* What;
        unsigned Options;
        const char* Matches;
    };
    const Case cases[] = {
        {"alpha", 0, "0:0-5 0:6-11 0:12-17 1:0-5 1:14-19 1:22-27 2:4-9"},
        {"ALPHA", ssoMatchCase, "0:12-17"},
        // Not "alphabet" nor "beta_alpha"; "x.alpha" is a word after the dot.
        {"alpha", ssoWholeWord, "0:0-5 0:6-11 0:12-17 1:22-27 2:4-9"},
        {"^[a-z]+", ssoRegExpr | ssoMatchCase, "1:0-8 2:0-3"},
        {"a$", ssoRegExpr, "0:16-17 1:26-27 2:8-9"}, // before CR LF and at the end
        {"x*", ssoRegExpr, "1:20-21"},               // empty matches are passed over
        {"alpha", ssoIgnoreNonSpacing | ssoSpaceCompress, "0:0-5 0:6-11 0:12-17 1:0-5 1:14-19 1:22-27 2:4-9"},
    };
    Load(kText);
    for (const Case& c : cases)
        EXPECT_EQ(FindAll(QString::fromLatin1(c.What), c.Options), QString::fromLatin1(c.Matches)) << c.What;
    // An invalid expression finds nothing and says why; nothing to find finds nothing.
    EXPECT_FALSE(edit->Search(QStringLiteral("(a"), {}, ssoRegExpr));
    EXPECT_FALSE(edit->LastSearchError().isEmpty());
    EXPECT_FALSE(edit->Search({}, {}, 0));
}

TEST_F(Search, BackwardAndFromTheHomePosition) {
    Load(kText, 1, 9);
    ASSERT_TRUE(edit->Search(QStringLiteral("alpha"), {}, ssoBackwards));
    EXPECT_EQ(Sel(), QStringLiteral("1:0-5"));
    ASSERT_TRUE(edit->Search(QStringLiteral("alpha"), {}, ssoBackwards));
    EXPECT_EQ(Sel(), QStringLiteral("0:12-17"));
    edit->setCursorPosition(0, 3);
    EXPECT_FALSE(edit->Search(QStringLiteral("alpha"), {}, ssoBackwards));

    Load(kText, 2, 9);
    EXPECT_FALSE(edit->Search(QStringLiteral("alpha"), {}, 0));
    ASSERT_TRUE(edit->Search(QStringLiteral("alpha"), {}, ssoEntireScope));
    EXPECT_EQ(Sel(), QStringLiteral("0:0-5"));
    edit->setCursorPosition(0, 0);
    ASSERT_TRUE(edit->Search(QStringLiteral("alpha"), {}, ssoEntireScope | ssoBackwards));
    EXPECT_EQ(Sel(), QStringLiteral("2:4-9"));
}

TEST_F(Search, SelectedTextOnly) {
    Load(kText);
    edit->setSelection(1, 5, 1, 20);
    ASSERT_TRUE(edit->Search(QStringLiteral("alpha"), {}, ssoSelectedOnly));
    EXPECT_EQ(Sel(), QStringLiteral("1:14-19")) << "inside the selection only";
    edit->setSelection(1, 5, 1, 17);
    EXPECT_FALSE(edit->Search(QStringLiteral("alpha"), {}, ssoSelectedOnly)) << "a match must end inside";
    // Replace all inside a selection leaves the rest alone.
    edit->setSelection(0, 6, 1, 8);
    ASSERT_TRUE(edit->Search(QStringLiteral("alpha"), QStringLiteral("Z"),
                             ssoSelectedOnly | ssoReplace | ssoReplaceAll));
    EXPECT_EQ(edit->text(), QStringLiteral("Alpha Z Z\r\nZbet beta_alpha x.alpha\r\nend alpha"));
}

TEST_F(Search, ReplaceTakesTheFoundMatchThenTheNext) {
    Load(kText);
    ASSERT_TRUE(edit->Search(QStringLiteral("alpha"), {}, ssoMatchCase));
    EXPECT_EQ(Sel(), QStringLiteral("0:6-11"));
    ASSERT_TRUE(edit->Search(QStringLiteral("alpha"), QStringLiteral("omega"), ssoMatchCase | ssoReplace));
    EXPECT_EQ(Line(0), QStringLiteral("Alpha omega ALPHA"));
    EXPECT_EQ(Sel(), QStringLiteral("0:6-11")) << "the replacement is selected";
    ASSERT_TRUE(edit->Search(QStringLiteral("alpha"), QStringLiteral("omega"), ssoMatchCase | ssoReplace));
    EXPECT_EQ(Line(1), QStringLiteral("omegabet beta_alpha x.alpha"));
    edit->undo();
    edit->undo();
    EXPECT_EQ(edit->text(), kText);
}

TEST_F(Search, ReplaceWithPromptAsksForEachMatch) {
    Load(kText);
    std::vector<QString> asked;
    std::vector<TReplaceAnswer> answers = {TReplaceAnswer::No, TReplaceAnswer::Yes};
    edit->SetReplacePrompt([&](const QString& found, int line, int column) {
        asked.push_back(QStringLiteral("%1@%2:%3").arg(found).arg(line).arg(column));
        return answers.at(asked.size() - 1);
    });
    ASSERT_TRUE(edit->Search(QStringLiteral("alpha"), QStringLiteral("-"), ssoReplace | ssoPrompt));
    EXPECT_EQ(asked, (std::vector<QString>{QStringLiteral("Alpha@0:0"), QStringLiteral("alpha@0:6")}));
    EXPECT_EQ(Line(0), QStringLiteral("Alpha - ALPHA"));
}

TEST_F(Search, ReplaceAllIsOneUndoStep) {
    Load(kText);
    ASSERT_TRUE(edit->Search(QStringLiteral("alpha"), QString::fromUtf8("\xCE\xB1"),
                             ssoReplace | ssoReplaceAll | ssoWholeWord));
    EXPECT_EQ(
        edit->text(),
        QString::fromUtf8("\xCE\xB1 \xCE\xB1 \xCE\xB1\r\nalphabet beta_alpha x.\xCE\xB1\r\nend \xCE\xB1"));
    // Multi-byte replacements shift the later matches correctly; a second pass works on the new text.
    ASSERT_TRUE(edit->Search(QString::fromUtf8("\xCE\xB1"), QStringLiteral("ab"),
                             ssoReplace | ssoReplaceAll | ssoEntireScope));
    EXPECT_EQ(edit->text(), QStringLiteral("ab ab ab\r\nalphabet beta_alpha x.ab\r\nend ab"));
    edit->undo();
    edit->undo();
    EXPECT_EQ(edit->text(), kText);
    EXPECT_FALSE(edit->Search(QStringLiteral("omega"), QStringLiteral("x"), ssoReplace | ssoReplaceAll));
}

TEST_F(Search, ReplaceAllFromTheCaretAndWithGroups) {
    Load(kText, 1, 0);
    ASSERT_TRUE(edit->Search(QStringLiteral("(\\w+)\\.(\\w+)"), QStringLiteral("\\2->\\1"),
                             ssoRegExpr | ssoReplace | ssoReplaceAll));
    EXPECT_EQ(Line(1), QStringLiteral("alphabet beta_alpha alpha->x"));
    EXPECT_EQ(Line(0), QStringLiteral("Alpha alpha ALPHA")) << "before the caret: untouched";
}

TEST_F(Search, ReplaceAllWithPromptStub) {
    Load(kText);
    int calls = 0;
    edit->SetReplacePrompt([&](const QString&, int, int) {
        ++calls;
        switch (calls) {
        case 1: return TReplaceAnswer::Yes;
        case 2: return TReplaceAnswer::No;
        case 3: return TReplaceAnswer::All;
        default: return TReplaceAnswer::Cancel;
        }
    });
    ASSERT_TRUE(edit->Search(QStringLiteral("alpha"), QStringLiteral("_"),
                             ssoReplace | ssoReplaceAll | ssoPrompt | ssoWholeWord));
    EXPECT_EQ(calls, 3);
    EXPECT_EQ(edit->text(), QStringLiteral("_ alpha _\r\nalphabet beta_alpha x._\r\nend _"));
    // Cancel stops at once.
    Load(kText);
    calls = 3;
    ASSERT_TRUE(
        edit->Search(QStringLiteral("alpha"), QStringLiteral("_"), ssoReplace | ssoReplaceAll | ssoPrompt));
    EXPECT_EQ(edit->text(), kText);
}

TEST_F(Search, ReplaceAllIsLinear) {
    // 200,000 replacements in a 1.4 MB text; a quadratic pass would take minutes.
    QString big;
    const int n = 50000;
    for (int i = 0; i < n; ++i) big += QStringLiteral("a := a + 1; a := a - 1;\r\n");
    Load(big);
    ASSERT_TRUE(edit->Search(QStringLiteral("a"), QStringLiteral("bb"),
                             ssoReplace | ssoReplaceAll | ssoWholeWord | ssoMatchCase));
    EXPECT_EQ(Line(n - 1), QStringLiteral("bb := bb + 1; bb := bb - 1;"));
    edit->undo();
    EXPECT_EQ(Line(0), QStringLiteral("a := a + 1; a := a - 1;"));
}

} // namespace
} // namespace velkor::test
