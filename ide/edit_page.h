// TfrmEdit: one source page. It loads and saves its file, asks before changes are lost, compiles its
// text into the IFF view and builds the binary files from the IFF view's text. Its code assistance is a
// CodeAssist of its own; the page keeps the operations' names as members that forward there.
#pragma once

#include "ide/page_editor.h"

#include <QWidget>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

class QAction;
class QLabel;
class QListWidget;
class QMenu;

namespace velkor {

class CodeAssist;
class TCompletionPopup;
class TPageHost;
class TSymbolTable;
struct TSymbol;

class TfrmEdit : public QWidget {
    Q_OBJECT

public:
    // Names itself "Untitled<n>.pas" with the host's next number and reads the editor settings.
    TfrmEdit(TPageHost& host, QWidget* parent = nullptr);
    ~TfrmEdit() override;

    // The file: the path as loaded or saved (absolute), or "Untitled<n>.pas" for a new page.
    const std::string& FileName() const { return fileName_; }
    // The lower-cased file name that pages are looked up by.
    std::string FileNameKey() const;
    // The file part of the name, in the letter case in which it was given.
    QString Caption() const;

    TPageEditor* Memo() const { return memo_; }
    QString Text() const { return memo_->Text(); }
    bool Modified() const { return memo_->Modified(); }
    // The editor cannot simply be told it is modified; marking it so makes an edit that changes nothing.
    void SetModified(bool modified);
    QString WordAtCursor() const { return memo_->WordAtCursor(); }

    // An empty name asks with the open dialog. False when the dialog was cancelled or the file is
    // missing or unreadable.
    bool Load(const std::string& name, bool addToRecent);
    // Writes to the file when it exists, else Save As. True when written.
    bool Save();
    // Asks for a name and writes there; replacing another existing file is confirmed first. True when
    // written.
    bool SaveAs();
    // "Save changes to <file>?" when modified: true when the page may close.
    bool SaveQuery();

    // Compiles the text into the IFF view; true on success.
    bool Compile();
    // Assembles the IFF view's text into its binary files.
    void BuildIff();

    // The editor operations of the menus.
    void Undo();
    void Cut();
    void Copy();
    void Paste();
    void DeleteSelection();
    void SelectAll();

    // Searching (the shared find dialog; "No further occurence of '<text>' found." when nothing is).
    void Find();
    void Replace();
    // The last request again from the cursor over the whole text; the dialog when nothing was asked yet.
    void SearchAgain();
    // The options of the page's last request.
    unsigned LastSearchOptions() const { return lastSearchOptions_; }
    void GotoLine();
    void TopicSearch();

    // The symbol lists: a fresh modal TfrmProcList with a kind mask and a search text.
    void SymbolBrowser();
    void FunctionList();
    void ObjectList();
    void ConstantList();
    void OpenSymbolList(int kindMask, const QString& filter);

    // --- code assistance, forwarded to CodeAssist (edit_page_assist.cpp)
    // The symbol named `word` in the table of the last successful compile.
    std::optional<TSymbol> SymbolNamed(const QString& word) const;
    std::optional<TSymbol> SymbolAtCursor() const;
    // Find Declaration: the declaration of the symbol at the cursor; nothing when there is none.
    void FindDeclaration();
    // Opens the declaring file when it is another page's and shows the declaration's line there. A line
    // below 5 is the range error of the page's unsigned line arithmetic, kept as it has always been and
    // shown as a message.
    void GotoDeclaration(const TSymbol& symbol);
    // Caret to column 0 of `line` (from 1), the line 5 above it on top. Throws ERangeError below line 5.
    void ShowDeclarationLine(int line);
    // Types the symbol's name at the cursor; a function with parameters gets "(" and its hint.
    void InsertSymbol(const TSymbol& symbol);
    // The word at the cursor completed from the symbol table, or the symbol browser when that is not
    // one symbol.
    void CompleteWordAtCursor();
    // Parameter hint for the call the caret is in (or the function named just before it).
    void ShowParameterHint();
    void ShowParameterHintFor(const TSymbol& function, int argument);
    void CloseParameterHint();
    // The hint window now shown, or null.
    QLabel* ParameterHint() const;
    // The string list for the string table named at the cursor.
    void ShowStringList();
    QListWidget* lbCodeHelp() const;
    // Open File at Cursor: word + ".pas" along the search paths of the last compile.
    void OpenFileAtCursor();
    // The mouse hint for a point of the editor's viewport: the symbol under it, or empty.
    QString SymbolHintAt(const QPoint& viewportPoint) const;
    bool CodeIntelligence() const;
    bool ParameterHintsEnabled() const;
    // One tick of the 100 ms timer: follows the caret with the parameter hint after typing.
    void HintTimerTick();
    bool Typed() const;
    CodeAssist& Assist() const { return *assist_; }
    // Completion as you type (completion_popup.h).
    TCompletionPopup& Completion() const { return *completion_; }

    // Enables the context menu's items by the editor's state and rebuilds the topic caption.
    void RefreshContextMenu();
    QMenu* PopupMenu1() const { return popup_; }
    // A context menu item by its object name ("ContextUndo", ...), or null.
    QAction* ContextItem(const QString& name) const;

    // The symbols of the last successful compile; null before the first.
    const std::shared_ptr<TSymbolTable>& Symbols() const;
    // Folders for Open File at Cursor, one per line: the executable's "lib\" at first, the page's folder
    // and "$compiler$\lib" after loading, the compiler's search path after each successful compile.
    const std::string& SearchPathText() const;

    // The open dialog of pages: an existing file, or empty. Remembers the dialog's folder.
    static std::string AskOpenFileName(QWidget* parent);

signals:
    void CaptionChanged();
    // A compile of the page has ended (not one refused because other work was running).
    void Compiled(bool success);

private:
    void BuildContextMenu();
    void SetFileName(const std::string& name);
    void WriteTo(const std::string& name);
    void ReportException(const std::exception& error);
    void ShowFindDialog(bool replace);
    void RunSearch(const QString& findText, const QString& newText, unsigned options);

    TPageHost& host_;                    // the main window
    TPageEditor* memo_;                  // the text, owned as a child
    QMenu* popup_;                       // the context menu, owned as a child
    std::string fileName_;               // see FileName()
    bool autosave_ = false;              // save before every compile
    std::unique_ptr<CodeAssist> assist_; // code assistance of the page
    unsigned lastSearchOptions_ = 0;     // option bits of the last find or replace

    TCompletionPopup* completion_ = nullptr; // completion as you type, owned as a child
};

// The compiler options of section "compiler" as a compile reads them (defaults: verbosity 1, no optimiser,
// halt on errors). A verbosity outside 0..255 throws ERangeError.
struct TCompileSettings {
    std::uint8_t Verbosity = 1; // message level
    bool Optimize = false;      // run the optimiser
    bool HaltOnError = true;    // stop at the first error
};
TCompileSettings ReadCompileSettings();

// "Pascal File (*.pas)|*.pas|Text File (*.txt)|*.txt"
extern const char* const kSourceFileFilter;

} // namespace velkor
