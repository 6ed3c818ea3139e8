// What the window shows of its pages and how they open and close: modified marks in the tab, the caption
// and the status bar; tab close buttons and middle clicks; dropped files.
#include "ide/edit_page.h"
#include "ide/help_view.h"
#include "ide/main_window.h"
#include "tests/ide/edit_page_test_support.h"

#include <QAction>
#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QUrl>

namespace velkor::test {
namespace {

class PageStateTest : public PageTest {
protected:
    static QString TabText(TfrmMain& window, TfrmEdit* page) {
        return window.PageControlEditor()->tabText(window.PageControlEditor()->indexOf(page));
    }
    // Whether the page's tab shows the modified mark.
    static bool Marked(TfrmMain& window, TfrmEdit* page) {
        return !window.PageControlEditor()->tabIcon(window.PageControlEditor()->indexOf(page)).isNull();
    }
    static void Drop(QWidget* target, const QList<QUrl>& urls) {
        QMimeData data;
        data.setUrls(urls);
        const QPoint at = target->rect().center();
        QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &enter);
        ASSERT_TRUE(enter.isAccepted());
        QDropEvent drop(QPointF(at), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &drop);
        EXPECT_TRUE(drop.isAccepted());
    }
};

constexpr const char* kCaption = "Velkor Console 3.0d (Compiler: 1.0 R24d)";

TEST_F(PageStateTest, ModifiedShowsInTheTabTheCaptionAndTheStatusBar) {
    const std::string file = MakeFile("alpha.pas", "unit alpha;\r\n");
    TfrmMain window({});
    EXPECT_EQ(window.windowTitle(), QString::fromLatin1(kCaption));
    TfrmEdit* page = window.OpenFile(file, false);
    ASSERT_NE(page, nullptr);
    EXPECT_EQ(TabText(window, page), QStringLiteral("alpha.pas"));
    EXPECT_FALSE(Marked(window, page));
    EXPECT_EQ(window.windowTitle(),
              QString::fromLatin1(kCaption) + QStringLiteral(" - ") + QString::fromStdString(file));
    window.TimerTick();
    EXPECT_EQ(window.ModifiedText(), QString());
    EXPECT_EQ(window.InsertModeText(), QStringLiteral("INS"));

    page->Memo()->SetCaret(0, 0);
    QTest::keyClicks(page->Memo(), QStringLiteral("x"));
    EXPECT_TRUE(page->Modified());
    EXPECT_EQ(TabText(window, page), QStringLiteral("alpha.pas"));
    EXPECT_TRUE(Marked(window, page));
    EXPECT_EQ(window.windowTitle(), QString::fromLatin1(kCaption) + QStringLiteral(" - ") +
                                        QString::fromStdString(file) + QStringLiteral(" *"));
    EXPECT_EQ(window.ModifiedText(), QStringLiteral("Modified"));
    QTest::keyClick(page->Memo(), Qt::Key_Insert);
    window.TimerTick();
    EXPECT_EQ(window.InsertModeText(), QStringLiteral("OVR"));
    EXPECT_EQ(window.StatusPanelText(1), QStringLiteral("1:2"));

    ASSERT_TRUE(page->Save());
    EXPECT_FALSE(Marked(window, page));
    EXPECT_EQ(window.ModifiedText(), QString());
    EXPECT_FALSE(window.windowTitle().endsWith(u'*'));

    // A new page has no path; once it holds something it is named.
    TfrmEdit* fresh = window.NewPage();
    EXPECT_EQ(window.windowTitle(), QString::fromLatin1(kCaption));
    fresh->Memo()->SetText(QStringLiteral("unit b;"));
    EXPECT_EQ(window.windowTitle(), QString::fromLatin1(kCaption) + QStringLiteral(" - ") + fresh->Caption() +
                                        QStringLiteral(" *"));
    EXPECT_EQ(TabText(window, fresh), fresh->Caption());
    EXPECT_TRUE(Marked(window, fresh));
}

TEST_F(PageStateTest, TabsCloseByTheirButtonAndByMiddleClickWithTheSaveQuery) {
    TfrmMain window({});
    Show(window);
    TfrmEdit* first = window.OpenFile(MakeFile("one.pas", "unit one;\r\n"), false);
    TfrmEdit* second = window.OpenFile(MakeFile("two.pas", "unit two;\r\n"), false);
    ASSERT_TRUE(first && second);
    QTabWidget* tabs = window.PageControlEditor();
    EXPECT_TRUE(tabs->tabsClosable());

    // The button of a modified page asks; Cancel keeps it.
    second->SetModified(true);
    QWidget* button = tabs->tabBar()->tabButton(tabs->indexOf(second), QTabBar::RightSide);
    ASSERT_NE(button, nullptr);
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_EQ(questions_, QStringList{QString::fromStdString("Save changes to " + second->FileName() + "?")});
    EXPECT_EQ(window.Pages().size(), 2);
    answers_.push_back(TMsgAnswer::No);
    QTest::mouseClick(button, Qt::LeftButton);
    ProcessEvents();
    EXPECT_EQ(window.Pages().size(), 1);

    const QRect tab = tabs->tabBar()->tabRect(tabs->indexOf(first));
    QTest::mouseClick(tabs->tabBar(), Qt::MiddleButton, Qt::NoModifier, tab.center());
    ProcessEvents();
    EXPECT_TRUE(window.Pages().isEmpty());
}

TEST_F(PageStateTest, DroppedFilesOpenAsPagesAndBinaryIffIsDecoded) {
    const std::string text = MakeFile("dropped.pas", "unit dropped;\r\n");
    const std::string iff = MakeFile("data.iff", std::string("FORM\0\0\0\x10TESTDATA\0\0\0\x04"
                                                             "abcd",
                                                             24));
    TfrmMain window({});
    Show(window);
    Drop(&window, {QUrl::fromLocalFile(QString::fromStdString(text))});
    ASSERT_NE(window.FindPage(text), nullptr);
    // On the editor the file is opened too, not pasted as text.
    TfrmEdit* page = window.FindPage(text);
    Drop(page->Memo()->viewport(), {QUrl::fromLocalFile(QString::fromStdString(iff))});
    EXPECT_EQ(page->Text(), QStringLiteral("unit dropped;\r\n"));
    TfrmEdit* decoded = window.ActivePage();
    ASSERT_NE(decoded, page) << messages_.join(u'\n').toStdString();
    EXPECT_EQ(decoded->Caption(), QStringLiteral("data.iff.pas"));
    EXPECT_TRUE(decoded->Modified());
    EXPECT_TRUE(decoded->Text().contains(QStringLiteral("TEST")));
}

} // namespace
} // namespace velkor::test
