// Any bytes parse as a registry store file, formatting what was parsed reads back the same, and any key
// path, value name and text survive the file exactly.
#include "platform/registry.h"
#include "platform/registry_file_store.h"
#include "tests/fuzz/fuzz_check.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace {

using velkor::fuzz::Check;
using velkor::fuzz::Fail;

using velkor::RegistryKey;

bool SameKeys(const std::vector<RegistryKey>& a, const std::vector<RegistryKey>& b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
        if (a[i].path != b[i].path || a[i].values.size() != b[i].values.size()) return false;
        for (size_t j = 0; j < a[i].values.size(); ++j)
            if (a[i].values[j].name != b[i].values[j].name || a[i].values[j].data != b[i].values[j].data)
                return false;
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view text(reinterpret_cast<const char*>(data), size);

    auto keys = velkor::ParseRegistryStore(text);
    std::string formatted = velkor::FormatRegistryStore(keys);
    auto again = velkor::ParseRegistryStore(formatted);
    Check(SameKeys(again, keys));
    Check(velkor::FormatRegistryStore(again) == formatted);

    // The input cut into a key path, a value name and a text at the first two 0xFF bytes.
    size_t first = text.find('\xFF');
    size_t second = first == std::string_view::npos ? first : text.find('\xFF', first + 1);
    std::string_view path = text.substr(0, first);
    std::string_view name =
        first == std::string_view::npos ? std::string_view() : text.substr(first + 1, second - first - 1);
    std::string_view value = second == std::string_view::npos ? std::string_view() : text.substr(second + 1);
    std::vector<RegistryKey> one{{velkor::NormaliseKeyPath(path), {{std::string(name), std::string(value)}}}};
    Check(SameKeys(velkor::ParseRegistryStore(velkor::FormatRegistryStore(one)), one));
    return 0;
}
