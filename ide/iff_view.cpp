#include "ide/iff_view.h"

#include <Qsci/qsciscintilla.h>

#include <QFontMetrics>

#include <algorithm>

namespace velkor {

// A compile's text runs to hundreds of thousands of lines; a text box that keeps a structure per line
// (QPlainTextEdit) takes seconds to fill where this one takes milliseconds.
TfrmIffView::TfrmIffView(QWidget* parent)
    : TDockableView(QStringLiteral("frmIffView"), QStringLiteral("Iff"), parent),
      memo_(new QsciScintilla(this)) {
    memo_->setObjectName(QStringLiteral("MemoIff"));
    memo_->setUtf8(true);
    memo_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    memo_->setWrapMode(QsciScintilla::WrapNone);
    memo_->setMarginWidth(1, 0);
    memo_->setEolMode(QsciScintilla::EolUnix);
    QFont fixed(QStringLiteral("Courier New"));
    fixed.setStyleHint(QFont::Monospace);
    memo_->setFont(fixed);
    connect(memo_, &QsciScintilla::textChanged, this, &TfrmIffView::TextChanged);
    setWidget(memo_);
}

QString TfrmIffView::Text() const {
    return memo_->text();
}

void TfrmIffView::SetText(const QString& text) {
    memo_->setText(text);
}

std::string TfrmIffView::TextUtf8() const {
    const long length = memo_->SendScintilla(QsciScintilla::SCI_GETLENGTH);
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    memo_->SendScintilla(QsciScintilla::SCI_GETTEXT, static_cast<unsigned long>(length + 1), text.data());
    text.resize(static_cast<std::size_t>(length));
    return text;
}

void TfrmIffView::SetTextUtf8(std::string_view text) {
    // By length, not up to a zero: a zero byte in a unit's string must not cut the text short.
    memo_->SendScintilla(QsciScintilla::SCI_CLEARALL);
    memo_->SendScintilla(QsciScintilla::SCI_APPENDTEXT, static_cast<unsigned long>(text.size()), text.data());
    memo_->SendScintilla(QsciScintilla::SCI_EMPTYUNDOBUFFER);
}

int TfrmIffView::CaretLine() const {
    int line = 0, index = 0;
    memo_->getCursorPosition(&line, &index);
    return line + 1;
}

int TfrmIffView::CaretColumn() const {
    int line = 0, index = 0;
    memo_->getCursorPosition(&line, &index);
    return index + 1;
}

void TfrmIffView::SetCaret(int line, int column) {
    memo_->setCursorPosition(line, column);
}

void TfrmIffView::UpdateCaption() {
    setWindowTitle(QStringLiteral("Iff [%1:%2]").arg(CaretLine()).arg(CaretColumn()));
}

void TfrmIffView::SetTabStopDialogUnits(int dialogUnits) {
    memo_->setTabWidth(std::max(1, (dialogUnits + 2) / 4));
}

} // namespace velkor
