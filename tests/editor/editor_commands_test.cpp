#include "editor/editor_commands.h"

#include <gtest/gtest.h>

#include <QtCore/qnamespace.h>

#include <fstream>
#include <string>
#include <vector>

namespace velkor {
namespace {

// The command table, written out independently of the implementation's: one "name number" per line.
std::vector<std::pair<std::string, TEditorCommand>> CommandTable() {
    std::ifstream in(std::string(VELKOR_SOURCE_DIR) + "/tests/cases/editor/commands.txt");
    std::vector<std::pair<std::string, TEditorCommand>> table;
    std::string name;
    TEditorCommand value = 0;
    while (in >> name >> value) table.emplace_back(name, value);
    return table;
}

TEST(EditorCommandNames, EveryCommandConvertsBothWays) {
    const auto table = CommandTable();
    EXPECT_EQ(table.size(), 83u);
    for (const auto& [name, value] : table) {
        EXPECT_EQ(EditorCommandToName(value).value_or("?"), name);
        EXPECT_EQ(EditorCommandFromName(name).value_or(-1), value) << name;
    }
    // No named command beyond the table.
    EXPECT_EQ(NamedEditorCommands().size(), table.size());
}

TEST(EditorCommandNames, UnknownNamesAndNumbersGiveNothing) {
    for (TEditorCommand c : {-1, 18, 100, 118, 200, 400, 412, 600, 616, 700, 711, 750, 761, 1000, 1002})
        EXPECT_FALSE(EditorCommandToName(c).has_value()) << c;
    for (const char* name : {"", "ec", "ecFoo", "ecGotoMarker10", "Left", "ecLeft "})
        EXPECT_FALSE(EditorCommandFromName(name).has_value()) << name;
    // Names are read without regard to case.
    EXPECT_EQ(EditorCommandFromName("ECSELECTALL"), ecSelectAll);
    EXPECT_EQ(EditorCommandFromName("ectogglemarker3"), 754);
}

TEST(KeyStrokes, DuplicateShortcutIsRefusedAndChangesNothing) {
    TKeyStrokes strokes;
    strokes.Add(ecCopy, {Qt::Key_C, ssCtrl});
    strokes.Add(ecPaste, {Qt::Key_V, ssCtrl});
    strokes.Add(ecDeleteLine, {Qt::Key_K, ssCtrl}, {Qt::Key_D, ssNone});
    try {
        strokes.Add(ecCut, {Qt::Key_C, ssCtrl});
        FAIL() << "no error";
    } catch (const EKeyStrokeError& e) {
        EXPECT_STREQ(e.what(), "Shortcut already exists");
    }
    EXPECT_EQ(strokes.Count(), 3);
    // Re-binding an existing key stroke onto another's key leaves both as they were.
    EXPECT_THROW(strokes.SetShortCuts(1, {Qt::Key_C, ssCtrl}), EKeyStrokeError);
    EXPECT_THROW(strokes.Add(ecUndo, {Qt::Key_K, ssCtrl}, {Qt::Key_D, ssNone}), EKeyStrokeError);
    EXPECT_EQ(strokes.Count(), 3);
    EXPECT_EQ(strokes[1].ShortCut, (TShortCut{Qt::Key_V, ssCtrl}));
    EXPECT_EQ(strokes[1].Command, ecPaste);
    // The same key with other modifiers, or as the start of a different sequence, is free.
    strokes.Add(ecCut, {Qt::Key_C, ssCtrl | ssShift});
    strokes.Add(ecUndo, {Qt::Key_K, ssCtrl}, {Qt::Key_U, ssNone});
    strokes.Add(ecRedo, {Qt::Key_K, ssCtrl});
    EXPECT_EQ(strokes.Count(), 6);
    // A key stroke may keep its own keys.
    strokes.SetShortCuts(0, {Qt::Key_C, ssCtrl});
    EXPECT_EQ(strokes[0].Command, ecCopy);
}

TEST(KeyStrokes, FindsByShortcutPairAndByCommand) {
    TKeyStrokes strokes;
    strokes.ResetDefaults();
    strokes.ResetDefaults(); // the same list again, not a clash
    ASSERT_EQ(strokes.Count(), 74);
    EXPECT_EQ(strokes[strokes.FindShortcut({Qt::Key_Z, ssCtrl | ssShift})].Command, ecRedo);
    EXPECT_EQ(strokes.FindShortcut({Qt::Key_Z, ssAlt}), -1);
    EXPECT_EQ(strokes.FindShortcut({}), -1);
    EXPECT_EQ(strokes.FindCommand(ecPaste), strokes.FindShortcut({Qt::Key_V, ssCtrl}));
    EXPECT_EQ(strokes.FindCommand(ecClearAll), -1);
    EXPECT_FALSE(strokes.StartsSequence({Qt::Key_K, ssCtrl}));
    strokes.Add(ecClearAll, {Qt::Key_K, ssCtrl}, {Qt::Key_L, ssCtrl});
    EXPECT_TRUE(strokes.StartsSequence({Qt::Key_K, ssCtrl}));
    EXPECT_EQ(strokes.FindShortcut({Qt::Key_K, ssCtrl}), -1);
    EXPECT_EQ(strokes.FindShortcut({Qt::Key_K, ssCtrl}, {Qt::Key_L, ssCtrl}), 74);
    strokes.Delete(74);
    EXPECT_FALSE(strokes.StartsSequence({Qt::Key_K, ssCtrl}));
    EXPECT_THROW(strokes.Delete(74), ERangeError);
}

} // namespace
} // namespace velkor
