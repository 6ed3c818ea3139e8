#include "ide/nav_history.h"

#include <algorithm>

namespace velkor {

void TNavHistory::Push(std::vector<TNavPlace>& stack, const TNavPlace& place) {
    // Jumping twice from one place returns there once.
    if (!stack.empty() && stack.back() == place) return;
    if (stack.size() >= kLimit) stack.erase(stack.begin());
    stack.push_back(place);
}

void TNavHistory::Record(const TNavPlace& from) {
    Push(back_, from);
    forward_.clear();
}

std::optional<TNavPlace> TNavHistory::Back(const TNavPlace& current) {
    while (!back_.empty() && back_.back() == current) back_.pop_back();
    if (back_.empty()) return std::nullopt;
    TNavPlace target = back_.back();
    back_.pop_back();
    Push(forward_, current);
    return target;
}

std::optional<TNavPlace> TNavHistory::Forward(const TNavPlace& current) {
    while (!forward_.empty() && forward_.back() == current) forward_.pop_back();
    if (forward_.empty()) return std::nullopt;
    TNavPlace target = forward_.back();
    forward_.pop_back();
    Push(back_, current);
    return target;
}

void TNavHistory::Forget(const std::string& file) {
    for (auto* stack : {&back_, &forward_})
        std::erase_if(*stack, [&](const TNavPlace& place) { return place.File == file; });
}

} // namespace velkor
