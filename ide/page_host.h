// What an editor page needs of the window that holds it.
#pragma once

#include <string>

class QString;

namespace velkor {

class TfrmEdit;
class TfrmHelp;
class TfrmIffView;
class TfrmOutput;

class TPageHost {
public:
    virtual ~TPageHost() = default;

    // Appends one line to the output list (the output callback of the compiler and the assembler).
    virtual void Output(const std::string& line) = 0;
    virtual TfrmOutput& OutputView() = 0;
    virtual TfrmIffView& IffView() = 0;
    virtual TfrmHelp& HelpView() = 0;
    // The open procedure: opens (or activates) a file as a page; null when nothing was opened.
    virtual TfrmEdit* OpenFile(const std::string& name, bool addToRecent) = 0;
    virtual void AddRecent(const std::string& path) = 0;
    // The number of the next untitled page; each call takes one.
    virtual int TakeUntitledNumber() = 0;
    // Closes the page when its save question allows it; true when it was closed.
    virtual bool ClosePage(TfrmEdit& page) = 0;
    // Work that runs beside the window (a compile, a build) has started or ended: the window shows its
    // progress and a way to stop it meanwhile.
    virtual void JobStarted(const QString& caption) { static_cast<void>(caption); }
    virtual void JobFinished() {}
    // The page's caret is about to jump (Find Declaration, Go to Line, a symbol list): the place it leaves
    // is kept for going back.
    virtual void JumpStarting(TfrmEdit& page) { static_cast<void>(page); }
};

} // namespace velkor
