// From a message of the output list to the place it names.
#include "ide/edit_page.h"
#include "ide/ide_ini.h"
#include "ide/main_window.h"
#include "ide/message_location.h"
#include "ide/output_model.h"
#include "ide/output_view.h"
#include "platform/path_resolver.h"

#include <QFileInfo>
#include <QLabel>
#include <QPointer>

namespace velkor {

namespace {

bool SameName(const QString& a, const std::string& b) {
    return a.compare(ToQ(b), Qt::CaseInsensitive) == 0;
}

} // namespace

bool TfrmMain::GotoMessage(int row) {
    output_->Flush();
    const QStringList& lines = output_->Model().Lines();
    if (row < 0 || row >= lines.size()) return false;
    const std::optional<TMessageLocation> at = ParseMessageLocation(lines[row]);
    if (!at) return false;

    // The page the jump leaves: opening the unit may close an empty one.
    const QPointer<TfrmEdit> from = ActivePage();
    TfrmEdit* page = nullptr;
    if (SameName(at->UnitName, output_->OriginUnit())) page = FindPage(output_->OriginFile());
    if (!page) {
        for (TfrmEdit* open : Pages()) {
            if (QFileInfo(open->Caption()).completeBaseName().compare(at->UnitName, Qt::CaseInsensitive) ==
                0) {
                page = open;
                break;
            }
        }
    }
    if (!page) {
        const std::string file = FindUnitFile(at->UnitName, output_->OriginSearchPath());
        if (!file.empty()) page = OpenFile(file, true);
    }
    if (!page) {
        panel0_->setText(QStringLiteral("Unit %1 not found").arg(at->UnitName));
        return false;
    }
    if (from && (from == page || !from->Text().trimmed().isEmpty())) JumpStarting(*from);
    ActivatePage(*page);
    TPageEditor& memo = *page->Memo();
    const int line = std::min(at->Line, std::max(1, memo.lines())) - 1; // the editor counts from 0
    memo.SetCaret(line, 0);
    memo.setFirstVisibleLine(std::max(0, line - 5));
    if (output_->Model().Kind(row) == TMessageKind::Error) memo.SetErrorLine(line);
    return true;
}

bool TfrmMain::NextMessage(bool forward) {
    // Stepping selects the line; the list's LocationRequested signal then opens the place.
    return output_->SelectMessage(forward);
}

} // namespace velkor
