// What a person sees of the workflow: errors red and hints blue in the output list, the dot on a modified
// page's tab, the busy bar and Stop button while work runs. The pixels of the grabbed widgets are inspected.
// Runs under Xvfb when it is installed (see CMakeLists.txt) and on the offscreen platform.
#include "ide/background_job.h"
#include "ide/edit_page.h"
#include "ide/main_window.h"
#include "ide/output_model.h"
#include "ide/output_view.h"
#include "tests/ide/edit_page_test_support.h"

#include <QImage>
#include <QListView>
#include <QPixmap>
#include <QProgressBar>
#include <QStatusBar>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <cstdlib>
#include <thread>

namespace velkor::test {
namespace {

class WorkflowScreenshotTest : public PageTest {
protected:
    static void Keep(const QImage& image, const char* name) {
        if (const char* dir = std::getenv("VELKOR_SCREENSHOT_DIR"))
            image.save(QString::fromLocal8Bit(dir) + u'/' + QString::fromLatin1(name));
    }
    // Pixels of the rectangle whose colour is dominated by one channel: 0 red, 2 blue.
    static int Tinted(const QImage& image, const QRect& rect, int channel) {
        int count = 0;
        for (int y = rect.top(); y <= rect.bottom(); ++y) {
            for (int x = rect.left(); x <= rect.right(); ++x) {
                const QColor c = image.pixelColor(x, y);
                const int v[3] = {c.red(), c.green(), c.blue()};
                if (v[channel] > 120 && v[channel] > v[(channel + 1) % 3] + 60 &&
                    v[channel] > v[(channel + 2) % 3] + 60)
                    ++count;
            }
        }
        return count;
    }
};

TEST_F(WorkflowScreenshotTest, ErrorsAreRedAndHintsBlueInTheOutputList) {
    TfrmMain window({});
    window.resize(900, 650);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    for (const char* line : {"[demo, 3] ERROR: expected \";\" but found \"x\"",
                             "[demo, 5] HINT: /x doesn't exist", "[demo, 7] compiling file y.pas"})
        window.Output(line);
    TfrmOutput& output = window.OutputView();
    output.BringToFront();
    output.Flush();
    output.ListBox1()->clearSelection(); // the selected row is drawn in the selection's colours
    output.ListBox1()->setCurrentIndex(QModelIndex());
    QApplication::processEvents();
    QListView* list = output.ListBox1();
    const QImage image = list->viewport()->grab().toImage();
    Keep(window.grab().toImage(), "workflow_output.png");
    const auto row = [&](int r) {
        return list->visualRect(output.Model().index(r)).intersected(image.rect());
    };
    EXPECT_GT(Tinted(image, row(0), 0), 20);
    EXPECT_EQ(Tinted(image, row(0), 2), 0);
    EXPECT_GT(Tinted(image, row(1), 2), 20);
    EXPECT_EQ(Tinted(image, row(1), 0), 0);
    EXPECT_EQ(Tinted(image, row(2), 0) + Tinted(image, row(2), 2), 0);
}

TEST_F(WorkflowScreenshotTest, AModifiedPageHasADotOnItsTab) {
    TfrmMain window({});
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    TfrmEdit* page = window.OpenFile(MakeFile("dot.pas", "unit dot;\r\n"), false);
    ASSERT_NE(page, nullptr);
    QTabBar* tabs = window.PageControlEditor()->tabBar();
    QApplication::processEvents();
    const QImage clean = tabs->grab().toImage();
    page->Memo()->SetText(QStringLiteral("unit dot; // changed"));
    QApplication::processEvents();
    const QImage marked = tabs->grab().toImage();
    Keep(marked, "workflow_tab_modified.png");
    EXPECT_NE(clean, marked);
    // The caption is still there, beside the dot.
    EXPECT_EQ(tabs->tabText(tabs->currentIndex()), QStringLiteral("dot.pas"));
}

TEST_F(WorkflowScreenshotTest, TheBusyBarAndStopButtonShowWhileWorkRuns) {
    TfrmMain window({});
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    QImage during;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &window, [&] {
        if (!window.OutputView().Lines().contains(QStringLiteral("working"))) return;
        poll.stop();
        QApplication::processEvents();
        during = window.statusBar()->grab().toImage();
        EXPECT_TRUE(window.JobProgress()->isVisible());
        StopJob();
    });
    poll.start(0);
    const QImage before = window.statusBar()->grab().toImage();
    EXPECT_THROW(RunJob(window, QStringLiteral("Compiling demo.pas"),
                        [](TJobContext& job) {
                            job.Output("working");
                            while (!job.StopRequested()) std::this_thread::yield();
                            job.CheckStop();
                        }),
                 EJobStopped);
    Keep(during, "workflow_busy.png");
    ASSERT_FALSE(during.isNull());
    // The bar and the button take room of their own in the status bar while they show.
    const QRect bar = window.JobProgress()->geometry();
    EXPECT_NE(before.copy(bar), during.copy(bar));
}

} // namespace
} // namespace velkor::test
