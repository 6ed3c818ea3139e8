// The conditional symbols of #DEFINE, #UNDEF and #IFDEF, shared by a unit and its include children. A name
// may be defined more than once, and each #UNDEF takes out one definition. Names compare without regard to
// case. Every operation costs the same however many names there are: a unit of nothing but defines and
// tests must not take quadratic time.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace velkor {

class TDefines {
public:
    TDefines() = default;
    TDefines(std::initializer_list<std::string> names);

    void Add(std::string_view name);
    void Remove(std::string_view name); // one definition, when there is one
    bool Contains(std::string_view name) const;
    // Every definition still standing, by name in the order the names were first defined, as first written.
    std::vector<std::string> Names() const;

private:
    struct Entry {
        std::string spelling;  // as first written
        std::size_t count = 0; // definitions standing
    };
    std::unordered_map<std::string, Entry> entries_; // keyed by the upper-cased name
    std::vector<std::string> order_;                 // keys in the order of their first definition
};

} // namespace velkor
