#include "ide/problems_view.h"

#include "ide/ide_ini.h"
#include "ide/message_location.h"
#include "platform/strings.h"

#include <QAction>
#include <QFileInfo>
#include <QHeaderView>
#include <QTreeWidget>

#include <algorithm>

namespace velkor {

namespace {

QString WithoutPlace(const QString& line) {
    const qsizetype close = line.indexOf(QStringLiteral("] "));
    return close < 0 ? line : line.mid(close + 2);
}

} // namespace

std::vector<TProblem> CollectProblems(const QStringList& lines,
                                      const std::function<std::string(const QString&)>& fileOfUnit) {
    std::vector<TProblem> problems;
    for (const QString& line : lines) {
        const TMessageKind kind = ClassifyMessage(line);
        if (kind != TMessageKind::Error && kind != TMessageKind::Hint) continue;
        if (IsRaisedInLine(FromQ(line))) continue;
        const std::optional<TMessageLocation> at = ParseMessageLocation(line);
        if (!at) continue;
        TProblem problem;
        problem.UnitName = at->UnitName;
        problem.File = fileOfUnit(at->UnitName);
        if (problem.File.empty()) problem.File = FromQ(at->UnitName);
        problem.Line = at->Line;
        problem.Text = WithoutPlace(line);
        problem.Kind = kind;
        problems.push_back(std::move(problem));
    }
    return problems;
}

TfrmProblems::TfrmProblems(QWidget* parent)
    : TDockableView(QStringLiteral("frmProblems"), QStringLiteral("Problems"), parent),
      tree_(new QTreeWidget(this)) {
    tree_->setObjectName(QStringLiteral("ProblemList"));
    tree_->setColumnCount(3);
    tree_->setHeaderLabels({QStringLiteral("File"), QStringLiteral("Line"), QStringLiteral("Text")});
    tree_->setRootIsDecorated(false);
    tree_->setUniformRowHeights(true);
    tree_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    tree_->header()->setStretchLastSection(true);
    tree_->setColumnWidth(0, 160);
    tree_->setColumnWidth(1, 50);
    setWidget(tree_);
    connect(tree_, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem* item) {
        if (item) emit ProblemActivated(tree_->indexOfTopLevelItem(item));
    });
    auto* go = new QAction(tree_);
    go->setShortcuts({QKeySequence(Qt::Key_Return), QKeySequence(Qt::Key_Enter)});
    go->setShortcutContext(Qt::WidgetShortcut);
    tree_->addAction(go);
    connect(go, &QAction::triggered, this, [this] {
        if (QTreeWidgetItem* item = tree_->currentItem())
            emit ProblemActivated(tree_->indexOfTopLevelItem(item));
    });
}

void TfrmProblems::SetProblems(const std::string& compiledFile, std::vector<TProblem> problems) {
    std::erase_if(entries_, [&](const TEntry& e) { return e.CompiledFile == compiledFile; });
    for (TProblem& problem : problems) entries_.push_back({compiledFile, std::move(problem)});
    Rebuild();
}

void TfrmProblems::RemoveCompile(const std::string& compiledFile) {
    const auto before = entries_.size();
    std::erase_if(entries_, [&](const TEntry& e) { return e.CompiledFile == compiledFile; });
    if (entries_.size() != before) Rebuild();
}

void TfrmProblems::Rebuild() {
    tree_->clear();
    QList<QTreeWidgetItem*> items;
    items.reserve(static_cast<qsizetype>(entries_.size()));
    for (const TEntry& entry : entries_) {
        const TProblem& p = entry.Problem;
        auto* item =
            new QTreeWidgetItem({QFileInfo(ToQ(p.File)).fileName(), QString::number(p.Line), p.Text});
        item->setToolTip(0, ToQ(p.File));
        item->setToolTip(2, p.Text);
        // The colours of the output list: errors red, hints blue.
        const QColor colour =
            p.Kind == TMessageKind::Error ? QColor(0xC0, 0x00, 0x00) : QColor(0x00, 0x00, 0xC0);
        for (int column = 0; column < 3; ++column) item->setForeground(column, colour);
        items << item;
    }
    tree_->addTopLevelItems(items);
}

} // namespace velkor
