// The QApplication every editor test runs under (offscreen unless QT_QPA_PLATFORM says otherwise), a
// fixture with one shown editor, and the rows of the case tables in tests/cases/editor/.
#pragma once

#include "editor/syntax_edit.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QStringList>

#include <memory>
#include <vector>

namespace velkor::test {

QApplication& TestApp();

// The rows of tests/cases/editor/<name>: tab-separated fields; blank lines and "#" lines left out.
std::vector<QStringList> Rows(const char* name);

// A field of a table with `\n` for LF and `\r` for CR.
std::string Unescape(QString field);

// A text with markers: \n for CR LF, | at the caret, ^ at the selection's other end.
struct Marked {
    QString text;
    std::pair<int, int> caret{-1, -1}, anchor{-1, -1};
};
Marked Parse(QString s);

class EditorTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Sets the text (undo emptied, unmodified) and the caret.
    void Load(const QString& text, int line = 0, int index = 0);
    // Loads a marked text with its caret and selection.
    void Load(const Marked& m);
    // The text, and the caret and selection where the marked text sets a caret.
    void ExpectText(const Marked& m);
    std::pair<int, int> Caret() const;
    QString Line(int line) const { return edit->LineText(line); }

    std::unique_ptr<TSyntaxEdit> edit; // the editor under test, 640x400 pixels, shown
};

// "line 000" ... : `count` numbered lines joined by CR LF.
QString NumberedLines(int count);

} // namespace velkor::test
