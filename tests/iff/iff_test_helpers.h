// Helpers for IFF tests: hand-built binary IFF (exact bytes, including the malformed ones a writer
// refuses) and a check for an exception with its exact message.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <exception>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace velkor::test {

using Bytes = std::vector<std::uint8_t>;

inline Bytes Str(std::string_view s) {
    return Bytes(s.begin(), s.end());
}

inline Bytes Be32(std::uint32_t v) {
    return {static_cast<std::uint8_t>(v >> 24), static_cast<std::uint8_t>(v >> 16),
            static_cast<std::uint8_t>(v >> 8), static_cast<std::uint8_t>(v)};
}

inline Bytes Cat(std::initializer_list<Bytes> parts) {
    Bytes out;
    for (const Bytes& p : parts) out.insert(out.end(), p.begin(), p.end());
    return out;
}

// A chunk with its true size in the header and a pad byte when odd.
inline Bytes Chunk(std::string_view id, const Bytes& data) {
    Bytes out = Cat({Str(id), Be32(static_cast<std::uint32_t>(data.size())), data});
    if (data.size() % 2) out.push_back(0);
    return out;
}

// A FORM whose size counts its type and the given children.
inline Bytes Form(std::string_view type, std::initializer_list<Bytes> children = {}) {
    Bytes body = Str(type);
    for (const Bytes& c : children) body.insert(body.end(), c.begin(), c.end());
    return Cat({Str("FORM"), Be32(static_cast<std::uint32_t>(body.size())), body});
}

// Expects `body` to throw exactly `Error` with exactly `message`.
template <typename Error>
void ExpectError(const std::function<void()>& body, const std::string& message) {
    try {
        body();
        ADD_FAILURE() << "no exception, expected: " << message;
    } catch (const Error& e) {
        EXPECT_EQ(std::string(e.what()), message);
    } catch (const std::exception& e) {
        ADD_FAILURE() << "wrong exception type: " << e.what();
    }
}

} // namespace velkor::test
