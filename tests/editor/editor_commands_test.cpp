#include "editor/editor_commands.h"

#include <gtest/gtest.h>

#include <QtCore/qnamespace.h>

#include <set>
#include <string>
#include <vector>

namespace velkor {
namespace {

struct NamedCommand {
    const char* name;
    TEditorCommand value;
};

// The command table, written out independently of the implementation's.
std::vector<NamedCommand> CommandTable() {
    std::vector<NamedCommand> t = {
        {"ecNone", 0},
        {"ecLeft", 1},
        {"ecRight", 2},
        {"ecUp", 3},
        {"ecDown", 4},
        {"ecWordLeft", 5},
        {"ecWordRight", 6},
        {"ecLineStart", 7},
        {"ecLineEnd", 8},
        {"ecPageUp", 9},
        {"ecPageDown", 10},
        {"ecPageLeft", 11},
        {"ecPageRight", 12},
        {"ecPageTop", 13},
        {"ecPageBottom", 14},
        {"ecEditorTop", 15},
        {"ecEditorBottom", 16},
        {"ecGoto", 17},
        {"ecSelectLeft", 101},
        {"ecSelectRight", 102},
        {"ecSelectUp", 103},
        {"ecSelectDown", 104},
        {"ecSelectWordLeft", 105},
        {"ecSelectWordRight", 106},
        {"ecSelectLineStart", 107},
        {"ecSelectLineEnd", 108},
        {"ecSelectPageUp", 109},
        {"ecSelectPageDown", 110},
        {"ecSelectPageLeft", 111},
        {"ecSelectPageRight", 112},
        {"ecSelectPageTop", 113},
        {"ecSelectPageBottom", 114},
        {"ecSelectEditorTop", 115},
        {"ecSelectEditorBottom", 116},
        {"ecSelectGoto", 117},
        {"ecSelectAll", 199},
        {"ecDeleteLastChar", 401},
        {"ecDeleteChar", 402},
        {"ecDeleteWord", 403},
        {"ecDeleteLastWord", 404},
        {"ecDeleteBOL", 405},
        {"ecDeleteEOL", 406},
        {"ecDeleteLine", 407},
        {"ecClearAll", 408},
        {"ecLineBreak", 409},
        {"ecInsertLine", 410},
        {"ecChar", 411},
        {"ecUndo", 601},
        {"ecRedo", 602},
        {"ecCut", 603},
        {"ecCopy", 604},
        {"ecPaste", 605},
        {"ecScrollUp", 606},
        {"ecScrollDown", 607},
        {"ecScrollLeft", 608},
        {"ecScrollRight", 609},
        {"ecInsertMode", 610},
        {"ecOverwriteMode", 611},
        {"ecToggleMode", 612},
        {"ecBlockIndent", 613},
        {"ecBlockUnindent", 614},
        {"ecDelete", 615},
        {"ecUserFirst", 1001},
    };
    static const char* gotoNames[] = {"ecGotoMarker0", "ecGotoMarker1", "ecGotoMarker2", "ecGotoMarker3",
                                      "ecGotoMarker4", "ecGotoMarker5", "ecGotoMarker6", "ecGotoMarker7",
                                      "ecGotoMarker8", "ecGotoMarker9"};
    static const char* toggleNames[] = {
        "ecToggleMarker0", "ecToggleMarker1", "ecToggleMarker2", "ecToggleMarker3", "ecToggleMarker4",
        "ecToggleMarker5", "ecToggleMarker6", "ecToggleMarker7", "ecToggleMarker8", "ecToggleMarker9"};
    for (int n = 0; n < 10; ++n) {
        t.push_back({gotoNames[n], 701 + n});
        t.push_back({toggleNames[n], 751 + n});
    }
    return t;
}

TEST(EditorCommandNames, EveryCommandConvertsBothWays) {
    const auto table = CommandTable();
    EXPECT_EQ(table.size(), 83u);
    for (const auto& entry : table) {
        auto name = EditorCommandToName(entry.value);
        ASSERT_TRUE(name.has_value()) << entry.name;
        EXPECT_EQ(*name, entry.name);
        auto value = EditorCommandFromName(entry.name);
        ASSERT_TRUE(value.has_value()) << entry.name;
        EXPECT_EQ(*value, entry.value) << entry.name;
    }
    // No named command beyond the table.
    EXPECT_EQ(NamedEditorCommands().size(), table.size());
}

TEST(EditorCommandNames, SelectingTwinsAreTheMovementPlusOneHundred) {
    for (TEditorCommand c = ecLeft; c <= ecGoto; ++c) {
        std::string twin(*EditorCommandToName(c + 100));
        std::string plain(*EditorCommandToName(c));
        EXPECT_EQ(twin, "ecSelect" + plain.substr(2)) << c;
    }
}

TEST(EditorCommandNames, UnknownNamesAndNumbersGiveNothing) {
    for (TEditorCommand c : {-1, 18, 100, 118, 200, 400, 412, 600, 616, 700, 711, 750, 761, 1000, 1002})
        EXPECT_FALSE(EditorCommandToName(c).has_value()) << c;
    for (const char* name : {"", "ec", "ecFoo", "ecGotoMarker10", "Left", "ecLeft "})
        EXPECT_FALSE(EditorCommandFromName(name).has_value()) << name;
}

TEST(EditorCommandNames, NamesAreReadWithoutRegardToCase) {
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

TEST(KeyStrokes, DefaultsBindEveryKeyOnce) {
    TKeyStrokes strokes;
    strokes.ResetDefaults();
    std::set<std::pair<int, unsigned>> keys;
    for (const auto& k : strokes) {
        EXPECT_TRUE(k.ShortCut2.IsEmpty());
        EXPECT_TRUE(keys.insert({k.ShortCut.Key, k.ShortCut.Shift}).second) << k.Command;
    }
    // Resetting twice gives the same list, not a clash.
    strokes.ResetDefaults();
    EXPECT_EQ(strokes.Count(), 74);
}

} // namespace
} // namespace velkor
