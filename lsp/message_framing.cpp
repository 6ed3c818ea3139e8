#include "lsp/message_framing.h"

#include "platform/strings.h"

#include <algorithm>
#include <charconv>

namespace velkor::lsp {

namespace {

std::string_view Trim(std::string_view s) {
    while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
    while (!s.empty() && (s.back() == ' ' || s.back() == '\t')) s.remove_suffix(1);
    return s;
}

} // namespace

bool TMessageReader::TakeHeader(std::vector<TFramedMessage>& out) {
    const std::size_t end = buffer_.find("\r\n\r\n");
    if (end == std::string::npos) {
        if (buffer_.size() > kMaxHeaderLength) {
            // Garbage without a header end: keep only what might still start one.
            buffer_.erase(0, buffer_.size() - 3);
            out.push_back({{}, "header too long"});
        }
        return false;
    }
    const std::string_view header(buffer_.data(), end);
    std::size_t length = 0;
    bool haveLength = false;
    std::string error;
    std::size_t at = 0;
    while (at <= header.size()) {
        std::size_t next = header.find("\r\n", at);
        if (next == std::string_view::npos) next = header.size();
        const std::string_view field = header.substr(at, next - at);
        at = next + 2;
        const std::size_t colon = field.find(':');
        if (colon == std::string_view::npos) {
            error = "header field without a colon";
            continue;
        }
        if (!SameText(Trim(field.substr(0, colon)), "Content-Length")) continue;
        const std::string_view value = Trim(field.substr(colon + 1));
        std::size_t n = 0;
        const auto [ptr, ec] = std::from_chars(value.data(), value.data() + value.size(), n);
        if (ec != std::errc() || ptr != value.data() + value.size() || value.empty()) {
            error = "bad Content-Length";
            continue;
        }
        length = n;
        haveLength = true;
    }
    buffer_.erase(0, end + 4);
    if (!haveLength) {
        out.push_back({{}, error.empty() ? "no Content-Length" : error});
        return true;
    }
    if (length > kMaxContentLength) {
        out.push_back({{}, "content too long"});
        skipping_ = length;
        return true;
    }
    inContent_ = true;
    contentLength_ = length;
    return true;
}

void TMessageReader::Feed(std::string_view bytes, std::vector<TFramedMessage>& out) {
    if (skipping_) {
        const std::size_t n = std::min(skipping_, bytes.size());
        skipping_ -= n;
        bytes.remove_prefix(n);
    }
    buffer_.append(bytes);
    for (;;) {
        if (skipping_) {
            const std::size_t n = std::min(skipping_, buffer_.size());
            skipping_ -= n;
            buffer_.erase(0, n);
            if (skipping_) return;
        }
        if (!inContent_) {
            if (!TakeHeader(out)) return;
            continue;
        }
        if (buffer_.size() < contentLength_) return;
        out.push_back({buffer_.substr(0, contentLength_), {}});
        buffer_.erase(0, contentLength_);
        inContent_ = false;
    }
}

std::string FrameMessage(std::string_view body) {
    std::string out = "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n";
    out.append(body);
    return out;
}

} // namespace velkor::lsp
