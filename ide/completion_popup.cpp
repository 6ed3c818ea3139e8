#include "ide/completion_popup.h"

#include "compiler/symbol_queries.h"
#include "compiler/symbol_table.h"
#include "editor/highlighter.h"
#include "ide/edit_page.h"
#include "ide/ide_ini.h"
#include "ide/list_keys.h"
#include "platform/strings.h"
#include "scanner/scanner.h"

#include <QKeyEvent>
#include <QListWidget>
#include <QTimer>

#include <algorithm>
#include <unordered_set>

namespace velkor {

namespace {

bool IsIdentChar(QChar c) {
    return c.isLetterOrNumber() || c == u'_';
}

QString KindCaption(const TSymbol& symbol) {
    if (symbol.Kind == skGameFunction) return QStringLiteral("Game function");
    const std::string caption = SymbolTypeCaption(symbol.Kind);
    return caption.empty() ? QStringLiteral("Symbol") : ToQ(caption);
}

} // namespace

std::vector<TCompletion> CompletionCandidates(const TSymbolTable* table) {
    std::vector<TCompletion> candidates;
    std::unordered_set<std::string> seen;
    if (table) {
        for (int i = 0; i < table->Count(); ++i) {
            const TSymbol& symbol = table->Get(i);
            if (SymbolMaskBit(symbol.Kind) == 0) continue; // internal slots, string tables
            const QString name = ToQ(SymbolDisplayName(symbol));
            std::string key = UpperCase(FromQ(name));
            if (key.empty() || !seen.insert(key).second) continue;
            candidates.push_back({name, KindCaption(symbol), std::move(key), i});
        }
    }
    const auto keyword = [&](std::string_view word) {
        std::string key = UpperCase(std::string(word));
        if (key.empty() || !seen.insert(key).second) return;
        candidates.push_back({ToQ(std::string(word)), QStringLiteral("Keyword"), std::move(key), -1});
    };
    for (const ScannerKeyword& word : ScannerKeywords()) keyword(word.word);
    for (const std::string_view word : StatementWords()) keyword(word);
    std::sort(candidates.begin(), candidates.end(),
              [](const TCompletion& a, const TCompletion& b) { return a.Key < b.Key; });
    return candidates;
}

std::pair<std::size_t, std::size_t> CompletionRange(const std::vector<TCompletion>& candidates,
                                                    const QString& prefix) {
    const std::string key = UpperCase(FromQ(prefix));
    const auto first = std::lower_bound(candidates.begin(), candidates.end(), key,
                                        [](const TCompletion& c, const std::string& k) { return c.Key < k; });
    auto last = first;
    while (last != candidates.end() && last->Key.compare(0, key.size(), key) == 0) ++last;
    return {static_cast<std::size_t>(first - candidates.begin()),
            static_cast<std::size_t>(last - candidates.begin())};
}

TCompletionPopup::TCompletionPopup(TfrmEdit& page, TPageEditor& memo)
    : QObject(&page), page_(page), memo_(memo), list_(new QListWidget(&page)) {
    list_->setObjectName(QStringLiteral("CompletionList"));
    list_->hide();
    // A window of its own that never takes the focus: the keys keep going to the editor.
    list_->setWindowFlags(Qt::ToolTip);
    list_->setFocusPolicy(Qt::NoFocus);
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list_->setUniformItemSizes(true);
    connect(list_, &QListWidget::itemDoubleClicked, this, [this] { InsertChosen(); });
    if (!page_.CodeIntelligence()) return;
    // After the code assistance's filter, so that this one sees the keys first.
    memo_.installEventFilter(this);
    connect(&memo_, &QsciScintillaBase::SCN_CHARADDED, this, &TCompletionPopup::OnCharAdded);
    connect(&memo_, &QsciScintilla::cursorPositionChanged, this, [this] {
        if (!IsOpen()) return;
        const long caret = memo_.SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS);
        if (caret < anchor_ || WordStart() != anchor_) Close();
    });
}

TCompletionPopup::~TCompletionPopup() = default;

bool TCompletionPopup::IsOpen() const {
    return list_->isVisible();
}

long TCompletionPopup::WordStart() const {
    const long caret = memo_.SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS);
    return memo_.SendScintilla(QsciScintillaBase::SCI_WORDSTARTPOSITION, static_cast<unsigned long>(caret),
                               1L);
}

QString TCompletionPopup::Prefix() const {
    int line = 0, index = 0;
    memo_.getCursorPosition(&line, &index);
    const QString text = memo_.LineText(line);
    int start = std::min(index, static_cast<int>(text.size()));
    while (start > 0 && IsIdentChar(text.at(start - 1))) --start;
    QString word = text.mid(start, index - start);
    // A number is no identifier.
    if (!word.isEmpty() && word.at(0).isDigit()) return {};
    return word;
}

const std::vector<TCompletion>& TCompletionPopup::Candidates() {
    const TSymbolTable* table = page_.Symbols().get();
    if (!candidatesMade_ || table != candidatesOf_) {
        candidates_ = CompletionCandidates(table);
        candidatesOf_ = table;
        candidatesMade_ = true;
    }
    return candidates_;
}

void TCompletionPopup::OnCharAdded(int character) {
    if (character < 0x80 && !IsIdentChar(QChar(character))) {
        Close();
        return;
    }
    if (!IsOpen() && Prefix().size() < kMinimumPrefix) return;
    // Words in comments and strings are prose: nothing to complete there. The highlighter styles the
    // text when it is painted; the line being typed is styled now, which costs that line alone.
    const long caret = memo_.SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS);
    const long lineStart =
        memo_.SendScintilla(QsciScintillaBase::SCI_POSITIONFROMLINE,
                            static_cast<unsigned long>(memo_.SendScintilla(
                                QsciScintillaBase::SCI_LINEFROMPOSITION, static_cast<unsigned long>(caret))));
    memo_.SendScintilla(QsciScintillaBase::SCI_COLOURISE, static_cast<unsigned long>(lineStart), caret);
    const long style = caret > 0 ? memo_.SendScintilla(QsciScintillaBase::SCI_GETSTYLEAT,
                                                       static_cast<unsigned long>(caret - 1))
                                 : 0;
    if (style == hsComment || style == hsString) {
        Close();
        return;
    }
    Update();
}

void TCompletionPopup::Update() {
    const QString prefix = Prefix();
    // The string list of the page has the keys while it is open.
    QListWidget* stringList = page_.lbCodeHelp();
    if (prefix.size() < kMinimumPrefix || (stringList && stringList->isVisible())) {
        Close();
        return;
    }
    const std::vector<TCompletion>& candidates = Candidates();
    const auto [first, last] = CompletionRange(candidates, prefix);
    // Nothing to offer, or only the word as typed.
    if (first == last || (last - first == 1 && candidates[first].Key == UpperCase(FromQ(prefix)))) {
        Close();
        return;
    }
    const QString chosen =
        list_->currentItem() ? list_->currentItem()->data(Qt::UserRole).toString() : QString();
    list_->setUpdatesEnabled(false);
    list_->clear();
    shown_.clear();
    for (std::size_t i = first; i < last && shown_.size() < kMostRows; ++i) {
        auto* item =
            new QListWidgetItem(candidates[i].Name + QStringLiteral("  \u2014 ") + candidates[i].Kind);
        item->setData(Qt::UserRole, candidates[i].Name);
        list_->addItem(item);
        shown_.push_back(i);
    }
    int row = 0;
    for (int r = 0; r < list_->count(); ++r) {
        if (list_->item(r)->data(Qt::UserRole).toString() == chosen) row = r;
    }
    list_->setCurrentRow(row);
    list_->setUpdatesEnabled(true);
    if (!IsOpen()) {
        anchor_ = WordStart();
        const long at = anchor_;
        const int x =
            static_cast<int>(memo_.SendScintilla(QsciScintillaBase::SCI_POINTXFROMPOSITION, 0UL, at));
        const int y =
            static_cast<int>(memo_.SendScintilla(QsciScintillaBase::SCI_POINTYFROMPOSITION, 0UL, at));
        const int lineHeight =
            static_cast<int>(memo_.SendScintilla(QsciScintillaBase::SCI_TEXTHEIGHT, 0UL, 0L));
        const int rowHeight = std::max(list_->sizeHintForRow(0), 1);
        const int rows = std::min(list_->count(), 10);
        list_->resize(std::max(260, list_->sizeHintForColumn(0) + 30),
                      rows * rowHeight + 2 * list_->frameWidth());
        list_->move(memo_.viewport()->mapToGlobal(QPoint(x, y + lineHeight)));
        list_->show();
    } else if (list_->count() <= 10) {
        const int rowHeight = std::max(list_->sizeHintForRow(0), 1);
        list_->resize(list_->width(), list_->count() * rowHeight + 2 * list_->frameWidth());
    }
}

void TCompletionPopup::Close() {
    list_->hide();
    anchor_ = -1;
}

void TCompletionPopup::InsertChosen() {
    const int row = list_->currentRow();
    if (row < 0 || row >= static_cast<int>(shown_.size())) {
        Close();
        return;
    }
    const TCompletion entry = Candidates()[shown_[static_cast<std::size_t>(row)]];
    const long caret = memo_.SendScintilla(QsciScintillaBase::SCI_GETCURRENTPOS);
    const long start = WordStart();
    Close();
    memo_.SendScintilla(QsciScintillaBase::SCI_SETSEL, static_cast<unsigned long>(start), caret);
    if (entry.Symbol >= 0 && page_.Symbols()) {
        // As the symbol browser inserts it: a function with parameters gets "(" and its hint.
        page_.InsertSymbol(page_.Symbols()->Get(entry.Symbol));
    } else {
        memo_.SendScintilla(QsciScintillaBase::SCI_REPLACESEL, 0UL, entry.Name.toUtf8().constData());
    }
}

bool TCompletionPopup::KeyDown(QKeyEvent& event) {
    switch (event.key()) {
    case Qt::Key_Escape: Close(); return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Tab:
        if (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier)) break;
        InsertChosen();
        return true;
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown: {
        StepListRow(*list_, event.key());
        return true;
    }
    case Qt::Key_Backspace:
        // The list follows the shorter word once the editor has taken the character away.
        QTimer::singleShot(0, this, [this] {
            if (IsOpen()) Update();
        });
        return false;
    default: break;
    }
    return false;
}

bool TCompletionPopup::eventFilter(QObject* watched, QEvent* event) {
    if (watched == &memo_ && event->type() == QEvent::KeyPress && IsOpen())
        return KeyDown(*static_cast<QKeyEvent*>(event));
    if (watched == &memo_ && event->type() == QEvent::FocusOut &&
        static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason)
        Close();
    return QObject::eventFilter(watched, event);
}

} // namespace velkor
