// The program's icon: the desktop theme's "velkor" icon when one is installed, else the one built in.
#pragma once

#include <QIcon>

namespace velkor {

QIcon VelkorIcon();

} // namespace velkor
