// The last session: the pages that were open (saved files only), their carets and top lines, the active
// one and the dock layout, kept in the settings file's "session" section when the window closes and
// brought back at the next start unless "restore_session" in section "main" is off.
#pragma once

#include <QByteArray>

#include <string>
#include <vector>

namespace velkor {

struct TSessionPage {
    std::string File;
    int Line = 0;    // caret, from 0
    int Column = 0;  // caret, from 0
    int TopLine = 0; // first visible line, from 0
    bool operator==(const TSessionPage&) const = default;
};

struct TSession {
    std::vector<TSessionPage> Pages;
    int Active = -1;      // index into Pages, or -1
    QByteArray DockState; // QMainWindow::saveState
};

bool SessionRestoreEnabled();
void WriteSession(const TSession& session);
TSession ReadSession();

} // namespace velkor
