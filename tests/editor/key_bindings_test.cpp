// Every default binding, in the order it is installed, sent to the editor as a real key press; each row
// checks what its command did.
#include "editor_test_app.h"

#include <QClipboard>
#include <QTest>

#include <functional>

namespace velkor::test {
namespace {

const QString kSmall = QStringLiteral("one two three\r\nfour five six\r\nseven eight nine");

using Check = std::function<void(EditorTest&, TSyntaxEdit&)>;

struct Binding {
    TEditorCommand command;                               // the command the key runs
    int key;                                              // the key pressed
    Qt::KeyboardModifiers mods;                           // with these modifiers
    std::function<void(EditorTest&, TSyntaxEdit&)> setUp; // text and caret before the key
    Check check;                                          // the command's effect
};

constexpr auto S = Qt::ShiftModifier;
constexpr auto C = Qt::ControlModifier;
constexpr auto A = Qt::AltModifier;
constexpr auto N = Qt::NoModifier;

class KeyBindings : public EditorTest {
public:
    using EditorTest::Caret;
    using EditorTest::Line;
    using EditorTest::Load;
};

// Small text, caret at (line, index).
auto Small(int line, int index) {
    return [=](EditorTest& t, TSyntaxEdit&) { static_cast<KeyBindings&>(t).Load(kSmall, line, index); };
}

// 300 numbered lines, the view scrolled to `top`, caret at (line, index).
auto Long(int top, int line, int index) {
    return [=](EditorTest& t, TSyntaxEdit& e) {
        static_cast<KeyBindings&>(t).Load(NumberedLines(300), line, index);
        e.setFirstVisibleLine(top);
    };
}

auto SmallSelected(int l1, int i1, int l2, int i2) {
    return [=](EditorTest& t, TSyntaxEdit& e) {
        static_cast<KeyBindings&>(t).Load(kSmall);
        e.setSelection(l1, i1, l2, i2);
    };
}

std::pair<int, int> CaretOf(TSyntaxEdit& e) {
    int l = 0, i = 0;
    e.getCursorPosition(&l, &i);
    return {l, i};
}

Check CaretAt(int line, int index) {
    return [=](EditorTest&, TSyntaxEdit& e) {
        EXPECT_EQ(CaretOf(e), std::make_pair(line, index));
        EXPECT_FALSE(e.hasSelectedText());
    };
}

Check Selects(const char* text, int line, int index) {
    return [=](EditorTest&, TSyntaxEdit& e) {
        EXPECT_EQ(e.selectedText(), QString::fromUtf8(text));
        EXPECT_EQ(CaretOf(e), std::make_pair(line, index));
    };
}

Check TextIs(const char* text, int line, int index) {
    return [=](EditorTest&, TSyntaxEdit& e) {
        EXPECT_EQ(e.text(), QString::fromUtf8(text));
        EXPECT_EQ(CaretOf(e), std::make_pair(line, index));
    };
}

int LinesOnScreen(TSyntaxEdit& e) {
    return static_cast<int>(e.SendScintilla(QsciScintillaBase::SCI_LINESONSCREEN));
}

// A page move: the caret moved by most of a screen in the given direction.
Check PagedFrom(int from, int sign, bool selecting) {
    return [=](EditorTest&, TSyntaxEdit& e) {
        const int page = LinesOnScreen(e);
        ASSERT_GT(page, 5);
        const auto [line, index] = CaretOf(e);
        EXPECT_GE((line - from) * sign, page - 2);
        EXPECT_LE((line - from) * sign, page);
        EXPECT_EQ(index, 0);
        EXPECT_EQ(e.hasSelectedText(), selecting);
    };
}

// Caret on the first or last line shown, same column.
Check OnScreenEdge(bool bottom, int index, bool selecting) {
    return [=](EditorTest&, TSyntaxEdit& e) {
        const int top = e.firstVisibleLine();
        const int want = bottom ? top + LinesOnScreen(e) - 1 : top;
        EXPECT_EQ(CaretOf(e), std::make_pair(want, index));
        EXPECT_EQ(e.hasSelectedText(), selecting);
    };
}

Check TopLineIs(int top) {
    return [=](EditorTest&, TSyntaxEdit& e) { EXPECT_EQ(e.firstVisibleLine(), top); };
}

Check ClipboardIs(const char* clip, const char* text) {
    return [=](EditorTest&, TSyntaxEdit& e) {
        EXPECT_EQ(QApplication::clipboard()->text(), QString::fromUtf8(clip));
        EXPECT_EQ(e.text(), QString::fromUtf8(text));
    };
}

auto WithClipboard(int line, int index) {
    return [=](EditorTest& t, TSyntaxEdit& e) {
        Small(line, index)(t, e);
        QApplication::clipboard()->setText(QStringLiteral("PASTE"));
    };
}

// An edit to undo: "XYZ" typed at the start, as its own undo step.
auto Edited() {
    return [](EditorTest& t, TSyntaxEdit& e) {
        Small(0, 0)(t, e);
        e.insertAt(QStringLiteral("XYZ"), 0, 0);
    };
}

auto EditedAndUndone() {
    return [](EditorTest& t, TSyntaxEdit& e) {
        Edited()(t, e);
        e.undo();
    };
}

std::vector<Binding> DefaultBindings() {
    const char* small = "one two three\r\nfour five six\r\nseven eight nine";
    std::vector<Binding> b = {
        {ecSelectUp, Qt::Key_Up, S, Small(1, 4), Selects("two three\r\nfour", 0, 4)},
        {ecUp, Qt::Key_Up, N, Small(1, 4), CaretAt(0, 4)},
        {ecScrollUp, Qt::Key_Up, C, Long(50, 60, 0), TopLineIs(49)},
        {ecDown, Qt::Key_Down, N, Small(0, 4), CaretAt(1, 4)},
        {ecSelectDown, Qt::Key_Down, S, Small(0, 4), Selects("two three\r\nfour", 1, 4)},
        {ecScrollDown, Qt::Key_Down, C, Long(50, 60, 0), TopLineIs(51)},
        {ecLeft, Qt::Key_Left, N, Small(1, 4), CaretAt(1, 3)},
        {ecSelectLeft, Qt::Key_Left, S, Small(1, 4), Selects("r", 1, 3)},
        {ecWordLeft, Qt::Key_Left, C, Small(1, 9), CaretAt(1, 5)},
        {ecSelectWordLeft, Qt::Key_Left, S | C, Small(1, 9), Selects("five", 1, 5)},
        {ecRight, Qt::Key_Right, N, Small(1, 4), CaretAt(1, 5)},
        {ecSelectRight, Qt::Key_Right, S, Small(1, 5), Selects("f", 1, 6)},
        {ecWordRight, Qt::Key_Right, C, Small(1, 0), CaretAt(1, 5)},
        {ecSelectWordRight, Qt::Key_Right, S | C, Small(1, 0), Selects("four ", 1, 5)},
        {ecPageDown, Qt::Key_PageDown, N, Long(0, 0, 0), PagedFrom(0, 1, false)},
        {ecSelectPageDown, Qt::Key_PageDown, S, Long(0, 0, 0), PagedFrom(0, 1, true)},
        {ecPageBottom, Qt::Key_PageDown, C, Long(20, 25, 3), OnScreenEdge(true, 3, false)},
        {ecSelectPageBottom, Qt::Key_PageDown, S | C, Long(20, 25, 3), OnScreenEdge(true, 3, true)},
        {ecPageUp, Qt::Key_PageUp, N, Long(100, 150, 0), PagedFrom(150, -1, false)},
        {ecSelectPageUp, Qt::Key_PageUp, S, Long(100, 150, 0), PagedFrom(150, -1, true)},
        {ecPageTop, Qt::Key_PageUp, C, Long(40, 50, 3), OnScreenEdge(false, 3, false)},
        {ecSelectPageTop, Qt::Key_PageUp, S | C, Long(40, 50, 3), OnScreenEdge(false, 3, true)},
        {ecLineStart, Qt::Key_Home, N, Small(1, 7), CaretAt(1, 0)},
        {ecSelectLineStart, Qt::Key_Home, S, Small(1, 7), Selects("four fi", 1, 0)},
        {ecEditorTop, Qt::Key_Home, C, Small(2, 3), CaretAt(0, 0)},
        {ecSelectEditorTop, Qt::Key_Home, S | C, Small(1, 2), Selects("one two three\r\nfo", 0, 0)},
        {ecLineEnd, Qt::Key_End, N, Small(1, 2), CaretAt(1, 13)},
        {ecSelectLineEnd, Qt::Key_End, S, Small(1, 10), Selects("six", 1, 13)},
        {ecEditorBottom, Qt::Key_End, C, Small(0, 3), CaretAt(2, 16)},
        {ecSelectEditorBottom, Qt::Key_End, S | C, Small(2, 12), Selects("nine", 2, 16)},
        {ecToggleMode, Qt::Key_Insert, N, Small(0, 0),
         [](EditorTest&, TSyntaxEdit& e) {
             EXPECT_TRUE(e.overwriteMode());
             QTest::keyClick(&e, Qt::Key_X, Qt::NoModifier);
             EXPECT_EQ(e.LineText(0), QStringLiteral("xne two three"));
             QTest::keyClick(&e, Qt::Key_Insert);
             EXPECT_FALSE(e.overwriteMode());
         }},
        {ecPaste, Qt::Key_V, C, WithClipboard(0, 4),
         TextIs("one PASTEtwo three\r\nfour five six\r\nseven eight nine", 0, 9)},
        {ecPaste, Qt::Key_Insert, S, WithClipboard(0, 4),
         TextIs("one PASTEtwo three\r\nfour five six\r\nseven eight nine", 0, 9)},
        {ecDeleteChar, Qt::Key_Delete, N, Small(0, 0),
         TextIs("ne two three\r\nfour five six\r\nseven eight nine", 0, 0)},
        {ecDeleteLastChar, Qt::Key_Backspace, N, Small(0, 3),
         TextIs("on two three\r\nfour five six\r\nseven eight nine", 0, 2)},
        {ecDeleteLastWord, Qt::Key_Backspace, C, Small(0, 7),
         TextIs("one  three\r\nfour five six\r\nseven eight nine", 0, 4)},
        {ecUndo, Qt::Key_Z, C, Edited(), TextIs(small, 0, 0)},
        {ecUndo, Qt::Key_Backspace, A, Edited(), TextIs(small, 0, 0)},
        {ecRedo, Qt::Key_Z, S | C, EditedAndUndone(),
         TextIs("XYZone two three\r\nfour five six\r\nseven eight nine", 0, 3)},
        {ecRedo, Qt::Key_Backspace, S | A, EditedAndUndone(),
         TextIs("XYZone two three\r\nfour five six\r\nseven eight nine", 0, 3)},
        {ecLineBreak, Qt::Key_Return, N, Small(0, 3),
         TextIs("one\r\n two three\r\nfour five six\r\nseven eight nine", 1, 0)},
        {ecLineBreak, Qt::Key_M, C, Small(0, 3),
         TextIs("one\r\n two three\r\nfour five six\r\nseven eight nine", 1, 0)},
        {ecSelectAll, Qt::Key_A, C, Small(1, 1),
         [small](EditorTest&, TSyntaxEdit& e) { EXPECT_EQ(e.selectedText(), QString::fromUtf8(small)); }},
        {ecCopy, Qt::Key_C, C, SmallSelected(0, 4, 0, 7), ClipboardIs("two", small)},
        {ecCopy, Qt::Key_Insert, C, SmallSelected(0, 4, 0, 7), ClipboardIs("two", small)},
        {ecCut, Qt::Key_X, C, SmallSelected(0, 4, 0, 7),
         ClipboardIs("two", "one  three\r\nfour five six\r\nseven eight nine")},
        {ecCut, Qt::Key_Delete, S, SmallSelected(0, 4, 0, 7),
         ClipboardIs("two", "one  three\r\nfour five six\r\nseven eight nine")},
        {ecBlockIndent, Qt::Key_I, S | C, SmallSelected(0, 2, 1, 3),
         [](EditorTest&, TSyntaxEdit& e) {
             EXPECT_EQ(e.text(), QStringLiteral("  one two three\r\n  four five six\r\nseven eight nine"));
             e.undo();
             EXPECT_EQ(e.LineText(0), QStringLiteral("one two three")) << "one undo step";
             EXPECT_EQ(e.LineText(1), QStringLiteral("four five six"));
         }},
        {ecInsertLine, Qt::Key_N, C, Small(0, 3),
         TextIs("one\r\n two three\r\nfour five six\r\nseven eight nine", 0, 3)},
        {ecDeleteWord, Qt::Key_T, C, Small(0, 4),
         TextIs("one three\r\nfour five six\r\nseven eight nine", 0, 4)},
        {ecBlockUnindent, Qt::Key_U, S | C,
         [](EditorTest& t, TSyntaxEdit&) {
             static_cast<KeyBindings&>(t).Load(QStringLiteral("    a\r\n    b"), 0, 5);
         },
         [](EditorTest&, TSyntaxEdit& e) { EXPECT_EQ(e.text(), QStringLiteral("  a\r\n    b")); }},
        {ecDelete, Qt::Key_Delete, C, SmallSelected(0, 4, 0, 7),
         TextIs("one  three\r\nfour five six\r\nseven eight nine", 0, 4)},
        {ecDeleteLine, Qt::Key_Y, C, Small(1, 3), TextIs("one two three\r\nseven eight nine", 1, 0)},
        {ecDeleteEOL, Qt::Key_Y, S | C, Small(1, 4),
         TextIs("one two three\r\nfour\r\nseven eight nine", 1, 4)},
    };
    for (int n = 0; n <= 9; ++n) {
        b.push_back({ecGotoMarker0 + n, Qt::Key_0 + n, C,
                     [n](EditorTest& t, TSyntaxEdit& e) {
                         Small(0, 0)(t, e);
                         e.SetBookmark(n, 2, n % 5);
                         e.SetBookmark((n + 1) % 10, 1, 1); // another bookmark must not be the one taken
                     },
                     CaretAt(2, n % 5)});
    }
    for (int n = 0; n <= 9; ++n) {
        b.push_back(
            {ecToggleMarker0 + n, Qt::Key_0 + n, S | C, Small(1, 2), [n](EditorTest&, TSyntaxEdit& e) {
                 EXPECT_EQ(e.BookmarkLine(n), 1);
                 EXPECT_EQ(e.markersAtLine(1), 1u << n);
                 e.setCursorPosition(2, 0);
                 QTest::keyClick(&e, Qt::Key_0 + n, S | C); // moves it to the caret's line
                 EXPECT_EQ(e.BookmarkLine(n), 2);
                 EXPECT_EQ(e.markersAtLine(1), 0u);
                 QTest::keyClick(&e, Qt::Key_0 + n, S | C); // and clears it there
                 EXPECT_EQ(e.BookmarkLine(n), -1);
             }});
    }
    return b;
}

unsigned ShiftOf(Qt::KeyboardModifiers mods) {
    unsigned s = ssNone;
    if (mods & Qt::ShiftModifier) s |= ssShift;
    if (mods & Qt::ControlModifier) s |= ssCtrl;
    if (mods & Qt::AltModifier) s |= ssAlt;
    return s;
}

TEST_F(KeyBindings, AllSeventyFourInTheirOrderDoTheirCommand) {
    const auto table = DefaultBindings();
    ASSERT_EQ(table.size(), 74u);
    ASSERT_EQ(edit->KeyStrokes().Count(), 74);
    for (size_t i = 0; i < table.size(); ++i) {
        const Binding& row = table[i];
        const TKeyStroke& stroke = edit->KeyStrokes()[static_cast<int>(i)];
        const std::string name(EditorCommandToName(row.command).value_or("?"));
        SCOPED_TRACE("binding " + std::to_string(i) + ": " + name);
        EXPECT_EQ(stroke.Command, row.command);
        EXPECT_EQ(stroke.ShortCut, (TShortCut{row.key, ShiftOf(row.mods)}));
        EXPECT_TRUE(stroke.ShortCut2.IsEmpty());
        row.setUp(*this, *edit);
        QTest::keyClick(edit.get(), static_cast<Qt::Key>(row.key), row.mods);
        row.check(*this, *edit);
    }
}

TEST_F(KeyBindings, KeysOutsideTheTable) {
    Load(kSmall, 0, 3);
    QTest::keyClicks(edit.get(), QStringLiteral("-x"));
    // Unbound Ctrl keys and a Ctrl+digit without its bookmark do nothing at all.
    for (auto [key, mods] : {std::pair{Qt::Key_B, C}, {Qt::Key_F12, N}, {Qt::Key_5, C}})
        QTest::keyClick(edit.get(), key, mods);
    EXPECT_EQ(Line(0), QStringLiteral("one-x two three"));
    EXPECT_EQ(Caret(), std::make_pair(0, 5));
    EXPECT_TRUE(edit->Modified());
    // A removed binding disables its key; a key can be bound to another command.
    edit->KeyStrokes().Delete(edit->KeyStrokes().FindShortcut({Qt::Key_Y, ssCtrl}));
    QTest::keyClick(edit.get(), Qt::Key_Y, C);
    EXPECT_EQ(Line(0), QStringLiteral("one-x two three"));
    edit->KeyStrokes().Add(ecDeleteLine, {Qt::Key_L, ssCtrl});
    QTest::keyClick(edit.get(), Qt::Key_L, C);
    EXPECT_EQ(Line(0), QStringLiteral("four five six"));
    // Tab indents instead of leaving the editor.
    Load(QStringLiteral("a"), 0, 0);
    QTest::keyClick(edit.get(), Qt::Key_Tab);
    EXPECT_EQ(Line(0), QStringLiteral("  a"));
}

TEST_F(KeyBindings, BookmarksFollowTheirLineThroughEdits) {
    Load(kSmall, 2, 0);
    QTest::keyClick(edit.get(), Qt::Key_3, S | C);
    edit->setCursorPosition(0, 0);
    QTest::keyClicks(edit.get(), QStringLiteral("\r\r"));
    EXPECT_EQ(edit->BookmarkLine(3), 4);
    QTest::keyClick(edit.get(), Qt::Key_3, C);
    EXPECT_EQ(Caret(), std::make_pair(4, 0));
}

} // namespace
} // namespace velkor::test
