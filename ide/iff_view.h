// The IFF view: the textual IFF of the last compile, or any text to be assembled by Build Iff.
#pragma once

#include "ide/dockable_view.h"

#include <string>
#include <string_view>

class QsciScintilla;

namespace velkor {

class TfrmIffView : public TDockableView {
    Q_OBJECT

public:
    explicit TfrmIffView(QWidget* parent);

    QString Text() const;
    void SetText(const QString& text);
    // The same in UTF-8, without a detour through UTF-16: a compile's text runs to megabytes.
    std::string TextUtf8() const;
    void SetTextUtf8(std::string_view text);

    // The caret's line and column, both from 1.
    int CaretLine() const;
    int CaretColumn() const;
    // Puts the caret on `line` at `column`, both from 0.
    void SetCaret(int line, int column);
    // "Iff [<line>:<column>]".
    void UpdateCaption();

    // Tab stops every `dialogUnits` horizontal dialog units (a quarter of the average character width),
    // rounded to whole characters: the text box cannot stop a tab inside a character cell.
    void SetTabStopDialogUnits(int dialogUnits);

    QsciScintilla* MemoIff() const { return memo_; }

signals:
    void TextChanged();

private:
    QsciScintilla* memo_; // the text, owned as a child
};

} // namespace velkor
