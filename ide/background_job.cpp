#include "ide/background_job.h"

#include "ide/page_host.h"

#include <QEventLoop>
#include <QObject>
#include <QString>

#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

namespace velkor {

namespace {

std::atomic<bool> g_running{false};
std::atomic<bool> g_stop{false};

class TJobState : public TJobContext {
public:
    explicit TJobState(QObject& receiver, std::function<void()> drain)
        : receiver_(receiver), drain_(std::move(drain)) {}

    void Output(const std::string& line) override {
        CheckStop();
        bool wake = false;
        {
            std::lock_guard lock(mutex_);
            wake = lines_.empty();
            lines_.push_back(line);
        }
        // One wake-up per batch: the window takes everything that piled up meanwhile.
        if (wake) QMetaObject::invokeMethod(&receiver_, drain_, Qt::QueuedConnection);
    }
    bool StopRequested() const override { return g_stop.load(); }

    std::vector<std::string> Take() {
        std::lock_guard lock(mutex_);
        return std::exchange(lines_, {});
    }

private:
    QObject& receiver_;
    std::function<void()> drain_;
    std::mutex mutex_;
    std::vector<std::string> lines_; // messages not yet handed to the window
};

} // namespace

bool JobRunning() {
    return g_running.load();
}

void StopJob() {
    if (g_running.load()) g_stop.store(true);
}

bool RunJob(TPageHost& host, const QString& caption, const std::function<void(TJobContext&)>& work) {
    bool expected = false;
    if (!g_running.compare_exchange_strong(expected, true)) return false;
    g_stop.store(false);

    QObject receiver;
    QEventLoop loop;
    std::unique_ptr<TJobState> state;
    const auto drain = [&] {
        for (const std::string& line : state->Take()) host.Output(line);
    };
    state = std::make_unique<TJobState>(receiver, drain);
    std::exception_ptr failure;
    host.JobStarted(caption);
    std::thread worker([&] {
        try {
            work(*state);
        } catch (...) {
            failure = std::current_exception();
        }
        QMetaObject::invokeMethod(
            &receiver, [&loop] { loop.quit(); }, Qt::QueuedConnection);
    });
    loop.exec();
    worker.join();
    drain();
    host.JobFinished();
    g_stop.store(false);
    g_running.store(false);
    if (failure) std::rethrow_exception(failure);
    return true;
}

} // namespace velkor
