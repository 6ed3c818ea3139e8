// The toolbar: its buttons run the menu's commands on the active page, Save is there when the page is
// modified, the icons are drawn at any size, and View › Toolbar hides it for this and the next session.
#include "ide/tool_bar.h"
#include "tests/ide/edit_page_test_support.h"

#include <QIcon>
#include <QImage>

#include <functional>

namespace velkor::test {
namespace {

using ToolBarTest = PageTest;

TEST_F(ToolBarTest, ButtonsInOrderWithIconsAtEverySize) {
    TfrmMain window({});
    QStringList names;
    for (QAction* action : window.ToolBar().actions())
        names << (action->isSeparator() ? QStringLiteral("|") : action->objectName());
    EXPECT_EQ(names, QStringList({"ToolNew", "ToolOpen", "ToolSave", "|", "ToolCompile", "ToolBuild", "|",
                                  "ToolFind", "ToolSymbolBrowser"}));
    for (const QString& name : names) {
        if (name == u'|') continue;
        const QIcon icon = window.ToolBar().Button(name)->icon();
        ASSERT_FALSE(icon.isNull()) << name.toStdString();
        for (int size : {16, 22, 64}) {
            const QImage image = icon.pixmap(size, size).toImage();
            EXPECT_EQ(image.width(), size) << name.toStdString();
            // A drawing, not an empty square: at least a fifth of the square is covered.
            int opaque = 0;
            for (int y = 0; y < size; ++y)
                for (int x = 0; x < size; ++x) opaque += qAlpha(image.pixel(x, y)) > 128;
            EXPECT_GT(opaque, size * size / 5) << name.toStdString() << " at " << size;
        }
    }
    EXPECT_EQ(window.ToolBar().Button(QStringLiteral("ToolBuild"))->toolTip(),
              QStringLiteral("Compile & Build Iff (F9)"));
}

TEST_F(ToolBarTest, ButtonsRunTheMenuCommands) {
    TIniFile(IniPath()).WriteInteger("compiler", "verbosity", 0);
    const std::string demo = MakeFile("Demo.pas", kDemoMission);
    const std::string other = MakeFile("Other.pas", "unit Other;\r\n");
    openAnswers_ << QString::fromStdString(other); // for Open, the only button that asks
    const std::pair<const char*, std::function<void(TfrmMain&)>> cases[] = {
        {"ToolNew", [](TfrmMain& w) { EXPECT_EQ(w.Pages().size(), 2); }},
        {"ToolOpen", [&](TfrmMain& w) { EXPECT_EQ(w.ActivePage(), w.FindPage(other)); }},
        {"ToolCompile", [](TfrmMain& w) { EXPECT_TRUE(w.IffView().Text().contains("Attack")); }},
        {"ToolFind", [&](TfrmMain&) { EXPECT_EQ(modalDialogNames_, QStringList{"SyntaxFindDialog"}); }},
        {"ToolSymbolBrowser", [&](TfrmMain&) { EXPECT_EQ(modalDialogNames_, QStringList{"frmProcList"}); }},
    };
    for (const auto& [button, check] : cases) {
        SCOPED_TRACE(button);
        modalDialogNames_.clear();
        TfrmMain window({QString::fromStdString(demo)});
        QAction* action = window.ToolBar().Button(QString::fromLatin1(button));
        ASSERT_NE(action, nullptr);
        action->trigger();
        ProcessEvents();
        check(window);
    }
    EXPECT_TRUE(openAnswers_.isEmpty());
}

TEST_F(ToolBarTest, SaveIsThereForAModifiedPage) {
    const std::string demo = MakeFile("Demo.pas", kDemoMission);
    TfrmMain window({QString::fromStdString(demo)});
    QAction* save = window.ToolBar().Button(QStringLiteral("ToolSave"));
    window.UpdatePageState();
    EXPECT_FALSE(save->isEnabled());
    TfrmEdit& page = *window.ActivePage();
    page.Memo()->setCursorPosition(0, 0);
    QTest::keyClicks(page.Memo(), QStringLiteral("// saved\r"));
    window.UpdatePageState();
    ASSERT_TRUE(save->isEnabled());
    save->trigger();
    EXPECT_FALSE(page.Modified());
    EXPECT_EQ(ReadFile(demo), "// saved\r\n" + kDemoMission);
    EXPECT_FALSE(save->isEnabled());
    // Without a page only New and Open are left.
    window.CloseAll();
    ProcessEvents();
    window.UpdatePageState();
    for (QAction* action : window.ToolBar().actions()) {
        if (action->isSeparator()) continue;
        const bool alwaysThere = action->objectName() == "ToolNew" || action->objectName() == "ToolOpen";
        EXPECT_EQ(action->isEnabled(), alwaysThere) << action->objectName().toStdString();
    }
}

TEST_F(ToolBarTest, TheViewMenuHidesItForThisAndTheNextSession) {
    {
        TfrmMain window({});
        Show(window);
        QAction* item = window.ToolBar().ViewItem();
        EXPECT_EQ(item->objectName(), QStringLiteral("MenuViewToolBar"));
        ASSERT_TRUE(window.findChild<QMenu*>(QStringLiteral("MenuView"))->actions().contains(item));
        EXPECT_EQ(item->text(), QStringLiteral("&Toolbar"));
        EXPECT_TRUE(item->isChecked());
        EXPECT_TRUE(window.ToolBar().isVisible());
        item->trigger();
        EXPECT_FALSE(window.ToolBar().isVisible());
        EXPECT_FALSE(item->isChecked());
    }
    TfrmMain next({});
    Show(next);
    EXPECT_FALSE(next.ToolBar().isVisible());
    next.ToolBar().ViewItem()->trigger();
    EXPECT_TRUE(next.ToolBar().isVisible());
    EXPECT_TRUE(TIniFile(IniPath()).ReadBool("main", "toolbar", false));
}

} // namespace
} // namespace velkor::test
