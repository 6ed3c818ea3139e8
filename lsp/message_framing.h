// The base protocol of the language server: messages framed by a "Content-Length" header, read from a
// byte stream that may arrive in any pieces and may hold anything at all.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace velkor::lsp {

// A message body, or why the bytes where one should be were thrown away.
struct TFramedMessage {
    std::string Body;  // the content, when Error is empty
    std::string Error; // what was wrong with the header
};

class TMessageReader {
public:
    // Contents beyond this are skipped unread: no editor sends a unit that large.
    static constexpr std::size_t kMaxContentLength = 64u << 20;
    // A header section longer than this is not a header.
    static constexpr std::size_t kMaxHeaderLength = 8192;

    // Takes the next bytes of the stream; every message completed by them is appended to `out`.
    void Feed(std::string_view bytes, std::vector<TFramedMessage>& out);

private:
    // Reads one header section from the front of buffer_; false when it is not complete yet.
    bool TakeHeader(std::vector<TFramedMessage>& out);

    std::string buffer_;            // bytes not yet consumed
    bool inContent_ = false;        // a header has been read and its content is awaited
    std::size_t contentLength_ = 0; // the awaited content's length
    std::size_t skipping_ = 0;      // bytes of an oversized content still to be dropped
};

// The header and the body, ready to write.
std::string FrameMessage(std::string_view body);

} // namespace velkor::lsp
