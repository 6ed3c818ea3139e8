// The tool views and their placement: docking, the saved layout and the output list.
#include "ide/edit_page.h"
#include "ide/help_view.h"
#include "ide/iff_view.h"
#include "ide/main_window.h"
#include "ide/output_view.h"
#include "ide/window_placement.h"
#include "platform/ini_file.h"
#include "tests/ide/ide_test_support.h"

#include <QListWidget>
#include <Qsci/qsciscintilla.h>

namespace velkor::test {
namespace {

class ViewsTest : public IdeTest {
protected:
    void SetUp() override {
        IdeTest::SetUp();
        TIniFile(IniPath()).WriteString("main", "sopath", "/so");
    }
};

TEST_F(ViewsTest, ViewsStartDockedAtTheBottomWithTheirCaptions) {
    TfrmMain window({});
    window.show();
    EXPECT_EQ(window.OutputView().windowTitle(), QStringLiteral("Output"));
    EXPECT_EQ(window.HelpView().windowTitle(), QStringLiteral("Help"));
    EXPECT_EQ(window.SiteOf(window.OutputView()), "PageControl1");
    EXPECT_EQ(window.SiteOf(window.IffView()), "PageControl1");
    EXPECT_GE(window.DockAreaSize("PageControl1"), 20);
    EXPECT_EQ(window.DockAreaSize("PageControl2"), 0);
}

TEST_F(ViewsTest, DockPlacementRoundTrip) {
    {
        TfrmMain window({});
        window.show();
        window.DockView(window.HelpView(), "PageControl2");
        window.DockView(window.IffView(), "");
        window.IffView().setGeometry(50, 60, 300, 200);
        window.OutputView().hide();
        EXPECT_GE(window.DockAreaSize("PageControl2"), 20);
        window.ActivePage()->SetModified(false);
        EXPECT_TRUE(window.close());
    }
    const TIniFile ini(IniPath());
    EXPECT_EQ(ini.ReadString("frmHelp", "site", "?"), "PageControl2");
    EXPECT_EQ(ini.ReadString("frmIffView", "site", "?"), "");
    EXPECT_EQ(ini.ReadString("frmIffView", "width", ""), "300");
    EXPECT_EQ(ini.ReadString("frmIffView", "height", ""), "200");
    EXPECT_EQ(ini.ReadString("frmIffView", "windowstate", ""), "0");
    EXPECT_EQ(ini.ReadString("frmOutput", "visible", ""), "0");
    EXPECT_EQ(ini.ReadString("frmOutput", "site", "?"), "PageControl1");
    EXPECT_EQ(ini.ReadString("main", "pheigth", "?"), "0");

    TfrmMain window({});
    window.show();
    EXPECT_EQ(window.SiteOf(window.HelpView()), "PageControl2");
    EXPECT_TRUE(window.IffView().isFloating());
    EXPECT_EQ(window.IffView().width(), 300);
    EXPECT_EQ(window.IffView().height(), 200);
    EXPECT_TRUE(window.OutputView().isHidden());
    EXPECT_FALSE(window.HelpView().isHidden());
}

TEST_F(ViewsTest, OutputListAndIffViewBasics) {
    TfrmMain window({});
    TfrmOutput& output = window.OutputView();
    for (int i = 0; i < 200; ++i) output.AppendLine(QStringLiteral("line %1").arg(i));
    EXPECT_EQ(output.CurrentRow(), 199);
    output.Clear();
    EXPECT_TRUE(output.Lines().isEmpty());
    // Tab stops of two dialog units: as close as whole characters come, one character.
    EXPECT_EQ(window.IffView().MemoIff()->tabWidth(), 1);
    // What a compile puts there comes back byte for byte, a zero byte and text after it included.
    const std::string text("IFF \"a\"\r\n{ CSTRING \"\0\xC3\xA9\" }\r\n", 28);
    window.IffView().SetTextUtf8(text);
    EXPECT_EQ(window.IffView().TextUtf8(), text);
}

} // namespace
} // namespace velkor::test
