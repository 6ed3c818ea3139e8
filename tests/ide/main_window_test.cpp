// The main window: its icon and decoding on open through the decode hook (the rest of decoding on open
// and the first show are scenarios).
#include "ide/app_icon.h"
#include "ide/iff_decode.h"
#include "ide/reg_mru.h"
#include "tests/ide/edit_page_test_support.h"

#include <QAction>
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

} // namespace
} // namespace velkor::test
