// Every name a unit and its included files declare, and where each variable lives (a numbered register of
// the script machine or a named global). The table is data only: the compiler reading a declaration says
// where it stands and reports what the table decides; the code generator loads and stores variables.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace velkor {

// Symbol kinds.
enum : std::int32_t {
    skGlobalVar = 0,    // "var" at unit level: a game global (flag), addressed by its name
    skLocalVar = 1,     // "var" in a function: register 24 + locals before it
    skPassVar = 2,      // parameter: register 16 + parameters before it
    skGlobalConst = 3,  // "const" at unit level: a value text
    skLocalConst = 4,   // "const" in a function
    skGameFunction = 5, // "external" function of the game (WCP)
    skUserFunction = 6, // "function" with a body, or declared forward
    skObject = 7,       // "object"
    skNumber = 8,       // numeric constant loaded as a number (objectives)
    skExternalVar = 9,  // "external" variable: a global of the series
    skStringTable = 10, // a string file included by #STRINGS
    skStackVar = 100,   // expression-stack slot __ST<n>
    skStaticVar = 166,  // "static" in a function: global "__<function>_<name>"
    skEnum = 201,       // "ENUM" value
};

// The 160-byte record of the original, as plain fields. Names and texts are cut to 64 characters, as the
// original's short strings cut them.
struct TSymbol {
    std::string Name;             // upper-cased name: the lookup key
    std::int32_t Kind = 0;        // one of sk*
    std::int32_t FileNumber = -1; // declaring file in the process-wide file-name list
    std::int32_t Line = 0;        // declaration line
    std::string Text; // name as written, static storage name, constant value text or string-file path
    std::int32_t Register = 0; // register of a register variable; parameter count of a function
    std::int32_t Value = 0;    // functions and objects: non-zero once implemented; variables: initial value
};

inline constexpr std::size_t kShortStringMax = 64; // longest name or text a record keeps

// Cuts a text to what a record keeps.
std::string ShortString(std::string_view text);

// Where a declaration is read: the file and line a record gets, and the function being compiled, which
// names the storage of a static variable.
struct TSymbolSite {
    std::int32_t FileNumber = -1;
    std::int32_t Line = 0;
    std::string_view Function;
};

class TSymbolTable {
public:
    TSymbolTable() = default;
    // A copy for the editor's symbol browser: the same records in order.
    TSymbolTable(const TSymbolTable& other);
    TSymbolTable& operator=(const TSymbolTable&) = delete;

    // Appends, names and texts cut to what a record keeps. A name already present is added all the same;
    // lookups then find the first record.
    void Add(TSymbol symbol);
    int Find(std::string_view name) const; // index of the first record of that name (any case), or -1
    const TSymbol& Get(int index) const;
    TSymbol& At(int index);
    // Changes whenever a record may have changed or moved (every change but an Add): what was found before
    // is found the same while it stays.
    std::uint64_t Generation() const { return generation_; }
    int Count() const { return static_cast<int>(symbols_.size()); }
    int CountOfKind(std::int32_t kind) const;
    void Remove(int index);
    // Deletes every record of the kinds that live only while a function compiles (1, 2, 4, 100, 166).
    void RemoveLocals();

    // The records of declarations, not yet added: a variable of the given kind gets its register (counted
    // from the records in the table) or, when static, its storage name "__<function>_<name>"; a parameter
    // its register; a constant its value text. Names and texts are not cut yet.
    TSymbol MakeVariable(const std::string& name, std::int32_t kind, std::int32_t initialValue,
                         const TSymbolSite& site) const;
    TSymbol MakePassVariable(const std::string& name, const TSymbolSite& site) const;
    TSymbol MakeConstant(const std::string& name, const std::string& value, std::int32_t kind,
                         const TSymbolSite& site) const;

private:
    void Reindex();

    // An index of names: for each, the position of its first record. Open addressing with linear probing
    // in one array, because a compile looks up a name for nearly every operand and a node-based map spent
    // that time chasing pointers. Names are hashed and compared without regard to ASCII case, so a name is
    // looked up as written, without an upper-case copy; the records' names are upper-cased, so the same
    // are found.
    struct IndexSlot {
        std::size_t hash = 0; // the name's hash
        int position = -1;    // its first record; -1 for an empty slot
    };
    struct NameIndex {
        std::vector<IndexSlot> table; // a power of two in size, at most half full; empty before any name
        std::size_t count = 0;        // names in it

        // The first record of the name, or -1.
        int Find(const std::vector<TSymbol>& symbols, std::string_view name, std::size_t hash) const;
        // Indexes the record unless its name is there already.
        void Add(const std::vector<TSymbol>& symbols, int position, std::size_t hash);
        void Clear();

    private:
        // The slot that holds the name, or the empty slot where it would go.
        std::size_t SlotOf(const std::vector<TSymbol>& symbols, std::string_view name,
                           std::size_t hash) const;
    };
    static std::size_t IndexHash(std::string_view name);
    void IndexAdd(int position);

    std::vector<TSymbol> symbols_; // in declaration order
    // The records of a function's locals come and go with it. An index of their own, emptied with them,
    // stays small and in the cache, where their slots in the unit's index would be new ones each function.
    NameIndex index_;      // the records before the first local
    NameIndex localIndex_; // the records from the first local on whose names are not in index_
    std::unordered_map<std::int32_t, int> kindCounts_; // records per kind
    std::uint64_t generation_ = 0;                     // see Generation
    int firstLocal_ = -1; // position of the first function-local record, -1 when none: RemoveLocals only
                          // touches the table from there, so a unit's compile stays linear
};

} // namespace velkor
