// The language server's message handling. An odd first byte feeds the rest to the server as raw bytes, in
// pieces, headers and all; an even one frames each line of the rest as one message body after a good
// initialize, so that the mutations reach the requests. Every reply must be a well-formed JSON object.
#include "lsp/language_server.h"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

using namespace velkor::lsp;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1) return 0;
    const bool raw = data[0] & 1;
    const std::string_view input(reinterpret_cast<const char*>(data + 1), size - 1);

    std::string replies;
    TLanguageServer server([&](const std::string& bytes) { replies += bytes; });
    const auto drain = [&] {
        server.Process();
        server.RunDue(TClock::time_point::max());
    };
    if (raw) {
        // Piece sizes from the input itself, so that header and content boundaries fall anywhere.
        std::size_t at = 0;
        while (at < input.size() && !server.ExitRequested()) {
            const std::size_t n = 1 + static_cast<unsigned char>(input[at]) % 64;
            server.Receive(input.substr(at, n));
            drain();
            at += n;
        }
    } else {
        server.Receive(
            FrameMessage(R"({"jsonrpc":"2.0","id":0,"method":"initialize","params":{"capabilities":{}}})"));
        std::size_t at = 0;
        while (at <= input.size() && !server.ExitRequested()) {
            std::size_t end = input.find('\n', at);
            if (end == std::string_view::npos) end = input.size();
            server.Receive(FrameMessage(input.substr(at, end - at)));
            drain();
            at = end + 1;
        }
    }

    std::vector<TFramedMessage> messages;
    TMessageReader reader;
    reader.Feed(replies, messages);
    for (const auto& m : messages) {
        const auto reply = nlohmann::json::parse(m.Body, nullptr, false);
        if (!m.Error.empty() || reply.is_discarded() || !reply.is_object() || reply["jsonrpc"] != "2.0")
            __builtin_trap();
    }
    return 0;
}
