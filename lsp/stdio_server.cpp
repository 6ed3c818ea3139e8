#include "lsp/stdio_server.h"

#include "lsp/language_server.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace velkor::lsp {

namespace {

void WriteAll(const std::string& bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t n = ::write(STDOUT_FILENO, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return; // the client is gone; its end of input follows
        done += static_cast<std::size_t>(n);
    }
}

} // namespace

int RunStdioServer() {
    // A client that goes away must not kill the server mid-write; the write just fails.
    std::signal(SIGPIPE, SIG_IGN);
    TLanguageServer server(WriteAll);
    char buffer[65536];
    for (;;) {
        // Wait for input, or until the next compile of a changed document is due.
        int timeout = -1;
        if (const auto due = server.NextDue()) {
            const auto wait = std::chrono::ceil<std::chrono::milliseconds>(*due - TClock::now()).count();
            timeout = static_cast<int>(std::clamp<long long>(wait, 0, 60000));
        }
        pollfd in{STDIN_FILENO, POLLIN, 0};
        const int ready = ::poll(&in, 1, timeout);
        if (ready < 0 && errno != EINTR) return 1;
        if (ready > 0) {
            // Everything already there is read before any of it is handled, so that a cancellation
            // reaches the request it names while that still waits.
            do {
                const ssize_t n = ::read(STDIN_FILENO, buffer, sizeof buffer);
                if (n < 0 && errno == EINTR) continue;
                if (n <= 0) return server.ExitCode(); // end of input: the client is gone
                server.Receive(std::string_view(buffer, static_cast<std::size_t>(n)));
                in.revents = 0;
            } while (::poll(&in, 1, 0) > 0 && (in.revents & POLLIN));
            server.Process();
            if (server.ExitRequested()) return server.ExitCode();
        }
        server.RunDue(TClock::now());
    }
}

} // namespace velkor::lsp
