// The theme setting: [editor] theme of velkor.ini, on the settings dialog's Editor tab; pages take it when
// they are made and at once when the dialog writes it.
#include "ide/edit_page.h"
#include "ide/main_window.h"
#include "ide/settings_dialog.h"
#include "tests/ide/edit_page_test_support.h"

#include <QComboBox>

namespace velkor::test {
namespace {

using ThemeSettingTest = PageTest;

TEST_F(ThemeSettingTest, PagesTakeTheSettingAndTheDialogChangesIt) {
    struct Case {
        const char* Stored;  // in velkor.ini before the window starts; null: no key
        int Shown;           // the dialog's item
        const char* Chosen;  // the item picked in the dialog
        const char* Written; // what OK writes
    };
    const Case cases[] = {
        {nullptr, 0, "Dark", "dark"},
        {"dark", 2, "Light", "light"},
        {"LIGHT", 1, "System", "system"},
        {"nonsense", 0, "Dark", "dark"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.Stored ? c.Stored : "(none)");
        TIniFile ini(IniPath());
        ini.EraseSection("editor");
        if (c.Stored) ini.WriteString("editor", "theme", c.Stored);
        TfrmMain window({});
        TSyntaxEdit& memo = *window.ActivePage()->Memo();
        const TThemeChoice stored = ThemeChoiceFromName(c.Stored ? c.Stored : "");
        EXPECT_EQ(memo.ThemeChoice(), stored);
        TfrmSettings settings(&window);
        ASSERT_EQ(settings.cbTheme->objectName(), QStringLiteral("cbTheme"));
        EXPECT_EQ(settings.cbTheme->currentIndex(), c.Shown);
        settings.cbTheme->setCurrentText(QString::fromLatin1(c.Chosen));
        settings.WriteSettings();
        EXPECT_EQ(TIniFile(IniPath()).ReadString("editor", "theme", ""), c.Written);
        // The open page changed at once, and a new page starts with it.
        EXPECT_EQ(memo.ThemeChoice(), ThemeChoiceFromName(c.Written));
        EXPECT_EQ(window.NewPage()->Memo()->ThemeChoice(), ThemeChoiceFromName(c.Written));
    }
}

} // namespace
} // namespace velkor::test
