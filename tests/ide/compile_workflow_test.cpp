// Compiling beside the window: it stays usable and can stop the work; the messages are the compiler's own.
#include "ide/background_job.h"
#include "ide/edit_page.h"
#include "ide/iff_view.h"
#include "ide/main_window.h"
#include "ide/output_model.h"
#include "ide/output_view.h"
#include "tests/ide/edit_page_test_support.h"

#include <QAction>
#include <QProgressBar>
#include <QTimer>
#include <QToolButton>

#include <atomic>
#include <sstream>
#include <thread>

namespace velkor::test {
namespace {

class CompileWorkflowTest : public PageTest {
protected:
    // The lines of a program's stderr.
    static QStringList LinesOf(const std::string& text) {
        QStringList lines;
        std::istringstream in(text);
        for (std::string line; std::getline(in, line);) {
            if (!line.empty() && line.back() == '\r') line.pop_back();
            lines << QString::fromStdString(line);
        }
        return lines;
    }
};

TEST_F(CompileWorkflowTest, WorkRunsBesideTheWindowWhichShowsItAndCanStopIt) {
    TfrmMain window({});
    window.show();
    std::atomic<bool> windowRan{false};
    bool progressShown = false;
    bool stopShown = false;
    // The work waits for the window's event loop: it ends only because the window went on running, took
    // the work's first line and pressed Stop.
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &window, [&] {
        if (!window.OutputView().Lines().contains(QStringLiteral("started"))) return;
        poll.stop();
        progressShown = window.JobProgress()->isVisible();
        stopShown = window.StopButton()->isVisible();
        windowRan = true;
        window.WindowAction(QStringLiteral("ActionStop"))->trigger();
    });
    poll.start(0);
    bool stopped = false;
    try {
        RunJob(window, QStringLiteral("Waiting"), [&](TJobContext& job) {
            job.Output("started");
            while (!windowRan || !job.StopRequested()) std::this_thread::yield();
            job.Output("never shown");
        });
    } catch (const EJobStopped& e) {
        stopped = true;
        EXPECT_STREQ(e.what(), "Stopped by the user.");
    }
    EXPECT_TRUE(stopped);
    EXPECT_TRUE(progressShown);
    EXPECT_TRUE(stopShown);
    EXPECT_FALSE(window.JobProgress()->isVisible());
    EXPECT_FALSE(window.StopButton()->isVisible());
    EXPECT_FALSE(JobRunning());
    EXPECT_EQ(window.OutputView().Lines(), QStringList{"started"});
    EXPECT_EQ(window.WindowAction(QStringLiteral("ActionStop"))->shortcut(),
              QKeySequence(QStringLiteral("Ctrl+F2")));
}

TEST_F(CompileWorkflowTest, OneJobAtATime) {
    TfrmMain window({});
    bool second = true;
    QTimer::singleShot(0, &window, [&] {
        // A compile asked for meanwhile does not start.
        second = window.ActivePage()->Compile();
        StopJob();
    });
    EXPECT_THROW(RunJob(window, QStringLiteral("first"),
                        [](TJobContext& job) {
                            while (!job.StopRequested()) std::this_thread::yield();
                            job.CheckStop();
                        }),
                 EJobStopped);
    EXPECT_FALSE(second);
}

TEST_F(CompileWorkflowTest, StoppingACompileLeavesTheIffViewAlone) {
    TIniFile(IniPath()).WriteInteger("compiler", "verbosity", 3);
    std::string unit = "mission Long;\r\nvar a;\r\n";
    for (int i = 0; i < 3000; ++i)
        unit += "function F" + std::to_string(i) + "(x);\r\nbegin\r\n  result := x * 2 + a;\r\nend;\r\n";
    TfrmMain window({});
    window.IffView().SetText(QStringLiteral("unchanged"));
    TfrmEdit* page = window.OpenFile(MakeFile("long.pas", unit), false);
    ASSERT_NE(page, nullptr);
    // Stopped as soon as the first messages reach the list.
    QObject::connect(&window.OutputView().Model(), &QAbstractItemModel::rowsInserted, [] { StopJob(); });
    EXPECT_FALSE(page->Compile());
    EXPECT_EQ(window.IffView().Text(), QStringLiteral("unchanged"));
    EXPECT_EQ(window.OutputView().Lines().back(), QStringLiteral("Stopped by the user."));
    EXPECT_FALSE(JobRunning());
}

TEST_F(CompileWorkflowTest, TheMessagesAreVelkorcsWithoutTheDiagnosticBelowVerbosity3) {
    TIniFile ini(IniPath());
    ini.WriteBool("compiler", "haltonerror", false);
    const std::string file = MakeFile("broken.pas", kBroken);
    MakeFile("faulty.pas", kFaulty);
    for (int verbosity : {0, 3}) {
        ini.WriteInteger("compiler", "verbosity", verbosity);
        TfrmMain window({});
        TfrmEdit* page = window.OpenFile(file, false);
        ASSERT_NE(page, nullptr);
        page->Compile();
        // From another folder, so that velkorc too finds the include along the search path.
        std::filesystem::create_directories(Dir() / "elsewhere");
        const ToolResult cli =
            RunVelkorc({"compile", "-v", std::to_string(verbosity), "--no-halt", file}, Dir() / "elsewhere");
        ASSERT_EQ(cli.exitCode, 1) << cli.err;
        QStringList expected;
        for (const QString& line : LinesOf(cli.err)) {
            if (line.contains(QStringLiteral("raised in")) && verbosity < 3) continue;
            // The search-path lines name each program's own library folder.
            if (line.contains(QStringLiteral("added to searchpath")) || line.contains(QStringLiteral("lib")))
                continue;
            expected << line;
        }
        QStringList shown;
        for (const QString& line : window.OutputView().Lines()) {
            if (line.contains(QStringLiteral("added to searchpath")) || line.contains(QStringLiteral("lib")))
                continue;
            shown << line;
        }
        EXPECT_EQ(shown, expected) << "verbosity " << verbosity;
        // Every error is listed: three in the unit, one in the include, one not implemented.
        EXPECT_GE(shown.filter(QStringLiteral("] ERROR: ")).size(), 4);
        EXPECT_EQ(shown.filter(QStringLiteral("]   raised in ")).isEmpty(), verbosity < 3);
    }
}

} // namespace
} // namespace velkor::test
