#include "ide/iff_view.h"

#include <Qsci/qsciscintilla.h>

#include <QFontMetrics>

#include <algorithm>
#include <utility>

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
    connect(memo_, &QsciScintilla::textChanged, this, [this] {
        if (!filling_) emit TextChanged();
    });
    setWidget(memo_);
    // A view tabbed behind another stays visible to Qt, moved out of sight; this signal tells which.
    connect(this, &QDockWidget::visibilityChanged, this, [this](bool onScreen) {
        onScreen_ = onScreen;
        if (onScreen) FillPending();
    });
}

QsciScintilla* TfrmIffView::MemoIff() const {
    FillPending();
    return memo_;
}

QString TfrmIffView::Text() const {
    // Up to the first zero byte, as the text box's own text() reads.
    if (hasPending_) return QString::fromUtf8(pending_.c_str());
    return memo_->text();
}

void TfrmIffView::SetText(const QString& text) {
    hasPending_ = false;
    pending_ = std::string();
    memo_->setText(text);
}

std::string TfrmIffView::TextUtf8() const {
    if (hasPending_) return pending_;
    const long length = memo_->SendScintilla(QsciScintilla::SCI_GETLENGTH);
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    memo_->SendScintilla(QsciScintilla::SCI_GETTEXT, static_cast<unsigned long>(length + 1), text.data());
    text.resize(static_cast<std::size_t>(length));
    return text;
}

void TfrmIffView::SetTextUtf8(std::string text) {
    pending_ = std::move(text);
    hasPending_ = true;
    // A compile's text takes the text box about as long to take in as the compile took, and most of the
    // time the view sits behind the output list, where nobody reads it.
    if (onScreen_) FillPending();
    emit TextChanged();
}

void TfrmIffView::FillPending() const {
    if (!hasPending_) return;
    const std::string text = std::exchange(pending_, std::string());
    hasPending_ = false;
    filling_ = true;
    // Nothing to undo in a fresh text: recording the insertion would only copy megabytes once more.
    memo_->SendScintilla(QsciScintilla::SCI_SETUNDOCOLLECTION, 0UL);
    memo_->SendScintilla(QsciScintilla::SCI_CLEARALL);
    memo_->SendScintilla(QsciScintilla::SCI_ALLOCATE, static_cast<unsigned long>(text.size() + 1));
    // By length, not up to a zero: a zero byte in a unit's string must not cut the text short.
    memo_->SendScintilla(QsciScintilla::SCI_APPENDTEXT, static_cast<unsigned long>(text.size()), text.data());
    memo_->SendScintilla(QsciScintilla::SCI_SETUNDOCOLLECTION, 1UL);
    memo_->SendScintilla(QsciScintilla::SCI_EMPTYUNDOBUFFER);
    filling_ = false;
}

// A text still waiting has its caret at the start, where it will be once in the text box.
int TfrmIffView::CaretLine() const {
    if (hasPending_) return 1;
    int line = 0, index = 0;
    memo_->getCursorPosition(&line, &index);
    return line + 1;
}

int TfrmIffView::CaretColumn() const {
    if (hasPending_) return 1;
    int line = 0, index = 0;
    memo_->getCursorPosition(&line, &index);
    return index + 1;
}

void TfrmIffView::SetCaret(int line, int column) {
    FillPending();
    memo_->setCursorPosition(line, column);
}

void TfrmIffView::UpdateCaption() {
    setWindowTitle(QStringLiteral("Iff [%1:%2]").arg(CaretLine()).arg(CaretColumn()));
}

void TfrmIffView::SetTabStopDialogUnits(int dialogUnits) {
    memo_->setTabWidth(std::max(1, (dialogUnits + 2) / 4));
}

} // namespace velkor
