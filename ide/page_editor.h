// The text control of an editor page. The page talks to it only through the members below, which are
// those of the syntax editor control; until that control is part of the build a plain text box stands in
// for it, and switching is the one alias at the end of this file.
#pragma once

#include <QPlainTextEdit>

#include <filesystem>
#include <string>

namespace velkor {

class TPlainSourceEdit : public QPlainTextEdit {
    Q_OBJECT

public:
    explicit TPlainSourceEdit(QWidget* parent = nullptr);

    // Lines are numbered from 0; line texts have no line break.
    QString Text() const { return toPlainText(); }
    // Marks the text modified.
    void SetText(const QString& text);
    QStringList Lines() const;
    int LineCount() const;

    // UTF-8, or Latin-1 when the bytes are not valid UTF-8; the file's line-break style is kept for
    // saving. Clears the modified flag. Throws EInOutError.
    void LoadFromFile(const std::filesystem::path& path);
    // Writes in the loaded encoding and line-break style and clears the modified flag. Throws EInOutError.
    void SaveToFile(const std::filesystem::path& path);

    bool Modified() const;
    void SetModified(bool modified);

    // Caret position, both from 0.
    int CaretLine() const;
    int CaretColumn() const;
    void SetCaret(int line, int column);
    void setFirstVisibleLine(int line);
    // The identifier (letters, digits, "_") under or just before the caret, or empty.
    QString WordAtCursor() const;

    // One line marked as the error line; -1 when none.
    void SetErrorLine(int line);
    void ClearErrorLine() { SetErrorLine(-1); }
    int ErrorLine() const { return errorLine_; }

    bool isUndoAvailable() const;
    bool hasSelectedText() const;
    void removeSelectedText();

private:
    bool latin1_ = false;                        // the file was not valid UTF-8
    QString lineBreak_ = QStringLiteral("\r\n"); // written between lines when saving
    int errorLine_ = -1;                         // the marked line
};

using TPageEditor = TPlainSourceEdit;

} // namespace velkor
