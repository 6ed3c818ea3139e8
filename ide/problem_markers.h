// The marks an editor shows for the problems of compiles: a symbol in the bookmark margin and a wavy
// underline under the line's text, the message as the hint of both. Scintilla keeps the marks on their
// lines while the text is edited; each compile replaces only the marks it placed.
#pragma once

#include "ide/output_model.h"
#include "ide/page_editor.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <string>
#include <vector>

namespace velkor {

class TProblemMarkers : public QObject {
public:
    static constexpr int kErrorMarker = 11;    // margin symbol of an error
    static constexpr int kHintMarker = 12;     // margin symbol of a hint
    static constexpr int kErrorIndicator = 20; // underline of an error
    static constexpr int kHintIndicator = 21;  // underline of a hint

    // The marks of an editor, made on first use as a child of it.
    static TProblemMarkers& Of(TPageEditor& memo);

    // Marks `line` (from 0) for a problem that the compile of `source` reported.
    void Add(const std::string& source, int line, TMessageKind kind, const QString& text);
    // Removes the marks the compile of `source` placed.
    void Clear(const std::string& source);
    // The line (from 0) a mark of `source` is on now, after edits, for the problem reported on
    // `reportedLine`; -1 when there is none.
    int CurrentLine(const std::string& source, int reportedLine) const;
    // The messages of the marks on a line (from 0), as the hint shows them.
    QStringList MessagesOn(int line) const;
    // The lines (from 0) that carry a mark now, ascending.
    std::vector<int> MarkedLines() const;
    // The hint for a point of the editor's viewport: the messages of the line when the point is over the
    // margin or over the underlined text; empty elsewhere.
    QString HintAt(const QPoint& viewportPoint) const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    explicit TProblemMarkers(TPageEditor& memo);
    struct Mark {
        std::string Source; // the compiled page's file
        int Handle;         // Scintilla's handle of the margin marker, which follows the line
        int ReportedLine;   // from 0, as the compile reported it
        TMessageKind Kind;
        QString Text;
    };
    void Underline(int line, TMessageKind kind);

    TPageEditor& memo_;
    // Kept from the start: while the editor is being destroyed its viewport() may no longer be asked for.
    QWidget* viewport_;
    std::vector<Mark> marks_;
};

} // namespace velkor
