// Search and replace of TSyntaxEdit. One engine serves plain and regular-expression searches: the find text
// becomes a QRegularExpression (escaped unless ssoRegExpr), run over the document's text as UTF-16, and
// matches are mapped back to the editor's UTF-8 byte positions in one forward walk.
#include "editor/syntax_edit.h"

#include <QMessageBox>
#include <QRegularExpression>
#include <QRegularExpressionMatchIterator>

#include <algorithm>
#include <optional>
#include <span>
#include <vector>

namespace velkor {
namespace {

// Walks a UTF-16 text and gives the UTF-8 byte offset of ever later UTF-16 offsets; linear in total.
class TByteOffsets {
public:
    explicit TByteOffsets(const QString& text) : text_(text) {}

    long ToByte(qsizetype target) {
        while (unit_ < target && unit_ < text_.size()) {
            const char16_t c = text_.at(unit_).unicode();
            if (c < 0x80) {
                byte_ += 1;
            } else if (c < 0x800) {
                byte_ += 2;
            } else if (QChar::isHighSurrogate(c) && unit_ + 1 < text_.size() &&
                       QChar::isLowSurrogate(text_.at(unit_ + 1).unicode())) {
                byte_ += 4;
                ++unit_;
            } else {
                byte_ += 3;
            }
            ++unit_;
        }
        return byte_;
    }

private:
    const QString& text_; // the text being walked
    qsizetype unit_ = 0;  // UTF-16 offset reached
    long byte_ = 0;       // its UTF-8 byte offset
};

// UTF-16 offset of a UTF-8 byte offset.
qsizetype UnitOfByte(const char* bytes, long length, long byte) {
    qsizetype units = 0;
    for (long i = 0; i < byte && i < length; ++i) {
        const auto b = static_cast<unsigned char>(bytes[i]);
        if ((b & 0xC0) == 0x80) continue;
        units += (b >= 0xF0) ? 2 : 1;
    }
    return units;
}

QRegularExpression BuildExpression(const QString& findText, unsigned options) {
    QString pattern = (options & ssoRegExpr) ? findText : QRegularExpression::escape(findText);
    if (options & ssoWholeWord)
        pattern = QStringLiteral("(?<![A-Za-z0-9_])(?:") + pattern + QStringLiteral(")(?![A-Za-z0-9_])");
    // CR LF and CR end lines too, so "$" and "^" work on every line-break style.
    pattern.prepend(QStringLiteral("(*ANYCRLF)"));
    QRegularExpression::PatternOptions flags = QRegularExpression::MultilineOption;
    if (!(options & ssoMatchCase)) flags |= QRegularExpression::CaseInsensitiveOption;
    return QRegularExpression(pattern, flags);
}

// The replacement of one match: literal, or with "\0" to "\9" standing for the groups of a regular
// expression, "\n", "\r" and "\t" for those characters and "\\" for a backslash.
QString ExpandReplacement(const QString& replaceText, const QRegularExpressionMatch& match, bool regExpr) {
    if (!regExpr || !replaceText.contains(QLatin1Char('\\'))) return replaceText;
    QString out;
    out.reserve(replaceText.size());
    for (qsizetype i = 0; i < replaceText.size(); ++i) {
        const QChar c = replaceText.at(i);
        if (c != QLatin1Char('\\') || i + 1 >= replaceText.size()) {
            out.append(c);
            continue;
        }
        const QChar next = replaceText.at(++i);
        if (next.isDigit() && next.unicode() < 128) {
            out.append(match.captured(next.unicode() - '0'));
        } else if (next == QLatin1Char('n')) {
            out.append(QLatin1Char('\n'));
        } else if (next == QLatin1Char('r')) {
            out.append(QLatin1Char('\r'));
        } else if (next == QLatin1Char('t')) {
            out.append(QLatin1Char('\t'));
        } else if (next == QLatin1Char('\\')) {
            out.append(QLatin1Char('\\'));
        } else {
            out.append(c);
            out.append(next);
        }
    }
    return out;
}

struct TMatch {
    qsizetype start;     // UTF-16 offset of the match
    qsizetype end;       // UTF-16 offset behind it
    QString replacement; // what replaces it
};

} // namespace

// The text, the range that may be searched and where the search starts, all as UTF-16 offsets.
struct TSyntaxEdit::SearchScope {
    QString text;         // the whole document
    qsizetype scopeStart; // first offset of the scope
    qsizetype scopeEnd;   // offset behind the scope
    qsizetype from;       // where the search starts
};

bool TSyntaxEdit::Search(const QString& findText, const QString& replaceText, unsigned options) {
    lastSearchError_.clear();
    if (findText.isEmpty()) return false;
    if ((options & ssoReplace) && (options & ssoReplaceAll))
        return ReplaceAll(findText, replaceText, options);
    return SearchOnce(findText, replaceText, options);
}

TSyntaxEdit::SearchScope TSyntaxEdit::MakeScope(unsigned options) const {
    const auto* bytes = reinterpret_cast<const char*>(SendScintillaPtrResult(SCI_GETCHARACTERPOINTER));
    const long length = SendScintilla(SCI_GETLENGTH);
    SearchScope scope{QString::fromUtf8(bytes, length), 0, 0, 0};
    const long anchor = SendScintilla(SCI_GETANCHOR);
    const long caret = SendScintilla(SCI_GETCURRENTPOS);
    const long selStart = std::min(anchor, caret);
    const long selEnd = std::max(anchor, caret);
    const bool backwards = (options & ssoBackwards) != 0;
    const bool selectedOnly = (options & ssoSelectedOnly) && selStart != selEnd;
    scope.scopeStart = selectedOnly ? UnitOfByte(bytes, length, selStart) : 0;
    scope.scopeEnd = selectedOnly ? UnitOfByte(bytes, length, selEnd) : scope.text.size();
    if ((options & ssoEntireScope) || selectedOnly) {
        scope.from = backwards ? scope.scopeEnd : scope.scopeStart;
    } else {
        // A replace starts at the selection itself, so that a match found before is the one replaced.
        const bool replacing = (options & ssoReplace) != 0;
        const long start = backwards ? (replacing ? selEnd : selStart) : (replacing ? selStart : selEnd);
        scope.from = std::clamp(UnitOfByte(bytes, length, start), scope.scopeStart, scope.scopeEnd);
    }
    return scope;
}

// Non-empty matches inside [from, to) of the text, in text order. One global match walks the text, so the
// subject is checked once rather than at every match.
template <typename Visit>
static void ForEachMatch(const QRegularExpression& re, const QString& text, qsizetype from, qsizetype to,
                         Visit&& visit) {
    const QStringView view = QStringView(text).left(to);
    QRegularExpressionMatchIterator it = re.globalMatch(view, from);
    while (it.hasNext()) {
        const QRegularExpressionMatch m = it.next();
        // An empty match selects nothing and would never move on.
        if (m.capturedLength() == 0) continue;
        if (!visit(m)) return;
    }
}

void TSyntaxEdit::SelectUnits(const QString& text, qsizetype start, qsizetype end) {
    TByteOffsets offsets(text);
    const long startByte = offsets.ToByte(start);
    const long endByte = offsets.ToByte(end);
    SendScintilla(SCI_SETSEL, startByte, endByte);
    SendScintilla(SCI_SCROLLCARET);
}

bool TSyntaxEdit::SearchOnce(const QString& findText, const QString& replaceText, unsigned options) {
    const QRegularExpression re = BuildExpression(findText, options);
    if (!re.isValid()) {
        lastSearchError_ = re.errorString();
        return false;
    }
    SearchScope scope = MakeScope(options);
    const bool backwards = (options & ssoBackwards) != 0;
    const bool regExpr = (options & ssoRegExpr) != 0;
    for (;;) {
        std::optional<TMatch> found;
        if (backwards) {
            // The last match that ends at or before the start point.
            ForEachMatch(re, scope.text, scope.scopeStart, scope.from, [&](const QRegularExpressionMatch& m) {
                found =
                    TMatch{m.capturedStart(), m.capturedEnd(), ExpandReplacement(replaceText, m, regExpr)};
                return true;
            });
        } else {
            ForEachMatch(re, scope.text, scope.from, scope.scopeEnd, [&](const QRegularExpressionMatch& m) {
                found =
                    TMatch{m.capturedStart(), m.capturedEnd(), ExpandReplacement(replaceText, m, regExpr)};
                return false;
            });
        }
        if (!found) return false;
        SelectUnits(scope.text, found->start, found->end);
        if (!(options & ssoReplace)) return true;
        TReplaceAnswer answer = TReplaceAnswer::Yes;
        if (options & ssoPrompt) answer = AskReplace();
        switch (answer) {
        case TReplaceAnswer::Cancel: return true;
        case TReplaceAnswer::No:
            // Leave this one and look for the next in the search direction.
            scope.from = backwards ? found->start : found->end;
            continue;
        case TReplaceAnswer::All:
            scope.from = backwards ? found->end : found->start;
            ReplaceMatches(re, scope, replaceText, options & ~ssoPrompt);
            return true;
        case TReplaceAnswer::Yes: {
            const long start = SendScintilla(SCI_GETSELECTIONSTART);
            const QByteArray utf8 = found->replacement.toUtf8();
            SendScintilla(SCI_SETTARGETRANGE, start, SendScintilla(SCI_GETSELECTIONEND));
            SendScintilla(SCI_REPLACETARGET, static_cast<uintptr_t>(utf8.size()), utf8.constData());
            SendScintilla(SCI_SETSEL, start, start + utf8.size());
            SendScintilla(SCI_SCROLLCARET);
            return true;
        }
        }
    }
}

bool TSyntaxEdit::ReplaceAll(const QString& findText, const QString& replaceText, unsigned options) {
    const QRegularExpression re = BuildExpression(findText, options);
    if (!re.isValid()) {
        lastSearchError_ = re.errorString();
        return false;
    }
    const SearchScope scope = MakeScope(options);
    return ReplaceMatches(re, scope, replaceText, options);
}

// Replaces the matches between the scope's start point and its end in the search direction, asking first
// when ssoPrompt is set; one undo step, linear in the text. True when there was at least one match.
bool TSyntaxEdit::ReplaceMatches(const QRegularExpression& re, const SearchScope& scope,
                                 const QString& replaceText, unsigned options) {
    const bool backwards = (options & ssoBackwards) != 0;
    const bool regExpr = (options & ssoRegExpr) != 0;
    std::vector<TMatch> matches;
    const qsizetype from = backwards ? scope.scopeStart : scope.from;
    const qsizetype to = backwards ? scope.from : scope.scopeEnd;
    ForEachMatch(re, scope.text, from, to, [&](const QRegularExpressionMatch& m) {
        matches.push_back(
            TMatch{m.capturedStart(), m.capturedEnd(), ExpandReplacement(replaceText, m, regExpr)});
        return true;
    });
    if (matches.empty()) return false;

    // Byte offsets in the unchanged text, taken in one forward walk.
    std::vector<TByteMatch> byteMatches;
    byteMatches.reserve(matches.size());
    TByteOffsets offsets(scope.text);
    for (auto& m : matches) {
        const long start = offsets.ToByte(m.start);
        byteMatches.push_back(TByteMatch{start, offsets.ToByte(m.end), m.replacement.toUtf8()});
    }
    matches.clear();

    // Asked one by one while prompting; whatever is left then goes in one replacement of its whole range,
    // since every single change costs the editor a pass over the text before it.
    bool ask = (options & ssoPrompt) != 0;
    long delta = 0;     // growth of the text by the replacements made so far (forward only)
    long caretEnd = -1; // where the caret goes after the last replacement
    size_t first = 0;   // remaining matches, in text order: [first, last)
    size_t last = byteMatches.size();
    beginUndoAction();
    while (ask && first < last) {
        const TByteMatch& m = backwards ? byteMatches[last - 1] : byteMatches[first];
        if (backwards) {
            --last;
        } else {
            ++first;
        }
        const long start = m.start + delta;
        SendScintilla(SCI_SETSEL, start, m.end + delta);
        SendScintilla(SCI_SCROLLCARET);
        const TReplaceAnswer answer = AskReplace();
        if (answer == TReplaceAnswer::Cancel) {
            first = last;
            break;
        }
        if (answer == TReplaceAnswer::No) continue;
        if (answer == TReplaceAnswer::All) ask = false;
        SendScintilla(SCI_SETTARGETRANGE, start, m.end + delta);
        SendScintilla(SCI_REPLACETARGET, static_cast<uintptr_t>(m.utf8.size()), m.utf8.constData());
        caretEnd = backwards ? start : start + static_cast<long>(m.utf8.size());
        if (!backwards) delta += static_cast<long>(m.utf8.size()) - (m.end - m.start);
    }
    if (first < last) {
        const long end = ReplaceRange(std::span(byteMatches).subspan(first, last - first), delta);
        caretEnd = backwards ? byteMatches[first].start + delta : end;
    }
    endUndoAction();
    if (caretEnd >= 0) {
        SendScintilla(SCI_GOTOPOS, caretEnd);
        SendScintilla(SCI_CHOOSECARETX);
    }
    return true;
}

namespace {

// Line starts in a byte range: each LF, and each CR not followed by LF.
long CountLineBreaks(const char* bytes, long length) {
    long count = 0;
    for (long i = 0; i < length; ++i) {
        if (bytes[i] == '\n' || (bytes[i] == '\r' && (i + 1 >= length || bytes[i + 1] != '\n'))) ++count;
    }
    return count;
}

} // namespace

// Replaces matches (text order, byte offsets + delta) by one replacement of the range from the first to
// the last; bookmarks and the error line inside the range are put back on their lines. Returns the end of
// the last replacement.
long TSyntaxEdit::ReplaceRange(std::span<const TByteMatch> matches, long delta) {
    const long rangeStart = matches.front().start + delta;
    const long rangeEnd = matches.back().end + delta;
    const auto* rangeBytes = reinterpret_cast<const char*>(
        SendScintilla(SCI_GETRANGEPOINTER, static_cast<unsigned long>(rangeStart), rangeEnd - rangeStart));
    QByteArray out;
    out.reserve(static_cast<qsizetype>(rangeEnd - rangeStart));
    // Marks strictly inside the range, with their line start and old line.
    struct TMark {
        int number; // bookmark 0-9, or kErrorMarker
        int line;   // line before the replacement
        long start; // byte offset of that line's start
        int column; // bookmark column
    };
    std::vector<TMark> marks;
    auto keep = [&](int number, int line, int column) {
        if (line < 0) return;
        const long start = SendScintilla(SCI_POSITIONFROMLINE, static_cast<unsigned long>(line));
        if (start > rangeStart && start < rangeEnd) marks.push_back(TMark{number, line, start, column});
    };
    for (int n = 0; n <= 9; ++n) keep(n, BookmarkLine(n), bookmarks_[static_cast<size_t>(n)].column);
    keep(kErrorMarker, ErrorLine(), 0);

    std::vector<long> lineShift(marks.size(), 0);
    long cursor = rangeStart;
    long shift = 0;
    for (const auto& m : matches) {
        const long start = m.start + delta;
        const long end = m.end + delta;
        out.append(rangeBytes + (cursor - rangeStart), static_cast<qsizetype>(start - cursor));
        out.append(m.utf8);
        shift += CountLineBreaks(m.utf8.constData(), static_cast<long>(m.utf8.size())) -
                 CountLineBreaks(rangeBytes + (start - rangeStart), end - start);
        for (size_t k = 0; k < marks.size(); ++k)
            if (marks[k].start >= end) lineShift[k] = shift;
        cursor = end;
    }
    SendScintilla(SCI_SETTARGETRANGE, rangeStart, rangeEnd);
    SendScintilla(SCI_REPLACETARGET, static_cast<uintptr_t>(out.size()), out.constData());
    for (size_t k = 0; k < marks.size(); ++k) {
        const int line = marks[k].line + static_cast<int>(lineShift[k]);
        if (marks[k].number == kErrorMarker) {
            SetErrorLine(line);
        } else {
            SetBookmark(marks[k].number, line, marks[k].column);
        }
    }
    return rangeStart + static_cast<long>(out.size());
}

TReplaceAnswer TSyntaxEdit::AskReplace() {
    const long start = SendScintilla(SCI_GETSELECTIONSTART);
    const QString found = selectedText();
    const int line = static_cast<int>(SendScintilla(SCI_LINEFROMPOSITION, start));
    const int column = static_cast<int>(SendScintilla(SCI_GETCOLUMN, start));
    if (replacePrompt_) return replacePrompt_(found, line, column);
    const auto button = QMessageBox::question(
        this, tr("Confirm replace"), tr("Replace this occurrence of '%1'?").arg(found),
        QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel | QMessageBox::YesToAll, QMessageBox::Yes);
    switch (button) {
    case QMessageBox::Yes: return TReplaceAnswer::Yes;
    case QMessageBox::No: return TReplaceAnswer::No;
    case QMessageBox::YesToAll: return TReplaceAnswer::All;
    default: return TReplaceAnswer::Cancel;
    }
}

} // namespace velkor
