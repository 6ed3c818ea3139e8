#include "ide/session.h"

#include "ide/edit_page.h"
#include "ide/ide_ini.h"
#include "ide/main_window.h"
#include "platform/path_resolver.h"

#include <QTabWidget>

namespace velkor {

namespace {

constexpr const char* kSection = "session";

std::string Key(const char* name, std::size_t index) {
    return name + std::to_string(index);
}

} // namespace

bool SessionRestoreEnabled() {
    return IdeIni().ReadBool("main", "restore_session", true);
}

void WriteSession(const TSession& session) {
    TIniFile ini = IdeIni();
    ini.EraseSection(kSection);
    ini.WriteInteger(kSection, "count", static_cast<std::int32_t>(session.Pages.size()));
    for (std::size_t i = 0; i < session.Pages.size(); ++i) {
        const TSessionPage& page = session.Pages[i];
        ini.WriteString(kSection, Key("file", i), page.File);
        ini.WriteInteger(kSection, Key("line", i), page.Line);
        ini.WriteInteger(kSection, Key("column", i), page.Column);
        ini.WriteInteger(kSection, Key("top", i), page.TopLine);
    }
    ini.WriteInteger(kSection, "active", session.Active);
    ini.WriteString(kSection, "docks", session.DockState.toBase64().toStdString());
}

TSession ReadSession() {
    const TIniFile ini = IdeIni();
    TSession session;
    // A hand-edited count is no reason to read forever.
    const int count = std::clamp(ini.ReadInteger(kSection, "count", 0), 0, 1000);
    for (int i = 0; i < count; ++i) {
        const auto n = static_cast<std::size_t>(i);
        TSessionPage page;
        page.File = ini.ReadString(kSection, Key("file", n), "");
        page.Line = std::max(0, ini.ReadInteger(kSection, Key("line", n), 0));
        page.Column = std::max(0, ini.ReadInteger(kSection, Key("column", n), 0));
        page.TopLine = std::max(0, ini.ReadInteger(kSection, Key("top", n), 0));
        if (!page.File.empty()) session.Pages.push_back(std::move(page));
    }
    session.Active = ini.ReadInteger(kSection, "active", -1);
    if (session.Active >= static_cast<int>(session.Pages.size())) session.Active = -1;
    session.DockState =
        QByteArray::fromBase64(QByteArray::fromStdString(ini.ReadString(kSection, "docks", "")));
    return session;
}

void TfrmMain::SaveSession() {
    TSession session;
    for (TfrmEdit* page : Pages()) {
        if (!IsRegularFile(page->FileName())) continue; // never saved: nothing to reopen
        if (page == ActivePage()) session.Active = static_cast<int>(session.Pages.size());
        const TPageEditor& memo = *page->Memo();
        session.Pages.push_back(
            {page->FileName(), memo.CaretLine(), memo.CaretColumn(), memo.firstVisibleLine()});
    }
    session.DockState = saveState();
    WriteSession(session);
}

bool TfrmMain::RestoreSession(bool pages) {
    if (!SessionRestoreEnabled()) return false;
    const TSession session = ReadSession();
    if (!session.DockState.isEmpty()) restoreState(session.DockState);
    if (!pages) return false;
    TfrmEdit* active = nullptr;
    for (std::size_t i = 0; i < session.Pages.size(); ++i) {
        const TSessionPage& saved = session.Pages[i];
        if (!IsRegularFile(saved.File)) continue; // gone since
        TfrmEdit* page = OpenFile(saved.File, false);
        if (!page) continue;
        TPageEditor& memo = *page->Memo();
        const int line = std::min(saved.Line, std::max(0, memo.lines() - 1));
        memo.SetCaret(line, saved.Column);
        memo.setFirstVisibleLine(saved.TopLine);
        if (static_cast<int>(i) == session.Active) active = page;
    }
    if (active) ActivatePage(*active);
    return !Pages().isEmpty();
}

} // namespace velkor
