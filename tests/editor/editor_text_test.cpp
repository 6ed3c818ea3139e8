// Text access, files, caret, word at cursor, error line, the font of the editor, and what it hands to
// input methods and accessibility.
#include "editor_test_app.h"

#include "editor/highlighter.h"
#include "platform/text_file.h"
#include "support/run_tool.h"

#include <QAccessible>
#include <QFontInfo>
#include <QInputMethodQueryEvent>
#include <QTest>

namespace velkor::test {
namespace {

class EditorText : public EditorTest {};

TEST_F(EditorText, LinesCaretWordErrorLineAndFont) {
    Load(QStringLiteral("a\r\nb\nc\rd"));
    EXPECT_EQ(edit->Lines(), (QStringList{"a", "b", "c", "d"}));
    EXPECT_EQ(edit->LineText(1), QStringLiteral("b"));
    EXPECT_FALSE(edit->Modified());
    edit->ExecuteCommand(ecChar, QString::fromUtf8("\xC3\xA9\xF0\x9F\x9A\x80"));
    EXPECT_TRUE(edit->Modified());
    EXPECT_EQ(edit->LineText(0), QString::fromUtf8("\xC3\xA9\xF0\x9F\x9A\x80"
                                                   "a"));
    edit->SetModified(false);
    EXPECT_FALSE(edit->Modified());
    EXPECT_EQ(edit->Lines().size(), 4);
    Load(QString());
    EXPECT_EQ(edit->Lines(), QStringList{QString()});

    // The caret's column counts a tab as it is shown.
    Load(QStringLiteral("\tab"), 0, 2);
    EXPECT_EQ(edit->CaretLine(), 0);
    EXPECT_EQ(edit->CaretColumn(), 9);
    edit->SetCaret(0, 8);
    EXPECT_EQ(Caret(), std::make_pair(0, 1));

    // The word at the cursor is made of identifier characters.
    Load(QStringLiteral("x := Ship_1.speed + 2;"));
    for (const auto& [index, word] : {std::pair{7, "Ship_1"}, {11, "Ship_1"}, {12, "speed"}, {18, ""}}) {
        edit->setCursorPosition(0, index); // 11: just behind the word
        EXPECT_EQ(edit->WordAtCursor(), QString::fromLatin1(word)) << index;
    }

    // The error line is one full-line mark.
    Load(NumberedLines(20));
    EXPECT_EQ(edit->ErrorLine(), -1);
    for (const auto& [set, shown] : {std::pair{7, 7}, {3, 3}, {-1, -1}, {500, -1}}) { // -1: cleared
        set < 0 ? edit->ClearErrorLine() : edit->SetErrorLine(set);
        EXPECT_EQ(edit->ErrorLine(), shown) << set;
        EXPECT_EQ(edit->markersAtLine(7) != 0, shown == 7) << set; // 500: past the end, nothing
    }

    // A fixed-pitch font, keywords in bold.
    EXPECT_TRUE(QFontInfo(edit->Highlighter()->defaultFont(hsDefault)).fixedPitch());
    EXPECT_TRUE(edit->Highlighter()->defaultFont(hsKeyword).bold());
}

TEST_F(EditorText, FilesKeepTheirEncodingAndLineBreaks) {
    TempDir dir;
    const auto utf8 = dir.path() / "u.pas";
    const auto latin = dir.path() / "l.pas";
    WriteFileAtomic(utf8, std::string("unit u;\n// caf\xC3\xA9\n"));
    WriteFileAtomic(latin, std::string("unit l;\r\n\"Gr\xFC\xDF\"\r\n"));

    edit->LoadFromFile(utf8);
    EXPECT_EQ(edit->LineText(1), QString::fromUtf8("// caf\xC3\xA9"));
    EXPECT_EQ(edit->FileEncoding(), TSyntaxEdit::TFileEncoding::Utf8);
    EXPECT_EQ(edit->eolMode(), QsciScintilla::EolUnix);
    EXPECT_FALSE(edit->Modified());
    edit->setCursorPosition(2, 0);
    QTest::keyClick(edit.get(), Qt::Key_Return);
    edit->SaveToFile(utf8);
    EXPECT_EQ(ReadFile(utf8), "unit u;\n// caf\xC3\xA9\n\n");

    edit->LoadFromFile(latin);
    EXPECT_EQ(edit->FileEncoding(), TSyntaxEdit::TFileEncoding::Latin1);
    EXPECT_EQ(edit->LineText(1), QStringLiteral("\"Gr\u00FC\u00DF\""));
    EXPECT_EQ(edit->EncodedText(), "unit l;\r\n\"Gr\xFC\xDF\"\r\n");
    edit->SaveToFile(latin);
    EXPECT_EQ(ReadFile(latin), "unit l;\r\n\"Gr\xFC\xDF\"\r\n");
    // A character Latin-1 cannot hold turns the file into UTF-8 rather than losing it.
    edit->ExecuteCommand(ecChar, QStringLiteral("\u20AC"));
    edit->SaveToFile(latin);
    EXPECT_EQ(ReadFile(latin), "\xE2\x82\xAC"
                               "unit l;\r\n\"Gr\xC3\xBC\xC3\x9F\"\r\n");
    EXPECT_THROW(edit->LoadFromFile(dir.path() / "missing.pas"), EInOutError);
}

// Whatever the editor opens it saves back byte for byte: the files of tests/cases/editor/files/ (NUL bytes,
// shown as marks, a byte-order mark, binary data) and data that is no valid UTF-8.
TEST_F(EditorText, EveryByteReadIsSavedBack) {
    TempDir dir;
    std::string binary;
    for (int i = 0; i < 151 * 1024; ++i) binary += static_cast<char>((i * 37 + i / 256) & 0xFF);
    std::vector<std::string> files = {binary};
    for (const auto& entry :
         std::filesystem::directory_iterator(VELKOR_SOURCE_DIR "/tests/cases/editor/files"))
        files.push_back(ReadFile(entry.path()));
    ASSERT_GE(files.size(), 4u);
    for (std::size_t i = 0; i < files.size(); ++i) {
        SCOPED_TRACE(i);
        const auto path = dir.path() / "f.pas";
        WriteFile(path, files[i]);
        edit->LoadFromFile(path);
        EXPECT_FALSE(edit->Modified());
        edit->SaveToFile(path);
        const std::string back = ReadFile(path);
        EXPECT_EQ(back.size(), files[i].size());
        EXPECT_TRUE(back == files[i]);
    }
}

// What would make a keystroke cost time in proportion to a 50,000-line unit: input methods and
// accessibility asking for the whole text.
class EditorPerformance : public EditorTest {};

TEST_F(EditorPerformance, InputMethodsAreGivenTheCaretsLineNotTheWholeUnit) {
    QString text = NumberedLines(50000);
    text.insert(text.indexOf(QStringLiteral("line 25003")), QString::fromUtf8("\xC3\xA9\xF0\x9D\x84\x9E"));
    Load(text, 25003);
    const QString line = edit->LineText(25003);
    ASSERT_TRUE(line.contains(QString::fromUtf8("\xF0\x9D\x84\x9E")));
    const auto query = [&](Qt::InputMethodQuery what) {
        QInputMethodQueryEvent event(what);
        QApplication::sendEvent(edit.get(), &event);
        return event.value(what);
    };
    // The caret after the two characters put in front of "line": "é" and a character of two UTF-16 units.
    const int at = static_cast<int>(line.indexOf(QStringLiteral("line 25003")));
    edit->SendScintilla(QsciScintillaBase::SCI_SETSEL,
                        edit->SendScintilla(QsciScintillaBase::SCI_POSITIONFROMLINE, 25003UL),
                        edit->SendScintilla(QsciScintillaBase::SCI_POSITIONFROMLINE, 25003UL) +
                            static_cast<long>(line.left(at).toUtf8().size()));
    EXPECT_EQ(query(Qt::ImSurroundingText).toString(), line);
    EXPECT_EQ(query(Qt::ImCursorPosition).toInt(), at);
    EXPECT_EQ(query(Qt::ImAnchorPosition).toInt(), 0);
    EXPECT_EQ(query(Qt::ImTextBeforeCursor).toString(), line.left(at));
    EXPECT_EQ(query(Qt::ImTextAfterCursor).toString(), line.mid(at));
    // An anchor on another line stands at the caret.
    edit->SendScintilla(QsciScintillaBase::SCI_SETANCHOR, 0L);
    EXPECT_EQ(query(Qt::ImAnchorPosition).toInt(), at);
}

TEST_F(EditorPerformance, WithoutAnAssistiveToolTheEditorIsAPlainAccessibleWidget) {
    ASSERT_FALSE(QAccessible::isActive());
    Load(NumberedLines(100));
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(edit.get());
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->role(), QAccessible::EditableText);
    // No text interface: nothing counts characters from the start of the text at every caret move.
    EXPECT_EQ(accessible->textInterface(), nullptr);
}

} // namespace
} // namespace velkor::test
