// The main window: its icon, decoding on open and the first show.
#include "ide/app_icon.h"
#include "ide/iff_decode.h"
#include "ide/iff_view.h"
#include "ide/reg_mru.h"
#include "scanner/scanner.h"
#include "tests/ide/edit_page_test_support.h"

#include <QAction>
#include <QElapsedTimer>
#include <QImage>
#include <QMenu>
#include <QTabWidget>

#include <filesystem>

namespace velkor::test {
namespace {

class MainWindowTest : public PageTest {
protected:
    static QStringList Captions(const TfrmMain& window) {
        QStringList captions;
        for (int i = 0; i < window.PageControlEditor()->count(); ++i)
            captions << window.PageControlEditor()->tabText(i);
        return captions;
    }
    static void WaitForPage(TfrmMain& window, const QString& caption) {
        QElapsedTimer clock;
        clock.start();
        while (window.ActivePage()->Caption() != caption && clock.elapsed() < 5000)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
};

// The built-in SVG renders (the icon engine is there) at the sizes desktops and task bars ask for.
TEST(AppIcon, TheSvgIconRendersAtEverySize) {
    const QIcon icon = VelkorIcon();
    ASSERT_FALSE(icon.isNull());
    for (int size : {16, 32, 48, 256}) {
        const QImage image = icon.pixmap(size, size).toImage();
        ASSERT_EQ(image.width(), size);
        EXPECT_NE(image.pixel(size / 2, size / 2), image.pixel(0, 0)) << "blank at " << size;
    }
}

// A binary file opens as its decoded text, modified (its text file is not written). A truncated one opens
// as far as its items go and the output view says that the text is not exact, inline and from a decode
// thread alike.
TEST_F(MainWindowTest, ABinaryFileOpensAsItsDecodedText) {
    const QString text = QStringLiteral("IFF \"Cut.iff\"\r\n{\r\n  FORM \"TEST\"\r\n  {\r\n"
                                        "    CHUNK \"DATA\"\r\n    {\r\n      BYTE [2] $0A $FF\r\n"
                                        "    }\r\n  }\r\n}\r\n");
    const QString note =
        QStringLiteral(": the file is truncated: form TEST at offset 00000000 ends at 00000028, "
                       "the data at 00000016: the decode is not exact");
    for (const bool truncated : {false, true}) {
        for (const bool thread : {false, true}) {
            SCOPED_TRACE(std::to_string(truncated) + std::to_string(thread));
            TIniFile(IniPath()).WriteBool("iffd", "UseSeparateThread", thread);
            const std::string iff =
                MakeFile("Cut.iff", std::string("FORM\0\0\0", 7) + (truncated ? ' ' : '\x0E') +
                                        std::string("TESTDATA\0\0\0\x02\x0A\xFF", 14));
            TfrmMain window({});
            window.DecodeFile(iff);
            WaitForPage(window, QStringLiteral("Cut.iff.pas"));
            ASSERT_EQ(window.ActivePage()->Caption(), QStringLiteral("Cut.iff.pas"));
            EXPECT_EQ(window.ActivePage()->Text(), text);
            EXPECT_TRUE(window.ActivePage()->Modified());
            EXPECT_FALSE(std::filesystem::exists(iff + ".pas"));
            EXPECT_EQ(window.OutputView().Lines().contains(QString::fromStdString(iff) + note), truncated);
            EXPECT_TRUE(messages_.isEmpty());
        }
    }
}

TEST_F(MainWindowTest, AMissionOpensWithItsScriptFunctionsAsListingsUnlessTheSettingsSayBytes) {
    const std::string mission = MakeFile("Patrol.mis", ReadFile(std::filesystem::path(VELKOR_SOURCE_DIR) /
                                                                "tests/golden/campaign/patrol.mis"));
    {
        TfrmMain window({QString::fromStdString(mission)});
        ASSERT_EQ(window.Pages().size(), 1);
        const QString text = window.ActivePage()->Text();
        EXPECT_TRUE(text.contains(QStringLiteral("      WCP_ASM\r\n      {\r\n        func ")));
        EXPECT_TRUE(text.contains(QStringLiteral("          movv v15 v8;\r\n")));
        EXPECT_TRUE(text.contains(QStringLiteral("CHUNK $56A0F92F // OBJ_PROP_TYPE\r\n")));
    }
    TIniFile(IniPath()).WriteBool("iffd", "disassemble", false);
    TfrmMain window({QString::fromStdString(mission)});
    ASSERT_EQ(window.Pages().size(), 1);
    EXPECT_FALSE(window.ActivePage()->Text().contains(QStringLiteral("WCP_ASM")));
    EXPECT_FALSE(window.ActivePage()->Text().contains(QStringLiteral("OBJ_PROP_TYPE")));
}

TEST_F(MainWindowTest, ShortFilesAreTextAndFormFilesAreDecodedInline) {
    std::vector<std::string> decoded;
    SetDecodeFunctionForTesting([&](const std::string& in, const std::string& out, std::int32_t limit) {
        decoded.push_back(in + "|" + std::to_string(limit));
        WriteFile(out, "IFF \"x\"\r\n{\r\n}\r\n");
    });
    TIniFile(IniPath()).WriteInteger("iffd", "maxdecodesize", 77);
    const std::string shortFile = MakeFile("short.iff", "FOR");
    const std::string iff = MakeFile("Ship.iff", std::string("FORM\0\0\0\4TEST", 12));
    TfrmMain window({QString::fromStdString(shortFile), QString::fromStdString(iff)});
    ASSERT_EQ(decoded.size(), 1u);
    EXPECT_EQ(decoded[0], iff + "|77");
    EXPECT_EQ(Captions(window), (QStringList{"short.iff", "Ship.iff.pas"}));
    EXPECT_EQ(window.ActivePage()->Text(), QStringLiteral("IFF \"x\"\r\n{\r\n}\r\n"));
    // The decoded text is not a recent file; the IFF file itself is not either.
    ASSERT_EQ(window.RegMru1().Items().size(), 1u);
    EXPECT_EQ(window.RegMru1().Items()[0].Path, shortFile);
    SetDecodeFunctionForTesting({});
}

TEST_F(MainWindowTest, ADecoderFailureIsShownAndOpensNothing) {
    SetDecodeFunctionForTesting([](const std::string&, const std::string& out, std::int32_t) {
        WriteFile(out, "partial");
        throw Exception("TIffReader: Read beyond end of chunk!");
    });
    const std::string iff = MakeFile("bad.mis", "FORMxxxx");
    TfrmMain window({});
    EXPECT_EQ(window.OpenFile(iff, true), nullptr);
    EXPECT_EQ(messages_,
              QStringList{QString::fromStdString(iff + ": TIffReader: Read beyond end of chunk!")});
    EXPECT_FALSE(std::filesystem::exists(iff + ".pas"));
    EXPECT_EQ(Captions(window), QStringList{"Untitled0.pas"});
    // A text file of the user's that stood there before is not the failed decode's to remove: a decode
    // that fails writes nothing.
    SetDecodeFunctionForTesting([](const std::string&, const std::string&, std::int32_t) {
        throw Exception("TIffReader: Read beyond end of chunk!");
    });
    WriteFile(iff + ".pas", "mine");
    EXPECT_EQ(window.OpenFile(iff, true), nullptr);
    EXPECT_EQ(ReadFile(iff + ".pas"), "mine");
    SetDecodeFunctionForTesting({});
}

TEST_F(MainWindowTest, DecodeDialogDecodesEveryFileAndRemembersTheFirstFolder) {
    SetDecodeFunctionForTesting([](const std::string& in, const std::string& out, std::int32_t) {
        WriteFile(out, std::filesystem::path(in).filename().string());
    });
    std::filesystem::create_directories(Dir() / "sub");
    const std::string a = MakeFile("sub/one.iff", "FORM");
    const std::string b = MakeFile("two.iff", "FORM");
    TfrmMain window({});
    openAnswers_ << QString::fromStdString(a) << QString::fromStdString(b);
    window.DecodeDialog();
    ProcessEvents();
    EXPECT_EQ(Captions(window), (QStringList{"one.iff.pas", "two.iff.pas"}));
    EXPECT_EQ(TIniFile(IniPath()).ReadString("main", "DirDecodeIff", ""), (Dir() / "sub").string());
    SetDecodeFunctionForTesting({});
}

TEST_F(MainWindowTest, FirstShowAsksForAnEmptyGameFolderSelectsTheScannerAndLoadsExtensions) {
    {
        TfrmMain window({});
        window.show();
        EXPECT_EQ(modalDialogs_, 0);
        EXPECT_EQ(window.SoPath(), Dir().string());
        window.ActivePage()->SetModified(false);
    }
    TIniFile ini(IniPath());
    ini.WriteString("main", "sopath", "");
    ini.WriteBool("compiler", "fast_scanner", true);
    ini.WriteString("autoloadext", Path("nothere.so"), "1");
    TfrmMain window({});
    window.show();
    EXPECT_EQ(modalDialogNames_, QStringList{"frmSettings"});
    window.show();
    EXPECT_EQ(modalDialogs_, 1);
    EXPECT_EQ(GetScannerClass(), ScannerClass::Fast);
    EXPECT_EQ(messages_, QStringList{QString::fromStdString("Could not load library \"" + Path("nothere.so") +
                                                            "\": not found!")});
}

} // namespace
} // namespace velkor::test
