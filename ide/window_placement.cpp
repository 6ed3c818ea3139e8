#include "ide/window_placement.h"

#include "ide/ide_ini.h"

#include <QWidget>

namespace velkor {

namespace {

int StateNumber(const QWidget& form) {
    if (form.isMaximized()) return 2;
    if (form.isMinimized()) return 1;
    return 0;
}

} // namespace

void SaveFormPlacement(const QWidget& form) {
    TIniFile ini = IdeIni();
    const std::string section = FromQ(form.objectName());
    const int state = StateNumber(form);
    ini.WriteInteger(section, "WindowState", state);
    if (state == 0) {
        const QRect frame = form.frameGeometry();
        ini.WriteInteger(section, "Left", frame.left());
        ini.WriteInteger(section, "Top", frame.top());
        ini.WriteInteger(section, "Width", form.width());
        ini.WriteInteger(section, "Height", form.height());
    }
}

void RestoreFormPlacement(QWidget& form) {
    const TIniFile ini = IdeIni();
    const std::string section = FromQ(form.objectName());
    if (!ini.SectionExists(section)) return;
    const QRect frame = form.frameGeometry();
    const int left = ini.ReadInteger(section, "Left", frame.left());
    const int top = ini.ReadInteger(section, "Top", frame.top());
    const int width = ini.ReadInteger(section, "Width", form.width());
    const int height = ini.ReadInteger(section, "Height", form.height());
    if (width > 0 && height > 0) {
        form.move(left, top);
        form.resize(width, height);
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
