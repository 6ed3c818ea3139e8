// The Files view: the active unit's folder and the folders of its search path as a tree, each folder
// listed when it is first opened. A double click (or Enter) on a file opens it as a page.
#pragma once

#include "ide/dockable_view.h"

#include <QStringList>

class QTreeWidget;
class QTreeWidgetItem;

namespace velkor {

class TfrmFileTree : public TDockableView {
    Q_OBJECT

public:
    static constexpr int kMostFiles = 20000; // files Files() lists at most: a search never runs away

    explicit TfrmFileTree(QWidget* parent);

    // Shows these folders as the tree's roots: the existing ones, each once, in the order given. The tree
    // is left alone when they are the roots already.
    void SetRoots(const QStringList& folders);
    const QStringList& Roots() const { return roots_; }
    QTreeWidget* Tree() const { return tree_; }
    // Every file under the roots, subfolders included (hidden ones left out), each once, sorted by path
    // within each root.
    QStringList Files() const;
    // The item of a file or folder shown in the tree, its folders opened on the way; null when it is not
    // under a root.
    QTreeWidgetItem* Reveal(const QString& path);

signals:
    void FileActivated(const QString& path);

private:
    void Fill(QTreeWidgetItem& folder);

    QTreeWidget* tree_; // owned as a child
    QStringList roots_; // absolute, clean paths
};

} // namespace velkor
