#include "ide/find_in_files.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace velkor {

namespace {

constexpr int kMatchRole = Qt::UserRole; // index into the matches

} // namespace

QRegularExpression FindInFilesPattern(const QString& text, bool regularExpression, bool matchCase) {
    QRegularExpression pattern(regularExpression ? text : QRegularExpression::escape(text));
    if (!matchCase) pattern.setPatternOptions(QRegularExpression::CaseInsensitiveOption);
    return pattern;
}

std::vector<TFileMatch> FindInText(const QString& file, const QByteArray& text,
                                   const QRegularExpression& pattern) {
    std::vector<TFileMatch> matches;
    if (!pattern.isValid() || pattern.pattern().isEmpty() || text.contains('\0')) return matches;
    const QString decoded = QString::fromUtf8(text);
    int line = 0;
    qsizetype start = 0;
    while (start <= decoded.size()) {
        qsizetype end = decoded.indexOf(u'\n', start);
        if (end < 0) end = decoded.size();
        ++line;
        QStringView lineText = QStringView(decoded).mid(start, end - start);
        if (lineText.endsWith(u'\r')) lineText.chop(1);
        if (pattern.match(lineText).hasMatch()) matches.push_back({file, line, lineText.toString()});
        if (end == decoded.size()) break;
        start = end + 1;
    }
    return matches;
}

TfrmFindInFiles::TfrmFindInFiles(QWidget* parent)
    : TDockableView(QStringLiteral("frmFindInFiles"), QStringLiteral("Find in Files"), parent) {
    auto* body = new QWidget(this);
    auto* layout = new QVBoxLayout(body);
    layout->setContentsMargins(2, 2, 2, 2);
    auto* row = new QHBoxLayout;
    findText_ = new QLineEdit(body);
    findText_->setObjectName(QStringLiteral("FindInFilesText"));
    findText_->setPlaceholderText(QStringLiteral("Text to find"));
    regex_ = new QCheckBox(QStringLiteral("Regular e&xpression"), body);
    regex_->setObjectName(QStringLiteral("FindInFilesRegex"));
    matchCase_ = new QCheckBox(QStringLiteral("&Match case"), body);
    matchCase_->setObjectName(QStringLiteral("FindInFilesCase"));
    findButton_ = new QPushButton(QStringLiteral("Find"), body);
    findButton_->setObjectName(QStringLiteral("FindInFilesButton"));
    row->addWidget(findText_, 1);
    row->addWidget(regex_);
    row->addWidget(matchCase_);
    row->addWidget(findButton_);
    layout->addLayout(row);
    results_ = new QTreeWidget(body);
    results_->setObjectName(QStringLiteral("FindInFilesResults"));
    results_->setColumnCount(3);
    results_->setHeaderLabels({QStringLiteral("File"), QStringLiteral("Line"), QStringLiteral("Text")});
    results_->setRootIsDecorated(false);
    results_->setUniformRowHeights(true);
    results_->header()->setStretchLastSection(true);
    results_->setColumnWidth(0, 160);
    results_->setColumnWidth(1, 50);
    layout->addWidget(results_, 1);
    summary_ = new QLabel(body);
    summary_->setObjectName(QStringLiteral("FindInFilesSummary"));
    layout->addWidget(summary_);
    setWidget(body);

    connect(findButton_, &QPushButton::clicked, this, &TfrmFindInFiles::Search);
    connect(findText_, &QLineEdit::returnPressed, this, &TfrmFindInFiles::Search);
    const auto open = [this](QTreeWidgetItem* item) {
        if (!item) return;
        const auto index = static_cast<std::size_t>(item->data(0, kMatchRole).toInt());
        if (index < matches_.size()) emit MatchActivated(matches_[index].File, matches_[index].Line);
    };
    connect(results_, &QTreeWidget::itemDoubleClicked, this, open);
    auto* go = new QAction(results_);
    go->setShortcuts({QKeySequence(Qt::Key_Return), QKeySequence(Qt::Key_Enter)});
    go->setShortcutContext(Qt::WidgetShortcut);
    results_->addAction(go);
    connect(go, &QAction::triggered, this, [this, open] { open(results_->currentItem()); });
}

void TfrmFindInFiles::Start(const QString& text) {
    BringToFront();
    if (!text.isEmpty()) findText_->setText(text);
    findText_->selectAll();
    findText_->setFocus();
}

int TfrmFindInFiles::Search() {
    matches_.clear();
    results_->clear();
    const QRegularExpression pattern =
        FindInFilesPattern(findText_->text(), regex_->isChecked(), matchCase_->isChecked());
    if (!pattern.isValid()) {
        summary_->setText(QStringLiteral("Invalid regular expression: ") + pattern.errorString());
        return 0;
    }
    if (findText_->text().isEmpty()) {
        summary_->clear();
        return 0;
    }
    const QStringList files = files_ ? files_() : QStringList();
    int searched = 0;
    for (const QString& file : files) {
        QFile in(file);
        if (in.size() > kLargestFile || !in.open(QIODevice::ReadOnly)) continue;
        ++searched;
        for (TFileMatch& match : FindInText(file, in.readAll(), pattern)) {
            if (static_cast<int>(matches_.size()) >= kMostMatches) break;
            matches_.push_back(std::move(match));
        }
    }
    QList<QTreeWidgetItem*> items;
    for (std::size_t i = 0; i < matches_.size(); ++i) {
        const TFileMatch& match = matches_[i];
        auto* item = new QTreeWidgetItem(
            {QFileInfo(match.File).fileName(), QString::number(match.Line), match.Text.trimmed()});
        item->setToolTip(0, QDir::toNativeSeparators(match.File));
        item->setData(0, kMatchRole, static_cast<int>(i));
        items << item;
    }
    results_->addTopLevelItems(items);
    summary_->setText(QStringLiteral("%1 matches in %2 files searched").arg(matches_.size()).arg(searched));
    return static_cast<int>(matches_.size());
}

} // namespace velkor
