// The main window's menu tree, its enabling rules and the commands that act on the active page.
#include "compiler/compiler.h"
#include "ide/edit_page.h"
#include "ide/ext_handler.h"
#include "ide/help_view.h"
#include "ide/ide_dialogs.h"
#include "ide/ide_ini.h"
#include "ide/iff_build.h"
#include "ide/iff_view.h"
#include "ide/main_window.h"
#include "ide/map_view.h"
#include "ide/output_view.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>

#include <filesystem>

namespace velkor {

QAction* TfrmMain::AddItem(QMenu* menu, const char* name, const char* caption, const char* shortcut) {
    QAction* action = menu->addAction(QString::fromLatin1(caption));
    action->setObjectName(QString::fromLatin1(name));
    if (*shortcut) action->setShortcut(QKeySequence(QString::fromLatin1(shortcut)));
    return action;
}

QAction* TfrmMain::MenuItem(const QString& name) const {
    return menuBar()->findChild<QAction*>(name);
}

void TfrmMain::CreateMenus() {
    const auto topMenu = [this](const char* name, const char* caption) {
        QMenu* menu = menuBar()->addMenu(QString::fromLatin1(caption));
        menu->setObjectName(QString::fromLatin1(name));
        menu->menuAction()->setObjectName(QString::fromLatin1(name) + QStringLiteral("Item"));
        return menu;
    };

    QMenu* file = topMenu("MenuFile", "&File");
    AddItem(file, "MenuFileNewUnit", "New &Unit", "Ctrl+N");
    AddItem(file, "MenuFileNewProject", "New &Project", "Ctrl+P");
    file->addSeparator();
    AddItem(file, "MenuFileOpen", "&Open...", "");
    QMenu* reopen = file->addMenu(QStringLiteral("&Reopen"));
    reopen->setObjectName(QStringLiteral("MenuFileReopenMenu"));
    reopen->menuAction()->setObjectName(QStringLiteral("MenuFileReopen"));
    AddItem(file, "MenuFileDecodeIff", "Decode IFF...", "");
    file->addSeparator();
    AddItem(file, "MenuFileSave", "&Save", "");
    AddItem(file, "MenuFileSaveAs", "Save &As...", "");
    AddItem(file, "MenuFileSaveProject", "Save Pro&ject", "");
    AddItem(file, "MenuFileSaveAll", "Sa&ve All", "");
    file->addSeparator();
    AddItem(file, "MenuFileClose", "&Close", "");
    AddItem(file, "MenuFileCloseAll", "C&lose All", "");
    file->addSeparator();
    AddItem(file, "MenuFileSettings", "Se&ttings...", "");
    file->addSeparator();
    AddItem(file, "MenuFileExit", "E&xit", "");

    QMenu* edit = topMenu("MenuEdit", "&Edit");
    AddItem(edit, "MenuEditUndo", "&Undo", "Ctrl+Z");
    edit->addSeparator();
    AddItem(edit, "MenuEditCut", "Cu&t", "Ctrl+X");
    AddItem(edit, "MenuEditCopy", "&Copy", "Ctrl+C");
    AddItem(edit, "MenuEditPaste", "&Paste", "Ctrl+V");
    AddItem(edit, "MenuEditDelete", "&Delete", "Ctrl+Del");
    AddItem(edit, "MenuEditSelectAll", "Se&lect All", "Ctrl+A");

    QMenu* view = topMenu("MenuView", "&View");
    AddItem(view, "MenuViewIff", "&IFF Source", "")->setCheckable(true);
    AddItem(view, "MenuViewOutput", "&Output", "")->setCheckable(true);
    AddItem(view, "MenuViewHelp", "&Help", "")->setCheckable(true);
    AddItem(view, "MenuViewMap", "&Map", "")->setCheckable(true);

    QMenu* search = topMenu("MenuSearch", "&Search");
    AddItem(search, "MenuEditFind", "&Find...", "Ctrl+F");
    AddItem(search, "MenuEditSearchAgain", "Search &Again", "F3");
    AddItem(search, "MenuEditReplace", "&Replace...", "Ctrl+R");
    search->addSeparator();
    AddItem(search, "MenuEditFindGotoLine", "&Go to Line Number...", "Ctrl+L");
    search->addSeparator();
    AddItem(search, "MenuEditFindSymbolBrowser", "&Symbol Browser", "Ctrl+S");
    AddItem(search, "MenuEditFindFunctionList", "&Function List...", "Ctrl+G");
    AddItem(search, "MenuEditFindObjectList", "&Object List...", "Ctrl+O");
    AddItem(search, "MenuEditFindConstList", "Constant List", "Ctrl+T");

    QMenu* compile = topMenu("MenuCompile", "&Compile");
    AddItem(compile, "MenuCompileCompile", "Com&pile", "Ctrl+F9");
    AddItem(compile, "CompileandEdit1", "Compile && &Edit", "");
    AddItem(compile, "MenuCompileBuild", "&Compile && Build Iff", "F9");
    AddItem(compile, "CompilerusingCommandLineCompiler1", "Compiler &using CommandLine Compiler", "")
        ->setVisible(false);
    AddItem(compile, "MenuCompileAll", "Compile && Build &All", "")->setVisible(false);
    compile->addSeparator();
    AddItem(compile, "MenuCompileBuildIff", "&Build Iff", "");

    QMenu* ext = topMenu("MenuExtensions", "E&xtensions");
    AddItem(ext, "MenuExtLoad", "&Load...", "");

    QMenu* help = topMenu("MenuHelp", "&Help");
    AddItem(help, "MenuHelpTopic", "&Topic: ", "F1");
    help->addSeparator();
    AddItem(help, "MenuHelpLanguage", "&Language", "");
    AddItem(help, "MenuHelpObjects", "&Objects", "");
    AddItem(help, "MenuHelpProperties", "&Properties", "");
    AddItem(help, "MenuHelpFunctions", "&Functions", "");
    help->addSeparator();
    AddItem(help, "MenuHelpAbout", "&About...", "");

    connect(file, &QMenu::aboutToShow, this, &TfrmMain::UpdateFileMenu);
    connect(edit, &QMenu::aboutToShow, this, &TfrmMain::UpdateEditMenu);
    connect(view, &QMenu::aboutToShow, this, &TfrmMain::UpdateViewMenu);
    connect(help, &QMenu::aboutToShow, this, &TfrmMain::UpdateHelpMenu);
}

void TfrmMain::ConnectMenus() {
    const auto on = [this](const char* name, auto handler) {
        connect(MenuItem(QString::fromLatin1(name)), &QAction::triggered, this, handler);
    };
    // Runs `command` on the active page; nothing happens without one.
    const auto onPage = [this, on](const char* name, void (TfrmEdit::*command)()) {
        on(name, [this, command] {
            if (TfrmEdit* page = ActivePage()) (page->*command)();
        });
    };

    on("MenuFileNewUnit", [this] { NewPage(); });
    // New Project, Save Project and Compile && Build All have no action.
    on("MenuFileOpen", [this] { OpenFile("", true); });
    on("MenuFileDecodeIff", &TfrmMain::DecodeDialog);
    on("MenuFileSave", [this] {
        if (TfrmEdit* page = ActivePage()) page->Save();
    });
    on("MenuFileSaveAs", [this] {
        if (TfrmEdit* page = ActivePage()) page->SaveAs();
    });
    on("MenuFileSaveAll", &TfrmMain::SaveAll);
    on("MenuFileClose", [this] {
        if (TfrmEdit* page = ActivePage()) ClosePage(*page);
    });
    on("MenuFileCloseAll", &TfrmMain::CloseAll);
    on("MenuFileSettings", &TfrmMain::ShowSettings);
    on("MenuFileExit", [this] { close(); });

    onPage("MenuEditUndo", &TfrmEdit::Undo);
    onPage("MenuEditCut", &TfrmEdit::Cut);
    onPage("MenuEditCopy", &TfrmEdit::Copy);
    onPage("MenuEditPaste", &TfrmEdit::Paste);
    onPage("MenuEditDelete", &TfrmEdit::DeleteSelection);
    onPage("MenuEditSelectAll", &TfrmEdit::SelectAll);

    const auto toggle = [](TDockableView& view) { view.setVisible(!view.isVisible()); };
    on("MenuViewIff", [this, toggle] { toggle(*iff_); });
    on("MenuViewOutput", [this, toggle] { toggle(*output_); });
    on("MenuViewHelp", [this, toggle] { toggle(*help_); });
    on("MenuViewMap", [this, toggle] { toggle(*map_); });

    onPage("MenuEditFind", &TfrmEdit::Find);
    onPage("MenuEditSearchAgain", &TfrmEdit::SearchAgain);
    onPage("MenuEditReplace", &TfrmEdit::Replace);
    onPage("MenuEditFindGotoLine", &TfrmEdit::GotoLine);
    onPage("MenuEditFindSymbolBrowser", &TfrmEdit::SymbolBrowser);
    onPage("MenuEditFindFunctionList", &TfrmEdit::FunctionList);
    onPage("MenuEditFindObjectList", &TfrmEdit::ObjectList);
    onPage("MenuEditFindConstList", &TfrmEdit::ConstantList);

    on("MenuCompileCompile", [this] {
        if (TfrmEdit* page = ActivePage()) page->Compile();
    });
    on("CompileandEdit1", [this] {
        TfrmEdit* page = ActivePage();
        if (!page || !page->Compile()) return;
        TfrmEdit* generated = NewPage();
        generated->Memo()->SetText(iff_->Text());
        ActivatePage(*generated);
    });
    on("MenuCompileBuild", [this] {
        TfrmEdit* page = ActivePage();
        if (page && page->Compile()) page->BuildIff();
    });
    on("MenuCompileBuildIff", [this] {
        TfrmEdit* page = ActivePage();
        BuildIffFromView(
            *this, page ? std::filesystem::path(page->FileName()).parent_path() : std::filesystem::path(),
            page ? UnitFolderOf(page->FileName()) : std::filesystem::path());
    });

    on("MenuExtLoad", &TfrmMain::LoadExtensionDialog);

    onPage("MenuHelpTopic", &TfrmEdit::TopicSearch);
    on("MenuHelpLanguage", [this] { help_->ShowPage("index.html"); });
    on("MenuHelpObjects", [this] { help_->ShowPage("objects.html"); });
    on("MenuHelpProperties", [this] { help_->ShowPage("props.html"); });
    on("MenuHelpFunctions", [this] { help_->ShowPage("func.html"); });
    on("MenuHelpAbout", [this] {
        DialogHooks().ShowMessage(
            this, QStringLiteral("Velkor Console 3.0d\nCompiler: ") + ToQ(TCompiler::Version()) +
                      QStringLiteral("\n\nA compiler and IDE for the mission-scripting language."));
    });
}

void TfrmMain::UpdateFileMenu() {
    TfrmEdit* page = ActivePage();
    MenuItem(QStringLiteral("MenuFileClose"))->setEnabled(page != nullptr);
    MenuItem(QStringLiteral("MenuFileCloseAll"))->setEnabled(page != nullptr);
    MenuItem(QStringLiteral("MenuFileSaveAs"))->setEnabled(page != nullptr);
    MenuItem(QStringLiteral("MenuFileSave"))->setEnabled(page != nullptr && page->Modified());
}

void TfrmMain::UpdateEditMenu() {
    TfrmEdit* page = ActivePage();
    if (page) page->RefreshContextMenu();
    static const char* const pairs[][2] = {
        {"MenuEditUndo", "ContextUndo"},     {"MenuEditCut", "ContextCut"},
        {"MenuEditCopy", "ContextCopy"},     {"MenuEditPaste", "ContextPaste"},
        {"MenuEditDelete", "ContextDelete"}, {"MenuEditSelectAll", "ContextSelectAll"},
    };
    for (const auto& pair : pairs) {
        const bool enabled = page && page->ContextItem(QString::fromLatin1(pair[1]))->isEnabled();
        MenuItem(QString::fromLatin1(pair[0]))->setEnabled(enabled);
    }
}

void TfrmMain::UpdateViewMenu() {
    MenuItem(QStringLiteral("MenuViewIff"))->setChecked(iff_->isVisible());
    MenuItem(QStringLiteral("MenuViewOutput"))->setChecked(output_->isVisible());
    MenuItem(QStringLiteral("MenuViewHelp"))->setChecked(help_->isVisible());
    MenuItem(QStringLiteral("MenuViewMap"))->setChecked(map_->isVisible());
}

void TfrmMain::UpdateHelpMenu() {
    TfrmEdit* page = ActivePage();
    const QString word = page ? page->WordAtCursor() : QString();
    QAction* topic = MenuItem(QStringLiteral("MenuHelpTopic"));
    topic->setText(QStringLiteral("Topic: \"") + word + u'"');
    topic->setEnabled(!word.isEmpty());
}

void TfrmMain::DecodeDialog() {
    TFileDialogRequest request;
    request.Filter = QStringLiteral("Interchange File Format (*.iff; *.mis; *.srs; *.sec; *.eng)|*.iff;*.mis;"
                                    "*.srs;*.sec;*.eng|All Files (*.*)|*.*");
    request.DefaultExt = QStringLiteral(".iff");
    request.InitialDir = ToQ(IdeIni().ReadString("main", "DirDecodeIff", ""));
    const QStringList files = DialogHooks().OpenFiles(this, request);
    if (files.isEmpty()) return;
    for (const QString& file : files) DecodeFile(FromQ(file));
    IdeIni().WriteString("main", "DirDecodeIff",
                         std::filesystem::path(FromQ(files.front())).parent_path().string());
}

void TfrmMain::LoadExtensionDialog() {
    TFileDialogRequest request;
    request.Filter = QString::fromLatin1(kExtensionFilter);
    request.DefaultExt = QString::fromLatin1(kExtensionDefaultExt);
    request.InitialDir = ToQ(IdeIni().ReadString("main", "DirLoadExt", ""));
    const QString file = DialogHooks().OpenFile(this, request);
    if (file.isEmpty()) return;
    LoadExtensionFile(FromQ(file));
    IdeIni().WriteString("main", "DirLoadExt", std::filesystem::path(FromQ(file)).parent_path().string());
}

} // namespace velkor
