#include "compiler/symbol_table.h"

#include "platform/strings.h"

#include <algorithm>
#include <cstdint>

namespace velkor {

namespace {
bool IsLocalKind(std::int32_t kind) {
    return kind == skLocalVar || kind == skPassVar || kind == skLocalConst || kind == skStackVar ||
           kind == skStaticVar;
}
} // namespace

std::string ShortString(std::string_view text) {
    return std::string(text.substr(0, kShortStringMax));
}

TSymbolTable::TSymbolTable(const TSymbolTable& other) {
    for (const auto& s : other.symbols_) Add(s);
}

void TSymbolTable::Add(TSymbol symbol) {
    symbol.Name = ShortString(symbol.Name);
    symbol.Text = ShortString(symbol.Text);
    const int position = Count();
    if (IsLocalKind(symbol.Kind) && firstLocal_ < 0) firstLocal_ = position;
    ++kindCounts_[symbol.Kind];
    symbols_.push_back(std::move(symbol));
    IndexAdd(position);
}

namespace {

constexpr std::uint64_t kEveryByte = 0x0101010101010101u;

// Eight characters, the first lowest.
std::uint64_t Word(const unsigned char* p, std::size_t n) {
    std::uint64_t w = 0;
    for (std::size_t i = 0; i < n; ++i) w |= std::uint64_t{p[i]} << (8 * i);
    return w;
}

// The eight characters upper-cased at once: a lower-case ASCII letter loses its 0x20 bit, nothing else
// changes. Each byte's sums stay below 0x100, so no carry reaches its neighbour.
std::uint64_t FoldUpper(std::uint64_t w) {
    const std::uint64_t ascii = ~w & kEveryByte * 0x80;
    const std::uint64_t low7 = w & kEveryByte * 0x7F;
    const std::uint64_t fromA = low7 + kEveryByte * (0x80 - 'a');     // high bit set from 'a' on
    const std::uint64_t pastZ = low7 + kEveryByte * (0x80 - 'z' - 1); // and from past 'z' on
    return w ^ ((fromA & ~pastZ & ascii) >> 2);
}

} // namespace

// A word at a time rather than a byte: nearly every operand is looked up.
std::size_t TSymbolTable::IndexHash(std::string_view name) {
    const auto* p = reinterpret_cast<const unsigned char*>(name.data());
    std::size_t n = name.size();
    std::uint64_t h = n * 0x9E3779B97F4A7C15u;
    auto mix = [&h](std::uint64_t w) {
        h = (h ^ FoldUpper(w)) * 0xC2B2AE3D27D4EB4Fu;
        h ^= h >> 29;
    };
    for (; n >= 8; p += 8, n -= 8) mix(Word(p, 8));
    if (n > 0) mix(Word(p, n));
    // The last multiply reaches the low bits only from below: names alike but for their last characters
    // would share home slots and build long probe runs without this final stir.
    h ^= h >> 32;
    h *= 0xD6E8FEB86659FD93u;
    return static_cast<std::size_t>(h ^ (h >> 32));
}

std::size_t TSymbolTable::NameIndex::SlotOf(const std::vector<TSymbol>& symbols, std::string_view name,
                                            std::size_t hash) const {
    const std::size_t mask = table.size() - 1;
    for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
        const IndexSlot& slot = table[i];
        if (slot.position < 0) return i;
        if (slot.hash == hash && SameText(symbols[static_cast<size_t>(slot.position)].Name, name)) return i;
    }
}

int TSymbolTable::NameIndex::Find(const std::vector<TSymbol>& symbols, std::string_view name,
                                  std::size_t hash) const {
    return table.empty() ? -1 : table[SlotOf(symbols, name, hash)].position;
}

void TSymbolTable::NameIndex::Add(const std::vector<TSymbol>& symbols, int position, std::size_t hash) {
    if (2 * (count + 1) > table.size()) {
        std::vector<IndexSlot> old(std::max<std::size_t>(64, 2 * table.size()));
        old.swap(table);
        const std::size_t mask = table.size() - 1;
        for (const IndexSlot& slot : old) {
            if (slot.position < 0) continue;
            std::size_t i = slot.hash & mask;
            while (table[i].position >= 0) i = (i + 1) & mask;
            table[i] = slot;
        }
    }
    IndexSlot& slot = table[SlotOf(symbols, symbols[static_cast<size_t>(position)].Name, hash)];
    if (slot.position >= 0) return; // an earlier record of that name stays the one found
    slot = {hash, position};
    ++count;
}

void TSymbolTable::NameIndex::Clear() {
    // A function with many locals leaves a large array behind: emptying it again after every later
    // function would cost more than growing a new one.
    if (table.size() > 1024)
        table = {};
    else
        std::fill(table.begin(), table.end(), IndexSlot{});
    count = 0;
}

void TSymbolTable::IndexAdd(int position) {
    const std::string& name = symbols_[static_cast<size_t>(position)].Name;
    const std::size_t hash = IndexHash(name);
    if (firstLocal_ < 0 || position < firstLocal_) {
        index_.Add(symbols_, position, hash);
        return;
    }
    // index_ does not change while there are locals, so a name found there now is found there first.
    if (index_.Find(symbols_, name, hash) < 0) localIndex_.Add(symbols_, position, hash);
}

int TSymbolTable::Find(std::string_view name) const {
    name = name.substr(0, kShortStringMax);
    const std::size_t hash = IndexHash(name);
    const int local = localIndex_.Find(symbols_, name, hash);
    return local >= 0 ? local : index_.Find(symbols_, name, hash);
}

const TSymbol& TSymbolTable::Get(int index) const {
    return symbols_.at(static_cast<size_t>(index));
}

TSymbol& TSymbolTable::At(int index) {
    ++generation_;
    return symbols_.at(static_cast<size_t>(index));
}

int TSymbolTable::CountOfKind(std::int32_t kind) const {
    auto it = kindCounts_.find(kind);
    return it == kindCounts_.end() ? 0 : it->second;
}

void TSymbolTable::Reindex() {
    ++generation_;
    index_ = {};
    localIndex_ = {};
    kindCounts_.clear();
    firstLocal_ = -1;
    for (int i = 0; i < Count(); ++i) {
        if (firstLocal_ < 0 && IsLocalKind(symbols_[static_cast<size_t>(i)].Kind)) firstLocal_ = i;
        IndexAdd(i);
        ++kindCounts_[symbols_[static_cast<size_t>(i)].Kind];
    }
}

void TSymbolTable::Remove(int index) {
    symbols_.erase(symbols_.begin() + index);
    Reindex();
}

void TSymbolTable::RemoveLocals() {
    if (firstLocal_ < 0) return;
    ++generation_;
    const auto first = static_cast<size_t>(firstLocal_);
    // Every record from the first local on leaves the index; the survivors come back at their new positions.
    localIndex_.Clear();
    firstLocal_ = -1;
    size_t out = first;
    for (size_t i = first; i < symbols_.size(); ++i) {
        if (IsLocalKind(symbols_[i].Kind)) {
            --kindCounts_[symbols_[i].Kind];
            continue;
        }
        if (out != i) symbols_[out] = std::move(symbols_[i]);
        IndexAdd(static_cast<int>(out));
        ++out;
    }
    symbols_.resize(out);
}

namespace {

TSymbol Declared(const std::string& name, std::string text, std::int32_t kind, const TSymbolSite& site) {
    TSymbol s;
    s.Name = UpperCase(name);
    s.Text = std::move(text);
    s.Kind = kind;
    s.FileNumber = site.FileNumber;
    s.Line = site.Line;
    return s;
}

} // namespace

TSymbol TSymbolTable::MakeVariable(const std::string& name, std::int32_t kind, std::int32_t initialValue,
                                   const TSymbolSite& site) const {
    TSymbol s = Declared(name, name, kind, site);
    s.Value = initialValue;
    if (kind == skLocalVar)
        s.Register = 24 + CountOfKind(skLocalVar);
    else if (kind == skStackVar)
        s.Register = 24 + CountOfKind(skLocalVar) + CountOfKind(skStackVar);
    else if (kind == skStaticVar)
        s.Text = "__" + std::string(site.Function) + "_" + name;
    return s;
}

TSymbol TSymbolTable::MakePassVariable(const std::string& name, const TSymbolSite& site) const {
    TSymbol s = Declared(name, name, skPassVar, site);
    s.Register = 16 + CountOfKind(skPassVar);
    return s;
}

TSymbol TSymbolTable::MakeConstant(const std::string& name, const std::string& value, std::int32_t kind,
                                   const TSymbolSite& site) const {
    return Declared(name, value, kind, site);
}

} // namespace velkor
