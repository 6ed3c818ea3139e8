// Where windows were: the main window and the symbol list keep their state and normal-state rectangle;
// the dockable views keep the dock area that holds them, their rectangle and visibility. Each form has a
// section of the settings file named after its object name.
#pragma once

#include <string>

class QRect;
class QSize;
class QWidget;

namespace velkor {

// Keys "WindowState" (0 normal, 1 minimised, 2 maximised) and, for a normal window only, "Left", "Top",
// "Width", "Height": the rectangle inside the window frame, which is what comes back exactly however
// thick the desktop draws the frame.
void SaveFormPlacement(const QWidget& form);
// Does nothing when the form's section is missing; missing keys keep the form's current values. A
// rectangle that would leave the window off every screen, or too small to use, is brought back onto one.
void RestoreFormPlacement(QWidget& form);

// `rect` when enough of its top edge lies on a screen to grab it and it is at least `minimum` large;
// otherwise the rectangle grown to `minimum`, no larger than the screen, moved onto the screen nearest to
// it (the primary screen when there is none).
QRect KeepOnScreen(const QRect& rect, const QSize& minimum);

// The dockable-view layout: keys "site", "windowstate", "top", "left", "height", "width", "visible".
struct TDockPlacement {
    std::string Site;    // object name of the dock area holding the view; empty when floating
    int WindowState = 0; // 0 normal, 1 minimised, 2 maximised
    int Top = 0;         // rectangle of the view
    int Left = 0;
    int Height = 0;
    int Width = 0;
    bool Visible = true; // shown at all
};

void WriteDockPlacement(const std::string& section, const TDockPlacement& placement);
// Keys that are missing take the values of `defaults`.
TDockPlacement ReadDockPlacement(const std::string& section, const TDockPlacement& defaults);

} // namespace velkor
