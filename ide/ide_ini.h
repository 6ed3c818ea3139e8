// The settings file as the IDE reaches it: opened afresh at every access, never cached.
#pragma once

#include "platform/ini_file.h"

#include <QString>

#include <string>
#include <string_view>

namespace velkor {

inline TIniFile IdeIni() {
    return TIniFile(IniFilePath());
}

// Text crossing between the core (UTF-8 byte strings) and the widgets.
inline QString ToQ(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}
inline std::string FromQ(const QString& text) {
    return text.toStdString();
}

} // namespace velkor
