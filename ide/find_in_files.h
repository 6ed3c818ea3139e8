// Find in Files: a text (plain, or a regular expression) searched in every file of the Files view, the
// matching lines listed as file, line and text; a double click (or Enter) on one opens it there.
#pragma once

#include "ide/dockable_view.h"

#include <QRegularExpression>
#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTreeWidget;

namespace velkor {

struct TFileMatch {
    QString File;
    int Line = 0; // from 1
    QString Text; // the whole line, without its break
};

// The expression a search runs: the text itself unless `regularExpression`; invalid when the text is not
// a valid expression (errorString() says why).
QRegularExpression FindInFilesPattern(const QString& text, bool regularExpression, bool matchCase);
// The lines of `text` that match, for one file. Binary contents (a NUL byte) match nothing.
std::vector<TFileMatch> FindInText(const QString& file, const QByteArray& text,
                                   const QRegularExpression& pattern);

class TfrmFindInFiles : public TDockableView {
    Q_OBJECT

public:
    static constexpr qint64 kLargestFile = 8 * 1024 * 1024; // larger files are not searched
    static constexpr int kMostMatches = 10000;              // matches listed at most

    explicit TfrmFindInFiles(QWidget* parent);

    // The files a search looks in; asked at each search.
    void SetFileSource(std::function<QStringList()> files) { files_ = std::move(files); }
    // Shows the view with the text to find selected (`text` when not empty).
    void Start(const QString& text);
    // Searches now with the view's text and options; the number of matches.
    int Search();
    const std::vector<TFileMatch>& Matches() const { return matches_; }

    QLineEdit* FindText() const { return findText_; }
    QCheckBox* RegularExpression() const { return regex_; }
    QCheckBox* MatchCase() const { return matchCase_; }
    QTreeWidget* Results() const { return results_; }
    QLabel* Summary() const { return summary_; }

signals:
    void MatchActivated(const QString& file, int line);

private:
    std::function<QStringList()> files_;
    QLineEdit* findText_;
    QCheckBox* regex_;
    QCheckBox* matchCase_;
    QPushButton* findButton_;
    QTreeWidget* results_;
    QLabel* summary_;
    std::vector<TFileMatch> matches_;
};

} // namespace velkor
