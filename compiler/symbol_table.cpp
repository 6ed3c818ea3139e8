#include "compiler/symbol_table.h"

#include "codegen/codegen.h"
#include "compiler/compiler.h"
#include "iff/checksum.h"
#include "platform/numbers.h"
#include "platform/strings.h"

#include <algorithm>

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

TSymbolTable::TSymbolTable(TCompiler* owner) : owner_(owner) {}

TSymbolTable::TSymbolTable(const TSymbolTable& other) : owner_(nullptr) {
    for (const auto& s : other.symbols_) Add(s);
}

void TSymbolTable::Message(int level, const std::string& text) {
    if (owner_) owner_->Output(level, text);
}

void TSymbolTable::Fail(const std::string& text) {
    if (owner_) owner_->Error(text);
}

void TSymbolTable::Add(TSymbol symbol) {
    symbol.Name = ShortString(symbol.Name);
    symbol.Text = ShortString(symbol.Text);
    if (Find(symbol.Name) >= 0) Fail("identifier \"" + symbol.Name + "\" redeclared");
    const int position = Count();
    if (IsLocalKind(symbol.Kind) && firstLocal_ < 0) firstLocal_ = position;
    ++kindCounts_[symbol.Kind];
    symbols_.push_back(std::move(symbol));
    IndexAdd(position);
}

std::size_t TSymbolTable::IndexHash(std::string_view name) {
    std::size_t hash = 14695981039346656037u; // FNV-1a over the upper-cased bytes
    for (char c : name) {
        hash ^= static_cast<unsigned char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
        hash *= 1099511628211u;
    }
    return hash;
}

std::size_t TSymbolTable::SlotOf(std::string_view name, std::size_t hash) const {
    const std::size_t mask = index_.size() - 1;
    std::size_t i = hash & mask;
    for (;;) {
        const IndexSlot& slot = index_[i];
        if (slot.position < 0) return i;
        if (slot.hash == hash && SameText(symbols_[static_cast<size_t>(slot.position)].Name, name)) return i;
        i = (i + 1) & mask;
    }
}

void TSymbolTable::IndexAdd(int position) {
    if (2 * (indexed_ + 1) > index_.size()) {
        std::vector<IndexSlot> old(std::max<std::size_t>(64, 2 * index_.size()));
        old.swap(index_);
        for (const IndexSlot& slot : old) {
            if (slot.position < 0) continue;
            std::size_t i = slot.hash & (index_.size() - 1);
            while (index_[i].position >= 0) i = (i + 1) & (index_.size() - 1);
            index_[i] = slot;
        }
    }
    const std::string& name = symbols_[static_cast<size_t>(position)].Name;
    const std::size_t hash = IndexHash(name);
    IndexSlot& slot = index_[SlotOf(name, hash)];
    if (slot.position >= 0) return; // an earlier record of that name stays the one found
    slot = {hash, position};
    ++indexed_;
}

void TSymbolTable::IndexRemove(int position) {
    if (index_.empty()) return;
    const std::string& name = symbols_[static_cast<size_t>(position)].Name;
    std::size_t hole = SlotOf(name, IndexHash(name));
    if (index_[hole].position != position) return;
    // Backward-shift deletion: later slots of the same probe run move up into the hole, so that every
    // name stays reachable from its home slot without markers for deleted entries.
    const std::size_t mask = index_.size() - 1;
    for (std::size_t j = (hole + 1) & mask; index_[j].position >= 0; j = (j + 1) & mask) {
        const std::size_t home = index_[j].hash & mask;
        // The entry at j may fill the hole unless its home lies cyclically in (hole, j].
        const bool homeBetween = hole <= j ? (hole < home && home <= j) : (hole < home || home <= j);
        if (homeBetween) continue;
        index_[hole] = index_[j];
        hole = j;
    }
    index_[hole] = {};
    --indexed_;
}

int TSymbolTable::Find(std::string_view name) const {
    if (index_.empty()) return -1;
    name = name.substr(0, kShortStringMax);
    return index_[SlotOf(name, IndexHash(name))].position;
}

const TSymbol& TSymbolTable::Get(int index) const {
    return symbols_.at(static_cast<size_t>(index));
}

TSymbol& TSymbolTable::At(int index) {
    return symbols_.at(static_cast<size_t>(index));
}

int TSymbolTable::CountOfKind(std::int32_t kind) const {
    auto it = kindCounts_.find(kind);
    return it == kindCounts_.end() ? 0 : it->second;
}

void TSymbolTable::Reindex() {
    index_.clear();
    indexed_ = 0;
    kindCounts_.clear();
    firstLocal_ = -1;
    for (int i = 0; i < Count(); ++i) {
        IndexAdd(i);
        ++kindCounts_[symbols_[static_cast<size_t>(i)].Kind];
        if (firstLocal_ < 0 && IsLocalKind(symbols_[static_cast<size_t>(i)].Kind)) firstLocal_ = i;
    }
}

void TSymbolTable::Remove(int index) {
    symbols_.erase(symbols_.begin() + index);
    Reindex();
}

void TSymbolTable::RemoveLocals() {
    if (firstLocal_ < 0) return;
    const auto first = static_cast<size_t>(firstLocal_);
    // Unhook every record from the first local on, then put the survivors back at their new positions.
    for (size_t i = first; i < symbols_.size(); ++i) IndexRemove(static_cast<int>(i));
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
    firstLocal_ = -1;
}

TSymbol TSymbolTable::AddVariable(const std::string& name, std::int32_t kind, std::int32_t initialValue) {
    TSymbol s;
    s.Name = UpperCase(name);
    s.Text = name;
    s.Kind = kind;
    s.Value = initialValue;
    if (owner_) {
        s.FileNumber = owner_->FileNumber;
        s.Line = owner_->Line();
    }
    auto crcOf = [](const std::string& text) { return IntToHex(NameHash(text), 8); };
    switch (kind) {
    case skGlobalVar:
        Message(2, "adding global variable: " + name + ", CRC: " + crcOf(name));
        if (owner_) {
            owner_->Data().Globals.push_back(name);
            owner_->Data().CrcNames.push_back(name);
        }
        break;
    case skLocalVar:
        s.Register = 24 + CountOfKind(skLocalVar);
        Message(2, "adding local variable: " + name + " [reg: " + std::to_string(s.Register) + "]");
        if (s.Register >= 32) Fail("Expression too complex");
        break;
    case skExternalVar:
        Message(1, "adding external variable: " + name + ", CRC: " + crcOf(name));
        Message(1, "   don't forget to declare it in series!");
        break;
    case skStackVar:
        s.Register = 24 + CountOfKind(skLocalVar) + CountOfKind(skStackVar);
        Message(2, "adding stack variable: " + name + " [reg: " + std::to_string(s.Register) + "]");
        if (s.Register >= 32) Fail("Expression too complex");
        break;
    case skStaticVar: {
        const std::string function = owner_ ? owner_->CodeGen().CurrentFunction : std::string();
        s.Text = "__" + function + "_" + name;
        Message(2,
                "adding static variable: Symbol:" + name + ", Name: " + s.Name + ", CRC: " + crcOf(s.Text));
        if (owner_) {
            owner_->Data().Globals.push_back(s.Text);
            owner_->Data().CrcNames.push_back(s.Text);
        }
        break;
    }
    default:
        Fail("FATAL - variable \"" + name + "\" has unknown scope (" + std::to_string(kind) +
             "). Don't know what do do with it. - This should never happen!");
        break;
    }
    Add(s);
    return s;
}

TSymbol TSymbolTable::AddPassVariable(const std::string& name) {
    TSymbol s;
    s.Name = UpperCase(name);
    s.Text = name;
    s.Kind = skPassVar;
    s.Register = 16 + CountOfKind(skPassVar);
    if (owner_) {
        s.FileNumber = owner_->FileNumber;
        s.Line = owner_->Line();
    }
    // The message counts local variables, not parameters; the stored register is right.
    Message(3,
            "adding pass variable: " + name + " [reg: " + std::to_string(16 + CountOfKind(skLocalVar)) + "]");
    Add(s);
    return s;
}

void TSymbolTable::AddConstant(const std::string& name, const std::string& value, std::int32_t kind) {
    TSymbol s;
    s.Name = UpperCase(name);
    s.Text = value;
    s.Kind = kind;
    if (owner_) {
        s.FileNumber = owner_->FileNumber;
        s.Line = owner_->Line();
    }
    if (kind == skGlobalConst)
        Message(3, "adding global const " + s.Name + " with value " + value);
    else if (kind == skLocalConst)
        Message(2, "adding local const " + s.Name + " with value " + value);
    else if (kind == skEnum)
        Message(3, "adding global enum " + s.Name + " with value " + value);
    Add(s);
}

void TSymbolTable::Store(const TSymbol& symbol, int r) {
    if (!owner_) return;
    switch (symbol.Kind) {
    case skLocalVar:
    case skPassVar:
    case skStackVar:
        owner_->CodeGen().EmitLine("movv v" + std::to_string(symbol.Register) + " v" + std::to_string(r) +
                                   ";");
        break;
    case skGlobalVar:
    case skExternalVar:
    case skStaticVar:
        owner_->CodeGen().EmitLine("movv " + symbol.Text + " v" + std::to_string(r) + ";");
        break;
    default:
        Fail("FATAL - symbol \"" + symbol.Text + "\" has unknown symbol type (" +
             std::to_string(symbol.Kind) + "). Don't know how to store it. - This should never happen!");
    }
}

} // namespace velkor
