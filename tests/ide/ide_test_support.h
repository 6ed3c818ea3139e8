// Shared set-up of the IDE tests: one QApplication (offscreen unless a display is named), settings and
// registry in temporary files, and every modal question answered by a stub that records it.
#pragma once

#include "ide/ide_dialogs.h"
#include "tests/support/run_tool.h"

#include <QPoint>
#include <QStringList>

#include <gtest/gtest.h>

#include <deque>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

class QWidget;

namespace velkor::test {

// The application exists (made by the test program's main).
void EnsureApplication();

// The events of a double click at a point of a widget, sent straight to it (the window may hold another
// view on top of it).
void DoubleClick(QWidget& widget, const QPoint& at);

// The rows of tests/cases/ide/<name>: tab-separated fields, one row a line; blank lines and lines
// starting with "#" are left out.
std::vector<QStringList> ReadCases(const char* name);

class IdeTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // The settings file and registry store of this test.
    std::filesystem::path IniPath() const { return dir_->path() / "velkor.ini"; }
    std::filesystem::path RegistryPath() const { return dir_->path() / "registry.ini"; }
    std::filesystem::path Dir() const { return dir_->path(); }
    std::string Path(const std::string& name) const { return (dir_->path() / name).string(); }

    // Lets events (deferred deletes, queued calls) run.
    static void ProcessEvents();

    std::unique_ptr<TempDir> dir_;   // everything the test writes
    QStringList messages_;           // texts of ShowMessage
    QStringList questions_;          // texts of AskYesNoCancel
    QStringList replacePrompts_;     // matches AskReplace was asked about; each answered Cancel
    std::deque<TMsgAnswer> answers_; // answers to give, in order; Cancel when none is left
    QStringList openAnswers_;        // files the open dialog returns, one per call
    QStringList saveAnswers_;        // files the save dialog returns, one per call
    QStringList urls_;               // addresses handed to the desktop browser
    int modalDialogs_ = 0;           // dialogs run modally
    QStringList modalDialogNames_;   // their object names
};

} // namespace velkor::test
