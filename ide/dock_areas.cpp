// The two dock areas of the main window: "PageControl2" on the left and "PageControl1" at the bottom,
// where the tool views dock as tabs, and the views' saved placement.
#include "ide/file_tree_view.h"
#include "ide/find_in_files.h"
#include "ide/help_view.h"
#include "ide/ide_ini.h"
#include "ide/iff_view.h"
#include "ide/main_window.h"
#include "ide/map_view.h"
#include "ide/output_view.h"
#include "ide/problems_view.h"
#include "ide/window_placement.h"

#include <QTabBar>

namespace velkor {

namespace {

constexpr const char* kSideSite = "PageControl2";   // the left dock area
constexpr const char* kBottomSite = "PageControl1"; // the bottom dock area
constexpr int kNarrow = 20;                         // below this an area counts as closed
constexpr int kSideWidth = 260;                     // width a closed side area opens with
constexpr int kBottomHeight = 120;                  // height a closed bottom area opens with
const QSize kMinimumView(150, 80);                  // a floating view is never restored smaller

Qt::DockWidgetArea AreaOf(const std::string& site) {
    if (site == kSideSite) return Qt::LeftDockWidgetArea;
    if (site == kBottomSite) return Qt::BottomDockWidgetArea;
    return Qt::NoDockWidgetArea;
}

} // namespace

QList<TDockableView*> TfrmMain::Views() const {
    return {output_, iff_, help_, map_, problems_, files_, findInFiles_};
}

void TfrmMain::CreateDockAreas() {
    setDockOptions(QMainWindow::AllowTabbedDocks | QMainWindow::AnimatedDocks);
    setTabPosition(Qt::AllDockWidgetAreas, QTabWidget::South);
    // The left area takes the whole height, as the side page control did beside the bottom one.
    setCorner(Qt::BottomLeftCorner, Qt::LeftDockWidgetArea);
    for (TDockableView* view : Views()) {
        connect(view, &QDockWidget::dockLocationChanged, this,
                [this, view](Qt::DockWidgetArea area) { OnViewDocked(*view, area); });
    }
}

void TfrmMain::DockView(TDockableView& view, const std::string& site) {
    const Qt::DockWidgetArea area = AreaOf(site);
    if (area == Qt::NoDockWidgetArea) {
        if (dockWidgetArea(&view) == Qt::NoDockWidgetArea) addDockWidget(Qt::BottomDockWidgetArea, &view);
        view.setFloating(true);
        return;
    }
    TDockableView* neighbour = nullptr;
    for (TDockableView* other : Views()) {
        if (other != &view && !other->isFloating() && dockWidgetArea(other) == area &&
            other->parentWidget() == this) {
            neighbour = other;
            break;
        }
    }
    view.setFloating(false);
    addDockWidget(area, &view);
    if (neighbour) tabifyDockWidget(neighbour, &view);
    OnViewDocked(view, area);
}

std::string TfrmMain::SiteOf(const TDockableView& view) const {
    if (view.isFloating()) return {};
    switch (dockWidgetArea(const_cast<TDockableView*>(&view))) {
    case Qt::LeftDockWidgetArea: return kSideSite;
    case Qt::BottomDockWidgetArea: return kBottomSite;
    default: return {};
    }
}

int TfrmMain::DockAreaSize(const std::string& site) const {
    const Qt::DockWidgetArea area = AreaOf(site);
    int size = 0;
    for (TDockableView* view : Views()) {
        if (view->isFloating() || view->isHidden() || dockWidgetArea(view) != area) continue;
        size = std::max(size, area == Qt::LeftDockWidgetArea ? view->width() : view->height());
    }
    return size;
}

void TfrmMain::OnViewDocked(TDockableView& view, Qt::DockWidgetArea area) {
    // An area that was closed opens at a useful size; an area left empty closes by itself.
    if (area == Qt::LeftDockWidgetArea && DockAreaSize(kSideSite) < kNarrow) {
        resizeDocks({&view}, {kSideWidth}, Qt::Horizontal);
    } else if (area == Qt::BottomDockWidgetArea && DockAreaSize(kBottomSite) < kNarrow) {
        resizeDocks({&view}, {kBottomHeight}, Qt::Vertical);
    }
}

void TfrmMain::RestoreViewPlacements() {
    for (TDockableView* view : Views()) {
        TDockPlacement defaults;
        defaults.Site = kBottomSite;
        defaults.Width = 400;
        defaults.Height = kBottomHeight;
        defaults.Left = 100;
        defaults.Top = 100;
        if (view == map_) { // new beside the others: it waits at the side until asked for
            defaults.Site = kSideSite;
            defaults.Width = 360;
            defaults.Visible = false;
        }
        if (view == problems_ || view == findInFiles_) defaults.Visible = false; // when asked for
        if (view == files_) { // tabbed with the map, as wide
            defaults.Site = kSideSite;
            defaults.Width = 360;
            defaults.Visible = false;
        }

        const TDockPlacement placement = ReadDockPlacement(FromQ(view->objectName()), defaults);
        DockView(*view, placement.Site);
        if (placement.Site.empty() && placement.Width > 0 && placement.Height > 0)
            view->setGeometry(KeepOnScreen(
                QRect(placement.Left, placement.Top, placement.Width, placement.Height), kMinimumView));
        else if (!placement.Site.empty() && placement.Width > 0 && placement.Height > 0)
            resizeDocks(
                {view},
                {AreaOf(placement.Site) == Qt::LeftDockWidgetArea ? placement.Width : placement.Height},
                AreaOf(placement.Site) == Qt::LeftDockWidgetArea ? Qt::Horizontal : Qt::Vertical);
        view->setVisible(placement.Visible);
    }
    // The output list is the view a user needs first.
    if (!output_->isHidden()) output_->raise();
}

void TfrmMain::SaveViewPlacements() {
    for (TDockableView* view : Views()) {
        TDockPlacement placement;
        placement.Site = SiteOf(*view);
        placement.WindowState = 0;
        // Inside the frame, as setGeometry takes it back.
        const QRect frame = view->geometry();
        placement.Top = frame.top();
        placement.Left = frame.left();
        placement.Height = view->height();
        placement.Width = view->width();
        placement.Visible = !view->isHidden();
        WriteDockPlacement(FromQ(view->objectName()), placement);
    }
}

} // namespace velkor
