// The main window while a compile or build runs beside it: a busy bar, a Stop button and the keys that are
// not on the menus.
#include "ide/background_job.h"
#include "ide/edit_page.h"
#include "ide/main_window.h"
#include "ide/output_view.h"

#include <QAction>
#include <QLabel>
#include <QMenu>
#include <QProgressBar>
#include <QStatusBar>
#include <QTimer>
#include <QToolButton>

namespace velkor {

namespace {

struct WindowKey {
    const char* Name;
    const char* Caption;
    const char* Keys;
};

// None of these keys is bound by the menus or by the editor.
constexpr WindowKey kWindowKeys[] = {
    {"ActionSave", "Save", "F2"},
    {"ActionStop", "Stop", "Ctrl+F2"},
    {"ActionNextMessage", "Next Message", "F8"},
    {"ActionPreviousMessage", "Previous Message", "Shift+F8"},
};

} // namespace

void TfrmMain::CreateWindowActions() {
    for (const WindowKey& key : kWindowKeys) {
        auto* action = new QAction(QString::fromLatin1(key.Caption), this);
        action->setObjectName(QString::fromLatin1(key.Name));
        action->setShortcut(QKeySequence(QString::fromLatin1(key.Keys)));
        action->setShortcutContext(Qt::WindowShortcut);
        addAction(action);
    }
    connect(WindowAction(QStringLiteral("ActionSave")), &QAction::triggered, this, [this] {
        if (TfrmEdit* page = ActivePage()) page->Save();
    });
    connect(WindowAction(QStringLiteral("ActionStop")), &QAction::triggered, this, [] { StopJob(); });
    connect(WindowAction(QStringLiteral("ActionNextMessage")), &QAction::triggered, this,
            [this] { NextMessage(true); });
    connect(WindowAction(QStringLiteral("ActionPreviousMessage")), &QAction::triggered, this,
            [this] { NextMessage(false); });
    // The output list's menu offers the stepping too, with its keys shown.
    QMenu* menu = output_->ContextMenu();
    menu->addSeparator();
    menu->addAction(WindowAction(QStringLiteral("ActionNextMessage")));
    menu->addAction(WindowAction(QStringLiteral("ActionPreviousMessage")));
}

QAction* TfrmMain::WindowAction(const QString& name) const {
    return findChild<QAction*>(name, Qt::FindDirectChildrenOnly);
}

void TfrmMain::CreateJobWidgets() {
    progress_ = new QProgressBar(this);
    progress_->setObjectName(QStringLiteral("JobProgress"));
    progress_->setRange(0, 0); // busy: the work does not know how far it is
    progress_->setMaximumWidth(120);
    progress_->setMaximumHeight(statusBar()->sizeHint().height());
    progress_->hide();
    stopButton_ = new QToolButton(this);
    stopButton_->setObjectName(QStringLiteral("StopButton"));
    stopButton_->setText(QStringLiteral("Stop"));
    stopButton_->setToolTip(QStringLiteral("Stop the compile or build (Ctrl+F2)"));
    stopButton_->setAutoRaise(true);
    stopButton_->hide();
    connect(stopButton_, &QToolButton::clicked, this, [] { StopJob(); });
    statusBar()->addPermanentWidget(progress_);
    statusBar()->addPermanentWidget(stopButton_);
}

void TfrmMain::JobStarted(const QString& caption) {
    panel0_->setText(caption + QStringLiteral("..."));
    progress_->show();
    stopButton_->show();
}

void TfrmMain::JobFinished() {
    panel0_->clear();
    progress_->hide();
    stopButton_->hide();
    if (closeAfterJob_) {
        closeAfterJob_ = false;
        QTimer::singleShot(0, this, &QWidget::close);
    }
}

} // namespace velkor
