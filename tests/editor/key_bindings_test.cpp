// Commands by name and number, key strokes, every default binding in the order it is installed, keys sent
// to the editor as real key presses (read from tests/cases/editor/), two-key sequences and bindings changed
// at run time.
#include "editor/editor_commands.h"
#include "editor/key_event.h"
#include "editor_test_app.h"

#include <QClipboard>
#include <QKeyEvent>
#include <QKeySequence>
#include <QSignalSpy>
#include <QTest>

#include <set>

namespace velkor::test {
namespace {

QKeyCombination Key(const QString& name) {
    const QKeySequence seq(name, QKeySequence::PortableText);
    EXPECT_EQ(seq.count(), 1) << name.toStdString();
    return seq[0];
}

TShortCut ShortCutOf(QKeyCombination key) {
    const Qt::KeyboardModifiers mods = key.keyboardModifiers();
    return {key.key(), (mods & Qt::ShiftModifier ? ssShift : ssNone) |
                           (mods & Qt::ControlModifier ? ssCtrl : ssNone) |
                           (mods & Qt::AltModifier ? ssAlt : ssNone)};
}

class KeyBindings : public EditorTest {
protected:
    // Presses the keys (names separated by blanks) in the marked text before and checks the text after.
    void Press(const QString& keys, const QString& before, const QString& after) {
        Load(Parse(before));
        for (const QString& name : keys.split(u' ')) {
            const QKeyCombination key = Key(name);
            QTest::keyClick(edit.get(), key.key(), key.keyboardModifiers());
        }
        ExpectText(Parse(after));
    }
};

TEST_F(KeyBindings, AllSeventyFourInTheirOrder) {
    const auto rows = Rows("bindings.txt");
    ASSERT_EQ(rows.size(), 74u);
    ASSERT_EQ(edit->KeyStrokes().Count(), 74);
    std::set<std::pair<int, unsigned>> keys;
    for (int i = 0; i < 74; ++i) {
        const QStringList& row = rows[static_cast<size_t>(i)];
        SCOPED_TRACE(row.join(u' ').toStdString());
        const TKeyStroke& stroke = edit->KeyStrokes()[i];
        EXPECT_EQ(stroke.Command, EditorCommandFromName(row[0].toStdString()).value_or(-1));
        const QKeyCombination key = Key(row[1]);
        EXPECT_EQ(stroke.ShortCut, ShortCutOf(key));
        EXPECT_TRUE(stroke.ShortCut2.IsEmpty());
        EXPECT_TRUE(keys.insert({stroke.ShortCut.Key, stroke.ShortCut.Shift}).second) << "bound twice";
    }
}

TEST_F(KeyBindings, KeysDoTheirCommands) {
    // The shortcut of a key event: keypad Enter is Return, Backtab is Shift+Tab; Ctrl is a modifier key.
    const auto of = [](Qt::Key key, Qt::KeyboardModifiers mods) {
        return ShortCutFromKeyEvent(QKeyEvent(QEvent::KeyPress, key, mods));
    };
    EXPECT_EQ(of(Qt::Key_Enter, Qt::KeypadModifier), (TShortCut{Qt::Key_Return, ssNone}));
    EXPECT_EQ(of(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier),
              (TShortCut{Qt::Key_Z, ssShift | ssCtrl}));
    EXPECT_EQ(of(Qt::Key_Backtab, Qt::ShiftModifier), (TShortCut{Qt::Key_Tab, ssShift}));
    EXPECT_TRUE(IsModifierKey(Qt::Key_Control));
    EXPECT_FALSE(IsModifierKey(Qt::Key_A));
    const auto rows = Rows("keys.txt");
    EXPECT_GE(rows.size(), 60u);
    for (const QStringList& row : rows) {
        SCOPED_TRACE(row.join(u'\t').toStdString());
        ASSERT_GE(row.size(), 3);
        QApplication::clipboard()->setText(QStringLiteral("PASTE"));
        Press(row[0], row[1], row[2]);
        if (row.size() > 3) {
            EXPECT_EQ(QApplication::clipboard()->text(), row[3]);
        }
    }
}

// Moves by a page or to the screen's edge depend on the window's height, scrolling on where the view is.
TEST_F(KeyBindings, PagesAndScrolling) {
    const int page = static_cast<int>(edit->SendScintilla(QsciScintillaBase::SCI_LINESONSCREEN));
    ASSERT_GT(page, 5);
    for (const QStringList& row : Rows("pages.txt")) {
        SCOPED_TRACE(row.join(u'\t').toStdString());
        const int top = row[1].toInt(), line = row[2].toInt(), index = row[3].toInt();
        Load(NumberedLines(300), line, index);
        edit->setFirstVisibleLine(top);
        const QKeyCombination key = Key(row[0]);
        QTest::keyClick(edit.get(), key.key(), key.keyboardModifiers());
        EXPECT_EQ(edit->hasSelectedText(), (key.keyboardModifiers() & Qt::ShiftModifier) != 0);
        if (row[4] == u"page") {
            EXPECT_GE(std::abs(Caret().first - line), page - 2);
            EXPECT_LE(std::abs(Caret().first - line), page);
            EXPECT_EQ(Caret().second, 0);
            continue;
        }
        EXPECT_EQ(Caret(), std::make_pair(row[4] == u"bottom" ? top + page - 1 : row[4].toInt(), index));
        EXPECT_EQ(edit->firstVisibleLine(), row[5].toInt());
    }
}

TEST_F(KeyBindings, SequencesAndChangedBindings) {
    for (const QStringList& row : Rows("sequences.txt")) {
        SCOPED_TRACE(row.join(u'\t').toStdString());
        ASSERT_EQ(row.size(), 4);
        TearDown();
        SetUp();
        for (const QString& binding : row[0].split(u' ')) {
            const QStringList parts = binding.split(u'=');
            if (binding.startsWith(u'-') && binding.size() > 1) {
                edit->KeyStrokes().Delete(edit->KeyStrokes().FindShortcut(ShortCutOf(Key(binding.mid(1)))));
            } else if (parts.size() == 2) {
                const bool refused = parts[1].endsWith(u'!');
                const QKeySequence keys(refused ? parts[1].chopped(1) : parts[1], QKeySequence::PortableText);
                const int count = edit->KeyStrokes().Count();
                try {
                    edit->KeyStrokes().Add(EditorCommandFromName(parts[0].toStdString()).value_or(-1),
                                           ShortCutOf(keys[0]),
                                           keys.count() > 1 ? ShortCutOf(keys[1]) : TShortCut{});
                    EXPECT_FALSE(refused) << "not refused: " << binding.toStdString();
                } catch (const EKeyStrokeError& e) {
                    EXPECT_TRUE(refused) << binding.toStdString();
                    EXPECT_STREQ(e.what(), "Shortcut already exists");
                    EXPECT_EQ(edit->KeyStrokes().Count(), count);
                }
            }
        }
        Press(row[1], row[2], row[3]);
    }
    QTest::keyClick(edit.get(), Qt::Key_7, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(edit->markersAtLine(Caret().first), 1u << 7) << "a bookmark shows in the margin";
}

TEST_F(KeyBindings, UserCommandsAndGotoAreSignalled) {
    Load(QStringLiteral("first\r\nsecond\r\nthird"));
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

// The command table, written out independently of the implementation's: one "name number" per line.
TEST(EditorCommandNames, EveryCommandConvertsBothWaysAndNoOther) {
    const auto table = Rows("commands.txt");
    EXPECT_EQ(table.size(), 83u);
    for (const QStringList& row : table) {
        const std::string name = row[0].section(u' ', 0, 0).toStdString();
        const TEditorCommand value = row[0].section(u' ', 1).toInt();
        EXPECT_EQ(EditorCommandToName(value).value_or("?"), name);
        EXPECT_EQ(EditorCommandFromName(name).value_or(-1), value) << name;
    }
    // No named command beyond the table; unknown names and numbers give nothing.
    EXPECT_EQ(NamedEditorCommands().size(), table.size());
    for (TEditorCommand c : {-1, 18, 100, 118, 200, 400, 412, 600, 616, 700, 711, 750, 761, 1000, 1002})
        EXPECT_FALSE(EditorCommandToName(c).has_value()) << c;
    for (const char* name : {"", "ec", "ecFoo", "ecGotoMarker10", "Left", "ecLeft "})
        EXPECT_FALSE(EditorCommandFromName(name).has_value()) << name;
    // Names are read without regard to case.
    EXPECT_EQ(EditorCommandFromName("ECSELECTALL"), ecSelectAll);
    EXPECT_EQ(EditorCommandFromName("ectogglemarker3"), 754);
}

TEST(KeyStrokes, FindsByShortcutPairAndByCommand) {
    TKeyStrokes strokes;
    strokes.ResetDefaults();
    strokes.ResetDefaults(); // the same list again, not a clash
    ASSERT_EQ(strokes.Count(), 74);
    EXPECT_EQ(strokes[strokes.FindShortcut({Qt::Key_Z, ssCtrl | ssShift})].Command, ecRedo);
    EXPECT_EQ(strokes.FindShortcut({Qt::Key_Z, ssAlt}), -1);
    EXPECT_EQ(strokes.FindShortcut({}), -1);
    EXPECT_EQ(strokes.FindCommand(ecPaste), strokes.FindShortcut({Qt::Key_V, ssCtrl}));
    EXPECT_EQ(strokes.FindCommand(ecClearAll), -1);
    // A key stroke may keep its own keys but not take another's; a refusal changes nothing.
    const int paste = strokes.FindCommand(ecPaste);
    strokes.SetShortCuts(paste, {Qt::Key_V, ssCtrl});
    EXPECT_THROW(strokes.SetShortCuts(paste, {Qt::Key_C, ssCtrl}), EKeyStrokeError);
    EXPECT_EQ(strokes[paste].ShortCut, (TShortCut{Qt::Key_V, ssCtrl}));
    EXPECT_EQ(strokes.Count(), 74);
    EXPECT_FALSE(strokes.StartsSequence({Qt::Key_K, ssCtrl}));
    strokes.Add(ecClearAll, {Qt::Key_K, ssCtrl}, {Qt::Key_L, ssCtrl});
    EXPECT_TRUE(strokes.StartsSequence({Qt::Key_K, ssCtrl}));
    EXPECT_EQ(strokes.FindShortcut({Qt::Key_K, ssCtrl}), -1);
    EXPECT_EQ(strokes.FindShortcut({Qt::Key_K, ssCtrl}, {Qt::Key_L, ssCtrl}), 74);
    strokes.Delete(74);
    EXPECT_FALSE(strokes.StartsSequence({Qt::Key_K, ssCtrl}));
    EXPECT_THROW(strokes.Delete(74), ERangeError);
}

} // namespace
} // namespace velkor::test
