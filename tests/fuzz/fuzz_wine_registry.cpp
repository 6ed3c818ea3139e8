// Any bytes parse as a Wine registry file without harm; the first key of a file is found again.
#include "platform/wine_registry.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view text(reinterpret_cast<const char*>(data), size);
    velkor::WineKeyValues(text, "Software\\Origin Systems\\Wing Commander Prophecy");
    velkor::WineKeyValues(text, "Software\\Wow6432Node\\Origin Systems\\Wing Commander Secret Ops");
    velkor::WineKeyExists(text, "Software");
    if (!velkor::WineKeyExists(text, "")) {
        // Only a text without any "[" line has no key at all.
        for (size_t pos = 0; pos < text.size(); pos = text.find('\n', pos) + 1) {
            if (text[pos] == '[') std::abort();
            if (text.find('\n', pos) == std::string_view::npos) break;
        }
    }
    return 0;
}
