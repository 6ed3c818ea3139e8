// The pages as the window shows them: a modified mark (a dot) on the tab, the active file in the caption,
// insert mode and modified state in the status bar; close buttons and middle-click on tabs; files dropped on
// the window open as pages.
#include "ide/edit_page.h"
#include "ide/ide_ini.h"
#include "ide/main_window.h"
#include "ide/tool_bar.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QStatusBar>
#include <QTabBar>
#include <QTabWidget>
#include <QUrl>

#include <filesystem>

namespace velkor {

namespace {

const QString kCaption = QStringLiteral("Velkor Console 3.0d (Compiler: 1.0 R24d)");

bool IsFile(const std::string& name) {
    std::error_code ec;
    return std::filesystem::is_regular_file(name, ec);
}

} // namespace

void TfrmMain::SetUpPageTabs() {
    editorTabs_->setTabsClosable(true);
    connect(editorTabs_, &QTabWidget::tabCloseRequested, this, [this](int index) {
        if (auto* page = qobject_cast<TfrmEdit*>(editorTabs_->widget(index))) ClosePage(*page);
    });
    connect(editorTabs_, &QTabWidget::currentChanged, this, [this] {
        UpdatePageState();
        UpdateTopicItem();
    });
    editorTabs_->tabBar()->installEventFilter(this);

    panelMode_ = new QLabel(this);
    panelMode_->setObjectName(QStringLiteral("PanelMode"));
    panelMode_->setAlignment(Qt::AlignCenter);
    panelMode_->setMinimumWidth(panelMode_->fontMetrics().horizontalAdvance(QStringLiteral("OVR")) + 12);
    panelModified_ = new QLabel(this);
    panelModified_->setObjectName(QStringLiteral("PanelModified"));
    panelModified_->setAlignment(Qt::AlignCenter);
    panelModified_->setMinimumWidth(
        panelModified_->fontMetrics().horizontalAdvance(QStringLiteral("Modified")) + 12);
    statusBar()->addPermanentWidget(panelModified_);
    statusBar()->addPermanentWidget(panelMode_);
    setAcceptDrops(true);
}

void TfrmMain::WatchPage(TfrmEdit& page) {
    TPageEditor* memo = page.Memo();
    connect(memo, &QsciScintilla::modificationChanged, this, [this, p = &page] {
        UpdatePageTab(*p);
        if (p == ActivePage()) UpdatePageState();
    });
    connect(memo, &QsciScintilla::cursorPositionChanged, this, [this, p = &page] {
        if (p == ActivePage()) UpdateTopicItem();
    });
    // The editor would take a dropped file for text to insert.
    memo->viewport()->installEventFilter(this);
    // F1 while the Topic item still waits for the caret's word (see eventFilter).
    memo->installEventFilter(this);
}

QIcon TfrmMain::PageTabIcon(const TfrmEdit& page) {
    if (!page.Modified()) return {};
    // A filled dot, drawn once in the window text colour.
    static const QIcon dot = [] {
        QPixmap pixmap(12, 12);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QApplication::palette().color(QPalette::WindowText));
        painter.drawEllipse(QRectF(2, 2, 8, 8));
        return QIcon(pixmap);
    }();
    return dot;
}

void TfrmMain::UpdatePageTab(TfrmEdit& page) {
    const int at = editorTabs_->indexOf(&page);
    if (at < 0) return;
    editorTabs_->setTabText(at, page.Caption());
    editorTabs_->setTabIcon(at, PageTabIcon(page));
    editorTabs_->setTabToolTip(at, ToQ(page.FileName()) +
                                       (page.Modified() ? QStringLiteral(" (modified)") : QString()));
}

QString TfrmMain::InsertModeText() const {
    const TfrmEdit* page = ActivePage();
    if (!page) return {};
    return page->Memo()->overwriteMode() ? QStringLiteral("OVR") : QStringLiteral("INS");
}

QString TfrmMain::ModifiedText() const {
    const TfrmEdit* page = ActivePage();
    return page && page->Modified() ? QStringLiteral("Modified") : QString();
}

void TfrmMain::UpdatePageState() {
    const TfrmEdit* page = ActivePage();
    QString title = kCaption;
    if (page) {
        // A page never saved has no path; it is named only once it holds something.
        if (IsFile(page->FileName()))
            title += QStringLiteral(" - ") + ToQ(page->FileName());
        else if (page->Modified())
            title += QStringLiteral(" - ") + page->Caption();
        if (page->Modified()) title += QStringLiteral(" *");
    }
    if (windowTitle() != title) setWindowTitle(title);
    panelMode_->setText(InsertModeText());
    panelModified_->setText(ModifiedText());
    if (toolBar_) toolBar_->Refresh();
}

void TfrmMain::UpdateTopicItem() {
    // A disabled item's shortcut is dead: F1 must work as soon as the caret reaches a word.
    TfrmEdit* page = ActivePage();
    MenuItem(QStringLiteral("MenuHelpTopic"))->setEnabled(page && !page->WordAtCursor().isEmpty());
}

QStringList TfrmMain::DroppedFiles(const QMimeData* data) {
    QStringList files;
    if (!data || !data->hasUrls()) return files;
    for (const QUrl& url : data->urls()) {
        if (url.isLocalFile()) files << url.toLocalFile();
    }
    return files;
}

void TfrmMain::dragEnterEvent(QDragEnterEvent* event) {
    if (!DroppedFiles(event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void TfrmMain::dropEvent(QDropEvent* event) {
    const QStringList files = DroppedFiles(event->mimeData());
    if (files.isEmpty()) return;
    event->acceptProposedAction();
    // Binary IFF is decoded as by File > Open.
    for (const QString& file : files) OpenFile(FromQ(file), true);
}

bool TfrmMain::eventFilter(QObject* watched, QEvent* event) {
    if (watched == editorTabs_->tabBar() && event->type() == QEvent::MouseButtonRelease) {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        if (mouse->button() == Qt::MiddleButton) {
            const int index = editorTabs_->tabBar()->tabAt(mouse->position().toPoint());
            if (auto* page = qobject_cast<TfrmEdit*>(editorTabs_->widget(index))) ClosePage(*page);
            return true;
        }
    }
    switch (event->type()) {
    case QEvent::KeyPress: {
        // The Topic item takes F1 while it is enabled; an F1 that reaches the editor came while the item
        // had not yet seen the caret reach a word. It is the same command.
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() != Qt::Key_F1 || key->modifiers() != Qt::NoModifier) break;
        if (TfrmEdit* page = ActivePage(); page && watched == page->Memo()) {
            page->TopicSearch();
            return true;
        }
        break;
    }
    case QEvent::DragEnter:
    case QEvent::DragMove: {
        auto* drag = static_cast<QDragMoveEvent*>(event);
        if (DroppedFiles(drag->mimeData()).isEmpty()) break;
        drag->acceptProposedAction();
        return true;
    }
    case QEvent::Drop: {
        auto* drop = static_cast<QDropEvent*>(event);
        if (DroppedFiles(drop->mimeData()).isEmpty()) break;
        dropEvent(drop);
        return true;
    }
    default: break;
    }
    return QMainWindow::eventFilter(watched, event);
}

} // namespace velkor
