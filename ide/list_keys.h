// The arrow and page keys of a pop-up list whose keys come from the editor: a row or ten at a time, stopping
// at either end.
#pragma once

#include <QListWidget>

#include <algorithm>

namespace velkor {

inline void StepListRow(QListWidget& list, int key) {
    const int step = key == Qt::Key_Up ? -1 : key == Qt::Key_Down ? 1 : key == Qt::Key_PageUp ? -10 : 10;
    if (list.count() > 0) list.setCurrentRow(std::clamp(list.currentRow() + step, 0, list.count() - 1));
}

} // namespace velkor
