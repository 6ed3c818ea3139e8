// Shared by the tests of editor pages and windows: the units they open (tests/cases/ide/units/), files in
// the test's folder, and the headers of the IDE and of Qt they all use.
#pragma once

#include "compiler/symbol_table.h"
#include "ide/edit_page.h"
#include "ide/iff_view.h"
#include "ide/main_window.h"
#include "ide/output_view.h"
#include "ide/settings_dialog.h"
#include "platform/executable_path.h"
#include "platform/ini_file.h"
#include "platform/numbers.h"
#include "tests/ide/ide_test_support.h"
#include "tests/ide/screenshot_support.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QString>
#include <QTest>

#include <filesystem>
#include <ostream>
#include <string>

// Readable failure messages for texts of the widgets.
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

namespace velkor::test {

// A unit of tests/cases/ide/units/ with CR LF line breaks, as units written on Windows have.
inline std::string TestUnit(const char* name) {
    std::string text;
    for (const char c : ReadFile(std::filesystem::path(VELKOR_SOURCE_DIR) / "tests/cases/ide/units" / name))
        text += c == '\n' ? std::string("\r\n") : std::string(1, c);
    return text;
}

// The demo mission has one symbol of each kind, Attack declared on line 9, and includes Helpers (Boost on
// line 6). Broken has three errors in three statements and includes Faulty, whose function has one more.
inline const std::string kDemoMission = TestUnit("Demo.pas");
inline const std::string kHelpersUnit = TestUnit("helpers.pas");
inline const std::string kBroken = TestUnit("broken.pas");
inline const std::string kFaulty = TestUnit("faulty.pas");

class PageTest : public IdeTest {
protected:
    void SetUp() override {
        IdeTest::SetUp();
        TIniFile(IniPath()).WriteString("main", "sopath", Dir().string());
        SetExecutableFolderForTesting(Dir().string());
        WriteFile(Dir() / "helpers.pas", kHelpersUnit);
        // The library folder of an installation, so that compiles give no hint about it.
        std::filesystem::create_directories(Dir() / "lib");
    }
    void TearDown() override {
        SetExecutableFolderForTesting("");
        IdeTest::TearDown();
    }

    std::string MakeFile(const std::string& name, const std::string& bytes) {
        WriteFile(Dir() / name, bytes);
        return Path(name);
    }

    // The demo mission opened in a page of `window` and, unless told otherwise, compiled; null (and a
    // failure naming the compiler's messages) when either goes wrong.
    TfrmEdit* OpenDemo(TfrmMain& window, bool compile = true) {
        TfrmEdit* page = window.OpenFile(MakeFile("Demo.pas", kDemoMission), false);
        if (page && compile && !page->Compile()) {
            ADD_FAILURE() << Output(window);
            return nullptr;
        }
        return page;
    }

    static std::string Output(TfrmMain& window) {
        return window.OutputView().Lines().join(u'\n').toStdString();
    }

    // Shows the window, at the size given if any, and waits until it is on the screen.
    static void Show(QWidget& window, int width = 0, int height = 0) {
        if (width) window.resize(width, height);
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
    }
    // Shows the window and makes it the active one: without a window manager (Xvfb) nobody gives the
    // window the focus but the program itself.
    static void ShowActive(QWidget& window) {
        Show(window);
        window.activateWindow();
        QApplication::setActiveWindow(&window);
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }
};

} // namespace velkor::test
