// TfrmEdit: one source page. It loads and saves its file, asks before changes are lost, compiles its
// text into the IFF view and builds the binary files from the IFF view's text.
#pragma once

#include "ide/page_editor.h"

#include <QWidget>

#include <cstdint>
#include <memory>
#include <string>

class QAction;
class QMenu;

namespace velkor {

class TPageHost;
class TSymbolTable;

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
    // Asks for a name (no overwrite prompt) and writes there. True when written.
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

    // Searching and the symbol lists.
    void Find();
    void Replace();
    void SearchAgain();
    void GotoLine();
    void SymbolBrowser();
    void FunctionList();
    void ObjectList();
    void ConstantList();
    void TopicSearch();

    // Enables the context menu's items by the editor's state and rebuilds the topic caption.
    void RefreshContextMenu();
    QMenu* PopupMenu1() const { return popup_; }
    // A context menu item by its object name ("ContextUndo", ...), or null.
    QAction* ContextItem(const QString& name) const;

    // The symbols and search paths of the last successful compile; null before the first.
    const std::shared_ptr<TSymbolTable>& Symbols() const { return symbols_; }
    const std::string& SearchPathText() const { return searchPathText_; }

    // The open dialog of pages: an existing file, or empty. Remembers the dialog's folder.
    static std::string AskOpenFileName(QWidget* parent);

signals:
    void CaptionChanged();

private:
    void BuildContextMenu();
    void SetFileName(const std::string& name);
    void WriteTo(const std::string& name);
    void ReportException(const std::exception& error);

    TPageHost& host_;                       // the main window
    TPageEditor* memo_;                     // the text, owned as a child
    QMenu* popup_;                          // the context menu, owned as a child
    std::string fileName_;                  // see FileName()
    bool autosave_ = false;                 // save before every compile
    bool paramHints_ = true;                // parameter hints shown while typing
    bool noIntelligence_ = false;           // code assistance switched off
    std::shared_ptr<TSymbolTable> symbols_; // symbols of the last successful compile
    std::string searchPathText_;            // its search paths, one per line
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
