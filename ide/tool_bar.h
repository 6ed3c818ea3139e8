// TMainToolBar: the commands used most, as buttons above the editor tabs: New, Open, Save, Compile,
// Compile & Build, Find and Symbol Browser. Each button runs its menu item, so it does exactly what the
// menu does. Icons come from the desktop's icon theme, or the bundled drawings when it has none. View ›
// Toolbar shows and hides it; the choice is kept in the settings file ([main] toolbar).
#pragma once

#include <QToolBar>

namespace velkor {

class TfrmMain;

class TMainToolBar : public QToolBar {
    Q_OBJECT

public:
    explicit TMainToolBar(TfrmMain& window);

    // A button's action by its name: "ToolNew", "ToolOpen", "ToolSave", "ToolCompile", "ToolBuild",
    // "ToolFind", "ToolSymbolBrowser"; null for another name.
    QAction* Button(const QString& name) const;
    // The View menu's item that shows and hides the bar ("MenuViewToolBar").
    QAction* ViewItem() const { return toggleViewAction(); }
    // Enables the buttons as the active page allows: Save when it is modified, the page commands when
    // there is one.
    void Refresh();

private:
    TfrmMain& window_;
};

} // namespace velkor
