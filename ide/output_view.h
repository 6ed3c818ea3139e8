// The output list: every message of the compiler and the assembler, one line each. Lines arrive in
// batches (a long compile reports a hundred thousand), errors and hints are coloured, and a double click
// on "[<unit>, <line>] ..." asks to be taken there.
#pragma once

#include "ide/dockable_view.h"

#include <QStringList>

#include <string>
#include <vector>

class QAction;
class QListView;
class QMenu;

namespace velkor {

class TOutputModel;

class TfrmOutput : public TDockableView {
    Q_OBJECT

public:
    explicit TfrmOutput(QWidget* parent);

    // Adds the line at the end and selects it, so the newest line is always in view. Lines added in one
    // go reach the list together when the event loop next runs (or at Flush).
    void AppendLine(const QString& text);
    void Clear();
    // Puts the lines not yet shown into the list, selects the last one and scrolls to it.
    void Flush();

    QStringList Lines() const;
    // The selected line (the newest after an append), or -1.
    int CurrentRow() const;
    QListView* ListBox1() const { return list_; }
    TOutputModel& Model() const { return *model_; }

    // Where the messages now shown come from: the compiled unit's name and the compile's search path,
    // so that a message's unit can be found again.
    void SetOrigin(const std::string& unitName, std::vector<std::string> searchPath, const std::string& file);
    const std::string& OriginUnit() const { return originUnit_; }
    const std::string& OriginFile() const { return originFile_; }
    const std::vector<std::string>& OriginSearchPath() const { return originSearchPath_; }

    // Steps to the next (or previous) error or hint from the selected line, wrapping around; selects it
    // and asks to be taken there. False when there is none.
    bool SelectMessage(bool forward);

    QMenu* ContextMenu() const { return menu_; }
    // The selected lines, one per line, in list order.
    QString SelectedText() const;
    void CopySelection();

signals:
    // A line that names a place was chosen (double click, Enter, or stepping).
    void LocationRequested(int row);

private:
    QListView* list_;     // ListBox1, owned as a child
    TOutputModel* model_; // the lines, owned as a child
    QStringList pending_; // appended, not yet in the model
    bool flushQueued_ = false;
    QMenu* menu_;            // Copy, Clear
    std::string originUnit_; // see SetOrigin
    std::string originFile_;
    std::vector<std::string> originSearchPath_;
};

} // namespace velkor
