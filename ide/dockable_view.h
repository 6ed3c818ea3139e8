// A tool view that floats or docks into one of the main window's two dock areas, tabbed with the other
// views there.
#pragma once

#include <QDockWidget>

namespace velkor {

class TDockableView : public QDockWidget {
    Q_OBJECT

public:
    TDockableView(const QString& objectName, const QString& caption, QWidget* parent);

    // Shows the view when hidden and, when it shares a dock area with others, selects its tab.
    void BringToFront();
};

} // namespace velkor
