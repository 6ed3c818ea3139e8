#include "ide/iff_view.h"

#include <QFontMetrics>
#include <QPlainTextEdit>
#include <QTextBlock>

namespace velkor {

TfrmIffView::TfrmIffView(QWidget* parent)
    : TDockableView(QStringLiteral("frmIffView"), QStringLiteral("Iff"), parent),
      memo_(new QPlainTextEdit(this)) {
    memo_->setObjectName(QStringLiteral("MemoIff"));
    memo_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    memo_->setLineWrapMode(QPlainTextEdit::NoWrap);
    QFont fixed(QStringLiteral("Courier New"));
    fixed.setStyleHint(QFont::Monospace);
    memo_->setFont(fixed);
    setWidget(memo_);
}

QString TfrmIffView::Text() const {
    return memo_->toPlainText();
}

void TfrmIffView::SetText(const QString& text) {
    memo_->setPlainText(text);
}

int TfrmIffView::CaretLine() const {
    return memo_->textCursor().block().blockNumber() + 1;
}

int TfrmIffView::CaretColumn() const {
    return memo_->textCursor().positionInBlock() + 1;
}

void TfrmIffView::UpdateCaption() {
    setWindowTitle(QStringLiteral("Iff [%1:%2]").arg(CaretLine()).arg(CaretColumn()));
}

void TfrmIffView::SetTabStopDialogUnits(int dialogUnits) {
    const QFontMetricsF metrics(memo_->font());
    memo_->setTabStopDistance(metrics.averageCharWidth() * dialogUnits / 4.0);
}

} // namespace velkor
