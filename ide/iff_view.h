// The IFF view: the textual IFF of the last compile, or any text to be assembled by Build Iff.
#pragma once

#include "ide/dockable_view.h"

#include <string>

class QsciScintilla;

namespace velkor {

class TfrmIffView : public TDockableView {
    Q_OBJECT

public:
    explicit TfrmIffView(QWidget* parent);

    QString Text() const;
    void SetText(const QString& text);
    // The same in UTF-8, without a detour through UTF-16: a compile's text runs to megabytes. While the
    // view is hidden the text waits here and goes into the text box when the view is first shown.
    std::string TextUtf8() const;
    void SetTextUtf8(std::string text);

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

    QsciScintilla* MemoIff() const;

signals:
    void TextChanged();

private:
    // Puts a text that waits for the view to be shown into the text box.
    void FillPending() const;

    QsciScintilla* memo_;         // the text, owned as a child
    mutable std::string pending_; // a text not yet in the text box
    mutable bool hasPending_ = false;
    mutable bool filling_ = false; // the text box's own change signal is not the view's then
    bool onScreen_ = false;
};

} // namespace velkor
