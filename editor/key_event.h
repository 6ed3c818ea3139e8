// Turns a Qt key event into the layout-independent shortcut the key strokes are written in.
#pragma once

#include "editor/editor_commands.h"

class QKeyEvent;

namespace velkor {

// The shortcut of a key press: Shift, Ctrl and Alt as held, keypad Enter as Return, and a digit-row key
// pressed with Shift as its digit (Shift+Ctrl+1 arrives as "!" on many layouts, and bookmarks need "1").
TShortCut ShortCutFromKeyEvent(const QKeyEvent& event);

// True for the keys that only modify others (Shift, Ctrl, Alt, Meta, AltGr, Caps Lock).
bool IsModifierKey(int key);

} // namespace velkor
