// The IFF view: the textual IFF of the last compile, or any text to be assembled by Build Iff.
#pragma once

#include "ide/dockable_view.h"

class QPlainTextEdit;

namespace velkor {

class TfrmIffView : public TDockableView {
    Q_OBJECT

public:
    explicit TfrmIffView(QWidget* parent);

    QString Text() const;
    void SetText(const QString& text);

    // The caret's line and column, both from 1.
    int CaretLine() const;
    int CaretColumn() const;
    // "Iff [<line>:<column>]".
    void UpdateCaption();

    // One tab stop of `dialogUnits` horizontal dialog units (a quarter of the average character width).
    void SetTabStopDialogUnits(int dialogUnits);

    QPlainTextEdit* MemoIff() const { return memo_; }

private:
    QPlainTextEdit* memo_; // the text, owned as a child
};

} // namespace velkor
