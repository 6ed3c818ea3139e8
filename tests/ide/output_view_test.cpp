// The output list: lines in batches, their kinds and where a message points (colours, the context menu and
// stepping through messages are scenarios).
#include "ide/iff_view.h"
#include "ide/main_window.h"
#include "ide/message_location.h"
#include "ide/output_model.h"
#include "ide/output_view.h"
#include "tests/ide/ide_test_support.h"

#include <map>

#include <QListView>
#include <Qsci/qsciscintilla.h>

namespace velkor::test {
namespace {

class OutputViewTest : public IdeTest {};

TEST(OutputLines, KindPlaceAndVerbosityOfEveryMessage) {
    const std::map<QString, TMessageKind> kinds = {{"Error", TMessageKind::Error},
                                                   {"Hint", TMessageKind::Hint},
                                                   {"Written", TMessageKind::Written},
                                                   {"Plain", TMessageKind::Plain}};
    for (const QStringList& row : ReadCases("messages.txt")) {
        const QString& line = row.value(1);
        SCOPED_TRACE(line.toStdString());
        if (row[0] == u"kind") {
            EXPECT_EQ(ClassifyMessage(line), kinds.at(row.value(2)));
        } else if (row[0] == u"place") {
            const auto place = ParseMessageLocation(line);
            ASSERT_EQ(place.has_value(), row.size() > 2);
            if (place) {
                EXPECT_EQ(place->UnitName + u':' + QString::number(place->Line), row[2] + u':' + row[3]);
            }
        } else {
            const bool raisedIn = row.value(2) == u'1';
            EXPECT_EQ(IsRaisedInLine(line.toStdString()), raisedIn);
            for (int verbosity = 0; verbosity <= 3; ++verbosity)
                EXPECT_EQ(ShownAtVerbosity(line.toStdString(), verbosity), verbosity == 3 || !raisedIn);
        }
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

TEST_F(OutputViewTest, TheListKeepsItsLastLineCurrentAndTheIffViewItsBytes) {
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
