#include "compiler/defines.h"

#include "platform/strings.h"

namespace velkor {

TDefines::TDefines(std::initializer_list<std::string> names) {
    for (const auto& name : names) Add(name);
}

void TDefines::Add(std::string_view name) {
    std::string key = UpperCase(name);
    auto [it, added] = entries_.try_emplace(key);
    if (added) {
        it->second.spelling = name;
        order_.push_back(std::move(key));
    }
    ++it->second.count;
}

void TDefines::Remove(std::string_view name) {
    const auto it = entries_.find(UpperCase(name));
    if (it != entries_.end() && it->second.count > 0) --it->second.count;
}

bool TDefines::Contains(std::string_view name) const {
    const auto it = entries_.find(UpperCase(name));
    return it != entries_.end() && it->second.count > 0;
}

std::vector<std::string> TDefines::Names() const {
    std::vector<std::string> names;
    for (const auto& key : order_) {
        const Entry& entry = entries_.at(key);
        names.insert(names.end(), entry.count, entry.spelling);
    }
    return names;
}

} // namespace velkor
