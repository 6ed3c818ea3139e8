#include "ide/problem_markers.h"

#include <QHelpEvent>
#include <QToolTip>

#include <algorithm>

namespace velkor {

namespace {

constexpr const char* kObjectName = "ProblemMarkers";
const QColor kErrorColour(0xD0, 0x10, 0x10);
const QColor kHintColour(0x10, 0x40, 0xD0);

} // namespace

TProblemMarkers& TProblemMarkers::Of(TPageEditor& memo) {
    if (auto* own =
            memo.findChild<TProblemMarkers*>(QString::fromLatin1(kObjectName), Qt::FindDirectChildrenOnly))
        return *own;
    return *new TProblemMarkers(memo);
}

TProblemMarkers::TProblemMarkers(TPageEditor& memo) : QObject(&memo), memo_(memo) {
    setObjectName(QString::fromLatin1(kObjectName));
    memo_.markerDefine(QsciScintilla::Circle, kErrorMarker);
    memo_.setMarkerBackgroundColor(kErrorColour, kErrorMarker);
    memo_.setMarkerForegroundColor(kErrorColour.darker(), kErrorMarker);
    memo_.markerDefine(QsciScintilla::Circle, kHintMarker);
    memo_.setMarkerBackgroundColor(kHintColour, kHintMarker);
    memo_.setMarkerForegroundColor(kHintColour.darker(), kHintMarker);
    const int margin = TPageEditor::kBookmarkMargin;
    memo_.setMarginMarkerMask(margin,
                              memo_.marginMarkerMask(margin) | (1 << kErrorMarker) | (1 << kHintMarker));
    memo_.indicatorDefine(QsciScintilla::SquiggleIndicator, kErrorIndicator);
    memo_.setIndicatorForegroundColor(kErrorColour, kErrorIndicator);
    memo_.indicatorDefine(QsciScintilla::SquiggleIndicator, kHintIndicator);
    memo_.setIndicatorForegroundColor(kHintColour, kHintIndicator);
    // Installed after the code assistance's filter, so this one sees the hint request first.
    viewport_ = memo_.viewport();
    viewport_->installEventFilter(this);
}

void TProblemMarkers::Underline(int line, TMessageKind kind) {
    const QString text = memo_.LineText(line);
    qsizetype first = 0;
    while (first < text.size() && text.at(first).isSpace()) ++first;
    qsizetype last = text.size();
    while (last > first && text.at(last - 1).isSpace()) --last;
    if (last <= first) return;
    const long start = memo_.positionFromLineIndex(line, static_cast<int>(first));
    const long end = memo_.positionFromLineIndex(line, static_cast<int>(last));
    memo_.SendScintilla(QsciScintillaBase::SCI_SETINDICATORCURRENT,
                        kind == TMessageKind::Error ? kErrorIndicator : kHintIndicator);
    memo_.SendScintilla(QsciScintillaBase::SCI_INDICATORFILLRANGE, static_cast<unsigned long>(start),
                        end - start);
}

void TProblemMarkers::Add(const std::string& source, int line, TMessageKind kind, const QString& text) {
    if (line < 0 || line >= memo_.lines()) return;
    const int handle = memo_.markerAdd(line, kind == TMessageKind::Error ? kErrorMarker : kHintMarker);
    if (handle < 0) return;
    marks_.push_back({source, handle, line, kind, text});
    Underline(line, kind);
}

void TProblemMarkers::Clear(const std::string& source) {
    const auto removed =
        std::remove_if(marks_.begin(), marks_.end(), [&](const Mark& mark) { return mark.Source == source; });
    if (removed == marks_.end()) return;
    for (auto it = removed; it != marks_.end(); ++it) memo_.markerDeleteHandle(it->Handle);
    marks_.erase(removed, marks_.end());
    // Underlines carry no owner: all go, and those of the other compiles come back where their marks are.
    const long length = memo_.SendScintilla(QsciScintillaBase::SCI_GETLENGTH);
    for (const int indicator : {kErrorIndicator, kHintIndicator}) {
        memo_.SendScintilla(QsciScintillaBase::SCI_SETINDICATORCURRENT, indicator);
        memo_.SendScintilla(QsciScintillaBase::SCI_INDICATORCLEARRANGE, 0UL, length);
    }
    for (const Mark& mark : marks_) {
        const int line = memo_.markerLine(mark.Handle);
        if (line >= 0) Underline(line, mark.Kind);
    }
}

int TProblemMarkers::CurrentLine(const std::string& source, int reportedLine) const {
    for (const Mark& mark : marks_) {
        if (mark.Source == source && mark.ReportedLine == reportedLine) return memo_.markerLine(mark.Handle);
    }
    return -1;
}

QStringList TProblemMarkers::MessagesOn(int line) const {
    QStringList messages;
    for (const Mark& mark : marks_) {
        if (memo_.markerLine(mark.Handle) == line && !messages.contains(mark.Text)) messages << mark.Text;
    }
    return messages;
}

std::vector<int> TProblemMarkers::MarkedLines() const {
    std::vector<int> lines;
    for (const Mark& mark : marks_) {
        const int line = memo_.markerLine(mark.Handle);
        if (line >= 0) lines.push_back(line);
    }
    std::sort(lines.begin(), lines.end());
    lines.erase(std::unique(lines.begin(), lines.end()), lines.end());
    return lines;
}

QString TProblemMarkers::HintAt(const QPoint& viewportPoint) const {
    if (marks_.empty()) return {};
    int marginWidth = 0;
    for (int margin = 0; margin < memo_.margins(); ++margin) marginWidth += memo_.marginWidth(margin);
    const long x = viewportPoint.x(), y = viewportPoint.y();
    long position = -1;
    if (x < marginWidth) {
        position =
            memo_.SendScintilla(QsciScintillaBase::SCI_POSITIONFROMPOINT, static_cast<unsigned long>(x), y);
    } else {
        position = memo_.SendScintilla(QsciScintillaBase::SCI_POSITIONFROMPOINTCLOSE,
                                       static_cast<unsigned long>(x), y);
        if (position < 0) return {};
        const long on = memo_.SendScintilla(QsciScintillaBase::SCI_INDICATORALLONFOR,
                                            static_cast<unsigned long>(position));
        if ((on & ((1L << kErrorIndicator) | (1L << kHintIndicator))) == 0) return {};
    }
    if (position < 0) return {};
    const int line = static_cast<int>(
        memo_.SendScintilla(QsciScintillaBase::SCI_LINEFROMPOSITION, static_cast<unsigned long>(position)));
    return MessagesOn(line).join(u'\n');
}

bool TProblemMarkers::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ToolTip && watched == viewport_) {
        auto* help = static_cast<QHelpEvent*>(event);
        const QString text = HintAt(help->pos());
        if (text.isEmpty()) return false; // the symbol's hint, if any
        QToolTip::showText(help->globalPos(), text, viewport_);
        return true;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace velkor
