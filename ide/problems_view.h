// The Problems view: every error and hint of the last compile of each page, one row each (file, line,
// text), kept apart from the output list's progress lines. A double click or Enter asks to be taken to the
// place; the editor marks the same lines (see problem_markers.h).
#pragma once

#include "ide/dockable_view.h"
#include "ide/output_model.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <string>
#include <vector>

class QTreeWidget;

namespace velkor {

struct TProblem {
    std::string File; // the file of the unit the message names; the unit's name when it was not found
    QString UnitName; // as the message gives it
    int Line = 0;     // from 1
    QString Text;     // the message without its "[<unit>, <line>] " prefix
    TMessageKind Kind = TMessageKind::Error; // Error or Hint
};

// The errors and hints among the lines of one compile, in order. `fileOfUnit` names the file of a unit
// (empty when unknown). Lines without a place, and the diagnostic line after an error, are no problems.
std::vector<TProblem> CollectProblems(const QStringList& lines,
                                      const std::function<std::string(const QString&)>& fileOfUnit);

class TfrmProblems : public TDockableView {
    Q_OBJECT

public:
    explicit TfrmProblems(QWidget* parent);

    // Replaces the problems of the last compile of `compiledFile` (a page's file name).
    void SetProblems(const std::string& compiledFile, std::vector<TProblem> problems);
    // Forgets the problems of a compile, as when its page closes.
    void RemoveCompile(const std::string& compiledFile);
    // Every problem shown, in row order, with the page whose compile reported it.
    struct TEntry {
        std::string CompiledFile;
        TProblem Problem;
    };
    const std::vector<TEntry>& Entries() const { return entries_; }
    QTreeWidget* ProblemList() const { return tree_; }

signals:
    // A row was chosen (double click or Enter): its index in Entries().
    void ProblemActivated(int entry);

private:
    void Rebuild();

    QTreeWidget* tree_;           // the rows, owned as a child
    std::vector<TEntry> entries_; // grouped by compile, in the order the compiles ran
};

} // namespace velkor
