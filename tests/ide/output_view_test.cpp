// The output list: lines in batches, their kinds and colours, the context menu, stepping through messages,
// and where a message points.
#include "ide/main_window.h"
#include "ide/message_location.h"
#include "ide/output_model.h"
#include "ide/output_view.h"
#include "tests/ide/ide_test_support.h"

#include <QAction>
#include <QApplication>
#include <QBrush>
#include <QClipboard>
#include <QListView>
#include <QMenu>

namespace velkor::test {
namespace {

class OutputViewTest : public IdeTest {};

TEST(OutputLines, KindOfEveryMessage) {
    const struct {
        const char* line;
        TMessageKind kind;
    } cases[] = {
        {"[demo, 4] ERROR: expected \";\" but found \"is\"", TMessageKind::Error},
        {"[demo, 4]   raised in Expect, line 12", TMessageKind::Error},
        {"[demo, 9] HINT: /x/lib\\ doesn't exist", TMessageKind::Hint},
        {"[demo, 2] [error] line 3: unknown keyword", TMessageKind::Error},
        {"[error] line 3: FORM without a name", TMessageKind::Error},
        {"[demo, 1] ** demo.mis ** (1,234 bytes)", TMessageKind::Written},
        {"******* /tmp/demo.mis (1,234 bytes) *******", TMessageKind::Written},
        {"[demo, 1] compiling file x.pas", TMessageKind::Plain},
        {"[demo, 1] recovering from error...", TMessageKind::Plain},
        {"ERROR: text without a place", TMessageKind::Error},
        {"[demo, 1] the word ERROR: later in the line", TMessageKind::Plain},
        {"", TMessageKind::Plain},
    };
    for (const auto& c : cases) EXPECT_EQ(ClassifyMessage(QString::fromLatin1(c.line)), c.kind) << c.line;
}

TEST(OutputLines, PlaceOfAMessage) {
    const struct {
        const char* line;
        const char* unit; // null: no place
        int at;
    } cases[] = {
        {"[demo, 4] ERROR: x", "demo", 4},
        {"[Frontier, 120] HINT: y", "Frontier", 120},
        {"[demo, 4]   raised in Expect, line 12", "demo", 4},
        {"[, 3] text", nullptr, 0},
        {"[demo, 0] text", nullptr, 0},
        {"[demo, x] text", nullptr, 0},
        {"[demo 4] text", nullptr, 0},
        {"[error] line 3: y", nullptr, 0},
        {"demo, 4] text", nullptr, 0},
        {"******* /x (1 bytes) *******", nullptr, 0},
    };
    for (const auto& c : cases) {
        const auto place = ParseMessageLocation(QString::fromLatin1(c.line));
        if (!c.unit) {
            EXPECT_FALSE(place) << c.line;
            continue;
        }
        ASSERT_TRUE(place) << c.line;
        EXPECT_EQ(place->UnitName, QString::fromLatin1(c.unit));
        EXPECT_EQ(place->Line, c.at);
    }
}

TEST(OutputLines, TheDiagnosticLineOnlyAtTheHighestVerbosity) {
    const struct {
        const char* line;
        bool raisedIn;
    } cases[] = {
        {"[demo, 4]   raised in Expect, line 12", true},
        {"  raised in TIffCompiler::Compile, line 80", true},
        {"[demo, 4] ERROR: raised in the text", false},
        {"[demo, 4]  raised in (one space)", false},
        {"raised in", false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(IsRaisedInLine(c.line), c.raisedIn) << c.line;
        for (int verbosity = 0; verbosity <= 3; ++verbosity)
            EXPECT_EQ(ShownAtVerbosity(c.line, verbosity), verbosity == 3 || !c.raisedIn) << c.line;
    }
}

TEST_F(OutputViewTest, AHundredThousandLinesArriveAsOneBatch) {
    TfrmMain window({});
    window.show();
    TfrmOutput& output = window.OutputView();
    int inserts = 0;
    QObject::connect(&output.Model(), &QAbstractItemModel::rowsInserted, [&inserts] { ++inserts; });
    for (int i = 0; i < 100000; ++i) window.Output("[bench, " + std::to_string(i + 1) + "] trace line");
    ProcessEvents();
    EXPECT_EQ(inserts, 1);
    EXPECT_EQ(output.Lines().size(), 100000);
    EXPECT_EQ(output.CurrentRow(), 99999);
    EXPECT_EQ(output.Lines().back(), QStringLiteral("[bench, 100000] trace line"));
    // The newest line is in view.
    const QRect last = output.ListBox1()->visualRect(output.Model().index(99999));
    EXPECT_TRUE(output.ListBox1()->viewport()->rect().intersects(last));
}

TEST_F(OutputViewTest, ErrorsAndHintsAreColoured) {
    TfrmMain window({});
    for (const char* line :
         {"[d, 1] ERROR: bad", "[d, 2] HINT: odd", "[d, 3] plain", "[d, 4] ** d.mis ** (1 bytes)"})
        window.Output(line);
    TfrmOutput& output = window.OutputView();
    output.Flush();
    const auto colour = [&](int row) { return output.Model().index(row).data(Qt::ForegroundRole); };
    ASSERT_TRUE(colour(0).canConvert<QBrush>());
    ASSERT_TRUE(colour(1).canConvert<QBrush>());
    EXPECT_FALSE(colour(2).isValid());
    EXPECT_NE(colour(0).value<QBrush>().color(), colour(1).value<QBrush>().color());
    EXPECT_GT(colour(0).value<QBrush>().color().red(), 150);
    EXPECT_GT(colour(1).value<QBrush>().color().blue(), 150);
    EXPECT_NE(colour(3).value<QBrush>().color(), colour(0).value<QBrush>().color());
}

TEST_F(OutputViewTest, CopyAndClearInTheContextMenu) {
    TfrmMain window({});
    TfrmOutput& output = window.OutputView();
    for (const char* line : {"one", "two", "three"}) window.Output(line);
    output.Flush();
    QMenu* menu = output.ContextMenu();
    QAction* copy = menu->findChild<QAction*>(QStringLiteral("OutputCopy"));
    QAction* clear = menu->findChild<QAction*>(QStringLiteral("OutputClear"));
    ASSERT_NE(copy, nullptr);
    ASSERT_NE(clear, nullptr);
    EXPECT_EQ(copy->text(), QStringLiteral("&Copy"));
    EXPECT_EQ(clear->text(), QStringLiteral("C&lear"));
    QItemSelectionModel* selection = output.ListBox1()->selectionModel();
    selection->select(output.Model().index(0), QItemSelectionModel::ClearAndSelect);
    selection->select(output.Model().index(2), QItemSelectionModel::Select);
    copy->trigger();
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("one\nthree"));
    clear->trigger();
    EXPECT_TRUE(output.Lines().isEmpty());
    EXPECT_EQ(output.CurrentRow(), -1);
}

TEST_F(OutputViewTest, SteppingVisitsErrorsAndHintsBothWays) {
    TfrmMain window({});
    TfrmOutput& output = window.OutputView();
    for (const char* line : {"[d, 1] compiling", "[d, 2] ERROR: a", "[d, 2]   raised in X, line 1",
                             "[d, 5] HINT: b", "[d, 6] recovering from error...", "[d, 9] ERROR: c"})
        window.Output(line);
    output.Flush();
    output.ListBox1()->setCurrentIndex(QModelIndex());
    QList<int> visited;
    QObject::connect(&output, &TfrmOutput::LocationRequested, [&visited](int row) { visited << row; });
    for (int i = 0; i < 4; ++i) ASSERT_TRUE(output.SelectMessage(true));
    EXPECT_EQ(visited, (QList<int>{1, 3, 5, 1}));
    visited.clear();
    for (int i = 0; i < 3; ++i) ASSERT_TRUE(output.SelectMessage(false));
    EXPECT_EQ(visited, (QList<int>{5, 3, 1}));
    EXPECT_EQ(output.CurrentRow(), 1);

    output.Clear();
    window.Output("nothing to visit");
    EXPECT_FALSE(output.SelectMessage(true));
}

} // namespace
} // namespace velkor::test
