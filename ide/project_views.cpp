// The project at hand: the Files view of the active unit's folder and search path, and Find in Files over
// those files.
#include "ide/edit_page.h"
#include "ide/file_tree_view.h"
#include "ide/find_in_files.h"
#include "ide/ide_ini.h"
#include "ide/main_window.h"
#include "platform/named_folders.h"
#include "platform/path_resolver.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QTabWidget>

#include <filesystem>
#include <sstream>

namespace velkor {

void TfrmMain::CreateProjectViews() {
    files_ = new TfrmFileTree(this);
    findInFiles_ = new TfrmFindInFiles(this);
    findInFiles_->SetFileSource([this] {
        UpdateFileTree();
        return files_->Files();
    });
    connect(files_, &TfrmFileTree::FileActivated, this,
            [this](const QString& file) { OpenFile(FromQ(file), true); });
    connect(findInFiles_, &TfrmFindInFiles::MatchActivated, this, &TfrmMain::OpenAt);
    connect(editorTabs_, &QTabWidget::currentChanged, this, [this] {
        if (files_->isVisible()) UpdateFileTree();
    });
    connect(files_, &QDockWidget::visibilityChanged, this, [this](bool visible) {
        if (visible) UpdateFileTree();
    });

    QMenu* view = menuBar()->findChild<QMenu*>(QStringLiteral("MenuView"));
    QAction* filesItem = AddItem(view, "MenuViewFiles", "&Files", "");
    filesItem->setCheckable(true);
    connect(filesItem, &QAction::triggered, this, [this] { files_->setVisible(!files_->isVisible()); });
    QAction* findItem = AddItem(view, "MenuViewFindInFiles", "Find &in Files", "");
    findItem->setCheckable(true);
    connect(findItem, &QAction::triggered, this,
            [this] { findInFiles_->setVisible(!findInFiles_->isVisible()); });
    connect(view, &QMenu::aboutToShow, this, [this, filesItem, findItem] {
        filesItem->setChecked(files_->isVisible());
        findItem->setChecked(findInFiles_->isVisible());
    });
    // Shift+Ctrl+F is bound neither by the menus nor by the editor.
    QMenu* search = menuBar()->findChild<QMenu*>(QStringLiteral("MenuSearch"));
    if (!search) search = view;
    QAction* start = AddItem(search, "MenuSearchFindInFiles", "Find in F&iles...", "Shift+Ctrl+F");
    connect(start, &QAction::triggered, this, [this] {
        TfrmEdit* page = ActivePage();
        findInFiles_->Start(page ? page->WordAtCursor() : QString());
    });
}

QStringList TfrmMain::ProjectFolders() const {
    QStringList folders;
    TfrmEdit* page = ActivePage();
    if (!page) return folders;
    std::error_code ec;
    if (IsRegularFile(page->FileName()))
        folders << ToQ(std::filesystem::path(page->FileName()).parent_path().string());
    std::istringstream lines(page->SearchPathText());
    for (std::string line; std::getline(lines, line);) {
        while (!line.empty() && (line.back() == '\r' || line.back() == ' ')) line.pop_back();
        if (line.empty()) continue;
        const std::filesystem::path folder = ResolvePath(ExpandPath(line));
        if (std::filesystem::is_directory(folder, ec)) folders << ToQ(folder.string());
    }
    return folders;
}

void TfrmMain::UpdateFileTree() {
    files_->SetRoots(ProjectFolders());
}

bool TfrmMain::OpenAt(const QString& file, int line) {
    const QPointer<TfrmEdit> from = ActivePage();
    TfrmEdit* page = FindPage(FromQ(file));
    if (!page) page = OpenFile(FromQ(file), true);
    if (!page) return false;
    if (from && (from == page || !from->Text().trimmed().isEmpty())) JumpStarting(*from);
    ActivatePage(*page);
    TPageEditor& memo = *page->Memo();
    const int target = std::min(line, std::max(1, memo.lines())) - 1;
    memo.SetCaret(target, 0);
    memo.ensureLineVisible(target);
    return true;
}

} // namespace velkor
