// Keystroke-to-repaint time in a 50,000-line unit. Reported, not asserted: the machine decides the number.
// What makes a keystroke cost time in proportion to the unit is checked instead.
#include "editor_test_app.h"

#include <QAccessible>
#include <QElapsedTimer>
#include <QInputMethodQueryEvent>
#include <QTest>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace velkor::test {
namespace {

QString BigUnit(int lines) {
    QString text;
    text.reserve(lines * 40);
    text += QStringLiteral("mission big;\r\n");
    for (int i = 1; i < lines; ++i) {
        switch (i % 5) {
        case 0: text += QStringLiteral("function f%1(a, b);\r\n").arg(i); break;
        case 1:
            text += QStringLiteral("begin /* block */ x := $%1 + %1010;\r\n").arg(i, 4, 16, QLatin1Char('0'));
            break;
        case 2: text += QStringLiteral("  if a > 2.5E+3 then inc(b); // note\r\n"); break;
        case 3: text += QStringLiteral("  Msg(\"line %1\");\r\n").arg(i); break;
        default: text += QStringLiteral("end;\r\n"); break;
        }
    }
    return text;
}

struct Timing {
    double median; // milliseconds
    double worst;  // milliseconds
};

// Sends `count` key presses, each followed by a synchronous repaint, and times every pair.
Timing TimeKeys(TSyntaxEdit& edit, int count, Qt::Key key, Qt::KeyboardModifiers mods = Qt::NoModifier) {
    std::vector<double> ms;
    QElapsedTimer timer;
    for (int i = 0; i < count; ++i) {
        timer.start();
        QTest::keyClick(&edit, key, mods);
        edit.viewport()->repaint();
        ms.push_back(static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    std::sort(ms.begin(), ms.end());
    return {ms[ms.size() / 2], ms.back()};
}

class EditorPerformance : public EditorTest {};

TEST_F(EditorPerformance, KeystrokeToRepaintIn50000Lines) {
    QElapsedTimer load;
    load.start();
    Load(BigUnit(50000));
    edit->viewport()->repaint();
    const double loadMs = static_cast<double>(load.nsecsElapsed()) / 1e6;
    ASSERT_EQ(edit->lines(), 50001);

    edit->setCursorPosition(10, 0);
    const Timing typingTop = TimeKeys(*edit, 50, Qt::Key_Y);
    edit->setCursorPosition(25000, 0);
    const Timing typing = TimeKeys(*edit, 50, Qt::Key_X);
    EXPECT_EQ(edit->LineText(25000).left(50), QString(50, QLatin1Char('x')));
    const Timing down = TimeKeys(*edit, 50, Qt::Key_Down);
    const Timing pageDown = TimeKeys(*edit, 20, Qt::Key_PageDown);
    // Opening a comment near the top restyles what is shown below it, not the whole text.
    edit->setCursorPosition(10, 0);
    const Timing comment = TimeKeys(*edit, 1, Qt::Key_Slash);
    const Timing star = TimeKeys(*edit, 1, Qt::Key_Asterisk);
    const Timing end = TimeKeys(*edit, 1, Qt::Key_End, Qt::ControlModifier);

    std::printf("[ perf ] 50,000-line unit: load and first paint %.1f ms\n", loadMs);
    std::printf("[ perf ] type a character at line 25,000: median %.2f ms, worst %.2f ms\n", typing.median,
                typing.worst);
    std::printf("[ perf ] type a character at line 10: median %.2f ms, worst %.2f ms\n", typingTop.median,
                typingTop.worst);
    std::printf("[ perf ] Down: median %.2f ms, worst %.2f ms\n", down.median, down.worst);
    std::printf("[ perf ] Page Down: median %.2f ms, worst %.2f ms\n", pageDown.median, pageDown.worst);
    std::printf("[ perf ] open \"/*\" at line 10: %.2f ms + %.2f ms\n", comment.worst, star.worst);
    std::printf("[ perf ] Ctrl+End after that: %.2f ms\n", end.worst);
    RecordProperty("type_median_ms", std::to_string(typing.median));

    // The same keys in a 100-line unit: what painting alone costs on this machine.
    Load(BigUnit(100));
    edit->setCursorPosition(50, 0);
    const Timing smallTyping = TimeKeys(*edit, 50, Qt::Key_X);
    const Timing smallDown = TimeKeys(*edit, 20, Qt::Key_Down);
    std::printf("[ perf ] 100-line unit: type median %.2f ms, Down median %.2f ms\n", smallTyping.median,
                smallDown.median);
}

TEST_F(EditorPerformance, InputMethodsAreGivenTheCaretsLineNotTheWholeUnit) {
    QString text = BigUnit(50000);
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
    Load(BigUnit(100));
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(edit.get());
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->role(), QAccessible::EditableText);
    // No text interface: nothing counts characters from the start of the text at every caret move.
    EXPECT_EQ(accessible->textInterface(), nullptr);
}

} // namespace
} // namespace velkor::test
