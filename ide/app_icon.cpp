#include "ide/app_icon.h"

// Outside any namespace, as the resource compiler's initialiser is.
static void InitIconResources() {
    Q_INIT_RESOURCE(velkor_icons);
}

namespace velkor {

QIcon VelkorIcon() {
    InitIconResources();
    return QIcon::fromTheme(QStringLiteral("velkor"), QIcon(QStringLiteral(":/velkor/velkor.svg")));
}

} // namespace velkor
