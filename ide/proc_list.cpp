#include "ide/proc_list.h"

#include "compiler/compiler.h"
#include "compiler/symbol_queries.h"
#include "compiler/symbol_table.h"
#include "ide/edit_page.h"
#include "ide/ide_ini.h"
#include "ide/window_placement.h"
#include "platform/path_resolver.h"

#include <QApplication>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace velkor {
namespace {

constexpr int kSymbolRole = Qt::UserRole; // table position of a row's symbol

constexpr int kKindBits[4] = {smConstants, smVariables, smObjects, smFunctions};

int KindSlot(int bit) {
    for (int i = 0; i < 4; ++i)
        if (kKindBits[i] == bit) return i;
    return -1;
}

} // namespace

TfrmProcList::TfrmProcList(TfrmEdit& page, QWidget* parent)
    : QDialog(parent), page_(page), symbols_(page.Symbols()) {
    setObjectName(QStringLiteral("frmProcList"));
    setWindowTitle(QStringLiteral("Symbol Browser"));
    resize(620, 420);

    goto_ = AddButton("sbGoto", "Goto", "Goto implementation (Enter)");
    insert_ = AddButton("sbInsert", "Insert", "Insert");
    kinds_[0] = AddButton("btnConsts", "Consts", "");
    kinds_[1] = AddButton("btnVars", "Vars", "");
    kinds_[2] = AddButton("btnObjects", "Objects", "");
    kinds_[3] = AddButton("btnFunctions", "Functions", "");
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(goto_);
    buttons->addWidget(insert_);
    buttons->addSpacing(12);
    for (QToolButton* kind : kinds_) {
        kind->setCheckable(true);
        kind->setChecked(true);
        buttons->addWidget(kind);
        connect(kind, &QToolButton::toggled, this, &TfrmProcList::FillList);
    }
    buttons->addStretch();

    search_ = new QLineEdit;
    search_->setObjectName(QStringLiteral("edtMethods"));
    auto* searchLabel = new QLabel(QStringLiteral("&Search"));
    searchLabel->setBuddy(search_);
    hideWcp_ = new QCheckBox(QStringLiteral("&Hide WCP functions"));
    hideWcp_->setObjectName(QStringLiteral("chkHideWCP"));
    auto* searchRow = new QHBoxLayout;
    searchRow->addWidget(searchLabel);
    searchRow->addWidget(search_, 1);
    searchRow->addWidget(hideWcp_);

    list_ = new QTreeWidget;
    list_->setObjectName(QStringLiteral("lvProcs"));
    list_->setColumnCount(4);
    list_->setHeaderLabels(
        {QStringLiteral("Function"), QStringLiteral("Type"), QStringLiteral("File"), QStringLiteral("Line")});
    list_->setRootIsDecorated(false);
    list_->setUniformRowHeights(true);
    list_->setAllColumnsShowFocus(true);
    const int widths[] = {313, 80, 120, 68};
    for (int column = 0; column < 4; ++column) list_->setColumnWidth(column, widths[column]);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(buttons);
    layout->addLayout(searchRow);
    layout->addWidget(list_, 1);

    connect(search_, &QLineEdit::textChanged, this, &TfrmProcList::FillList);
    connect(hideWcp_, &QCheckBox::toggled, this, &TfrmProcList::FillList);
    connect(goto_, &QToolButton::clicked, this, &TfrmProcList::GotoSelected);
    connect(insert_, &QToolButton::clicked, this, &TfrmProcList::InsertSelected);
    connect(list_, &QTreeWidget::itemDoubleClicked, this, [this] { GotoSelected(); });
    search_->installEventFilter(this);
    list_->installEventFilter(this);

    RestoreFormPlacement(*this);
    FillList();
}

TfrmProcList::~TfrmProcList() {
    SaveFormPlacement(*this);
    IdeIni().WriteBool("proclist", "HideWCP", hideWcp_->isChecked());
}

QToolButton* TfrmProcList::AddButton(const char* name, const char* caption, const char* hint) {
    auto* button = new QToolButton;
    button->setObjectName(QString::fromLatin1(name));
    button->setText(QString::fromLatin1(caption));
    button->setToolTip(QString::fromLatin1(hint));
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::NoFocus);
    return button;
}

QToolButton* TfrmProcList::KindButton(int bit) const {
    const int slot = KindSlot(bit);
    return slot < 0 ? nullptr : kinds_[slot];
}

void TfrmProcList::SetKindMask(int mask) {
    for (int i = 0; i < 4; ++i) {
        const QSignalBlocker quiet(kinds_[i]);
        kinds_[i]->setChecked((mask & kKindBits[i]) != 0);
    }
    FillList();
}

int TfrmProcList::KindMask() const {
    int mask = 0;
    for (int i = 0; i < 4; ++i)
        if (kinds_[i]->isChecked()) mask |= kKindBits[i];
    return mask;
}

void TfrmProcList::SetFilter(const QString& text) {
    search_->setText(text);
    FillList();
}

void TfrmProcList::FillList() {
    list_->clear();
    if (!symbols_) return;
    const std::vector<int> rows =
        FilterSymbols(*symbols_, KindMask(), FromQ(search_->text()), hideWcp_->isChecked());
    QList<QTreeWidgetItem*> items;
    items.reserve(static_cast<qsizetype>(rows.size()));
    for (const int index : rows) {
        const TSymbol& symbol = symbols_->Get(index);
        auto* item = new QTreeWidgetItem(
            QStringList{ToQ(SymbolDisplayName(symbol)), ToQ(SymbolTypeCaption(symbol.Kind)),
                        ToQ(FileNamePart(FileNameOf(symbol.FileNumber))), QString::number(symbol.Line)});
        item->setData(0, kSymbolRole, index);
        items << item;
    }
    list_->addTopLevelItems(items);
    if (!items.isEmpty()) list_->setCurrentItem(items.front());
}

int TfrmProcList::SelectedSymbol() const {
    const QTreeWidgetItem* item = list_->currentItem();
    if (!item || !item->isSelected() || !symbols_) return -1;
    return item->data(0, kSymbolRole).toInt();
}

void TfrmProcList::GotoSelected() {
    const int index = SelectedSymbol();
    if (index < 0) return;
    const TSymbol symbol = symbols_->Get(index);
    page_.GotoDeclaration(symbol);
    accept();
}

void TfrmProcList::InsertSelected() {
    const int index = SelectedSymbol();
    if (index >= 0) {
        const TSymbol symbol = symbols_->Get(index);
        // The hint belongs to the page's editor, which is shown again once the dialog has gone.
        page_.InsertSymbol(symbol);
    }
    accept();
}

bool TfrmProcList::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return QDialog::eventFilter(watched, event);
    auto* key = static_cast<QKeyEvent*>(event);
    if (key->key() == Qt::Key_Insert && key->modifiers() == Qt::NoModifier) {
        InsertSelected();
        return true;
    }
    if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
        GotoSelected();
        return true;
    }
    if (watched != search_) return QDialog::eventFilter(watched, event);
    switch (key->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_Home:
    case Qt::Key_End: {
        // Moving in the list while the box keeps the focus and the typing.
        QKeyEvent copy(key->type(), key->key(), key->modifiers(), key->text());
        QApplication::sendEvent(list_, &copy);
        return true;
    }
    default: return QDialog::eventFilter(watched, event);
    }
}

} // namespace velkor
