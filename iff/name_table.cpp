#include "iff/name_table.h"

#include <algorithm>

namespace velkor {

std::size_t TNameTable::SlotOf(std::uint32_t key) const {
    const std::size_t mask = slots_.size() - 1;
    // Checksums are spread evenly already; their low bits serve as the home slot.
    std::size_t i = key & mask;
    while (slots_[i].value >= 0 && slots_[i].key != key) i = (i + 1) & mask;
    return i;
}

void TNameTable::Add(std::uint32_t key, std::string value) {
    if (2 * (values_.size() + 1) > slots_.size()) {
        std::vector<Slot> old(std::max<std::size_t>(64, 2 * slots_.size()));
        old.swap(slots_);
        for (const Slot& slot : old)
            if (slot.value >= 0) slots_[SlotOf(slot.key)] = slot;
    }
    Slot& slot = slots_[SlotOf(key)];
    if (slot.value >= 0) return;
    slot = {key, static_cast<int>(values_.size())};
    values_.push_back(std::move(value));
}

const std::string* TNameTable::Find(std::uint32_t key) const {
    if (slots_.empty()) return nullptr;
    const Slot& slot = slots_[SlotOf(key)];
    return slot.value < 0 ? nullptr : &values_[static_cast<std::size_t>(slot.value)];
}

void TNameTable::clear() {
    slots_.clear();
    values_.clear();
}

} // namespace velkor
