#include "ide/main_window.h"

#include "ide/background_job.h"
#include "ide/edit_page.h"
#include "ide/ext_handler.h"
#include "ide/help_view.h"
#include "ide/ide_dialogs.h"
#include "ide/ide_ini.h"
#include "ide/iff_decode.h"
#include "ide/iff_view.h"
#include "ide/map_view.h"
#include "ide/nav_history.h"
#include "ide/output_view.h"
#include "ide/reg_mru.h"
#include "ide/settings_dialog.h"
#include "ide/window_placement.h"
#include "platform/executable_path.h"
#include "platform/path_resolver.h"
#include "platform/strings.h"
#include "scanner/scanner.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QLabel>
#include <QMenu>
#include <QProxyStyle>
#include <QStatusBar>
#include <QStyleFactory>
#include <QTabWidget>
#include <QTimer>
#include <QVBoxLayout>

#include <filesystem>
#include <fstream>

namespace velkor {

namespace {

TfrmMain* g_mainForm = nullptr; // the program's main window, for extensions and the output callback

bool StartsWithForm(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    char head[4] = {};
    if (!file.read(head, 4)) return false; // shorter than 4 bytes: text
    return std::string_view(head, 4) == "FORM";
}

bool IsRegularFile(const std::string& name) {
    std::error_code ec;
    return std::filesystem::is_regular_file(name, ec);
}

// The mouse hint over an editor waits half a second: long enough not to pop up while the mouse merely
// crosses the text, short enough to be there when the user looks for it.
constexpr int kHintPauseMs = 500;

class THintPauseStyle : public QProxyStyle {
public:
    using QProxyStyle::QProxyStyle;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override {
        if (hint == SH_ToolTip_WakeUpDelay) return kHintPauseMs;
        return QProxyStyle::styleHint(hint, option, widget, data);
    }
};

void SetHintPause() {
    QStyle* current = QApplication::style();
    if (dynamic_cast<THintPauseStyle*>(current)) return;
    // The application deletes its old style when given a new one, so the proxy gets a fresh copy of it.
    QApplication::setStyle(new THintPauseStyle(QStyleFactory::create(current->name())));
}

} // namespace

TfrmMain* TfrmMain::Instance() {
    return g_mainForm;
}

TfrmMain::TfrmMain(const QStringList& files, QWidget* parent) : QMainWindow(parent) {
    setObjectName(QStringLiteral("frmMain"));
    g_mainForm = this;
    ExecutableFolder();

    help_ = new TfrmHelp(this);
    iff_ = new TfrmIffView(this);
    output_ = new TfrmOutput(this);
    iff_->SetTabStopDialogUnits(2);
    // Number formatting is locale-independent throughout the core: "." and "," on every system.

    setWindowTitle(QStringLiteral("Velkor Console 3.0d (Compiler: 1.0 R24d)"));
    resize(900, 650);

    auto* panel1 = new QWidget(this);
    panel1->setObjectName(QStringLiteral("Panel1"));
    auto* layout = new QVBoxLayout(panel1);
    layout->setContentsMargins(0, 0, 0, 0);
    editorTabs_ = new QTabWidget(panel1);
    editorTabs_->setObjectName(QStringLiteral("PageControlEditor"));
    editorTabs_->setDocumentMode(true);
    layout->addWidget(editorTabs_);
    setCentralWidget(panel1);

    panel0_ = new QLabel(this);
    panel1_ = new QLabel(this);
    panel1_->setAlignment(Qt::AlignCenter);
    panel1_->setFixedWidth(60);
    statusBar()->setObjectName(QStringLiteral("StatusBar1"));
    statusBar()->addWidget(panel0_, 1);
    statusBar()->addPermanentWidget(panel1_);
    SetUpPageTabs();
    CreateJobWidgets();

    mru_ = new TRegMru(this);
    timer1_ = new QTimer(this);
    timer1_->setInterval(150);
    connect(timer1_, &QTimer::timeout, this, &TfrmMain::TimerTick);

    map_ = new TfrmMapView(*this);
    CreateMenus();
    ConnectMenus();
    CreateWindowActions();
    CreateProblemTracking();
    CreateNavigation();
    CreateProjectViews();
    connect(output_, &TfrmOutput::LocationRequested, this, &TfrmMain::GotoMessage);
    CreateDockAreas();
    RestoreViewPlacements();
    LoadSpecialDecoderFlags();

    maxDecodeSize_ = IdeIni().ReadInteger("iffd", "maxdecodesize", 1024);
    const bool restored = RestoreSession(files.isEmpty());
    if (!files.isEmpty()) {
        for (const QString& file : files) OpenFile(FromQ(file), true);
    } else if (!restored) {
        NewPage();
    }
    timer1_->start();

    mru_->KeyPath = "\\Software\\velkor\\mru";
    mru_->OnItemClick = [this](const std::string& path) { OpenFile(path, true); };
    mru_->AttachMenu(MenuItem(QStringLiteral("MenuFileReopen"))->menu());
    mru_->Load();
    SetHintPause();
}

TfrmMain::~TfrmMain() {
    timer1_->stop();
    if (g_mainForm == this) g_mainForm = nullptr;
}

void TfrmMain::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    if (!firstShown_) {
        firstShown_ = true;
        FirstShow();
    }
}

void TfrmMain::FirstShow() {
    soPath_ = IdeIni().ReadString("main", "sopath", "");
    if (soPath_.empty()) ShowSettings();
    RestoreFormPlacement(*this);
    for (const std::string& library : IdeIni().ReadSection("autoloadext")) LoadExtensionFile(library);
    SetScannerClass(IdeIni().ReadBool("compiler", "fast_scanner", false) ? ScannerClass::Fast
                                                                         : ScannerClass::Standard);
    if (TfrmEdit* page = ActivePage(); page && page->Memo()->isEnabled()) page->Memo()->setFocus();
}

void TfrmMain::ShowSettings() {
    TfrmSettings settings(this);
    DialogHooks().ExecModal(settings);
}

// --- pages

void TfrmMain::AddPage(TfrmEdit& page) {
    pages_.append(&page);
    editorTabs_->addTab(&page, page.Caption());
    UpdatePageTab(page);
    connect(&page, &TfrmEdit::CaptionChanged, this, [this, p = &page] {
        UpdatePageTab(*p);
        if (p == ActivePage()) UpdatePageState();
    });
    WatchPage(page);
    connect(&page, &TfrmEdit::Compiled, this, [this, p = &page] { PageCompiled(*p); });
    PlaceProblemMarkers(page);
}

void TfrmMain::RemovePage(TfrmEdit& page) {
    ForgetProblemsOf(page);
    pages_.removeAll(&page);
    const int index = editorTabs_->indexOf(&page);
    if (index >= 0) editorTabs_->removeTab(index);
    page.hide();
    page.deleteLater();
}

TfrmEdit* TfrmMain::NewPage() {
    auto* page = new TfrmEdit(*this, editorTabs_);
    AddPage(*page);
    ActivatePage(*page);
    return page;
}

void TfrmMain::ActivatePage(TfrmEdit& page) {
    editorTabs_->setCurrentWidget(&page);
    page.show();
    page.Memo()->setFocus();
}

TfrmEdit* TfrmMain::ActivePage() const {
    return qobject_cast<TfrmEdit*>(editorTabs_->currentWidget());
}

QList<TfrmEdit*> TfrmMain::Pages() const {
    QList<TfrmEdit*> pages;
    for (const QPointer<TfrmEdit>& page : pages_) {
        if (page) pages << page.data();
    }
    return pages;
}

TfrmEdit* TfrmMain::FindPage(const std::string& name) const {
    if (Trim(name).empty()) return nullptr;
    std::error_code ec;
    const std::string wanted = LowerCase(std::filesystem::absolute(name, ec).lexically_normal().string());
    for (TfrmEdit* page : Pages()) {
        if (page->FileNameKey() == wanted || page->FileNameKey() == LowerCase(name)) return page;
    }
    return nullptr;
}

bool TfrmMain::ClosePage(TfrmEdit& page) {
    // A compile running beside the window reads the page it started from: it is stopped first.
    if (JobRunning()) {
        StopJob();
        return false;
    }
    if (!page.SaveQuery()) return false;
    RemovePage(page);
    return true;
}

TfrmEdit* TfrmMain::OpenFile(const std::string& name, bool addToRecent) {
    std::string file = name;
    if (Trim(file).empty()) {
        // Ask first, so that a binary IFF chosen in the dialog is decoded like any other.
        file = TfrmEdit::AskOpenFileName(this);
        if (file.empty()) return nullptr;
    }
    if (IsRegularFile(file) && StartsWithForm(file)) return DecodeFile(file);

    if (TfrmEdit* active = ActivePage(); active && Trim(FromQ(active->Text())).empty()) RemovePage(*active);

    if (TfrmEdit* open = FindPage(file)) {
        ActivatePage(*open);
        return open;
    }
    auto page = std::make_unique<TfrmEdit>(*this, editorTabs_);
    if (!page->Load(file, addToRecent)) return nullptr;
    TfrmEdit* loaded = page.release();
    AddPage(*loaded);
    ActivatePage(*loaded);
    return loaded;
}

TfrmEdit* TfrmMain::DecodeFile(const std::string& name) {
    const std::string textFile = name + ".pas";
    std::error_code ec;
    const bool existed = std::filesystem::exists(textFile, ec);
    if (IdeIni().ReadBool("iffd", "UseSeparateThread", false)) {
        auto* thread = new TIffDThread(name, maxDecodeSize_);
        // Blocking: the decode thread waits while the interface thread opens the page.
        connect(
            thread, &TIffDThread::Decoded, this,
            [this, name, existed](const QString& decodedText, const QString& error,
                                  const QStringList& notes) {
                for (const QString& note : notes) Output(name + ": " + FromQ(note));
                OpenDecodedText(FromQ(decodedText), error, existed);
            },
            Qt::BlockingQueuedConnection);
        thread->start(QThread::LowPriority);
        return nullptr;
    }
    QString error;
    try {
        for (const std::string& note : DecodeIffFile(name, textFile, maxDecodeSize_))
            Output(name + ": " + note);
    } catch (const std::exception& e) {
        error = ToQ(name + ": " + e.what());
    }
    OpenDecodedText(textFile, error, existed);
    return error.isEmpty() ? ActivePage() : nullptr;
}

void TfrmMain::OpenDecodedText(const std::string& textFile, const QString& error, bool existed) {
    std::error_code ec;
    if (!error.isEmpty()) {
        if (!existed) std::filesystem::remove(textFile, ec);
        DialogHooks().ShowMessage(this, error);
        return;
    }
    OpenFile(textFile, false);
    std::filesystem::remove(textFile, ec);
    if (TfrmEdit* page = ActivePage()) page->SetModified(true);
}

void TfrmMain::SaveAll() {
    for (TfrmEdit* page : Pages()) page->Save();
}

void TfrmMain::CloseAll() {
    const QList<TfrmEdit*> pages = Pages();
    for (auto it = pages.rbegin(); it != pages.rend(); ++it) ClosePage(**it);
}

// --- services

void TfrmMain::Output(const std::string& line) {
    output_->AppendLine(ToQ(line));
}

TfrmOutput& TfrmMain::OutputView() {
    return *output_;
}
TfrmIffView& TfrmMain::IffView() {
    return *iff_;
}
TfrmHelp& TfrmMain::HelpView() {
    return *help_;
}

void TfrmMain::AddRecent(const std::string& path) {
    try {
        mru_->Add(path);
    } catch (const std::exception& e) {
        Output(e.what());
    }
}

void TfrmMain::LoadExtensionFile(const std::string& path) {
    std::string reason;
    const std::string failure = LoadExtension(path, &reason);
    if (failure.empty()) return;
    // The message says only "not found"; the loader's reason (a missing symbol, a wrong architecture)
    // is what the author of the library needs.
    if (!reason.empty()) Output(reason);
    DialogHooks().ShowMessage(this, ToQ(failure));
}

// --- timer and status

void TfrmMain::TimerTick() {
    TfrmEdit* page = ActivePage();
    if (page) {
        panel1_->setText(
            QStringLiteral("%1:%2").arg(page->Memo()->CaretLine() + 1).arg(page->Memo()->CaretColumn() + 1));
    }
    iff_->UpdateCaption();
    // The caption of the Topic item waits for the menu to open; its enabled state follows the caret.
    UpdateTopicItem();
    UpdatePageState();
}

QString TfrmMain::StatusPanelText(int panel) const {
    return panel == 0 ? panel0_->text() : panel1_->text();
}

void TfrmMain::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    // The panels beside it (insert mode, modified state, the busy bar) take their room first.
    const int others = panelMode_->minimumWidth() + panelModified_->minimumWidth();
    panel0_->setMinimumWidth(std::max(0, width() - 80 - others));
    panel0_->setMaximumWidth(std::max(0, width() - 80 - others));
}

// --- closing

bool TfrmMain::CloseQuery() {
    closeQueryRunning_ = true;
    bool canClose = true;
    for (TfrmEdit* page : Pages()) {
        if (!page->SaveQuery()) {
            canClose = false;
            break;
        }
    }
    closeQueryRunning_ = false;
    return canClose;
}

void TfrmMain::closeEvent(QCloseEvent* event) {
    if (JobRunning()) {
        // The work unwinds first; the window closes (asking about modified pages) when it has.
        closeAfterJob_ = true;
        StopJob();
        event->ignore();
        return;
    }
    if (!CloseQuery()) {
        event->ignore();
        return;
    }
    try {
        SaveFormPlacement(*this);
        SaveViewPlacements();
        SaveSession();
        // Spelled so in every settings file written so far; stored for others, never read here.
        IdeIni().WriteInteger("main", "pheigth", DockAreaSize("PageControl1"));
    } catch (const std::exception&) {
        // A settings file that cannot be written must not keep the window open.
    }
    timer1_->stop();
    event->accept();
}

} // namespace velkor
