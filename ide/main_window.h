// TfrmMain: the IDE's one top-level window. It holds the editor pages in tabs, the three tool views in
// its two dock areas, the menu, the status bar, the recent-files list and a polling timer, and forwards
// almost every command to the active page.
#pragma once

#include "ide/page_host.h"

#include <QList>
#include <QMainWindow>
#include <QPointer>

#include <cstdint>
#include <memory>
#include <string>

class QAction;
class QDragEnterEvent;
class QDropEvent;
class QIcon;
class QLabel;
class QMimeData;
class QMenu;
class QProgressBar;
class QTabWidget;
class QTimer;
class QToolButton;

namespace velkor {

class TDockableView;
class TfrmFileTree;
class TfrmFindInFiles;
class TfrmMapView;
class TfrmProblems;
class TNavHistory;
class TRegMru;

class TfrmMain : public QMainWindow, public TPageHost {
    Q_OBJECT

public:
    // Creates the window in the documented order; `files` are opened (binary IFF decoded), or one new page
    // is made when there are none.
    explicit TfrmMain(const QStringList& files, QWidget* parent = nullptr);
    ~TfrmMain() override;

    // The window extensions and the output callback reach; null when there is none.
    static TfrmMain* Instance();

    // --- pages
    TfrmEdit* NewPage();
    // The open procedure (see TPageHost). An empty name asks with the open dialog.
    TfrmEdit* OpenFile(const std::string& name, bool addToRecent) override;
    // Decodes a binary IFF file into a modified page named file + ".pas": inline it returns the page; in a
    // decode thread it returns null at once and the page appears when the thread is done.
    TfrmEdit* DecodeFile(const std::string& name);
    // The page in the selected editor tab, or null.
    TfrmEdit* ActivePage() const;
    // The page of a file, the name compared without case; null when not open.
    TfrmEdit* FindPage(const std::string& name) const;
    // Every page, in the order they were created.
    QList<TfrmEdit*> Pages() const;
    void ActivatePage(TfrmEdit& page);
    bool ClosePage(TfrmEdit& page) override;
    void SaveAll();
    void CloseAll();
    QTabWidget* PageControlEditor() const { return editorTabs_; }

    // --- services of the pages
    void Output(const std::string& line) override;
    TfrmOutput& OutputView() override;
    TfrmIffView& IffView() override;
    TfrmHelp& HelpView() override;
    TfrmMapView& MapView() { return *map_; }
    void AddRecent(const std::string& path) override;
    int TakeUntitledNumber() override { return untitled_++; }
    TRegMru& RegMru1() const { return *mru_; }

    // --- menus; the Update functions run when their menu opens
    QAction* MenuItem(const QString& name) const;
    void UpdateFileMenu();
    void UpdateEditMenu();
    void UpdateViewMenu();
    void UpdateHelpMenu();

    // --- commands
    void ShowSettings();
    void DecodeDialog();
    void LoadExtensionDialog();
    void LoadExtensionFile(const std::string& path);

    // --- work beside the window (job_progress.cpp): a busy bar and a Stop button in the status bar
    void JobStarted(const QString& caption) override;
    void JobFinished() override;
    QProgressBar* JobProgress() const { return progress_; }
    QToolButton* StopButton() const { return stopButton_; }
    // Keys of the window that are not on its menus: "ActionSave" (F2), "ActionStop" (Ctrl+F2),
    // "ActionNextMessage" (F8), "ActionPreviousMessage" (Shift+F8).
    QAction* WindowAction(const QString& name) const;

    // --- messages (message_navigation.cpp)
    // Opens the unit an output line names ("[<unit>, <line>] ...") at that line; false when the line names
    // no place or the unit is not found. The unit is looked for among the pages (the compiled one first),
    // then along the search path of the compile that reported it.
    bool GotoMessage(int row);
    // F8 and Shift+F8: the next or previous error or hint of the output list.
    bool NextMessage(bool forward);

    // --- pages' state in the tabs, the caption and the status bar (page_tabs.cpp)
    // The tab's mark of a modified page: a dot beside the caption, which stays the tab's text.
    static QIcon PageTabIcon(const TfrmEdit& page);
    void UpdatePageTab(TfrmEdit& page);
    void UpdatePageState();
    // "INS" or "OVR", and "Modified" or empty, for the active page.
    QString InsertModeText() const;
    QString ModifiedText() const;

    // --- status
    // One poll of the 150 ms timer: caret position in the status bar and in the IFF view's caption.
    void TimerTick();
    QString StatusPanelText(int panel) const;
    std::int32_t MaxDecodeSize() const { return maxDecodeSize_; }
    const std::string& SoPath() const { return soPath_; }
    bool CloseQueryRunning() const { return closeQueryRunning_; }

    // --- dock areas: "PageControl2" (left) and "PageControl1" (bottom)
    // Docks a view into the named area (tabbed with the views already there); an empty site floats it.
    void DockView(TDockableView& view, const std::string& site);
    // The area holding the view, or empty when it floats.
    std::string SiteOf(const TDockableView& view) const;
    // Width of the left area or height of the bottom area: 0 when no visible view is docked there.
    int DockAreaSize(const std::string& site) const;
    void SaveViewPlacements();

    // Asks every page's save question; false as soon as one answers Cancel.
    bool CloseQuery();

    // --- the problems of each page's last compile (problem_tracking.cpp)
    TfrmProblems& ProblemsView() { return *problems_; }
    // Lists the errors and hints of the compile just ended and marks them in the pages.
    void PageCompiled(TfrmEdit& page);
    // Opens the place of a problem (where its mark is now); false when its file is not found.
    bool GotoProblem(int entry);

    // --- navigation history (navigation.cpp): "ActionNavigateBack" (Alt+Left), "ActionNavigateForward"
    // (Alt+Right)
    void JumpStarting(TfrmEdit& page) override;
    bool NavigateBack();
    bool NavigateForward();
    TNavHistory& Navigation() const { return *navigation_; }

    // --- the project at hand (project_views.cpp): the Files view and Find in Files (Shift+Ctrl+F)
    TfrmFileTree& FileTreeView() { return *files_; }
    TfrmFindInFiles& FindInFilesView() { return *findInFiles_; }
    // The folders the Files view shows for the active page: its own folder, then its search path.
    QStringList ProjectFolders() const;
    void UpdateFileTree();
    // Opens a file at a line (from 1), as a jump that can be gone back from; false when it cannot be
    // opened.
    bool OpenAt(const QString& file, int line);

    // --- the last session (session.cpp): pages, carets and the dock layout
    void SaveSession();
    // Brings back the dock layout and, with `pages`, the pages; false when no page was opened.
    bool RestoreSession(bool pages);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void CreateMenus();
    QAction* AddItem(QMenu* menu, const char* name, const char* caption, const char* shortcut);
    void ConnectMenus();
    void CreateDockAreas();
    void CreateWindowActions();
    void CreateJobWidgets();
    void SetUpPageTabs();
    void WatchPage(TfrmEdit& page);
    void UpdateTopicItem();
    // The local files of a drag, or none.
    static QStringList DroppedFiles(const QMimeData* data);
    void RestoreViewPlacements();
    void OnViewDocked(TDockableView& view, Qt::DockWidgetArea area);
    void FirstShow();
    void AddPage(TfrmEdit& page);
    void RemovePage(TfrmEdit& page);
    // `existed`: the text file stood there before the decode, so a failed decode must not remove it.
    void OpenDecodedText(const std::string& textFile, const QString& error, bool existed);
    QList<TDockableView*> Views() const;
    void CreateProblemTracking();
    void PlaceProblemMarkers(TfrmEdit& page);
    void ForgetProblemsOf(TfrmEdit& page);
    void CreateNavigation();
    void CreateProjectViews();

    TfrmHelp* help_;                    // the help view, owned as a child
    TfrmIffView* iff_;                  // the IFF view, owned as a child
    TfrmOutput* output_;                // the output list, owned as a child
    TfrmMapView* map_;                  // the map of the objects, owned as a child
    QTabWidget* editorTabs_;            // PageControlEditor: one tab per page
    QLabel* panel0_;                    // status panel 0: free text
    QLabel* panel1_;                    // status panel 1: caret line and column
    QLabel* panelMode_;                 // insert or overwrite
    QLabel* panelModified_;             // the active page's modified state
    QProgressBar* progress_;            // busy while a compile or build runs
    QToolButton* stopButton_;           // stops it
    QTimer* timer1_;                    // Timer1, 150 ms
    TRegMru* mru_;                      // RegMru1: recently used files
    QList<QPointer<TfrmEdit>> pages_;   // every page, in creation order
    std::int32_t maxDecodeSize_ = 1024; // decode limit, read once at creation
    std::string soPath_;                // the game folder, read at first show
    int untitled_ = 0;                  // number of the next untitled page
    bool firstShown_ = false;           // the first show has run
    bool closeQueryRunning_ = false;    // the close query is asking
    bool closeAfterJob_ = false;        // the window was closed while work ran: close when it ends

    TfrmProblems* problems_ = nullptr;        // the problems of the compiles, owned as a child
    std::unique_ptr<TNavHistory> navigation_; // places to go back and forward to
    TfrmFileTree* files_ = nullptr;           // the Files view, owned as a child
    TfrmFindInFiles* findInFiles_ = nullptr;  // Find in Files, owned as a child
};

} // namespace velkor
