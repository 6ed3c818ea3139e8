#include "ide/editor_theme_setting.h"

#include "editor/syntax_edit.h"
#include "ide/ide_ini.h"

#include <QApplication>

namespace velkor {

TThemeChoice ReadThemeChoice() {
    return ThemeChoiceFromName(IdeIni().ReadString("editor", "theme", "system"));
}

void WriteThemeChoice(TThemeChoice choice) {
    IdeIni().WriteString("editor", "theme", ThemeChoiceName(choice));
}

void ApplyThemeChoiceToEditors(TThemeChoice choice) {
    for (QWidget* widget : QApplication::allWidgets()) {
        if (auto* editor = qobject_cast<TSyntaxEdit*>(widget)) editor->SetThemeChoice(choice);
    }
}

} // namespace velkor
