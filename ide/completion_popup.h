// Completion as you type: after two characters of an identifier a list of what could follow opens below
// the caret (the symbols of the last successful compile, the game functions among them, and the
// language's keywords), each with its kind, and narrows as the word grows. Up, Down, Page Up and Page Down
// choose, Enter or Tab inserts, Escape closes. Off with code intelligence (`disable_intelligence`).
#pragma once

#include "ide/page_editor.h"

#include <QObject>
#include <QString>

#include <memory>
#include <string>
#include <vector>

class QKeyEvent;
class QListWidget;

namespace velkor {

class TfrmEdit;
class TSymbolTable;

// One entry the list can offer.
struct TCompletion {
    QString Name;    // as inserted
    QString Kind;    // "Keyword", "Function", "Game function", "Object", ...
    std::string Key; // upper-cased name, the sort and match key
    int Symbol = -1; // position in the symbol table, or -1 for a keyword
};

// The entries for a symbol table (none when null) and the keywords, sorted by key, a name offered once.
std::vector<TCompletion> CompletionCandidates(const TSymbolTable* table);
// The range of `candidates` (sorted by key) whose names start with `prefix`, in any case.
std::pair<std::size_t, std::size_t> CompletionRange(const std::vector<TCompletion>& candidates,
                                                    const QString& prefix);

class TCompletionPopup : public QObject {
public:
    static constexpr int kMinimumPrefix = 2; // characters typed before the list opens
    static constexpr int kMostRows = 200;    // entries shown at most

    TCompletionPopup(TfrmEdit& page, TPageEditor& memo);
    ~TCompletionPopup() override;

    QListWidget* List() const { return list_; }
    bool IsOpen() const;
    // The word being completed (from its start to the caret), or empty.
    QString Prefix() const;
    // Opens or narrows the list for the word before the caret; closes it when nothing matches.
    void Update();
    void Close();
    // Replaces the word before the caret with the chosen entry.
    void InsertChosen();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool KeyDown(QKeyEvent& key);
    void OnCharAdded(int character);
    const std::vector<TCompletion>& Candidates();
    long WordStart() const;

    TfrmEdit& page_;
    TPageEditor& memo_;
    QListWidget* list_;                   // the list window, owned by the page
    std::vector<TCompletion> candidates_; // for the table below
    const TSymbolTable* candidatesOf_ = nullptr;
    bool candidatesMade_ = false;
    std::vector<std::size_t> shown_; // candidate of each row
    long anchor_ = -1;               // where the completed word starts while the list is open
};

} // namespace velkor
