// The editor's colour themes: which table a setting and a desktop palette give, that every style stays
// readable on its page, and that an editor follows the desktop only while its setting is "system".
#include "editor/editor_theme.h"
#include "editor/highlighter.h"
#include "editor_test_app.h"

#include <QPalette>

#include <cmath>
#include <string>

namespace velkor::test {
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

TEST(EditorTheme, SettingAndDesktopChooseTheTable) {
    struct Case {
        const char* Setting;
        bool DarkDesktop;
        const char* Theme;
    };
    const Case cases[] = {
        {"system", false, "light"}, {"system", true, "dark"},   {"", true, "dark"},
        {"light", true, "light"},   {"Light", false, "light"},  {"DARK", false, "dark"},
        {"dark", true, "dark"},     {"purple", false, "light"}, {"purple", true, "dark"},
    };
    for (const Case& c : cases) {
        const TThemeChoice choice = ThemeChoiceFromName(c.Setting);
        EXPECT_STREQ(EditorThemeFor(choice, DesktopPalette(c.DarkDesktop)).Name, c.Theme)
            << c.Setting << (c.DarkDesktop ? " on a dark desktop" : " on a light desktop");
    }
    for (TThemeChoice choice : {TThemeChoice::System, TThemeChoice::Light, TThemeChoice::Dark})
        EXPECT_EQ(ThemeChoiceFromName(ThemeChoiceName(choice)), choice);
}

TEST(EditorTheme, EveryColourIsReadableOnItsPage) {
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
} // namespace velkor::test
