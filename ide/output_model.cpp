#include "ide/output_model.h"

#include <QBrush>
#include <QColor>

namespace velkor {

namespace {

// The text after "[<unit>, <line>] ", or the whole line when it has no such prefix.
QStringView MessageText(const QString& line) {
    const QStringView view(line);
    if (!view.startsWith(u'[')) return view;
    const qsizetype close = view.indexOf(u"] ");
    const qsizetype comma = view.indexOf(u", ");
    if (close < 0 || comma < 0 || comma > close) return view;
    return view.mid(close + 2);
}

} // namespace

TMessageKind ClassifyMessage(const QString& line) {
    const QStringView text = MessageText(line);
    if (text.startsWith(u"ERROR: ") || text.startsWith(u"[error] ") || text.startsWith(u"  raised in "))
        return TMessageKind::Error;
    if (text.startsWith(u"HINT: ")) return TMessageKind::Hint;
    if ((text.startsWith(u"** ") || text.startsWith(u"******* ")) && text.endsWith(u"*"))
        return TMessageKind::Written;
    if (text.startsWith(u"** ") && text.endsWith(u" bytes)")) return TMessageKind::Written;
    return TMessageKind::Plain;
}

TOutputModel::TOutputModel(QObject* parent) : QAbstractListModel(parent) {}

int TOutputModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(lines_.size());
}

QVariant TOutputModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= lines_.size()) return {};
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole: return lines_[index.row()];
    case Qt::ForegroundRole:
        switch (Kind(index.row())) {
        case TMessageKind::Error: return QBrush(QColor(0xc0, 0x00, 0x00));
        case TMessageKind::Hint: return QBrush(QColor(0x00, 0x50, 0xb0));
        case TMessageKind::Written: return QBrush(QColor(0x00, 0x70, 0x20));
        case TMessageKind::Plain: break;
        }
        return {};
    default: return {};
    }
}

void TOutputModel::Append(const QStringList& lines) {
    if (lines.isEmpty()) return;
    const int first = static_cast<int>(lines_.size());
    beginInsertRows(QModelIndex(), first, first + static_cast<int>(lines.size()) - 1);
    lines_.append(lines);
    kinds_.reserve(kinds_.size() + static_cast<std::size_t>(lines.size()));
    for (const QString& line : lines) kinds_.push_back(ClassifyMessage(line));
    endInsertRows();
}

void TOutputModel::Clear() {
    beginResetModel();
    lines_.clear();
    kinds_.clear();
    endResetModel();
}

} // namespace velkor
