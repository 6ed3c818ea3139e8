#include "ide/output_view.h"

#include "ide/output_model.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QListView>
#include <QMenu>
#include <QTimer>

#include <algorithm>

namespace velkor {

TfrmOutput::TfrmOutput(QWidget* parent)
    : TDockableView(QStringLiteral("frmOutput"), QStringLiteral("Output"), parent),
      list_(new QListView(this)), model_(new TOutputModel(this)), menu_(new QMenu(this)) {
    list_->setObjectName(QStringLiteral("ListBox1"));
    // With rows of one height the list lays out a hundred thousand lines without measuring each.
    list_->setUniformItemSizes(true);
    list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list_->setModel(model_);
    setWidget(list_);
    connect(list_, &QListView::doubleClicked, this,
            [this](const QModelIndex& index) { emit LocationRequested(index.row()); });
    auto* go = new QAction(list_);
    go->setShortcuts({QKeySequence(Qt::Key_Return), QKeySequence(Qt::Key_Enter)});
    go->setShortcutContext(Qt::WidgetShortcut);
    list_->addAction(go);
    connect(go, &QAction::triggered, this, [this] {
        if (list_->currentIndex().isValid()) emit LocationRequested(list_->currentIndex().row());
    });

    menu_->setObjectName(QStringLiteral("OutputMenu"));
    QAction* copy = menu_->addAction(QStringLiteral("&Copy"));
    copy->setObjectName(QStringLiteral("OutputCopy"));
    copy->setShortcut(QKeySequence::Copy);
    copy->setShortcutContext(Qt::WidgetShortcut);
    list_->addAction(copy);
    connect(copy, &QAction::triggered, this, &TfrmOutput::CopySelection);
    QAction* clear = menu_->addAction(QStringLiteral("C&lear"));
    clear->setObjectName(QStringLiteral("OutputClear"));
    connect(clear, &QAction::triggered, this, &TfrmOutput::Clear);
    list_->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(list_, &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        Flush();
        menu_->actions().at(0)->setEnabled(list_->selectionModel()->hasSelection());
        menu_->actions().at(1)->setEnabled(model_->rowCount() > 0);
        menu_->popup(list_->viewport()->mapToGlobal(at));
    });
}

void TfrmOutput::AppendLine(const QString& text) {
    pending_.append(text);
    if (flushQueued_) return;
    flushQueued_ = true;
    QTimer::singleShot(0, this, &TfrmOutput::Flush);
}

void TfrmOutput::Flush() {
    flushQueued_ = false;
    if (pending_.isEmpty()) return;
    model_->Append(pending_);
    pending_.clear();
    const QModelIndex last = model_->index(model_->rowCount() - 1);
    list_->selectionModel()->setCurrentIndex(last, QItemSelectionModel::ClearAndSelect);
    list_->scrollToBottom();
}

void TfrmOutput::Clear() {
    pending_.clear();
    model_->Clear();
}

QStringList TfrmOutput::Lines() const {
    return model_->Lines() + pending_;
}

int TfrmOutput::CurrentRow() const {
    const_cast<TfrmOutput*>(this)->Flush();
    const QModelIndex current = list_->currentIndex();
    return current.isValid() ? current.row() : -1;
}

void TfrmOutput::SetOrigin(const std::string& unitName, std::vector<std::string> searchPath,
                           const std::string& file) {
    originUnit_ = unitName;
    originSearchPath_ = std::move(searchPath);
    originFile_ = file;
}

bool TfrmOutput::SelectMessage(bool forward) {
    Flush();
    const int count = model_->rowCount();
    if (count == 0) return false;
    const int current = CurrentRow();
    // From a place before the first line forward, or after the last line backward, when nothing is chosen.
    int row = current >= 0 ? current : (forward ? -1 : count);
    for (int step = 0; step < count; ++step) {
        row = forward ? (row + 1) % count : (row - 1 + count) % count;
        const TMessageKind kind = model_->Kind(row);
        const bool located = model_->Lines()[row].startsWith(u'[');
        if (located && (kind == TMessageKind::Error || kind == TMessageKind::Hint) &&
            !model_->Lines()[row].contains(QStringLiteral("]   raised in "))) {
            const QModelIndex index = model_->index(row);
            list_->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
            list_->scrollTo(index);
            emit LocationRequested(row);
            return true;
        }
    }
    return false;
}

QString TfrmOutput::SelectedText() const {
    const_cast<TfrmOutput*>(this)->Flush();
    QModelIndexList rows = list_->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end(),
              [](const QModelIndex& a, const QModelIndex& b) { return a.row() < b.row(); });
    QStringList lines;
    for (const QModelIndex& index : rows) lines << model_->Lines()[index.row()];
    return lines.join(u'\n');
}

void TfrmOutput::CopySelection() {
    const QString text = SelectedText();
    if (!text.isEmpty()) QApplication::clipboard()->setText(text);
}

} // namespace velkor
