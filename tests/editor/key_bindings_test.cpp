// Every default binding in the order it is installed, and keys sent to the editor as real key presses,
// read from tests/cases/editor/bindings.txt and keys.txt.
#include "editor_test_app.h"

#include <QClipboard>
#include <QFile>
#include <QKeySequence>
#include <QTest>

namespace velkor::test {
namespace {

class KeyBindings : public EditorTest {};

// The rows of tests/cases/editor/<name>: tab-separated fields; blank lines and "#" lines left out.
std::vector<QStringList> Rows(const char* name) {
    QFile file(QStringLiteral(VELKOR_SOURCE_DIR "/tests/cases/editor/") + QLatin1String(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    std::vector<QStringList> rows;
    for (const QString& line : QString::fromUtf8(file.readAll()).split(u'\n'))
        if (!line.trimmed().isEmpty() && !line.startsWith(u'#')) rows.push_back(line.split(u'\t'));
    return rows;
}

QKeyCombination Key(const QString& name) {
    const QKeySequence seq(name, QKeySequence::PortableText);
    EXPECT_EQ(seq.count(), 1) << name.toStdString();
    return seq[0];
}

unsigned ShiftOf(Qt::KeyboardModifiers mods) {
    return (mods & Qt::ShiftModifier ? ssShift : ssNone) | (mods & Qt::ControlModifier ? ssCtrl : ssNone) |
           (mods & Qt::AltModifier ? ssAlt : ssNone);
}

// A text with markers: \n for CR LF, | at the caret, ^ at the selection's other end.
struct Marked {
    QString text;
    std::pair<int, int> caret{-1, -1}, anchor{-1, -1};
};

Marked Parse(QString s) {
    s.replace(QStringLiteral("\\n"), QStringLiteral("\n"));
    Marked m;
    int line = 0, index = 0;
    for (QChar c : s) {
        if (c == u'|')
            m.caret = {line, index};
        else if (c == u'^')
            m.anchor = {line, index};
        else {
            m.text += c == u'\n' ? QStringLiteral("\r\n") : QString(c);
            c == u'\n' ? (++line, index = 0) : ++index;
        }
    }
    return m;
}

TEST_F(KeyBindings, AllSeventyFourInTheirOrder) {
    const auto rows = Rows("bindings.txt");
    ASSERT_EQ(rows.size(), 74u);
    ASSERT_EQ(edit->KeyStrokes().Count(), 74);
    for (int i = 0; i < 74; ++i) {
        const QStringList& row = rows[static_cast<size_t>(i)];
        SCOPED_TRACE(row.join(u' ').toStdString());
        const TKeyStroke& stroke = edit->KeyStrokes()[i];
        EXPECT_EQ(stroke.Command, EditorCommandFromName(row[0].toStdString()).value_or(-1));
        const QKeyCombination key = Key(row[1]);
        EXPECT_EQ(stroke.ShortCut, (TShortCut{key.key(), ShiftOf(key.keyboardModifiers())}));
        EXPECT_TRUE(stroke.ShortCut2.IsEmpty());
    }
}

TEST_F(KeyBindings, KeysDoTheirCommands) {
    const auto rows = Rows("keys.txt");
    EXPECT_GE(rows.size(), 60u);
    for (const QStringList& row : rows) {
        SCOPED_TRACE(row.join(u'\t').toStdString());
        ASSERT_GE(row.size(), 3);
        const Marked before = Parse(row[1]);
        Load(before.text, before.caret.first, before.caret.second);
        if (before.anchor.first >= 0)
            edit->setSelection(before.anchor.first, before.anchor.second, before.caret.first,
                               before.caret.second);
        QApplication::clipboard()->setText(QStringLiteral("PASTE"));
        for (const QString& name : row[0].split(u' ')) {
            const QKeyCombination key = Key(name);
            QTest::keyClick(edit.get(), key.key(), key.keyboardModifiers());
        }
        const Marked after = Parse(row[2]);
        EXPECT_EQ(edit->text(), after.text);
        if (after.caret.first >= 0) {
            EXPECT_EQ(Caret(), after.caret);
            int l1 = -1, i1 = -1, l2 = -1, i2 = -1;
            edit->getSelection(&l1, &i1, &l2, &i2);
            const auto anchor = after.anchor.first < 0             ? std::pair{-1, -1}
                                : std::pair{l1, i1} == after.caret ? std::pair{l2, i2}
                                                                   : std::pair{l1, i1};
            EXPECT_EQ(anchor, after.anchor);
        }
        if (row.size() > 3) EXPECT_EQ(QApplication::clipboard()->text(), row[3]);
    }
}

// Moves by a page or to the screen's edge depend on the window's height, scrolling on where the view is.
TEST_F(KeyBindings, PagesAndScrolling) {
    const int page = static_cast<int>(edit->SendScintilla(QsciScintillaBase::SCI_LINESONSCREEN));
    ASSERT_GT(page, 5);
    struct Row {
        const char* key;
        int top, line, index;  // view and caret before
        int wantLine, wantTop; // caret line after (-1: moved by a page), first line shown after
    };
    const int bottom = 20 + page - 1;
    for (const Row& r :
         {Row{"Ctrl+Up", 50, 60, 0, 60, 49}, Row{"Ctrl+Down", 50, 60, 0, 60, 51},
          Row{"PgDown", 0, 0, 0, -1, -1}, Row{"Shift+PgDown", 0, 0, 0, -1, -1},
          Row{"PgUp", 100, 150, 0, -1, -1}, Row{"Shift+PgUp", 100, 150, 0, -1, -1},
          Row{"Ctrl+PgDown", 20, 25, 3, bottom, 20}, Row{"Ctrl+Shift+PgDown", 20, 25, 3, bottom, 20},
          Row{"Ctrl+PgUp", 40, 50, 3, 40, 40}, Row{"Ctrl+Shift+PgUp", 40, 50, 3, 40, 40}}) {
        SCOPED_TRACE(r.key);
        Load(NumberedLines(300), r.line, r.index);
        edit->setFirstVisibleLine(r.top);
        const QKeyCombination key = Key(QString::fromLatin1(r.key));
        QTest::keyClick(edit.get(), key.key(), key.keyboardModifiers());
        const bool selecting = key.keyboardModifiers() == Qt::ShiftModifier ||
                               key.keyboardModifiers() == (Qt::ShiftModifier | Qt::ControlModifier);
        EXPECT_EQ(edit->hasSelectedText(), selecting);
        if (r.wantTop >= 0) {
            EXPECT_EQ(Caret(), std::make_pair(r.wantLine, r.index));
            EXPECT_EQ(edit->firstVisibleLine(), r.wantTop);
        } else {
            const int moved = std::abs(Caret().first - r.line);
            EXPECT_GE(moved, page - 2);
            EXPECT_LE(moved, page);
            EXPECT_EQ(Caret().second, 0);
        }
    }
}

TEST_F(KeyBindings, RemovedAndAddedBindings) {
    Load(QStringLiteral("one\r\ntwo"), 0, 0);
    edit->KeyStrokes().Delete(edit->KeyStrokes().FindShortcut({Qt::Key_Y, ssCtrl}));
    QTest::keyClick(edit.get(), Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(edit->text(), QStringLiteral("one\r\ntwo"));
    edit->KeyStrokes().Add(ecDeleteLine, {Qt::Key_L, ssCtrl});
    QTest::keyClick(edit.get(), Qt::Key_L, Qt::ControlModifier);
    EXPECT_EQ(edit->text(), QStringLiteral("two"));
    QTest::keyClick(edit.get(), Qt::Key_7, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(edit->markersAtLine(0), 1u << 7) << "a bookmark shows in the margin";
}

} // namespace
} // namespace velkor::test
