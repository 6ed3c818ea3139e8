// Keys of an editor page before its editor sees them (MemoKeyDown), the keys of the string list
// (lbCodeHelpKeyDown), the mouse hint and the 100 ms timer that keeps the parameter hint on the call.
//
// The keys were chosen on the authors' keyboard layout, where Shift+9 types ")", Shift+comma ";", Shift+8
// "(" and AltGr+8 "[". The typed character decides here, so the keys work on every layout; the digit-row
// keys are still recognised by position where the platform reports it.
#include "ide/edit_page.h"

#include "compiler/symbol_queries.h"
#include "compiler/symbol_table.h"
#include "editor/key_event.h"
#include "ide/ide_ini.h"
#include "platform/strings.h"

#include <QFocusEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QToolTip>

namespace velkor {
namespace {

bool IsKey(const TShortCut& key, int code, unsigned shift) {
    return key.Key == code && (key.Shift & (ssShift | ssCtrl | ssAlt)) == shift;
}

// The keys that close a parameter hint: movement away from the call, and ")" or ";".
bool ClosesHint(const QKeyEvent& event, const TShortCut& key) {
    switch (event.key()) {
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_End:
    case Qt::Key_Home:
    case Qt::Key_Up:
    case Qt::Key_Down: return true;
    default: break;
    }
    const QString text = event.text();
    return text == QStringLiteral(")") || text == QStringLiteral(";") || IsKey(key, Qt::Key_9, ssShift);
}

// AltGr+8 (Ctrl+Alt+8 on Windows), Alt+8, or whatever types "[".
bool OpensStringList(const QKeyEvent& event, const TShortCut& key) {
    return event.text() == QStringLiteral("[") || IsKey(key, Qt::Key_8, ssAlt) ||
           IsKey(key, Qt::Key_8, ssAlt | ssCtrl);
}

} // namespace

bool TfrmEdit::eventFilter(QObject* watched, QEvent* event) {
    if (watched == memo_ && event->type() == QEvent::KeyPress) {
        return MemoKeyDown(*static_cast<QKeyEvent*>(event));
    }
    if (watched == memo_ && event->type() == QEvent::FocusOut &&
        static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason) {
        // Another page, view or window took over: the popups of this one go.
        codeHelp_->hide();
        CloseParameterHint();
    }
    if (watched == memo_->viewport() && event->type() == QEvent::ToolTip) {
        auto* help = static_cast<QHelpEvent*>(event);
        const QString text = SymbolHintAt(help->pos());
        if (text.isEmpty())
            QToolTip::hideText();
        else
            QToolTip::showText(help->globalPos(), text, memo_->viewport());
        return true;
    }
    if (watched == codeHelp_ && event->type() == QEvent::KeyPress) {
        CodeHelpKeyDown(*static_cast<QKeyEvent*>(event));
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

bool TfrmEdit::MemoKeyDown(QKeyEvent& event) {
    if (IsModifierKey(event.key())) return false;
    typed_ = true;
    const TShortCut key = ShortCutFromKeyEvent(event);

    if (hint_ && ClosesHint(event, key)) CloseParameterHint();

    if (codeHelp_->isVisible() && event.key() != Qt::Key_F4) {
        if (event.key() != Qt::Key_Left && event.key() != Qt::Key_Right) {
            if (CodeHelpKeyDown(event)) return true;
        }
    }

    if (paramHints_ && OpensStringList(event, key)) {
        if (const auto symbol = SymbolAtCursor(); symbol && symbol->Kind == skStringTable) ShowStringList();
    }

    if (event.text() == QStringLiteral("(") && paramHints_ && !noIntelligence_) {
        // The bracket is not typed yet: the function is the word just before the caret.
        if (const auto symbol = SymbolAtCursor();
            symbol && IsFunctionKind(symbol->Kind) && symbol->Register > 0)
            ShowParameterHintFor(*symbol, 0);
    }
    return false;
}

bool TfrmEdit::CodeHelpKeyDown(QKeyEvent& event) {
    switch (event.key()) {
    case Qt::Key_Escape: codeHelp_->hide(); return true;
    case Qt::Key_Return:
    case Qt::Key_Enter: InsertCodeHelpEntry(); return true;
    case Qt::Key_Backspace:
        codeHelpPrefix_.chop(1);
        FollowCodeHelpPrefix();
        return false;
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown: {
        const int step = event.key() == Qt::Key_Up       ? -1
                         : event.key() == Qt::Key_Down   ? 1
                         : event.key() == Qt::Key_PageUp ? -10
                                                         : 10;
        const int row = std::clamp(codeHelp_->currentRow() + step, 0, std::max(codeHelp_->count() - 1, 0));
        if (codeHelp_->count() > 0) codeHelp_->setCurrentRow(row);
        return event.key() == Qt::Key_Up || event.key() == Qt::Key_Down;
    }
    default: break;
    }
    const QString text = event.text();
    if (text == QStringLiteral(")")) {
        codeHelp_->hide();
        return false;
    }
    if (!text.isEmpty() && text.at(0).isPrint() && text != QStringLiteral("[")) {
        codeHelpPrefix_ += text;
        FollowCodeHelpPrefix();
    }
    return false;
}

void TfrmEdit::HintTimerTick() {
    if (!typed_) return;
    typed_ = false;
    if (!hint_) return;
    int line = 0, index = 0;
    memo_->getCursorPosition(&line, &index);
    const QString lineText = memo_->LineText(line);
    const auto call = CallAtCaret(FromQ(lineText), static_cast<int>(FromQ(lineText.left(index)).size()));
    if (!call || UpperCase(call->Name) != hintFunction_) {
        CloseParameterHint();
        return;
    }
    if (const auto symbol = SymbolNamed(ToQ(call->Name))) ShowParameterHintFor(*symbol, call->Argument);
}

} // namespace velkor
