// The highlighter reads the text as the scanner does; multi-line comments and strings carry over lines.
// The colour themes: which table a setting and a desktop palette give, that every style stays readable on
// its page, and that an editor follows the desktop only while its setting is "system".
#include "editor/editor_theme.h"
#include "editor/highlighter.h"
#include "editor_test_app.h"
#include "scanner/scanner.h"

#include <QPalette>

#include <cmath>
#include <map>
#include <string>
#include <vector>

namespace velkor {
namespace {

// One letter per byte: d default, c comment, k keyword, n number, s string, p directive, o operator.
std::string Styles(std::string_view text, int state = lsCode, std::vector<int>* lineStates = nullptr) {
    std::string styles(text.size(), '?');
    StyleSourceText(text, state, styles.data(), [&](long line, int s) {
        if (lineStates) {
            EXPECT_EQ(line, static_cast<long>(lineStates->size()));
            lineStates->push_back(s);
        }
    });
    static const char letters[] = "dcknspo";
    for (char& c : styles) c = letters[static_cast<int>(c)];
    return styles;
}

TEST(Highlighter, KeywordsAreTheScanners) {
    for (const auto& k : ScannerKeywords()) EXPECT_TRUE(IsSourceKeyword(k.word)) << k.word;
    EXPECT_FALSE(IsSourceKeyword(""));
}

TEST(Highlighter, CommentsAndStringsRunAcrossLines) {
    std::vector<int> states;
    EXPECT_EQ(Styles("a /* one\r\ntwo\r\nthree */ b\r\n\"s\r\nt\" c", lsCode, &states),
              "ddcccccccccccccccccccccddddssssssdd");
    EXPECT_EQ(states, (std::vector<int>{lsBlockComment, lsBlockComment, lsCode, lsString}));
}

class HighlighterInEditor : public test::EditorTest {
protected:
    int StyleAt(int line, int index) {
        edit->SendScintilla(QsciScintillaBase::SCI_COLOURISE, 0L, -1L);
        const long pos = edit->positionFromLineIndex(line, index);
        return static_cast<int>(edit->SendScintilla(QsciScintillaBase::SCI_GETSTYLEAT, pos));
    }
};

// Each row of the table styled on its own and, where it starts in code, as the whole text of an editor.
TEST_F(HighlighterInEditor, StylesFromTheTable) {
    const std::map<QString, int> states = {
        {"code", lsCode}, {"comment", lsBlockComment}, {"string", lsString}};
    for (const QStringList& row : test::Rows("styles.txt")) {
        ASSERT_EQ(row.size(), 3);
        const std::string text = test::Unescape(row[1]);
        EXPECT_EQ(Styles(text, states.at(row[0])), row[2].toStdString()) << row[1].toStdString();
        if (row[0] != u"code") continue;
        Load(QString::fromStdString(text));
        std::string shown;
        edit->SendScintilla(QsciScintillaBase::SCI_COLOURISE, 0L, -1L);
        for (long i = 0; i < edit->SendScintilla(QsciScintillaBase::SCI_GETLENGTH); ++i)
            shown += "dcknspo?"[std::min(edit->SendScintilla(QsciScintillaBase::SCI_GETSTYLEAT, i), 7L)];
        EXPECT_EQ(shown, row[2].toStdString()) << "in the editor: " << row[1].toStdString();
    }
}

TEST_F(HighlighterInEditor, OpeningAndClosingACommentFarAboveRestylesBelow) {
    Load(test::NumberedLines(2000));
    EXPECT_EQ(StyleAt(1500, 0), hsDefault);
    edit->insertAt(QStringLiteral("/*"), 10, 0);
    EXPECT_EQ(StyleAt(1500, 0), hsComment);
    EXPECT_EQ(StyleAt(1999, 8), hsComment);
    edit->insertAt(QStringLiteral("*/"), 700, 0);
    EXPECT_EQ(StyleAt(699, 0), hsComment);
    EXPECT_EQ(StyleAt(700, 2), hsDefault);
    EXPECT_EQ(StyleAt(1500, 0), hsDefault);
    // Removing the opening mark uncomments everything again.
    edit->setSelection(10, 0, 10, 2);
    edit->removeSelectedText();
    EXPECT_EQ(StyleAt(300, 0), hsDefault);
    EXPECT_EQ(StyleAt(700, 0), hsOperator);
}

} // namespace

namespace test {
namespace {

QPalette DesktopPalette(bool dark) {
    QPalette palette;
    palette.setColor(QPalette::Window, dark ? QColor(0x2D, 0x2D, 0x30) : QColor(0xEF, 0xEF, 0xEF));
    palette.setColor(QPalette::WindowText, dark ? Qt::white : Qt::black);
    palette.setColor(QPalette::Base, dark ? QColor(0x1E, 0x1E, 0x1E) : Qt::white);
    palette.setColor(QPalette::Text, dark ? Qt::white : Qt::black);
    return palette;
}

// WCAG contrast ratio of two colours.
double Contrast(const QColor& a, const QColor& b) {
    const auto luminance = [](const QColor& c) {
        const auto channel = [](double v) {
            v /= 255.0;
            return v <= 0.03928 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * channel(c.red()) + 0.7152 * channel(c.green()) + 0.0722 * channel(c.blue());
    };
    const double la = luminance(a), lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

TEST(EditorTheme, SettingAndDesktopChooseTheTableAndEveryColourIsReadable) {
    for (const QStringList& row : Rows("themes.txt")) {
        const TThemeChoice choice =
            ThemeChoiceFromName(row[0] == u"-" ? std::string() : row[0].toStdString());
        EXPECT_EQ(EditorThemeFor(choice, DesktopPalette(row[1] == u"dark")).Name, row[2].toStdString())
            << row.join(u' ').toStdString();
    }
    for (TThemeChoice choice : {TThemeChoice::System, TThemeChoice::Light, TThemeChoice::Dark})
        EXPECT_EQ(ThemeChoiceFromName(ThemeChoiceName(choice)), choice);
    // Every colour of both tables is readable on its page.
    for (const TEditorTheme* theme : {&LightEditorTheme(), &DarkEditorTheme()}) {
        const std::string name = theme->Name;
        for (int style = 0; style < hsStyleCount; ++style)
            EXPECT_GE(Contrast(theme->Styles[static_cast<size_t>(style)], theme->Paper), 4.5)
                << name << " style " << style;
        EXPECT_GE(Contrast(theme->Styles[hsDefault], theme->CaretLine), 4.5) << name;
        EXPECT_GE(Contrast(theme->SelectionFore, theme->SelectionBack), 4.5) << name;
        EXPECT_GE(Contrast(theme->BraceMatchFore, theme->BraceMatchBack), 4.5) << name;
        EXPECT_GE(Contrast(theme->Styles[hsDefault], theme->ErrorLine), 4.5) << name;
        EXPECT_GE(Contrast(theme->MarginFore, theme->MarginBack), 3.0) << name;
        EXPECT_GE(Contrast(theme->Caret, theme->Paper), 4.5) << name;
        // The current line and the guides are seen, and differ from the page.
        EXPECT_NE(theme->CaretLine, theme->Paper) << name;
        EXPECT_GE(Contrast(theme->IndentGuide, theme->Paper), 1.3) << name;
    }
    EXPECT_LT(DarkEditorTheme().Paper.lightness(), 64);
    EXPECT_GT(LightEditorTheme().Paper.lightness(), 240);
}

class ThemeEditorTest : public EditorTest {
protected:
    void TearDown() override {
        QApplication::setPalette(saved_);
        EditorTest::TearDown();
    }
    QColor StyleBack(int style) const {
        const long bgr = edit->SendScintilla(QsciScintillaBase::SCI_STYLEGETBACK, style);
        return QColor(bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF);
    }

    QPalette saved_ = QApplication::palette();
};

TEST_F(ThemeEditorTest, SystemFollowsTheDesktopAndAForcedThemeStays) {
    TSyntaxEdit forced;
    forced.SetThemeChoice(TThemeChoice::Light);
    QApplication::setPalette(DesktopPalette(false));
    EXPECT_STREQ(edit->Theme().Name, "light");
    QApplication::setPalette(DesktopPalette(true));
    EXPECT_STREQ(edit->Theme().Name, "dark");
    EXPECT_STREQ(forced.Theme().Name, "light");
    // The page and every style take the table's colours.
    EXPECT_EQ(StyleBack(QsciScintillaBase::STYLE_DEFAULT), DarkEditorTheme().Paper);
    EXPECT_EQ(StyleBack(hsKeyword), DarkEditorTheme().Paper);
    EXPECT_EQ(edit->Highlighter()->color(hsKeyword), DarkEditorTheme().Styles[hsKeyword]);
    edit->SetThemeChoice(TThemeChoice::Light);
    EXPECT_STREQ(edit->Theme().Name, "light");
    EXPECT_EQ(StyleBack(hsComment), QColor(Qt::white));
    QApplication::setPalette(DesktopPalette(false));
    forced.SetThemeChoice(TThemeChoice::System);
    QApplication::setPalette(DesktopPalette(true));
    EXPECT_STREQ(forced.Theme().Name, "dark");
    EXPECT_STREQ(edit->Theme().Name, "light");
}

} // namespace
} // namespace test
} // namespace velkor
