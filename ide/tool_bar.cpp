#include "ide/tool_bar.h"

#include "ide/edit_page.h"
#include "ide/ide_ini.h"
#include "ide/main_window.h"

#include <QAction>
#include <QIcon>
#include <QMenu>
#include <QMenuBar>

namespace velkor {
namespace {

struct TButton {
    const char* Name;     // the action's object name
    const char* Text;     // its text ("&&" shows one "&")
    const char* ToolTip;  // with the menu item's key
    const char* Icon;     // the icon theme's name, also the bundled drawing's
    const char* MenuItem; // the menu item it runs
    bool NeedsPage;       // enabled only with an active page
};

constexpr TButton kButtons[] = {
    {"ToolNew", "New Unit", "New Unit (Ctrl+N)", "document-new", "MenuFileNewUnit", false},
    {"ToolOpen", "Open", "Open...", "document-open", "MenuFileOpen", false},
    {"ToolSave", "Save", "Save (F2)", "document-save", "MenuFileSave", true},
    {nullptr, nullptr, nullptr, nullptr, nullptr, false},
    {"ToolCompile", "Compile", "Compile (Ctrl+F9)", "run-build", "MenuCompileCompile", true},
    {"ToolBuild", "Compile && Build Iff", "Compile & Build Iff (F9)", "run-build-install", "MenuCompileBuild",
     true},
    {nullptr, nullptr, nullptr, nullptr, nullptr, false},
    {"ToolFind", "Find", "Find... (Ctrl+F)", "edit-find", "MenuEditFind", true},
    {"ToolSymbolBrowser", "Symbol Browser", "Symbol Browser (Ctrl+S)", "code-class",
     "MenuEditFindSymbolBrowser", true},
};

constexpr const char* kVisibleKey = "toolbar";

} // namespace

TMainToolBar::TMainToolBar(TfrmMain& window) : QToolBar(&window), window_(window) {
    setObjectName(QStringLiteral("MainToolBar"));
    setWindowTitle(QStringLiteral("Toolbar"));
    setMovable(false);
    setIconSize(QSize(22, 22));
    for (const TButton& button : kButtons) {
        if (!button.Name) {
            addSeparator();
            continue;
        }
        const QString iconName = QString::fromLatin1(button.Icon);
        QAction* action = addAction(QIcon::fromTheme(iconName, QIcon(QStringLiteral(":/velkor/toolbar/") +
                                                                     iconName + QStringLiteral(".svg"))),
                                    QString::fromLatin1(button.Text));
        action->setObjectName(QString::fromLatin1(button.Name));
        action->setToolTip(QString::fromLatin1(button.ToolTip));
        const QString menuItem = QString::fromLatin1(button.MenuItem);
        connect(action, &QAction::triggered, this, [this, menuItem] {
            // The menu's own enabling rules run first, as when the menu opens.
            window_.UpdateFileMenu();
            if (QAction* item = window_.MenuItem(menuItem)) item->trigger();
            Refresh();
        });
    }

    QAction* view = toggleViewAction();
    view->setObjectName(QStringLiteral("MenuViewToolBar"));
    view->setText(QStringLiteral("&Toolbar"));
    if (auto* menu = window.menuBar()->findChild<QMenu*>(QStringLiteral("MenuView"))) {
        menu->addSeparator();
        menu->addAction(view);
    }
    window.addToolBar(Qt::TopToolBarArea, this);
    setVisible(IdeIni().ReadBool("main", kVisibleKey, true));
    connect(view, &QAction::triggered, this,
            [](bool visible) { IdeIni().WriteBool("main", kVisibleKey, visible); });
    Refresh();
}

QAction* TMainToolBar::Button(const QString& name) const {
    for (QAction* action : actions()) {
        if (action->objectName() == name) return action;
    }
    return nullptr;
}

void TMainToolBar::Refresh() {
    const TfrmEdit* page = window_.ActivePage();
    for (const TButton& button : kButtons) {
        if (!button.Name) continue;
        QAction* action = Button(QString::fromLatin1(button.Name));
        bool enabled = !button.NeedsPage || page != nullptr;
        if (std::string_view(button.Name) == "ToolSave") enabled = page && page->Modified();
        if (action->isEnabled() != enabled) action->setEnabled(enabled);
    }
}

} // namespace velkor
