// Two-key sequences and the keys that reach the editor only as modified digits.
#include "editor/key_event.h"
#include "editor_test_app.h"

#include <QKeyEvent>
#include <QSignalSpy>
#include <QTest>

namespace velkor::test {
namespace {

const QString kText = QStringLiteral("first\r\nsecond\r\nthird");

class KeySequences : public EditorTest {};

TEST_F(KeySequences, TwoKeySequences) {
    Load(kText, 1, 0);
    edit->KeyStrokes().Add(ecDeleteLine, {Qt::Key_K, ssCtrl}, {Qt::Key_D, ssNone});
    QTest::keyClick(edit.get(), Qt::Key_K, Qt::ControlModifier);
    EXPECT_EQ(edit->PendingShortCut(), (TShortCut{Qt::Key_K, ssCtrl}));
    EXPECT_EQ(edit->text(), kText) << "the first key alone does nothing yet";
    // Modifier keys pressed in between do not break the sequence.
    QTest::keyClick(edit.get(), Qt::Key_Shift);
    QTest::keyClick(edit.get(), Qt::Key_D);
    EXPECT_EQ(edit->text(), QStringLiteral("first\r\nthird"));
    EXPECT_TRUE(edit->PendingShortCut().IsEmpty());

    // Sequences sharing a first key are told apart.
    Load(kText, 1, 0);
    edit->KeyStrokes().Add(ecEditorBottom, {Qt::Key_K, ssCtrl}, {Qt::Key_B, ssCtrl});
    QTest::keyClick(edit.get(), Qt::Key_K, Qt::ControlModifier);
    QTest::keyClick(edit.get(), Qt::Key_B, Qt::ControlModifier);
    EXPECT_EQ(edit->text(), kText);
    EXPECT_EQ(Caret(), std::make_pair(2, 5));

    // An unmatched second key acts on its own.
    Load(kText, 0, 0);
    QTest::keyClick(edit.get(), Qt::Key_K, Qt::ControlModifier);
    QTest::keyClick(edit.get(), Qt::Key_X);
    EXPECT_EQ(Line(0), QStringLiteral("xfirst"));
    QTest::keyClick(edit.get(), Qt::Key_K, Qt::ControlModifier);
    QTest::keyClick(edit.get(), Qt::Key_End);
    EXPECT_EQ(Caret(), std::make_pair(0, 6));

    // A single binding on the first key runs when no sequence follows.
    Load(kText, 0, 0);
    edit->KeyStrokes().Add(ecEditorBottom, {Qt::Key_K, ssCtrl});
    QTest::keyClick(edit.get(), Qt::Key_K, Qt::ControlModifier);
    EXPECT_EQ(Caret(), std::make_pair(0, 0));
    QTest::keyClick(edit.get(), Qt::Key_Left);
    EXPECT_EQ(Caret(), std::make_pair(2, 4)) << "Ctrl+K went to the end, then Left";
}

TEST_F(KeySequences, UserCommandsAndGotoAreSignalled) {
    Load(kText, 0, 0);
    QSignalSpy user(edit.get(), &TSyntaxEdit::UserCommand);
    QSignalSpy gotoLine(edit.get(), &TSyntaxEdit::GotoRequested);
    edit->KeyStrokes().Add(ecUserFirst + 4, {Qt::Key_F9, ssNone});
    edit->KeyStrokes().Add(ecSelectGoto, {Qt::Key_G, ssCtrl | ssShift});
    QTest::keyClick(edit.get(), Qt::Key_F9);
    QTest::keyClick(edit.get(), Qt::Key_G, Qt::ControlModifier | Qt::ShiftModifier);
    ASSERT_EQ(user.count(), 1);
    EXPECT_EQ(user.at(0).at(0).toInt(), ecUserFirst + 4);
    ASSERT_EQ(gotoLine.count(), 1);
    EXPECT_TRUE(gotoLine.at(0).at(0).toBool());
    edit->GotoPosition(2, 3, true);
    EXPECT_EQ(edit->selectedText(), QStringLiteral("first\r\nsecond\r\nthi"));
}

TEST(KeyEvents, ShortcutOfAKeyEvent) {
    TestApp();
    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_EQ(ShortCutFromKeyEvent(enter), (TShortCut{Qt::Key_Return, ssNone}));
    QKeyEvent redo(QEvent::KeyPress, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(ShortCutFromKeyEvent(redo), (TShortCut{Qt::Key_Z, ssShift | ssCtrl}));
    QKeyEvent backtab(QEvent::KeyPress, Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(ShortCutFromKeyEvent(backtab), (TShortCut{Qt::Key_Tab, ssShift}));
    EXPECT_TRUE(IsModifierKey(Qt::Key_Control));
    EXPECT_FALSE(IsModifierKey(Qt::Key_A));
}

} // namespace
} // namespace velkor::test
