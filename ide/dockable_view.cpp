#include "ide/dockable_view.h"

#include <QFont>

namespace velkor {

TDockableView::TDockableView(const QString& objectName, const QString& caption, QWidget* parent)
    : QDockWidget(caption, parent) {
    setObjectName(objectName);
    setAllowedAreas(Qt::LeftDockWidgetArea | Qt::BottomDockWidgetArea);
    QFont face(QStringLiteral("Sans Serif"), 8);
    face.setStyleHint(QFont::SansSerif);
    setFont(face);
}

void TDockableView::BringToFront() {
    if (isHidden()) show();
    // raise() on a tabified dock widget selects its tab.
    raise();
}

} // namespace velkor
