// The window as a person sees it: rendered, not blank, with the right caption. Run under Xvfb when it is
// installed (see CMakeLists.txt); it also runs on the offscreen platform.
#include "ide/main_window.h"
#include "platform/ini_file.h"
#include "tests/ide/ide_test_support.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QPixmap>
#include <QSet>
#include <QTest>

#include <cstdio>
#include <cstdlib>

namespace velkor::test {
namespace {

class ScreenshotTest : public IdeTest {};

TEST_F(ScreenshotTest, TheWindowRendersWithItsCaption) {
    TIniFile(IniPath()).WriteString("main", "sopath", "/so");
    QElapsedTimer clock;
    clock.start();
    TfrmMain window({});
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    const qint64 startMs = clock.elapsed();
    RecordProperty("startup_ms", static_cast<int>(startMs));
    std::printf("start-up to a shown window: %lld ms (platform %s)\n", static_cast<long long>(startMs),
                qPrintable(QGuiApplication::platformName()));
    EXPECT_LT(startMs, 1000);

    EXPECT_EQ(window.windowTitle(), QStringLiteral("Velkor Console 3.0d (Compiler: 1.0 R24d)"));
    const QImage image = window.grab().toImage();
    ASSERT_FALSE(image.isNull());
    EXPECT_GE(image.width(), 200);
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); y += 7) {
        for (int x = 0; x < image.width(); x += 7) colours.insert(image.pixel(x, y));
    }
    // A blank grab is one colour; menus, tabs, the editor and the views give many.
    EXPECT_GE(colours.size(), 4);
    if (const char* shot = std::getenv("VELKOR_SCREENSHOT")) image.save(QString::fromLocal8Bit(shot));
}

} // namespace
} // namespace velkor::test
