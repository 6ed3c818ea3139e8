// Back and forward (Alt+Left, Alt+Right) through the places the caret jumped from: Find Declaration, Go
// to Line, the symbol lists and the messages, across pages.
#include "compiler/symbol_table.h"
#include "ide/edit_page.h"
#include "ide/main_window.h"
#include "ide/nav_history.h"
#include "ide/output_view.h"
#include "tests/ide/edit_page_test_support.h"

#include <QAction>
#include <QTest>

namespace velkor::test {
namespace {

TEST(NavHistoryTest, BackAndForwardRetraceTheJumps) {
    // Each step: 'j' jumps from `at`, 'b' goes back from `at`, 'f' forward from `at`; `expected` is where
    // a step lands ("-" for nowhere).
    struct Step {
        char Op;
        int At;
        int Expected;
    };
    const Step steps[] = {
        {'b', 1, -1},  {'j', 1, 0},   {'j', 10, 0},  {'j', 20, 0}, // jumped 1 -> 10 -> 20 -> 30
        {'b', 30, 20}, {'b', 20, 10}, {'b', 10, 1},  {'b', 1, -1}, {'f', 1, 10}, {'f', 10, 20},
        {'f', 20, 30}, {'f', 30, -1}, {'b', 30, 20}, {'j', 25, 0}, // a new jump from 25 drops the way forward
        {'f', 40, -1}, {'b', 40, 25}, {'b', 25, 10},
    };
    TNavHistory history;
    for (const Step& step : steps) {
        const TNavPlace at{"a.pas", step.At, 0};
        if (step.Op == 'j') {
            history.Record(at);
            continue;
        }
        const auto to = step.Op == 'b' ? history.Back(at) : history.Forward(at);
        if (step.Expected < 0) {
            EXPECT_FALSE(to) << step.Op << " from " << step.At;
        } else {
            ASSERT_TRUE(to) << step.Op << " from " << step.At;
            EXPECT_EQ(to->Line, step.Expected) << step.Op << " from " << step.At;
        }
    }
}

TEST(NavHistoryTest, KeepsAtMostItsLimitAndForgetsGoneFiles) {
    TNavHistory history;
    for (int i = 0; i < static_cast<int>(TNavHistory::kLimit) + 20; ++i) history.Record({"a.pas", i, 0});
    int back = 0;
    TNavPlace at{"a.pas", 1000, 0};
    while (const auto to = history.Back(at)) {
        at = *to;
        ++back;
    }
    EXPECT_EQ(back, static_cast<int>(TNavHistory::kLimit));
    history.Record({"a.pas", 7, 0});
    history.Record({"gone.pas", 3, 0});
    history.Forget("gone.pas");
    const auto to = history.Back({"a.pas", 0, 0});
    ASSERT_TRUE(to);
    EXPECT_EQ(*to, (TNavPlace{"a.pas", 7, 0}));
    EXPECT_FALSE(history.CanGoBack());
}

class NavigationTest : public PageTest {};

TEST_F(NavigationTest, AltLeftAndAltRightGoBackAndForwardAcrossPages) {
    TfrmMain window({});
    ShowActive(window);
    TfrmEdit* demo = OpenDemo(window);
    ASSERT_NE(demo, nullptr);
    const auto place = [&] {
        TfrmEdit* page = window.ActivePage();
        return page->Caption() + u':' + QString::number(page->Memo()->CaretLine() + 1) + u':' +
               QString::number(page->Memo()->CaretColumn());
    };

    // Go to Line from line 2 to 17 (its dialog asked with its caption), then Find Declaration of Boost there
    // into the include.
    QString asked;
    DialogHooks().AskInteger = [&](QWidget*, const QString& caption, const QString& label,
                                   int) -> std::optional<int> {
        asked = caption + u'|' + label;
        return 17;
    };
    demo->Memo()->SetCaret(1, 4);
    window.MenuItem(QStringLiteral("MenuEditFindGotoLine"))->trigger();
    EXPECT_EQ(asked, QStringLiteral("Go to Line Number|Enter new line number:"));
    ASSERT_EQ(place(), QStringLiteral("Demo.pas:17:0"));
    demo->Memo()->SetCaret(16, 22); // in "Boost"
    demo->FindDeclaration();
    ASSERT_EQ(place(), QStringLiteral("helpers.pas:6:0"));
    // A symbol-list jump back into the mission: Attack on line 9.
    TfrmEdit* helpers = window.ActivePage();
    helpers->Memo()->SetCaret(7, 2);
    const auto attack = demo->SymbolNamed(QStringLiteral("Attack"));
    ASSERT_TRUE(attack);
    helpers->GotoDeclaration(*attack);
    ASSERT_EQ(place(), QStringLiteral("Demo.pas:9:0"));

    const auto key = [&](Qt::Key k) {
        QTest::keyClick(window.ActivePage()->Memo(), k, Qt::AltModifier);
        return place();
    };
    EXPECT_EQ(key(Qt::Key_Left), QStringLiteral("helpers.pas:8:2"));
    EXPECT_EQ(key(Qt::Key_Left), QStringLiteral("Demo.pas:17:22"));
    EXPECT_EQ(key(Qt::Key_Left), QStringLiteral("Demo.pas:2:4"));
    EXPECT_EQ(key(Qt::Key_Left), QStringLiteral("Demo.pas:2:4")); // nothing further back
    EXPECT_EQ(key(Qt::Key_Right), QStringLiteral("Demo.pas:17:22"));
    EXPECT_EQ(key(Qt::Key_Right), QStringLiteral("helpers.pas:8:2"));
    EXPECT_EQ(key(Qt::Key_Right), QStringLiteral("Demo.pas:9:0"));
    EXPECT_EQ(window.WindowAction(QStringLiteral("ActionNavigateBack"))->shortcut(),
              QKeySequence(QStringLiteral("Alt+Left")));
}

} // namespace
} // namespace velkor::test
