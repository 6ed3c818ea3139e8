// What would make a keystroke cost time in proportion to a 50,000-line unit: input methods and accessibility
// asking for the whole text.
#include "editor_test_app.h"

#include <QAccessible>
#include <QInputMethodQueryEvent>
#include <QTest>

namespace velkor::test {
namespace {

class EditorPerformance : public EditorTest {};

TEST_F(EditorPerformance, InputMethodsAreGivenTheCaretsLineNotTheWholeUnit) {
    QString text = NumberedLines(50000);
    text.insert(text.indexOf(QStringLiteral("line 25003")), QString::fromUtf8("\xC3\xA9\xF0\x9D\x84\x9E"));
    Load(text, 25003);
    const QString line = edit->LineText(25003);
    ASSERT_TRUE(line.contains(QString::fromUtf8("\xF0\x9D\x84\x9E")));
    const auto query = [&](Qt::InputMethodQuery what) {
        QInputMethodQueryEvent event(what);
        QApplication::sendEvent(edit.get(), &event);
        return event.value(what);
    };
    // The caret after the two characters put in front of "line": "é" and a character of two UTF-16 units.
    const int at = static_cast<int>(line.indexOf(QStringLiteral("line 25003")));
    edit->SendScintilla(QsciScintillaBase::SCI_SETSEL,
                        edit->SendScintilla(QsciScintillaBase::SCI_POSITIONFROMLINE, 25003UL),
                        edit->SendScintilla(QsciScintillaBase::SCI_POSITIONFROMLINE, 25003UL) +
                            static_cast<long>(line.left(at).toUtf8().size()));
    EXPECT_EQ(query(Qt::ImSurroundingText).toString(), line);
    EXPECT_EQ(query(Qt::ImCursorPosition).toInt(), at);
    EXPECT_EQ(query(Qt::ImAnchorPosition).toInt(), 0);
    EXPECT_EQ(query(Qt::ImTextBeforeCursor).toString(), line.left(at));
    EXPECT_EQ(query(Qt::ImTextAfterCursor).toString(), line.mid(at));
    // An anchor on another line stands at the caret.
    edit->SendScintilla(QsciScintillaBase::SCI_SETANCHOR, 0L);
    EXPECT_EQ(query(Qt::ImAnchorPosition).toInt(), at);
}

TEST_F(EditorPerformance, WithoutAnAssistiveToolTheEditorIsAPlainAccessibleWidget) {
    ASSERT_FALSE(QAccessible::isActive());
    Load(NumberedLines(100));
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(edit.get());
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->role(), QAccessible::EditableText);
    // No text interface: nothing counts characters from the start of the text at every caret move.
    EXPECT_EQ(accessible->textInterface(), nullptr);
}

} // namespace
} // namespace velkor::test
