#include "editor/editor_commands.h"

#include "platform/strings.h"

#include <QtCore/qnamespace.h>

#include <array>

namespace velkor {
namespace {

struct CommandName {
    TEditorCommand command;
    std::string_view name;
};

constexpr std::array kCommandNames = {
    CommandName{ecNone, "ecNone"},
    CommandName{ecLeft, "ecLeft"},
    CommandName{ecRight, "ecRight"},
    CommandName{ecUp, "ecUp"},
    CommandName{ecDown, "ecDown"},
    CommandName{ecWordLeft, "ecWordLeft"},
    CommandName{ecWordRight, "ecWordRight"},
    CommandName{ecLineStart, "ecLineStart"},
    CommandName{ecLineEnd, "ecLineEnd"},
    CommandName{ecPageUp, "ecPageUp"},
    CommandName{ecPageDown, "ecPageDown"},
    CommandName{ecPageLeft, "ecPageLeft"},
    CommandName{ecPageRight, "ecPageRight"},
    CommandName{ecPageTop, "ecPageTop"},
    CommandName{ecPageBottom, "ecPageBottom"},
    CommandName{ecEditorTop, "ecEditorTop"},
    CommandName{ecEditorBottom, "ecEditorBottom"},
    CommandName{ecGoto, "ecGoto"},
    CommandName{ecSelectLeft, "ecSelectLeft"},
    CommandName{ecSelectRight, "ecSelectRight"},
    CommandName{ecSelectUp, "ecSelectUp"},
    CommandName{ecSelectDown, "ecSelectDown"},
    CommandName{ecSelectWordLeft, "ecSelectWordLeft"},
    CommandName{ecSelectWordRight, "ecSelectWordRight"},
    CommandName{ecSelectLineStart, "ecSelectLineStart"},
    CommandName{ecSelectLineEnd, "ecSelectLineEnd"},
    CommandName{ecSelectPageUp, "ecSelectPageUp"},
    CommandName{ecSelectPageDown, "ecSelectPageDown"},
    CommandName{ecSelectPageLeft, "ecSelectPageLeft"},
    CommandName{ecSelectPageRight, "ecSelectPageRight"},
    CommandName{ecSelectPageTop, "ecSelectPageTop"},
    CommandName{ecSelectPageBottom, "ecSelectPageBottom"},
    CommandName{ecSelectEditorTop, "ecSelectEditorTop"},
    CommandName{ecSelectEditorBottom, "ecSelectEditorBottom"},
    CommandName{ecSelectGoto, "ecSelectGoto"},
    CommandName{ecSelectAll, "ecSelectAll"},
    CommandName{ecDeleteLastChar, "ecDeleteLastChar"},
    CommandName{ecDeleteChar, "ecDeleteChar"},
    CommandName{ecDeleteWord, "ecDeleteWord"},
    CommandName{ecDeleteLastWord, "ecDeleteLastWord"},
    CommandName{ecDeleteBOL, "ecDeleteBOL"},
    CommandName{ecDeleteEOL, "ecDeleteEOL"},
    CommandName{ecDeleteLine, "ecDeleteLine"},
    CommandName{ecClearAll, "ecClearAll"},
    CommandName{ecLineBreak, "ecLineBreak"},
    CommandName{ecInsertLine, "ecInsertLine"},
    CommandName{ecChar, "ecChar"},
    CommandName{ecUndo, "ecUndo"},
    CommandName{ecRedo, "ecRedo"},
    CommandName{ecCut, "ecCut"},
    CommandName{ecCopy, "ecCopy"},
    CommandName{ecPaste, "ecPaste"},
    CommandName{ecScrollUp, "ecScrollUp"},
    CommandName{ecScrollDown, "ecScrollDown"},
    CommandName{ecScrollLeft, "ecScrollLeft"},
    CommandName{ecScrollRight, "ecScrollRight"},
    CommandName{ecInsertMode, "ecInsertMode"},
    CommandName{ecOverwriteMode, "ecOverwriteMode"},
    CommandName{ecToggleMode, "ecToggleMode"},
    CommandName{ecBlockIndent, "ecBlockIndent"},
    CommandName{ecBlockUnindent, "ecBlockUnindent"},
    CommandName{ecDelete, "ecDelete"},
    CommandName{701, "ecGotoMarker0"},
    CommandName{702, "ecGotoMarker1"},
    CommandName{703, "ecGotoMarker2"},
    CommandName{704, "ecGotoMarker3"},
    CommandName{705, "ecGotoMarker4"},
    CommandName{706, "ecGotoMarker5"},
    CommandName{707, "ecGotoMarker6"},
    CommandName{708, "ecGotoMarker7"},
    CommandName{709, "ecGotoMarker8"},
    CommandName{710, "ecGotoMarker9"},
    CommandName{751, "ecToggleMarker0"},
    CommandName{752, "ecToggleMarker1"},
    CommandName{753, "ecToggleMarker2"},
    CommandName{754, "ecToggleMarker3"},
    CommandName{755, "ecToggleMarker4"},
    CommandName{756, "ecToggleMarker5"},
    CommandName{757, "ecToggleMarker6"},
    CommandName{758, "ecToggleMarker7"},
    CommandName{759, "ecToggleMarker8"},
    CommandName{760, "ecToggleMarker9"},
    CommandName{ecUserFirst, "ecUserFirst"},
};

constexpr TShortCut Key(int key, unsigned shift = ssNone) {
    return TShortCut{key, shift};
}

} // namespace

std::optional<std::string_view> EditorCommandToName(TEditorCommand command) {
    for (const auto& entry : kCommandNames)
        if (entry.command == command) return entry.name;
    return std::nullopt;
}

std::optional<TEditorCommand> EditorCommandFromName(std::string_view name) {
    for (const auto& entry : kCommandNames)
        if (SameText(entry.name, name)) return entry.command;
    return std::nullopt;
}

std::vector<TEditorCommand> NamedEditorCommands() {
    std::vector<TEditorCommand> out;
    out.reserve(kCommandNames.size());
    for (const auto& entry : kCommandNames) out.push_back(entry.command);
    return out;
}

const TKeyStroke& TKeyStrokes::Add(TEditorCommand command, TShortCut shortCut, TShortCut shortCut2) {
    CheckFree(shortCut, shortCut2, -1);
    items_.push_back(TKeyStroke{command, shortCut, shortCut2});
    return items_.back();
}

void TKeyStrokes::SetShortCuts(int index, TShortCut shortCut, TShortCut shortCut2) {
    TKeyStroke& item = items_.at(static_cast<size_t>(index));
    CheckFree(shortCut, shortCut2, index);
    item.ShortCut = shortCut;
    item.ShortCut2 = shortCut2;
}

void TKeyStrokes::SetCommand(int index, TEditorCommand command) {
    items_.at(static_cast<size_t>(index)).Command = command;
}

void TKeyStrokes::Delete(int index) {
    if (index < 0 || index >= Count()) throw ERangeError();
    items_.erase(items_.begin() + index);
}

void TKeyStrokes::CheckFree(TShortCut shortCut, TShortCut shortCut2, int except) const {
    // A key stroke without a first key is a placeholder and binds nothing.
    if (shortCut.IsEmpty()) return;
    int found = FindShortcut(shortCut, shortCut2);
    if (found >= 0 && found != except) throw EKeyStrokeError("Shortcut already exists");
}

int TKeyStrokes::FindShortcut(TShortCut shortCut, TShortCut shortCut2) const {
    if (shortCut.IsEmpty()) return -1;
    for (size_t i = 0; i < items_.size(); ++i)
        if (items_[i].ShortCut == shortCut && items_[i].ShortCut2 == shortCut2) return static_cast<int>(i);
    return -1;
}

int TKeyStrokes::FindCommand(TEditorCommand command) const {
    for (size_t i = 0; i < items_.size(); ++i)
        if (items_[i].Command == command) return static_cast<int>(i);
    return -1;
}

bool TKeyStrokes::StartsSequence(TShortCut shortCut) const {
    if (shortCut.IsEmpty()) return false;
    for (const auto& item : items_)
        if (item.ShortCut == shortCut && !item.ShortCut2.IsEmpty()) return true;
    return false;
}

void TKeyStrokes::ResetDefaults() {
    constexpr unsigned sc = ssShift | ssCtrl;
    items_.clear();
    items_.reserve(74);
    auto add = [this](TEditorCommand command, TShortCut key) { Add(command, key); };
    add(ecSelectUp, Key(Qt::Key_Up, ssShift));
    add(ecUp, Key(Qt::Key_Up));
    add(ecScrollUp, Key(Qt::Key_Up, ssCtrl));
    add(ecDown, Key(Qt::Key_Down));
    add(ecSelectDown, Key(Qt::Key_Down, ssShift));
    add(ecScrollDown, Key(Qt::Key_Down, ssCtrl));
    add(ecLeft, Key(Qt::Key_Left));
    add(ecSelectLeft, Key(Qt::Key_Left, ssShift));
    add(ecWordLeft, Key(Qt::Key_Left, ssCtrl));
    add(ecSelectWordLeft, Key(Qt::Key_Left, sc));
    add(ecRight, Key(Qt::Key_Right));
    add(ecSelectRight, Key(Qt::Key_Right, ssShift));
    add(ecWordRight, Key(Qt::Key_Right, ssCtrl));
    add(ecSelectWordRight, Key(Qt::Key_Right, sc));
    add(ecPageDown, Key(Qt::Key_PageDown));
    add(ecSelectPageDown, Key(Qt::Key_PageDown, ssShift));
    add(ecPageBottom, Key(Qt::Key_PageDown, ssCtrl));
    add(ecSelectPageBottom, Key(Qt::Key_PageDown, sc));
    add(ecPageUp, Key(Qt::Key_PageUp));
    add(ecSelectPageUp, Key(Qt::Key_PageUp, ssShift));
    add(ecPageTop, Key(Qt::Key_PageUp, ssCtrl));
    add(ecSelectPageTop, Key(Qt::Key_PageUp, sc));
    add(ecLineStart, Key(Qt::Key_Home));
    add(ecSelectLineStart, Key(Qt::Key_Home, ssShift));
    add(ecEditorTop, Key(Qt::Key_Home, ssCtrl));
    add(ecSelectEditorTop, Key(Qt::Key_Home, sc));
    add(ecLineEnd, Key(Qt::Key_End));
    add(ecSelectLineEnd, Key(Qt::Key_End, ssShift));
    add(ecEditorBottom, Key(Qt::Key_End, ssCtrl));
    add(ecSelectEditorBottom, Key(Qt::Key_End, sc));
    add(ecToggleMode, Key(Qt::Key_Insert));
    add(ecPaste, Key(Qt::Key_V, ssCtrl));
    add(ecPaste, Key(Qt::Key_Insert, ssShift));
    add(ecDeleteChar, Key(Qt::Key_Delete));
    add(ecDeleteLastChar, Key(Qt::Key_Backspace));
    add(ecDeleteLastWord, Key(Qt::Key_Backspace, ssCtrl));
    add(ecUndo, Key(Qt::Key_Z, ssCtrl));
    add(ecUndo, Key(Qt::Key_Backspace, ssAlt));
    add(ecRedo, Key(Qt::Key_Z, sc));
    add(ecRedo, Key(Qt::Key_Backspace, ssShift | ssAlt));
    add(ecLineBreak, Key(Qt::Key_Return));
    add(ecLineBreak, Key(Qt::Key_M, ssCtrl));
    add(ecSelectAll, Key(Qt::Key_A, ssCtrl));
    add(ecCopy, Key(Qt::Key_C, ssCtrl));
    add(ecCopy, Key(Qt::Key_Insert, ssCtrl));
    add(ecCut, Key(Qt::Key_X, ssCtrl));
    add(ecCut, Key(Qt::Key_Delete, ssShift));
    add(ecBlockIndent, Key(Qt::Key_I, sc));
    add(ecInsertLine, Key(Qt::Key_N, ssCtrl));
    add(ecDeleteWord, Key(Qt::Key_T, ssCtrl));
    add(ecBlockUnindent, Key(Qt::Key_U, sc));
    add(ecDelete, Key(Qt::Key_Delete, ssCtrl));
    add(ecDeleteLine, Key(Qt::Key_Y, ssCtrl));
    add(ecDeleteEOL, Key(Qt::Key_Y, sc));
    for (int n = 0; n <= 9; ++n) add(ecGotoMarker0 + n, Key(Qt::Key_0 + n, ssCtrl));
    for (int n = 0; n <= 9; ++n) add(ecToggleMarker0 + n, Key(Qt::Key_0 + n, sc));
}

} // namespace velkor
