// Work that would freeze the window (a compile, a build) runs in a thread of its own while the window's
// event loop goes on: it repaints, takes input, shows the progress and can stop the work. The caller still
// waits for the result, so commands that chain a compile and a build read as before.
#pragma once

#include <exception>
#include <functional>
#include <string>

class QString;

namespace velkor {

class TPageHost;

// Thrown from a message callback of stopped work: it unwinds the compiler or the assembler like any error.
class EJobStopped : public std::exception {
public:
    const char* what() const noexcept override { return "Stopped by the user."; }
};

// What the work sees: its message sink (safe to call from the work's thread; throws EJobStopped once a
// stop was asked for) and the stop flag.
class TJobContext {
public:
    virtual ~TJobContext() = default;
    virtual void Output(const std::string& line) = 0;
    virtual bool StopRequested() const = 0;
    // Throws EJobStopped when a stop was asked for.
    void CheckStop() const {
        if (StopRequested()) throw EJobStopped();
    }
};

// Runs `work` in its own thread and returns when it is done. Each line given to the context's Output
// reaches `host.Output` on this thread, in order, in batches. An exception of the work is thrown again
// here. Returns false without running anything when other work is running already.
bool RunJob(TPageHost& host, const QString& caption, const std::function<void(TJobContext&)>& work);

// Whether work is running, and a request to stop it (at its next message).
bool JobRunning();
void StopJob();

} // namespace velkor
