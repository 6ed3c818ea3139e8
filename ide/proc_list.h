// TfrmProcList: the symbol browser, function list, object list and constant list of an editor page, one
// modal dialog filtered by symbol kind and by a search text. Goto shows a declaration, Insert types a
// name at the page's cursor.
#pragma once

#include <QDialog>

#include <memory>

class QCheckBox;
class QLineEdit;
class QToolButton;
class QTreeWidget;

namespace velkor {

class TfrmEdit;
class TSymbolTable;

class TfrmProcList : public QDialog {
    Q_OBJECT

public:
    // Restores the dialog's placement; "&Hide WCP functions" starts unchecked.
    explicit TfrmProcList(TfrmEdit& page, QWidget* parent = nullptr);
    // Writes the placement and proclist/HideWCP.
    ~TfrmProcList() override;

    // Kind bits (1 constants, 2 variables, 4 objects and objectives, 8 functions): sets the toggles.
    void SetKindMask(int mask);
    int KindMask() const;
    // The search box's text.
    void SetFilter(const QString& text);

    // Rebuilds the list from the page's symbols, the toggles, the search text and the Hide WCP box.
    void FillList();
    // Goto: the selected symbol's declaration as Find Declaration shows it, then close.
    void GotoSelected();
    // Insert: the selected symbol's name at the page's cursor ("(" and the parameter hint for a function
    // with parameters), then close. Without a selected row it only closes.
    void InsertSelected();

    QTreeWidget* lvProcs() const { return list_; }
    QLineEdit* edtMethods() const { return search_; }
    QCheckBox* chkHideWCP() const { return hideWcp_; }
    QToolButton* KindButton(int bit) const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QToolButton* AddButton(const char* name, const char* caption, const char* hint);
    // The table position of the selected row, or -1.
    int SelectedSymbol() const;

    TfrmEdit& page_;                        // whose symbols are listed and where names go
    std::shared_ptr<TSymbolTable> symbols_; // the page's table when the dialog opened; may be null
    QTreeWidget* list_;                     // lvProcs: Function, Type, File, Line
    QLineEdit* search_;                     // edtMethods
    QCheckBox* hideWcp_;                    // chkHideWCP
    QToolButton* goto_;                     // sbGoto
    QToolButton* insert_;                   // sbInsert
    QToolButton* kinds_[4];                 // btnConsts, btnVars, btnObjects, btnFunctions
};

} // namespace velkor
