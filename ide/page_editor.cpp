#include "ide/page_editor.h"

#include "platform/text_file.h"

#include <QStringDecoder>
#include <QTextBlock>

#include <span>

namespace velkor {

TPlainSourceEdit::TPlainSourceEdit(QWidget* parent) : QPlainTextEdit(parent) {
    QFont fixed(QStringLiteral("Courier New"), 10);
    fixed.setStyleHint(QFont::Monospace);
    setFont(fixed);
    setLineWrapMode(QPlainTextEdit::NoWrap);
}

void TPlainSourceEdit::SetText(const QString& text) {
    QString plain = text;
    plain.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    plain.replace(u'\r', u'\n');
    setPlainText(plain);
    // Replacing the text is an edit like any other: it has not been saved.
    SetModified(true);
}

QStringList TPlainSourceEdit::Lines() const {
    return toPlainText().split(u'\n');
}

int TPlainSourceEdit::LineCount() const {
    return document()->blockCount();
}

void TPlainSourceEdit::LoadFromFile(const std::filesystem::path& path) {
    const std::vector<std::uint8_t> bytes = ReadFileBytes(path);
    const QByteArray raw(reinterpret_cast<const char*>(bytes.data()), static_cast<qsizetype>(bytes.size()));
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = utf8.decode(raw);
    latin1_ = utf8.hasError();
    if (latin1_) text = QString::fromLatin1(raw);
    const qsizetype lf = text.indexOf(u'\n');
    const qsizetype cr = text.indexOf(u'\r');
    if (cr >= 0 && (lf < 0 || cr < lf))
        lineBreak_ = (lf == cr + 1) ? QStringLiteral("\r\n") : QStringLiteral("\r");
    else if (lf >= 0)
        lineBreak_ = QStringLiteral("\n");
    else
        lineBreak_ = QStringLiteral("\r\n");
    SetText(text);
    document()->clearUndoRedoStacks();
    SetModified(false);
}

void TPlainSourceEdit::SaveToFile(const std::filesystem::path& path) {
    QString text = toPlainText();
    if (lineBreak_ != QLatin1String("\n")) text.replace(u'\n', lineBreak_);
    bool fitsLatin1 = true;
    if (latin1_) {
        for (QChar c : text) {
            if (c.unicode() > 0xFF) {
                fitsLatin1 = false;
                break;
            }
        }
    }
    const QByteArray encoded = (latin1_ && fitsLatin1) ? text.toLatin1() : text.toUtf8();
    WriteFileAtomic(path, std::string_view(encoded.constData(), static_cast<size_t>(encoded.size())));
    SetModified(false);
}

bool TPlainSourceEdit::Modified() const {
    return document()->isModified();
}

void TPlainSourceEdit::SetModified(bool modified) {
    document()->setModified(modified);
}

int TPlainSourceEdit::CaretLine() const {
    return textCursor().blockNumber();
}

int TPlainSourceEdit::CaretColumn() const {
    return textCursor().positionInBlock();
}

void TPlainSourceEdit::SetCaret(int line, int column) {
    const QTextBlock block = document()->findBlockByNumber(std::max(0, std::min(line, LineCount() - 1)));
    QTextCursor cursor(block);
    cursor.setPosition(block.position() + std::max(0, std::min(column, block.length() - 1)));
    setTextCursor(cursor);
}

void TPlainSourceEdit::setFirstVisibleLine(int line) {
    const QTextBlock block = document()->findBlockByNumber(std::max(0, line));
    if (!block.isValid()) return;
    // Scroll so that the block sits at the top: move the caret past the end first, then back.
    const QTextCursor keep = textCursor();
    moveCursor(QTextCursor::End);
    QTextCursor top(block);
    setTextCursor(top);
    ensureCursorVisible();
    setTextCursor(keep);
}

QString TPlainSourceEdit::WordAtCursor() const {
    const QTextCursor cursor = textCursor();
    const QString line = cursor.block().text();
    const auto isWord = [](QChar c) { return c.isLetterOrNumber() || c == u'_'; };
    qsizetype start = cursor.positionInBlock();
    qsizetype end = start;
    while (start > 0 && isWord(line[start - 1])) --start;
    while (end < line.size() && isWord(line[end])) ++end;
    return line.mid(start, end - start);
}

void TPlainSourceEdit::SetErrorLine(int line) {
    errorLine_ = line;
    QList<QTextEdit::ExtraSelection> marks;
    const QTextBlock block = document()->findBlockByNumber(line);
    if (line >= 0 && block.isValid()) {
        QTextEdit::ExtraSelection mark;
        mark.cursor = QTextCursor(block);
        mark.format.setBackground(QColor(0xFF, 0xC0, 0xC0));
        mark.format.setProperty(QTextFormat::FullWidthSelection, true);
        marks << mark;
    }
    setExtraSelections(marks);
}

bool TPlainSourceEdit::isUndoAvailable() const {
    return document()->isUndoAvailable();
}

bool TPlainSourceEdit::hasSelectedText() const {
    return textCursor().hasSelection();
}

void TPlainSourceEdit::removeSelectedText() {
    textCursor().removeSelectedText();
}

} // namespace velkor
