// The output list: every message of the compiler and the assembler, one line each.
#pragma once

#include "ide/dockable_view.h"

class QListWidget;

namespace velkor {

class TfrmOutput : public TDockableView {
    Q_OBJECT

public:
    explicit TfrmOutput(QWidget* parent);

    // Adds the line at the end and selects it, so the newest line is always in view.
    void AppendLine(const QString& text);
    void Clear();

    QStringList Lines() const;
    QListWidget* ListBox1() const { return list_; }

private:
    QListWidget* list_; // the lines, owned as a child
};

} // namespace velkor
