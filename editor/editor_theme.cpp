#include "editor/editor_theme.h"

#include "editor/highlighter.h"

#include <QPalette>

namespace velkor {
namespace {

QColor Rgb(int rgb) {
    return QColor::fromRgb((rgb >> 16) & 0xFF, (rgb >> 8) & 0xFF, rgb & 0xFF);
}

bool SameWord(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
        const char c = (a[i] >= 'A' && a[i] <= 'Z') ? static_cast<char>(a[i] - 'A' + 'a') : a[i];
        if (c != b[i]) return false;
    }
    return true;
}

} // namespace

const TEditorTheme& LightEditorTheme() {
    static const TEditorTheme theme{
        .Name = "light",
        .Paper = Rgb(0xFFFFFF),
        .Styles = {Rgb(0x000000), Rgb(0x008000), Rgb(0x000090), Rgb(0x800080), Rgb(0xA31515), Rgb(0x007070),
                   Rgb(0x505050)},
        .SelectionBack = Rgb(0xADD6FF),
        .SelectionFore = Rgb(0x000000),
        .Caret = Rgb(0x000000),
        .CaretLine = Rgb(0xF2F6FC),
        .MarginBack = Rgb(0xF0F0F0),
        .MarginFore = Rgb(0x606060),
        .FoldMarginBack = Rgb(0xF6F6F6),
        .FoldMarginFore = Rgb(0xF6F6F6),
        .FoldMarkerFore = Rgb(0xFFFFFF),
        .FoldMarkerBack = Rgb(0x8C8C8C),
        .IndentGuide = Rgb(0xC8C8C8),
        .BraceMatchBack = Rgb(0xC6EFCE),
        .BraceMatchFore = Rgb(0x000000),
        .BraceBadFore = Rgb(0xE00000),
        .ErrorLine = Rgb(0xFFB0B0),
        .BookmarkFrame = Rgb(0x204080),
        .BookmarkFill = Rgb(0xD8E4F8),
    };
    static_assert(hsStyleCount == 7);
    return theme;
}

const TEditorTheme& DarkEditorTheme() {
    static const TEditorTheme theme{
        .Name = "dark",
        .Paper = Rgb(0x1E1F22),
        .Styles = {Rgb(0xD4D4D4), Rgb(0x6A9955), Rgb(0x569CD6), Rgb(0xB5CEA8), Rgb(0xCE9178), Rgb(0x4EC9B0),
                   Rgb(0xB4B4B4)},
        .SelectionBack = Rgb(0x264F78),
        .SelectionFore = Rgb(0xFFFFFF),
        .Caret = Rgb(0xE8E8E8),
        .CaretLine = Rgb(0x2A2D34),
        .MarginBack = Rgb(0x2B2D30),
        .MarginFore = Rgb(0x858585),
        .FoldMarginBack = Rgb(0x26282B),
        .FoldMarginFore = Rgb(0x26282B),
        .FoldMarkerFore = Rgb(0x1E1F22),
        .FoldMarkerBack = Rgb(0x8A8A8A),
        .IndentGuide = Rgb(0x404448),
        .BraceMatchBack = Rgb(0x3B5D45),
        .BraceMatchFore = Rgb(0xFFFFFF),
        .BraceBadFore = Rgb(0xF44747),
        .ErrorLine = Rgb(0x6B2B2B),
        .BookmarkFrame = Rgb(0x9CB8E8),
        .BookmarkFill = Rgb(0x2C3E5C),
    };
    return theme;
}

TThemeChoice ThemeChoiceFromName(std::string_view name) {
    if (SameWord(name, "light")) return TThemeChoice::Light;
    if (SameWord(name, "dark")) return TThemeChoice::Dark;
    return TThemeChoice::System;
}

const char* ThemeChoiceName(TThemeChoice choice) {
    switch (choice) {
    case TThemeChoice::Light: return "light";
    case TThemeChoice::Dark: return "dark";
    default: return "system";
    }
}

bool IsDarkPalette(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() < 128;
}

const TEditorTheme& EditorThemeFor(TThemeChoice choice, const QPalette& desktop) {
    switch (choice) {
    case TThemeChoice::Light: return LightEditorTheme();
    case TThemeChoice::Dark: return DarkEditorTheme();
    default: return IsDarkPalette(desktop) ? DarkEditorTheme() : LightEditorTheme();
    }
}

} // namespace velkor
