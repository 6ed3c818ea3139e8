// Numbered editor commands, their names, and the key strokes that bind keys to them. Every key the syntax
// editor receives is looked up here first; nothing in this file knows about widgets, only Qt key codes.
#pragma once

#include "platform/exception.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velkor {

using TEditorCommand = int;

// Movement; the selecting twins are the same command + 100.
inline constexpr TEditorCommand ecNone = 0;
inline constexpr TEditorCommand ecLeft = 1;
inline constexpr TEditorCommand ecRight = 2;
inline constexpr TEditorCommand ecUp = 3;
inline constexpr TEditorCommand ecDown = 4;
inline constexpr TEditorCommand ecWordLeft = 5;
inline constexpr TEditorCommand ecWordRight = 6;
inline constexpr TEditorCommand ecLineStart = 7;
inline constexpr TEditorCommand ecLineEnd = 8;
inline constexpr TEditorCommand ecPageUp = 9;
inline constexpr TEditorCommand ecPageDown = 10;
inline constexpr TEditorCommand ecPageLeft = 11;
inline constexpr TEditorCommand ecPageRight = 12;
inline constexpr TEditorCommand ecPageTop = 13;
inline constexpr TEditorCommand ecPageBottom = 14;
inline constexpr TEditorCommand ecEditorTop = 15;
inline constexpr TEditorCommand ecEditorBottom = 16;
inline constexpr TEditorCommand ecGoto = 17;

inline constexpr TEditorCommand ecSelection = 100; // offset of a movement command's selecting twin
inline constexpr TEditorCommand ecSelectLeft = ecLeft + ecSelection;
inline constexpr TEditorCommand ecSelectRight = ecRight + ecSelection;
inline constexpr TEditorCommand ecSelectUp = ecUp + ecSelection;
inline constexpr TEditorCommand ecSelectDown = ecDown + ecSelection;
inline constexpr TEditorCommand ecSelectWordLeft = ecWordLeft + ecSelection;
inline constexpr TEditorCommand ecSelectWordRight = ecWordRight + ecSelection;
inline constexpr TEditorCommand ecSelectLineStart = ecLineStart + ecSelection;
inline constexpr TEditorCommand ecSelectLineEnd = ecLineEnd + ecSelection;
inline constexpr TEditorCommand ecSelectPageUp = ecPageUp + ecSelection;
inline constexpr TEditorCommand ecSelectPageDown = ecPageDown + ecSelection;
inline constexpr TEditorCommand ecSelectPageLeft = ecPageLeft + ecSelection;
inline constexpr TEditorCommand ecSelectPageRight = ecPageRight + ecSelection;
inline constexpr TEditorCommand ecSelectPageTop = ecPageTop + ecSelection;
inline constexpr TEditorCommand ecSelectPageBottom = ecPageBottom + ecSelection;
inline constexpr TEditorCommand ecSelectEditorTop = ecEditorTop + ecSelection;
inline constexpr TEditorCommand ecSelectEditorBottom = ecEditorBottom + ecSelection;
inline constexpr TEditorCommand ecSelectGoto = ecGoto + ecSelection;
inline constexpr TEditorCommand ecSelectAll = 199;

// Editing.
inline constexpr TEditorCommand ecDeleteLastChar = 401;
inline constexpr TEditorCommand ecDeleteChar = 402;
inline constexpr TEditorCommand ecDeleteWord = 403;
inline constexpr TEditorCommand ecDeleteLastWord = 404;
inline constexpr TEditorCommand ecDeleteBOL = 405;
inline constexpr TEditorCommand ecDeleteEOL = 406;
inline constexpr TEditorCommand ecDeleteLine = 407;
inline constexpr TEditorCommand ecClearAll = 408;
inline constexpr TEditorCommand ecLineBreak = 409;
inline constexpr TEditorCommand ecInsertLine = 410;
inline constexpr TEditorCommand ecChar = 411;

// Clipboard, scrolling and modes.
inline constexpr TEditorCommand ecUndo = 601;
inline constexpr TEditorCommand ecRedo = 602;
inline constexpr TEditorCommand ecCut = 603;
inline constexpr TEditorCommand ecCopy = 604;
inline constexpr TEditorCommand ecPaste = 605;
inline constexpr TEditorCommand ecScrollUp = 606;
inline constexpr TEditorCommand ecScrollDown = 607;
inline constexpr TEditorCommand ecScrollLeft = 608;
inline constexpr TEditorCommand ecScrollRight = 609;
inline constexpr TEditorCommand ecInsertMode = 610;
inline constexpr TEditorCommand ecOverwriteMode = 611;
inline constexpr TEditorCommand ecToggleMode = 612;
inline constexpr TEditorCommand ecBlockIndent = 613;
inline constexpr TEditorCommand ecBlockUnindent = 614;
inline constexpr TEditorCommand ecDelete = 615;

// Bookmarks 0 to 9.
inline constexpr TEditorCommand ecGotoMarker0 = 701; // ecGotoMarker0 + n jumps to bookmark n
inline constexpr TEditorCommand ecGotoMarker9 = 710;
inline constexpr TEditorCommand ecToggleMarker0 = 751; // ecToggleMarker0 + n sets or clears bookmark n
inline constexpr TEditorCommand ecToggleMarker9 = 760;

inline constexpr TEditorCommand ecUserFirst = 1001;

// The command's name ("ecSelectAll"), or nothing for a number without one (user commands past ecUserFirst).
std::optional<std::string_view> EditorCommandToName(TEditorCommand command);
// The command of a name, compared without regard to case, or nothing when no command has that name.
std::optional<TEditorCommand> EditorCommandFromName(std::string_view name);
// Every named command in table order, for lists and tests.
std::vector<TEditorCommand> NamedEditorCommands();

// Modifier bits of a shortcut.
enum TShiftState : unsigned {
    ssNone = 0,
    ssShift = 1,
    ssCtrl = 2,
    ssAlt = 4,
};

// One key with its modifiers; key 0 means "no shortcut".
struct TShortCut {
    int Key = 0;             // a Qt::Key code (letters and digits as their upper-case/unshifted key)
    unsigned Shift = ssNone; // TShiftState bits held with the key

    bool IsEmpty() const { return Key == 0; }
    bool operator==(const TShortCut&) const = default;
};

// A command bound to a key, or to a two-key sequence when ShortCut2 is set.
struct TKeyStroke {
    TEditorCommand Command = ecNone; // what the key runs
    TShortCut ShortCut;              // the (first) key
    TShortCut ShortCut2;             // the second key of a two-key sequence, or empty
};

// Raised when a shortcut is given to a second key stroke of the same collection.
class EKeyStrokeError : public Exception {
public:
    using Exception::Exception;
};

// The editor's key strokes. A key (or key pair) belongs to at most one key stroke.
class TKeyStrokes {
public:
    int Count() const { return static_cast<int>(items_.size()); }
    const TKeyStroke& operator[](int index) const { return items_.at(static_cast<size_t>(index)); }
    auto begin() const { return items_.begin(); }
    auto end() const { return items_.end(); }

    // Appends a key stroke; EKeyStrokeError "Shortcut already exists" when the keys are taken.
    const TKeyStroke& Add(TEditorCommand command, TShortCut shortCut, TShortCut shortCut2 = {});
    // Gives key stroke `index` new keys; on a clash the error is raised and nothing changes.
    void SetShortCuts(int index, TShortCut shortCut, TShortCut shortCut2 = {});
    void SetCommand(int index, TEditorCommand command);
    void Delete(int index);
    void Clear() { items_.clear(); }

    // Index of the key stroke with exactly these keys (no second key: a single-key binding), or -1.
    int FindShortcut(TShortCut shortCut, TShortCut shortCut2 = {}) const;
    // Index of the first key stroke running `command`, or -1 (for showing a command's key in a menu).
    int FindCommand(TEditorCommand command) const;
    // True when some two-key sequence starts with this key.
    bool StartsSequence(TShortCut shortCut) const;

    // Replaces the collection by the 74 default bindings, in their fixed order.
    void ResetDefaults();

private:
    void CheckFree(TShortCut shortCut, TShortCut shortCut2, int except) const;

    std::vector<TKeyStroke> items_; // the key strokes in binding order
};

} // namespace velkor
