#include "ide/file_tree_view.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QHeaderView>
#include <QSet>
#include <QStyle>
#include <QTreeWidget>

#include <algorithm>

namespace velkor {

namespace {

constexpr int kPathRole = Qt::UserRole;       // the item's absolute path
constexpr int kFilledRole = Qt::UserRole + 1; // a folder's entries are listed

bool IsUnder(const QString& path, const QString& folder) {
    return path == folder || path.startsWith(folder.endsWith(u'/') ? folder : folder + u'/');
}

QTreeWidgetItem* MakeItem(const QFileInfo& info, const QString& caption) {
    auto* item = new QTreeWidgetItem({caption});
    item->setData(0, kPathRole, info.absoluteFilePath());
    item->setToolTip(0, QDir::toNativeSeparators(info.absoluteFilePath()));
    item->setIcon(
        0, QApplication::style()->standardIcon(info.isDir() ? QStyle::SP_DirIcon : QStyle::SP_FileIcon));
    if (info.isDir()) item->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
    return item;
}

} // namespace

TfrmFileTree::TfrmFileTree(QWidget* parent)
    : TDockableView(QStringLiteral("frmFileTree"), QStringLiteral("Files"), parent),
      tree_(new QTreeWidget(this)) {
    tree_->setObjectName(QStringLiteral("FileTree"));
    tree_->setHeaderHidden(true);
    tree_->setUniformRowHeights(true);
    setWidget(tree_);
    connect(tree_, &QTreeWidget::itemExpanded, this, [this](QTreeWidgetItem* item) { Fill(*item); });
    const auto open = [this](QTreeWidgetItem* item) {
        if (!item) return;
        const QString path = item->data(0, kPathRole).toString();
        if (QFileInfo(path).isFile()) emit FileActivated(path);
    };
    connect(tree_, &QTreeWidget::itemDoubleClicked, this, open);
    auto* go = new QAction(tree_);
    go->setShortcuts({QKeySequence(Qt::Key_Return), QKeySequence(Qt::Key_Enter)});
    go->setShortcutContext(Qt::WidgetShortcut);
    tree_->addAction(go);
    connect(go, &QAction::triggered, this, [this, open] { open(tree_->currentItem()); });
}

void TfrmFileTree::SetRoots(const QStringList& folders) {
    QStringList roots;
    for (const QString& folder : folders) {
        const QFileInfo info(folder);
        if (folder.isEmpty() || !info.isDir()) continue;
        const QString clean = QDir::cleanPath(info.absoluteFilePath());
        if (!roots.contains(clean)) roots << clean;
    }
    if (roots == roots_) return;
    roots_ = roots;
    tree_->clear();
    for (const QString& root : roots_) {
        QTreeWidgetItem* item = MakeItem(QFileInfo(root), QDir::toNativeSeparators(root));
        tree_->addTopLevelItem(item);
    }
    // The unit's own folder open at once.
    if (tree_->topLevelItemCount() > 0) tree_->topLevelItem(0)->setExpanded(true);
}

void TfrmFileTree::Fill(QTreeWidgetItem& folder) {
    if (folder.data(0, kFilledRole).toBool()) return;
    folder.setData(0, kFilledRole, true);
    const QDir dir(folder.data(0, kPathRole).toString());
    const QFileInfoList entries = dir.entryInfoList(QDir::AllDirs | QDir::Files | QDir::NoDotAndDotDot,
                                                    QDir::DirsFirst | QDir::Name | QDir::IgnoreCase);
    QList<QTreeWidgetItem*> items;
    for (const QFileInfo& entry : entries) items << MakeItem(entry, entry.fileName());
    folder.addChildren(items);
    if (items.isEmpty()) folder.setChildIndicatorPolicy(QTreeWidgetItem::DontShowIndicator);
}

QTreeWidgetItem* TfrmFileTree::Reveal(const QString& path) {
    const QString clean = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    for (int i = 0; i < tree_->topLevelItemCount(); ++i) {
        QTreeWidgetItem* item = tree_->topLevelItem(i);
        if (!IsUnder(clean, item->data(0, kPathRole).toString())) continue;
        while (item->data(0, kPathRole).toString() != clean) {
            Fill(*item);
            item->setExpanded(true);
            QTreeWidgetItem* next = nullptr;
            for (int c = 0; c < item->childCount() && !next; ++c) {
                if (IsUnder(clean, item->child(c)->data(0, kPathRole).toString())) next = item->child(c);
            }
            if (!next) return nullptr;
            item = next;
        }
        return item;
    }
    return nullptr;
}

QStringList TfrmFileTree::Files() const {
    QStringList files;
    QSet<QString> seen;
    for (const QString& root : roots_) {
        QStringList found;
        QDirIterator it(root, QDir::Files | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
        while (it.hasNext() && files.size() + found.size() < kMostFiles) {
            const QString file = QDir::cleanPath(it.next());
            if (seen.contains(file)) continue; // a search-path folder inside another root
            seen.insert(file);
            found << file;
        }
        found.sort(Qt::CaseInsensitive);
        files << found;
    }
    return files;
}

} // namespace velkor
