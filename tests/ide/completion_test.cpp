// Completion on a compiled page: the candidates (the compile's symbols, the game functions and the
// keywords with their kinds), keywords before any compile unless code intelligence is off, and where the
// list shows.
#include "ide/completion_popup.h"
#include "tests/ide/edit_page_test_support.h"

namespace velkor::test {
namespace {

class CompletionTest : public PageTest {
protected:
    // The demo compiled, the caret on a fresh line inside Tick's body to type on.
    TfrmEdit* OpenDemoOnANewLine(TfrmMain& window) {
        TfrmEdit* page = OpenDemo(window);
        if (!page) return nullptr;
        page->Memo()->SetCaret(16, 0);
        page->Memo()->insert(QStringLiteral("  \r\n"));
        page->Memo()->SetCaret(16, 2);
        return page;
    }
};

TEST_F(CompletionTest, CandidatesAreTheSymbolsAndKeywordsWithTheirKinds) {
    TfrmMain window({});
    TfrmEdit* page = OpenDemoOnANewLine(window);
    ASSERT_NE(page, nullptr);
    const std::vector<TCompletion> all = CompletionCandidates(page->Symbols().get());
    for (const QStringList& row : ReadCases("completion.txt")) {
        const auto [first, last] = CompletionRange(all, row[0]);
        QStringList found{row[0]};
        for (std::size_t i = first; i < last; ++i) found << all[i].Name + " (" + all[i].Kind + ')';
        EXPECT_EQ(found, row);
    }
    // A name is offered once, and without a compile the keywords are still there.
    const std::vector<TCompletion> bare = CompletionCandidates(nullptr);
    ASSERT_FALSE(bare.empty());
    for (const TCompletion& c : bare) EXPECT_EQ(c.Kind, QStringLiteral("Keyword"));
    for (std::size_t i = 1; i < all.size(); ++i) EXPECT_LT(all[i - 1].Key, all[i].Key);
}

// Keywords are offered before any compile, unless code intelligence is switched off.
TEST_F(CompletionTest, KeywordsBeforeAnyCompileUnlessIntelligenceIsOff) {
    for (const bool off : {false, true}) {
        TIniFile(IniPath()).WriteBool("editor", "disable_intelligence", off);
        TfrmMain window({});
        Show(window);
        TfrmEdit* page = window.ActivePage();
        page->Memo()->setFocus();
        QTest::keyClicks(page->Memo(), QStringLiteral("beg"));
        ASSERT_EQ(page->Completion().IsOpen(), !off);
        if (!off) {
            ASSERT_EQ(page->Completion().List()->count(), 1);
            EXPECT_EQ(page->Completion().List()->item(0)->text(), QStringLiteral("begin  \u2014 Keyword"));
        }
        QTest::keyClick(page->Memo(), Qt::Key_Return);
        EXPECT_EQ(page->Memo()->LineText(0), off ? QStringLiteral("beg") : QStringLiteral("begin"));
        page->SetModified(false);
    }
}

TEST_F(CompletionTest, ScreenshotTheListOpensBelowTheWord) {
    TfrmMain window({});
    Show(window, 900, 650);
    TfrmEdit* page = OpenDemoOnANewLine(window);
    ASSERT_NE(page, nullptr);
    TPageEditor* memo = page->Memo();
    memo->setFocus();
    QTest::keyClicks(memo, QStringLiteral("sh"));
    ASSERT_TRUE(page->Completion().IsOpen());
    ProcessEvents();
    QListWidget* list = page->Completion().List();
    // Below the caret's line, starting at the word, every row readable.
    const QPoint word = memo->viewport()->mapToGlobal(TextRect(*memo, 16, 2, 2).topLeft());
    const QRect shown(list->mapToGlobal(QPoint(0, 0)), list->size());
    EXPECT_NEAR(shown.left(), word.x(), 4); // the list's frame may stand out
    EXPECT_GT(shown.top(), word.y());
    EXPECT_GE(shown.height(), list->count() * list->sizeHintForRow(0));
    const QImage image = list->grab().toImage();
    KeepScreenshot(image, "completion_popup.png");
    // Text is drawn in every row: dark pixels in each row's rectangle.
    for (int row = 0; row < list->count(); ++row) {
        const QRect rect = list->visualItemRect(list->item(row)).intersected(image.rect());
        int dark = 0;
        for (int y = rect.top(); y <= rect.bottom(); ++y) {
            for (int x = rect.left(); x <= rect.right(); ++x) {
                const QColor c = image.pixelColor(x, y);
                dark += c.lightness() < 100 ||
                        (row == list->currentRow() && c != image.pixelColor(rect.topLeft()));
            }
        }
        EXPECT_GT(dark, 20) << "row " << row;
    }
}

} // namespace
} // namespace velkor::test
