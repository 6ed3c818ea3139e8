// The lines of the output view as a list model: appended in batches, each line classified once so that
// errors and hints are drawn in their colours without looking at the text again.
#pragma once

#include <QAbstractListModel>
#include <QStringList>

#include <vector>

namespace velkor {

// What a line of the compiler or the assembler reports.
enum class TMessageKind : unsigned char {
    Plain,  // progress, trace
    Error,  // "ERROR: ...", the assembler's "[error] line ...", and the diagnostic line after an error
    Hint,   // "HINT: ..."
    Written // a file was written
};

// The kind of one output line: "[<unit>, <line>] " is skipped before the text is looked at.
TMessageKind ClassifyMessage(const QString& line);

class TOutputModel : public QAbstractListModel {
    Q_OBJECT

public:
    explicit TOutputModel(QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;

    // One insertion for the whole batch: views lay out and repaint once.
    void Append(const QStringList& lines);
    void Clear();

    const QStringList& Lines() const { return lines_; }
    TMessageKind Kind(int row) const { return kinds_[static_cast<std::size_t>(row)]; }

private:
    QStringList lines_;               // the text of every line
    std::vector<TMessageKind> kinds_; // the kind of every line
};

} // namespace velkor
