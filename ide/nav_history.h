// Where the caret was before each jump (Find Declaration, Go to Line, a symbol list, an error), so that
// Back and Forward can return there, across pages, as a web browser does with pages.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace velkor {

struct TNavPlace {
    std::string File; // the page's file name
    int Line = 0;     // from 0
    int Column = 0;   // from 0
    bool operator==(const TNavPlace&) const = default;
};

class TNavHistory {
public:
    static constexpr std::size_t kLimit = 100; // places kept each way; the oldest go first

    // A jump leaves `from`: it becomes the place Back returns to, and Forward has nowhere to go.
    void Record(const TNavPlace& from);
    // The place to go back (or forward) to from `current`, which becomes the place to return to the
    // other way; nothing when there is none.
    std::optional<TNavPlace> Back(const TNavPlace& current);
    std::optional<TNavPlace> Forward(const TNavPlace& current);
    bool CanGoBack() const { return !back_.empty(); }
    bool CanGoForward() const { return !forward_.empty(); }
    // A place whose file is gone (its page closed unsaved) is dropped.
    void Forget(const std::string& file);

private:
    static void Push(std::vector<TNavPlace>& stack, const TNavPlace& place);
    std::vector<TNavPlace> back_;    // newest last
    std::vector<TNavPlace> forward_; // newest last
};

} // namespace velkor
