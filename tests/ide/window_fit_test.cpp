// Windows that fit: the main window comes back exactly where it was, and neither it nor a view nor the
// symbol list comes back off every screen or too small to use.
#include "ide/window_placement.h"
#include "tests/ide/edit_page_test_support.h"

#include <QScreen>

namespace velkor::test {
namespace {

class WindowFitTest : public PageTest {
protected:
    static bool OnAScreen(const QRect& rect) {
        for (const QScreen* screen : QGuiApplication::screens())
            if (screen->availableGeometry().contains(rect.topLeft())) return true;
        return false;
    }
};

TEST_F(WindowFitTest, TheMainWindowComesBackExactlyWhereItWas) {
    const QRect area = QGuiApplication::primaryScreen()->availableGeometry();
    const QRect wanted(area.left() + 40, area.top() + 50, std::min(640, area.width() - 60),
                       std::min(420, area.height() - 70));
    // Placed once, then restart after restart the window stays put.
    for (int run = 0; run < 4; ++run) {
        TfrmMain window({});
        if (run == 0) {
            window.show();
            window.setGeometry(wanted);
        }
        Show(window);
        if (run > 0) {
            EXPECT_EQ(window.geometry(), wanted) << "run " << run;
        }
        window.ActivePage()->SetModified(false);
        window.close();
    }
    EXPECT_EQ(TIniFile(IniPath()).ReadInteger("frmMain", "Left", 0), wanted.left());
    EXPECT_EQ(TIniFile(IniPath()).ReadInteger("frmMain", "Top", 0), wanted.top());
}

TEST(WindowPlacement, RectanglesAreKeptOnAScreenAndUsable) {
    const QRect area = QGuiApplication::primaryScreen()->availableGeometry();
    const QSize minimum(200, 120);
    const struct {
        QRect saved;
        bool kept; // comes back as saved
    } cases[] = {
        {QRect(area.left() + 10, area.top() + 10, 300, 200), true},
        {QRect(area.right() - 150, area.bottom() - 100, 300, 200), true}, // partly off, grip visible
        {QRect(area.left() + 10, area.top() - 20, 300, 200), false},      // its top above the screen
        {QRect(area.left() + 10, -589, 300, 200), false},                 // saved while tabbed
        {QRect(-5000, 100, 300, 200), false},
        {QRect(area.right() + 500, area.top() + 10, 300, 200), false},
        {QRect(area.left() + 10, area.bottom() + 5, 300, 200), false},
        {QRect(area.left() + 10, area.top() + 10, 40, 12), false}, // too small to use
    };
    for (const auto& c : cases) {
        const QRect fitted = KeepOnScreen(c.saved, minimum);
        if (c.kept) {
            EXPECT_EQ(fitted, c.saved);
            continue;
        }
        EXPECT_TRUE(area.contains(fitted.topLeft())) << fitted.x() << "," << fitted.y();
        EXPECT_GE(fitted.width(), minimum.width());
        EXPECT_GE(fitted.height(), minimum.height());
        EXPECT_TRUE(area.contains(QRect(fitted.topLeft(), QSize(std::min(fitted.width(), 100), 24))));
    }
}

TEST_F(WindowFitTest, NeitherWindowNorViewNorSymbolListComesBackOffScreen) {
    TIniFile ini(IniPath());
    for (const auto& [form, left, top, width, height] :
         {std::tuple{"frmMain", -3000, -589, 500, 400}, std::tuple{"frmProcList", 9000, 9000, 300, 200}}) {
        ini.WriteInteger(form, "WindowState", 0);
        ini.WriteInteger(form, "Left", left);
        ini.WriteInteger(form, "Top", top);
        ini.WriteInteger(form, "Width", width);
        ini.WriteInteger(form, "Height", height);
    }
    TDockPlacement junk;
    junk.Site = "";
    std::tie(junk.Left, junk.Top, junk.Width, junk.Height) = std::tuple{4, -589, 12, 7};
    WriteDockPlacement("frmIffView", junk);
    TfrmMain window({});
    Show(window);
    EXPECT_TRUE(OnAScreen(window.geometry()));
    EXPECT_EQ(window.width(), 500);
    ASSERT_TRUE(window.IffView().isFloating());
    EXPECT_TRUE(OnAScreen(window.IffView().geometry()));
    EXPECT_GE(window.IffView().width(), 100);
    EXPECT_GE(window.IffView().height(), 60);
    RestoreFormPlacement(window); // as the symbol list does at its creation
    QWidget list;
    list.setObjectName(QStringLiteral("frmProcList"));
    RestoreFormPlacement(list);
    EXPECT_TRUE(OnAScreen(list.geometry()));
    EXPECT_EQ(list.size(), QSize(300, 200));
}

} // namespace
} // namespace velkor::test
