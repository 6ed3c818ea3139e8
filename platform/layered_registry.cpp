#include "platform/layered_registry.h"

#include "platform/strings.h"

#include <algorithm>

namespace velkor {

bool LayeredRegistry::KeyExists(std::string_view key) const {
    return own_.KeyExists(key) || fallback_.KeyExists(key);
}

bool LayeredRegistry::OpenKey(std::string_view key, bool canCreate) {
    if (own_.KeyExists(key) || fallback_.KeyExists(key)) return true;
    return own_.OpenKey(key, canCreate);
}

std::vector<std::string> LayeredRegistry::ValueNames(std::string_view key) const {
    std::vector<std::string> names = own_.ValueNames(key);
    const size_t ownCount = names.size();
    for (auto& name : fallback_.ValueNames(key)) {
        auto ownEnd = names.begin() + static_cast<std::ptrdiff_t>(ownCount);
        if (std::none_of(names.begin(), ownEnd, [&](const std::string& n) { return SameText(n, name); }))
            names.push_back(std::move(name));
    }
    return names;
}

std::optional<std::string> LayeredRegistry::ReadString(std::string_view key, std::string_view name) const {
    if (auto value = own_.ReadString(key, name)) return value;
    return fallback_.ReadString(key, name);
}

void LayeredRegistry::WriteString(std::string_view key, std::string_view name, std::string_view value) {
    own_.WriteString(key, name, value);
}

bool LayeredRegistry::DeleteValue(std::string_view key, std::string_view name) {
    return own_.DeleteValue(key, name);
}

bool LayeredRegistry::DeleteKey(std::string_view key) {
    return own_.DeleteKey(key);
}

} // namespace velkor
