// TEditorTheme: every colour the source editor draws with, in one table per theme. The light theme is the
// editor's classic white page; the dark one keeps the same roles readable on a dark desktop.
#pragma once

#include <QColor>

#include <array>
#include <string_view>

class QPalette;

namespace velkor {

struct TEditorTheme {
    const char* Name;             // "light" or "dark"
    QColor Paper;                 // text background
    std::array<QColor, 7> Styles; // text colour per highlighter style (TSourceStyle)
    QColor SelectionBack;         // selected text
    QColor SelectionFore;         //
    QColor Caret;                 // the caret itself
    QColor CaretLine;             // background of the caret's line
    QColor MarginBack;            // line numbers and bookmark gutter
    QColor MarginFore;            //
    QColor FoldMarginBack;        // the fold gutter (drawn as a checkerboard of these two)
    QColor FoldMarginFore;        //
    QColor FoldMarkerFore;        // sign inside a fold box
    QColor FoldMarkerBack;        // the fold box and tree lines
    QColor IndentGuide;           // indentation guides
    QColor BraceMatchBack;        // a bracket and its partner, a begin and its end
    QColor BraceMatchFore;        //
    QColor BraceBadFore;          // a bracket without partner
    QColor ErrorLine;             // background of the line of the last compile's error
    QColor BookmarkFrame;         // bookmark symbols
    QColor BookmarkFill;          //
};

// Which theme the editor uses: the desktop's light or dark palette, or one of the two forced.
enum class TThemeChoice { System, Light, Dark };

const TEditorTheme& LightEditorTheme();
const TEditorTheme& DarkEditorTheme();

// The setting's text ("system", "light", "dark", any case); anything else is System.
TThemeChoice ThemeChoiceFromName(std::string_view name);
const char* ThemeChoiceName(TThemeChoice choice);

// A palette is dark when its window colour is darker than mid-grey.
bool IsDarkPalette(const QPalette& palette);
const TEditorTheme& EditorThemeFor(TThemeChoice choice, const QPalette& desktop);

} // namespace velkor
