// The language server on standard input and output where pipes cannot be polled (Windows): a thread
// reads the input and hands it over, while the server waits for it or for its next due compile.
#include "lsp/stdio_server.h"

#include "lsp/language_server.h"

#include <io.h>

#include <condition_variable>
#include <cstdio>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace velkor::lsp {

namespace {

void WriteAll(const std::string& bytes) {
    std::fwrite(bytes.data(), 1, bytes.size(), stdout);
    std::fflush(stdout);
}

// What the reader has received and not yet handed over, and whether the input has ended.
struct Inbox {
    std::mutex mutex;
    std::condition_variable arrived;
    std::string bytes;
    bool ended = false;
};

void ReadInput(const std::shared_ptr<Inbox>& inbox) {
    char buffer[65536];
    for (;;) {
        // A read returns what the pipe holds, not a full buffer.
        const int n = _read(_fileno(stdin), buffer, sizeof buffer);
        std::lock_guard lock(inbox->mutex);
        if (n <= 0) {
            inbox->ended = true;
            inbox->arrived.notify_one();
            return;
        }
        inbox->bytes.append(buffer, static_cast<std::size_t>(n));
        inbox->arrived.notify_one();
    }
}

} // namespace

int RunStdioServer() {
    TLanguageServer server(WriteAll);
    auto inbox = std::make_shared<Inbox>();
    // Left blocked in its read when the client says exit: the process ends it.
    std::thread(ReadInput, inbox).detach();
    for (;;) {
        std::string received;
        bool ended = false;
        {
            std::unique_lock lock(inbox->mutex);
            const auto ready = [&] { return !inbox->bytes.empty() || inbox->ended; };
            if (const auto due = server.NextDue())
                inbox->arrived.wait_until(lock, *due, ready);
            else
                inbox->arrived.wait(lock, ready);
            received.swap(inbox->bytes);
            ended = inbox->ended;
        }
        if (!received.empty()) {
            server.Receive(received);
            server.Process();
            if (server.ExitRequested()) return server.ExitCode();
        }
        if (ended) return server.ExitCode(); // the client is gone
        server.RunDue(TClock::now());
    }
}

} // namespace velkor::lsp
