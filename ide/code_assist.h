// Code assistance of an editor page, out of the page's way: the symbols of the last successful compile and
// the folders they were found in, the symbol at the cursor and Find Declaration, completion, the parameter
// hint and the 100 ms timer that keeps it on the call, the string list (lbCodeHelp), Open File at Cursor,
// the mouse hint and the symbol lists. It watches the page's editor keys before the editor sees them
// (MemoKeyDown) and the string list's keys (lbCodeHelpKeyDown). TfrmEdit keeps the names of these
// operations as members that forward here.
#pragma once

#include "ide/page_editor.h"

#include <QObject>
#include <QPointer>
#include <QString>

#include <memory>
#include <optional>
#include <string>

class QKeyEvent;
class QLabel;
class QListWidget;
class QPoint;
class QTimer;

namespace velkor {

class TfrmEdit;
class TPageHost;
class TSymbolTable;
struct TSymbol;

class CodeAssist : public QObject {
public:
    // Reads the editor settings (parameter hints, code intelligence); the hint and the string list are
    // windows of the page.
    CodeAssist(TfrmEdit& page, TPageHost& host, TPageEditor& memo);
    ~CodeAssist() override;

    bool CodeIntelligence() const { return !noIntelligence_; }
    bool ParameterHintsEnabled() const { return paramHints_; }

    // The symbols of the last successful compile; null before the first.
    const std::shared_ptr<TSymbolTable>& Symbols() const { return symbols_; }
    void SetSymbols(std::shared_ptr<TSymbolTable> symbols) { symbols_ = std::move(symbols); }
    // Folders for Open File at Cursor and the string list, one per line.
    const std::string& SearchPathText() const { return searchPathText_; }
    void SetSearchPathText(std::string text) { searchPathText_ = std::move(text); }

    std::optional<TSymbol> SymbolNamed(const QString& word) const;
    std::optional<TSymbol> SymbolAtCursor() const;
    void FindDeclaration();
    void GotoDeclaration(const TSymbol& symbol);
    void ShowDeclarationLine(int line);
    void InsertSymbol(const TSymbol& symbol);
    void CompleteWordAtCursor();
    void ShowParameterHint();
    void ShowParameterHintFor(const TSymbol& function, int argument);
    void CloseParameterHint();
    QLabel* ParameterHint() const;
    void ShowStringList();
    QListWidget* lbCodeHelp() const { return codeHelp_; }
    void OpenFileAtCursor();
    QString SymbolHintAt(const QPoint& viewportPoint) const;

    void HintTimerTick();
    bool Typed() const { return typed_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // MemoKeyDown: true when the editor must not see the key.
    bool MemoKeyDown(QKeyEvent& key);
    // lbCodeHelpKeyDown: true when the key was the list's alone.
    bool CodeHelpKeyDown(QKeyEvent& key);
    void InsertCodeHelpEntry();
    void FollowCodeHelpPrefix();
    // The caret's point on the screen (top left of its character cell).
    QPoint CaretPoint() const;

    TfrmEdit& page_;                        // the page assisted
    TPageHost& host_;                       // the main window
    TPageEditor& memo_;                     // the page's text
    bool paramHints_ = true;                // parameter hints shown while typing
    bool noIntelligence_ = false;           // code assistance switched off
    std::shared_ptr<TSymbolTable> symbols_; // symbols of the last successful compile
    std::string searchPathText_;            // see SearchPathText()
    QTimer* hintTimer_;                     // the 100 ms timer of the parameter hint, owned as a child
    bool typed_ = false;                    // a key was pressed since the timer last looked
    QPointer<QLabel> hint_;                 // the parameter hint now shown, or null
    std::string hintFunction_;              // upper-cased name of the hinted function
    QListWidget* codeHelp_;                 // lbCodeHelp: the string list, owned by the page
    QString codeHelpPrefix_;                // what was typed since the list opened
    long codeHelpAnchor_ = 0;               // editor position where the list opened
};

} // namespace velkor
