// Shared by the tests of editor pages: a demo mission with one of each kind of symbol, an include unit
// with a function, and files in the test's folder.
#pragma once

#include "compiler/symbol_table.h"
#include "ide/edit_page.h"
#include "ide/main_window.h"
#include "ide/output_view.h"
#include "platform/executable_path.h"
#include "platform/ini_file.h"
#include "platform/numbers.h"
#include "platform/strings.h"
#include "tests/ide/ide_test_support.h"

#include <QApplication>
#include <QString>
#include <QTest>

#include <ostream>
#include <string>

// Readable failure messages for texts of the widgets.
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

namespace velkor::test {

// Line numbers matter: Attack is declared on line 9, Boost on line 6 of the include unit.
inline constexpr const char* kDemoMission = "mission Demo;\r\n"                                        // 1
                                            "const MaxWave = 3, ShipCount = 2;\r\n"                    // 2
                                            "var kills = 0, shipsLeft;\r\n"                            // 3
                                            "include \"helpers\";\r\n"                                 // 4
                                            "function Explode(x, y); external;\r\n"                    // 5
                                            "function Tick; forward;\r\n"                              // 6
                                            "\r\n"                                                     // 7
                                            "// Adds its arguments.\r\n"                               // 8
                                            "function Attack(ship, target);\r\n"                       // 9
                                            "begin\r\n"                                                // 10
                                            "  result := ship + target;\r\n"                           // 11
                                            "end;\r\n"                                                 // 12
                                            "\r\n"                                                     // 13
                                            "function Tick;\r\n"                                       // 14
                                            "var a;\r\n"                                               // 15
                                            "begin\r\n"                                                // 16
                                            "  a := Attack(kills, Boost(a));\r\n"                      // 17
                                            "end;\r\n"                                                 // 18
                                            "\r\n"                                                     // 19
                                            "object Alpha (Alpha1) AS ship x: 0; y: 0; z: 0; end;\r\n" // 20
                                            "objective FirstWave hidden: 0; type: 1; text: 7; status: 0; "
                                            "counter: 0; end;\r\n"; // 21

inline constexpr const char* kHelpersUnit = "unit Helpers;\r\n"           // 1
                                            "\r\n"                        // 2
                                            "var shipBonus;\r\n"          // 3
                                            "\r\n"                        // 4
                                            "// Doubles.\r\n"             // 5
                                            "function Boost(amount);\r\n" // 6
                                            "begin\r\n"                   // 7
                                            "  result := amount * 2;\r\n" // 8
                                            "end;\r\n";                   // 9

// A unit with three errors in three statements and an include whose function has one more.
inline constexpr const char* kBroken = "mission Broken;\r\n"     // 1
                                       "include \"faulty\";\r\n" // 2
                                       "var a;\r\n"              // 3
                                       "function Main;\r\n"      // 4
                                       "begin\r\n"               // 5
                                       "  a := 1 +;\r\n"         // 6
                                       "  a := );\r\n"           // 7
                                       "  a := Faulty(1);\r\n"   // 8
                                       "  nosuchthing(a);\r\n"   // 9
                                       "end;\r\n";               // 10
inline constexpr const char* kFaulty = "unit Faulty;\r\n"        // 1
                                       "\r\n"                    // 2
                                       "function Faulty(x);\r\n" // 3
                                       "begin\r\n"               // 4
                                       "  result := x *;\r\n"    // 5
                                       "end;\r\n";               // 6

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
