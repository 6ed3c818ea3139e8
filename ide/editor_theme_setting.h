// The editor theme setting: "theme" in the [editor] section of the settings file, "system" (the desktop's
// palette decides), "light" or "dark".
#pragma once

#include "editor/editor_theme.h"

namespace velkor {

TThemeChoice ReadThemeChoice();
void WriteThemeChoice(TThemeChoice choice);
// Gives every open editor the theme at once.
void ApplyThemeChoiceToEditors(TThemeChoice choice);

} // namespace velkor
