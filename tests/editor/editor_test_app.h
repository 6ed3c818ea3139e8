// The QApplication every editor test runs under (offscreen unless QT_QPA_PLATFORM says otherwise), and a
// fixture with one shown editor.
#pragma once

#include "editor/syntax_edit.h"

#include <gtest/gtest.h>

#include <QApplication>

#include <memory>

namespace velkor::test {

QApplication& TestApp();

class EditorTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Sets the text (undo emptied, unmodified) and the caret.
    void Load(const QString& text, int line = 0, int index = 0);
    std::pair<int, int> Caret() const;
    QString Line(int line) const { return edit->LineText(line); }

    std::unique_ptr<TSyntaxEdit> edit; // the editor under test, 640x400 pixels, shown
};

// "line 000" ... : `count` numbered lines joined by CR LF.
QString NumberedLines(int count);

} // namespace velkor::test
