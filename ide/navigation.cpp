// Back and forward through the places the caret jumped from, across pages.
#include "ide/edit_page.h"
#include "ide/main_window.h"
#include "ide/nav_history.h"

#include <QAction>

#include <filesystem>

namespace velkor {

namespace {

TNavPlace PlaceOf(const TfrmEdit& page) {
    return {page.FileName(), page.Memo()->CaretLine(), page.Memo()->CaretColumn()};
}

} // namespace

void TfrmMain::CreateNavigation() {
    navigation_ = std::make_unique<TNavHistory>();
    struct Key {
        const char* Name;
        const char* Caption;
        const char* Keys;
        bool (TfrmMain::*Go)();
    };
    // Alt+Left and Alt+Right are bound neither by the menus nor by the editor.
    for (const Key& key :
         {Key{"ActionNavigateBack", "Back", "Alt+Left", &TfrmMain::NavigateBack},
          Key{"ActionNavigateForward", "Forward", "Alt+Right", &TfrmMain::NavigateForward}}) {
        auto* action = new QAction(QString::fromLatin1(key.Caption), this);
        action->setObjectName(QString::fromLatin1(key.Name));
        action->setShortcut(QKeySequence(QString::fromLatin1(key.Keys)));
        action->setShortcutContext(Qt::WindowShortcut);
        addAction(action);
        connect(action, &QAction::triggered, this, [this, go = key.Go] { (this->*go)(); });
    }
}

void TfrmMain::JumpStarting(TfrmEdit& page) {
    navigation_->Record(PlaceOf(page));
}

namespace {

bool GoTo(TfrmMain& window, const TNavPlace& place) {
    TfrmEdit* page = window.FindPage(place.File);
    std::error_code ec;
    if (!page && std::filesystem::is_regular_file(place.File, ec)) page = window.OpenFile(place.File, false);
    if (!page) return false;
    window.ActivatePage(*page);
    TPageEditor& memo = *page->Memo();
    const int line = std::min(place.Line, std::max(0, memo.lines() - 1));
    memo.SetCaret(line, place.Column);
    memo.ensureLineVisible(line);
    return true;
}

} // namespace

bool TfrmMain::NavigateBack() {
    TfrmEdit* page = ActivePage();
    if (!page) return false;
    while (const auto place = navigation_->Back(PlaceOf(*page))) {
        if (GoTo(*this, *place)) return true;
        navigation_->Forget(place->File); // its page was closed and never saved
    }
    return false;
}

bool TfrmMain::NavigateForward() {
    TfrmEdit* page = ActivePage();
    if (!page) return false;
    while (const auto place = navigation_->Forward(PlaceOf(*page))) {
        if (GoTo(*this, *place)) return true;
        navigation_->Forget(place->File);
    }
    return false;
}

} // namespace velkor
