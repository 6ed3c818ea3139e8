// From the messages of a compile to the Problems view and the marks in the pages.
#include "ide/edit_page.h"
#include "ide/file_tree_view.h"
#include "ide/ide_ini.h"
#include "ide/main_window.h"
#include "ide/message_location.h"
#include "ide/output_view.h"
#include "ide/problem_markers.h"
#include "ide/problems_view.h"
#include "platform/strings.h"

#include <QAction>
#include <QFileInfo>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>

#include <filesystem>

namespace velkor {

namespace {

bool SameFile(const std::string& a, const std::string& b) {
    return LowerCase(a) == LowerCase(b);
}

} // namespace

void TfrmMain::CreateProblemTracking() {
    problems_ = new TfrmProblems(this);
    connect(problems_, &TfrmProblems::ProblemActivated, this, &TfrmMain::GotoProblem);
    QMenu* view = menuBar()->findChild<QMenu*>(QStringLiteral("MenuView"));
    QAction* item = AddItem(view, "MenuViewProblems", "P&roblems", "");
    item->setCheckable(true);
    connect(item, &QAction::triggered, this, [this] { problems_->setVisible(!problems_->isVisible()); });
    connect(view, &QMenu::aboutToShow, this, [this, item] { item->setChecked(problems_->isVisible()); });
}

void TfrmMain::PageCompiled(TfrmEdit& page) {
    output_->Flush();
    const std::string compiled = page.FileName();
    // The unit of a message is found as a double click on it finds it, without opening anything.
    const auto fileOfUnit = [&](const QString& unit) -> std::string {
        if (unit.compare(ToQ(output_->OriginUnit()), Qt::CaseInsensitive) == 0) return output_->OriginFile();
        for (TfrmEdit* open : Pages()) {
            if (QFileInfo(open->Caption()).completeBaseName().compare(unit, Qt::CaseInsensitive) == 0)
                return open->FileName();
        }
        return FindUnitFile(unit, output_->OriginSearchPath());
    };
    problems_->SetProblems(compiled, CollectProblems(output_->Lines(), fileOfUnit));
    // The compile may have found more folders; a hidden tree looks again when it is shown.
    if (files_->isVisible()) UpdateFileTree();
    for (TfrmEdit* open : Pages()) {
        TProblemMarkers::Of(*open->Memo()).Clear(compiled);
        PlaceProblemMarkers(*open);
    }
}

void TfrmMain::PlaceProblemMarkers(TfrmEdit& page) {
    if (!problems_) return;
    TProblemMarkers& markers = TProblemMarkers::Of(*page.Memo());
    for (const TfrmProblems::TEntry& entry : problems_->Entries()) {
        if (!SameFile(entry.Problem.File, page.FileName())) continue;
        // A page opened after the compile gets the marks it has not got yet.
        if (markers.CurrentLine(entry.CompiledFile, entry.Problem.Line - 1) >= 0) continue;
        markers.Add(entry.CompiledFile, entry.Problem.Line - 1, entry.Problem.Kind, entry.Problem.Text);
    }
}

void TfrmMain::ForgetProblemsOf(TfrmEdit& page) {
    if (!problems_) return;
    problems_->RemoveCompile(page.FileName());
    for (TfrmEdit* open : Pages()) {
        if (open != &page) TProblemMarkers::Of(*open->Memo()).Clear(page.FileName());
    }
}

bool TfrmMain::GotoProblem(int entry) {
    if (entry < 0 || entry >= static_cast<int>(problems_->Entries().size())) return false;
    const TfrmProblems::TEntry place = problems_->Entries()[static_cast<std::size_t>(entry)];
    // The page the jump leaves: opening the unit may close an empty one.
    const QPointer<TfrmEdit> from = ActivePage();
    TfrmEdit* page = FindPage(place.Problem.File);
    std::error_code ec;
    if (!page && std::filesystem::is_regular_file(place.Problem.File, ec))
        page = OpenFile(place.Problem.File, true);
    if (!page) {
        panel0_->setText(QStringLiteral("Unit %1 not found").arg(place.Problem.UnitName));
        return false;
    }
    if (from && (from == page || !from->Text().trimmed().isEmpty())) JumpStarting(*from);
    ActivatePage(*page);
    TPageEditor& memo = *page->Memo();
    int line = TProblemMarkers::Of(memo).CurrentLine(place.CompiledFile, place.Problem.Line - 1);
    if (line < 0) line = std::min(place.Problem.Line, std::max(1, memo.lines())) - 1;
    memo.SetCaret(line, 0);
    memo.ensureLineVisible(line);
    return true;
}

} // namespace velkor
