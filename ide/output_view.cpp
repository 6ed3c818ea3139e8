#include "ide/output_view.h"

#include <QListWidget>

namespace velkor {

TfrmOutput::TfrmOutput(QWidget* parent)
    : TDockableView(QStringLiteral("frmOutput"), QStringLiteral("Output"), parent),
      list_(new QListWidget(this)) {
    list_->setObjectName(QStringLiteral("ListBox1"));
    list_->setUniformItemSizes(true); // keeps long compiles' output cheap to append
    setWidget(list_);
}

void TfrmOutput::AppendLine(const QString& text) {
    list_->addItem(text);
    list_->setCurrentRow(list_->count() - 1);
    list_->scrollToBottom();
}

void TfrmOutput::Clear() {
    list_->clear();
}

QStringList TfrmOutput::Lines() const {
    QStringList lines;
    lines.reserve(list_->count());
    for (int i = 0; i < list_->count(); ++i) lines << list_->item(i)->text();
    return lines;
}

} // namespace velkor
