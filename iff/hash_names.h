// Names for the name hashes of function records and for the ids of chunks. A function record keeps only the
// hash of a name; a listing must give a name whose hash is that word. Where the system knows such a name
// (the game functions of the library units, the names a unit records in its own file), the listing shows it;
// where none is known, it shows a made-up name built to have the same hash, so the bytes come back the same.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

namespace velkor {

class KnownNames {
public:
    // A name that may stand where its hash stands. Only texts the scanners read as one identifier are kept;
    // the first name of a hash wins.
    void Add(std::string_view name);
    // Every identifier of a text, such as a library unit's source.
    void AddWordsOf(std::string_view text);
    // The name a chunk id stands for (an object property's id), shown beside the id.
    void AddId(std::uint32_t id, std::string_view name);

    // The name whose hash is `hash`, or null.
    const std::string* ByHash(std::uint32_t hash) const;
    // A name whose hash has these upper 24 bits, as a game function's instruction word holds them; never a
    // built-in mnemonic, which would assemble to its own word.
    const std::string* ByInstructionWord(std::uint32_t word) const;
    // The name of a chunk id, or null.
    const std::string* ById(std::uint32_t id) const;

    bool empty() const { return byHash_.empty() && byId_.empty(); }

private:
    std::unordered_map<std::uint32_t, std::string> byHash_;
    std::unordered_map<std::uint32_t, std::string> byInstruction_; // keyed by hash & 0xFFFFFF00
    std::unordered_map<std::uint32_t, std::string> byId_;
};

// The names a file records in text: the names of an editor form's CRCS chunk and every chunk that holds
// one string alone (program names of object properties, sector and room names). Walks the items of every
// top-level form by their sizes, whatever the reader made of them.
void AddNamesOfFile(KnownNames& names, std::span<const std::uint8_t> bytes);

// True for a text the scanners read as one identifier token.
bool IsIdentifier(std::string_view text);

// True when an operand text reaches the assembler's number conversion as it is: its lower-case hash is not
// the key of a register name (v0 to v31), which the constant table would put in its place.
bool ReadsAsItself(std::string_view text);

// `prefix` followed by twelve letters from "h" to "o", chosen so that the whole name has the hash `hash`.
// The name is an identifier when the prefix is one, and never a register name.
std::string NameWithHash(std::string_view prefix, std::uint32_t hash);

// A label the code generator writes from source line 1000 on (a line number and "w", "f" or "e") with this
// hash, or nothing when no line below a million gives it.
std::optional<std::string> LineLabelWithHash(std::uint32_t hash);

} // namespace velkor
