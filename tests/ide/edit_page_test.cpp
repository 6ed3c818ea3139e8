// An editor page: atomic writing, compiling into the output and IFF views, and
// building the binary files.
#include "tests/ide/edit_page_test_support.h"

#include <Qsci/qsciscintilla.h>

#include <QSignalSpy>

#include <csignal>
#include <sys/resource.h>

namespace velkor::test {
namespace {

class EditPageTest : public PageTest {};

// A save that fails leaves the old file as it was and the page modified.
TEST_F(EditPageTest, AFailedSaveLeavesTheOldFileIntact) {
    // A name that just fits leaves no room for the temporary file's suffix: it cannot be created (a limit
    // that holds for root too, unlike permissions).
    const std::string longName = MakeFile(std::string(236, 'k') + ".pas", "unit keep;\r\n");
    const std::string file = MakeFile("keep.pas", "unit keep;\r\n");
    TfrmMain window({});
    TfrmEdit* page = window.OpenFile(longName, false);
    ASSERT_NE(page, nullptr);
    page->Memo()->SetText(QStringLiteral("unit changed;\r\n"));
    EXPECT_FALSE(page->Save());
    EXPECT_EQ(ReadFile(longName), "unit keep;\r\n");
    EXPECT_TRUE(page->Modified());
    ASSERT_EQ(messages_.size(), 1);
    EXPECT_TRUE(messages_[0].startsWith(QStringLiteral("Cannot create file")));

    page = window.OpenFile(file, false);
    ASSERT_NE(page, nullptr);
    // The disk fills up part-way through the write.
    page->Memo()->SetText(QStringLiteral("unit big;\r\n") + QStringLiteral("var v;\r\n").repeated(20000));
    rlimit old{};
    getrlimit(RLIMIT_FSIZE, &old);
    const auto oldSignal = std::signal(SIGXFSZ, SIG_IGN);
    rlimit small = old;
    small.rlim_cur = 4096;
    setrlimit(RLIMIT_FSIZE, &small);
    const bool saved = page->Save();
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, oldSignal);
    EXPECT_FALSE(saved);
    EXPECT_EQ(ReadFile(file), "unit keep;\r\n");
    for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(file).parent_path()))
        EXPECT_EQ(entry.path().filename().string().find(".velkor-tmp"), std::string::npos) << entry.path();
    EXPECT_TRUE(page->Modified());
}

// With autosave on, the page is saved before it compiles.
TEST_F(EditPageTest, CompileSavesFillsTheOutputAndTheIffViewAndKeepsTheSymbols) {
    TIniFile(IniPath()).WriteBool("editor", "autosave", true);
    TfrmMain window({});
    TfrmEdit* page = OpenDemo(window, false);
    ASSERT_NE(page, nullptr);
    page->Memo()->append(QStringLiteral("// saved\r\n"));
    window.OutputView().AppendLine(QStringLiteral("old line"));
    window.OutputView().hide();
    EXPECT_EQ(page->Symbols(), nullptr);
    ASSERT_TRUE(page->Compile()) << Output(window);
    EXPECT_FALSE(window.OutputView().Lines().contains(QStringLiteral("old line")));
    EXPECT_TRUE(window.OutputView().Lines().join(u'\n').contains(QStringLiteral("added to searchpath")));
    EXPECT_TRUE(window.OutputView().isVisibleTo(&window));
    EXPECT_TRUE(window.IffView().Text().startsWith(QStringLiteral("IFF \"Demo.mis\"")));
    ASSERT_NE(page->Symbols(), nullptr);
    EXPECT_GE(page->Symbols()->Find("ATTACK"), 0);
    // The search path of the compile: the unit's folder first.
    EXPECT_EQ(page->SearchPathText().substr(0, Dir().string().size()), Dir().string());
    EXPECT_EQ(page->Memo()->ErrorLine(), -1);
    EXPECT_EQ(ReadFile(Dir() / "Demo.pas"), std::string(kDemoMission) + "// saved\r\n");
    EXPECT_FALSE(page->Modified());
}

// Behind the output list the IFF view holds the compiled text without the text box; the box takes it when
// the view's tab comes to the front, and reads the same, with the caret at the start and nothing to undo.
TEST_F(EditPageTest, TheIffViewBehindTheOutputListGetsItsTextWhenItComesToTheFront) {
    TfrmMain window({});
    window.show();
    QApplication::processEvents();
    TfrmEdit* page = OpenDemo(window, false);
    ASSERT_NE(page, nullptr);
    auto* box = window.IffView().findChild<QsciScintilla*>(QStringLiteral("MemoIff"));
    ASSERT_NE(box, nullptr);
    window.IffView().BringToFront();
    QApplication::processEvents();
    window.IffView().SetText(QStringLiteral("old\nlines\nhere"));
    window.IffView().SetCaret(2, 3);
    QSignalSpy changed(&window.IffView(), &TfrmIffView::TextChanged);

    ASSERT_TRUE(page->Compile()) << Output(window);
    QApplication::processEvents();
    const QString compiled = window.IffView().Text();
    EXPECT_TRUE(compiled.startsWith(QStringLiteral("IFF \"Demo.mis\""))) << compiled.toStdString();
    EXPECT_EQ(window.IffView().TextUtf8(), compiled.toStdString());
    EXPECT_EQ(changed.count(), 1);
    window.IffView().UpdateCaption();
    EXPECT_EQ(window.IffView().windowTitle(), QStringLiteral("Iff [1:1]"));
    EXPECT_EQ(box->text(), QStringLiteral("old\nlines\nhere")) << "filled while out of sight";

    window.IffView().BringToFront();
    QApplication::processEvents();
    EXPECT_EQ(box->text(), compiled);
    EXPECT_FALSE(box->isUndoAvailable());
    EXPECT_EQ(changed.count(), 1);
    window.IffView().UpdateCaption();
    EXPECT_EQ(window.IffView().windowTitle(), QStringLiteral("Iff [1:1]"));

    // A text set while the view is in sight goes into the box at once.
    window.IffView().SetTextUtf8("IFF \"Other.mis\"\n");
    EXPECT_EQ(box->text(), QStringLiteral("IFF \"Other.mis\"\n"));
    EXPECT_EQ(changed.count(), 2);
}

TEST_F(EditPageTest, CompileAndBuildWritesTheMissionAndTheSizeLine) {
    const PrivateTempFolder tmp(Dir() / "tmp");
    TfrmMain window({});
    ASSERT_NE(window.OpenFile(MakeFile("Demo.pas", kDemoMission), false), nullptr);
    window.MenuItem(QStringLiteral("MenuCompileBuild"))->trigger();
    const std::filesystem::path mission = Dir() / "Demo.mis";
    ASSERT_TRUE(std::filesystem::exists(mission)) << Output(window);
    EXPECT_EQ(ReadFile(mission).substr(0, 4), "FORM");
    const std::string text = ReadFile(Dir() / "tmp" / "_velkor.txt");
    EXPECT_EQ(QString::fromStdString(text), window.IffView().Text());
    const auto size = std::filesystem::file_size(mission);
    const std::string line = "******* " + mission.string() + " (" +
                             FormatFloat("#,##0", static_cast<double>(size)) + " bytes) *******";
    EXPECT_TRUE(window.OutputView().Lines().contains(QString::fromStdString(line))) << Output(window);
}

TEST_F(EditPageTest, ADecodedFileWithSideFilesBuildsBackToItsBytes) {
    // A chunk above the decode limit goes to a side file beside the IFF file; building the decoded page
    // must find it there, not in the temporary folder the text is assembled from.
    std::string big(3000, '\0');
    for (std::size_t i = 0; i < big.size(); ++i) big[i] = static_cast<char>(i * 7);
    const std::string chunk = std::string("DATA") + std::string("\0\0\x0B\xB8", 4) + big;
    const std::string form = std::string("FORM") + std::string("\0\0\x0B\xC4", 4) + "TEST" + chunk;
    std::filesystem::create_directories(Dir() / "src");
    const std::string iff = (Dir() / "src" / "Big.iff").string();
    WriteFile(iff, form);
    TfrmMain window({});
    ASSERT_NE(window.OpenFile(iff, false), nullptr);
    ASSERT_TRUE(window.ActivePage()->Text().contains(QStringLiteral("file \"Big.iff_DATA_C.bin\"")))
        << window.ActivePage()->Text().toStdString();
    window.MenuItem(QStringLiteral("MenuCompileBuild"))->trigger();
    const std::filesystem::path built = Dir() / "Big.iff";
    ASSERT_TRUE(std::filesystem::exists(built)) << Output(window);
    EXPECT_EQ(ReadFile(built), form);
}

TEST_F(EditPageTest, FilesAUnitNamesOutsideItsPlacesAreRefusedUnlessTheSettingsAllow) {
    TempDir outside; // made before the temporary folder moves below the program's folder
    const PrivateTempFolder tmp(Dir() / "tmp");
    const std::filesystem::path target = outside.path() / "Raw.bin";
    std::filesystem::create_directories(Dir() / "src");
    const std::string unit = (Dir() / "src" / "raw.pas").string();
    WriteFile(unit, "iff \"" + target.string() + "\"\r\n{ form \"DATA\" { } }\r\n");
    for (const bool allowed : {false, true}) {
        SCOPED_TRACE(allowed);
        TIniFile(IniPath()).WriteBool("compiler", "allow_output_anywhere", allowed);
        TfrmMain window({});
        ASSERT_NE(window.OpenFile(unit, false), nullptr);
        window.MenuItem(QStringLiteral("MenuCompileBuild"))->trigger();
        const QString output = window.OutputView().Lines().join(u'\n');
        EXPECT_EQ(std::filesystem::exists(target), allowed) << output.toStdString();
        EXPECT_EQ(
            output.contains(QString::fromStdString(
                "Cannot write file \"" + target.string() +
                "\": it lies outside the output folder, the source's folder and the named folders (check "
                "\"Allow output anywhere\" in the settings to allow it)")),
            !allowed)
            << output.toStdString();
    }
}

} // namespace
} // namespace velkor::test
