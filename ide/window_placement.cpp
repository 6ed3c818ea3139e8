#include "ide/window_placement.h"

#include "ide/ide_ini.h"

#include <QGuiApplication>
#include <QRect>
#include <QScreen>
#include <QWidget>

#include <algorithm>

namespace velkor {

namespace {

int StateNumber(const QWidget& form) {
    if (form.isMaximized()) return 2;
    if (form.isMinimized()) return 1;
    return 0;
}

constexpr int kGripHeight = 24; // the part of a window's top edge that must be on a screen
constexpr int kGripWidth = 100;
const QSize kMinimumForm(200, 120);

bool Reachable(const QRect& rect, const QRect& screen) {
    const QRect grip(rect.left(), rect.top(), rect.width(), std::min(rect.height(), kGripHeight));
    const QRect visible = screen.intersected(grip);
    return rect.top() >= screen.top() && visible.width() >= std::min(rect.width(), kGripWidth) &&
           visible.height() >= std::min(grip.height(), kGripHeight);
}

} // namespace

QRect KeepOnScreen(const QRect& rect, const QSize& minimum) {
    const QList<QScreen*> screens = QGuiApplication::screens();
    if (screens.isEmpty()) return rect;
    const bool bigEnough = rect.width() >= minimum.width() && rect.height() >= minimum.height();
    for (const QScreen* screen : screens) {
        if (bigEnough && Reachable(rect, screen->availableGeometry())) return rect;
    }
    const QScreen* target = QGuiApplication::screenAt(rect.center());
    if (!target) target = QGuiApplication::primaryScreen();
    const QRect area = target->availableGeometry();
    const QSize size = rect.size().expandedTo(minimum).boundedTo(area.size());
    const int left = std::clamp(rect.left(), area.left(), area.right() + 1 - size.width());
    const int top = std::clamp(rect.top(), area.top(), area.bottom() + 1 - size.height());
    return {QPoint(left, top), size};
}

void SaveFormPlacement(const QWidget& form) {
    TIniFile ini = IdeIni();
    const std::string section = FromQ(form.objectName());
    const int state = StateNumber(form);
    ini.WriteInteger(section, "WindowState", state);
    if (state == 0) {
        const QRect inside = form.geometry();
        ini.WriteInteger(section, "Left", inside.left());
        ini.WriteInteger(section, "Top", inside.top());
        ini.WriteInteger(section, "Width", form.width());
        ini.WriteInteger(section, "Height", form.height());
    }
}

void RestoreFormPlacement(QWidget& form) {
    const TIniFile ini = IdeIni();
    const std::string section = FromQ(form.objectName());
    if (!ini.SectionExists(section)) return;
    const QRect now = form.geometry();
    const bool placed = ini.ValueExists(section, "Left") || ini.ValueExists(section, "Top");
    const int left = ini.ReadInteger(section, "Left", now.left());
    const int top = ini.ReadInteger(section, "Top", now.top());
    const int width = ini.ReadInteger(section, "Width", form.width());
    const int height = ini.ReadInteger(section, "Height", form.height());
    if (width > 0 && height > 0) {
        if (placed) {
            // setGeometry, not move: move places the frame, whose size the desktop may not know yet, and
            // every restart would shift the window by the difference.
            form.setGeometry(KeepOnScreen(QRect(left, top, width, height), kMinimumForm));
        } else {
            form.resize(QSize(width, height).expandedTo(kMinimumForm));
        }
    }
    switch (ini.ReadInteger(section, "WindowState", 0)) {
    case 1: form.setWindowState(Qt::WindowMinimized); break;
    case 2: form.setWindowState(Qt::WindowMaximized); break;
    default: form.setWindowState(Qt::WindowNoState); break;
    }
}

void WriteDockPlacement(const std::string& section, const TDockPlacement& placement) {
    TIniFile ini = IdeIni();
    ini.WriteString(section, "site", placement.Site);
    ini.WriteInteger(section, "windowstate", placement.WindowState);
    ini.WriteInteger(section, "top", placement.Top);
    ini.WriteInteger(section, "left", placement.Left);
    ini.WriteInteger(section, "height", placement.Height);
    ini.WriteInteger(section, "width", placement.Width);
    ini.WriteBool(section, "visible", placement.Visible);
}

TDockPlacement ReadDockPlacement(const std::string& section, const TDockPlacement& defaults) {
    const TIniFile ini = IdeIni();
    TDockPlacement placement;
    placement.Site = ini.ReadString(section, "site", defaults.Site);
    placement.WindowState = ini.ReadInteger(section, "windowstate", defaults.WindowState);
    placement.Top = ini.ReadInteger(section, "top", defaults.Top);
    placement.Left = ini.ReadInteger(section, "left", defaults.Left);
    placement.Height = ini.ReadInteger(section, "height", defaults.Height);
    placement.Width = ini.ReadInteger(section, "width", defaults.Width);
    placement.Visible = ini.ReadBool(section, "visible", defaults.Visible);
    return placement;
}

} // namespace velkor
