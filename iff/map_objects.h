// The game objects of binary IFF and where they stand: every OBJ_ form with its name hash and position
// (COMN chunk), its type text (TYPE chunk) and its type number (the OBJ_PROP_TYPE property). Mission,
// sector and the game's own files all hold their objects so; the map view and `velkorc map` draw them.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace velkor {

class TIffReader;

struct TMapObject {
    int Ordinal = 0;              // place among all OBJ_ forms of the data, in file order, from 0
    std::int64_t Offset = 0;      // the OBJ_ form's header in the data
    std::uint32_t NameHash = 0;   // the checksum of the game name, first field of COMN
    std::string Name;             // the game name when known, else "$" and the hash in 8 hex digits
    bool NameKnown = false;       // Name is the game name itself
    std::string TypeText;         // the TYPE chunk's text: the OBJ value or a fixed text like "NAVPOINT"
    std::int32_t TypeNumber = -1; // the OBJ_PROP_TYPE value; -1 when the object has none
    bool Placed = false;          // COMN held a name hash and three finite coordinates
    double X = 0;                 // position in game units
    double Y = 0;
    double Z = 0;
};

// Game names by their checksum, to name objects whose data holds only the hash.
using TMapNames = std::unordered_map<std::uint32_t, std::string>;

// Every OBJ_ form inside the reader's tree, in file order. The data is outside input: a missing or short
// chunk leaves that field unknown (an object without COMN is not Placed), never fails the whole read.
std::vector<TMapObject> ReadMapObjects(const TIffReader& reader, const TMapNames& names = {});

// The objects of a binary IFF file. Throws EInOutError when the file cannot be read and EIffReader when
// it is not IFF.
std::vector<TMapObject> ReadMapObjectsFromFile(const std::filesystem::path& path);

// True when the data starts with "FORM": binary IFF rather than text.
bool LooksLikeBinaryIff(std::string_view head);

} // namespace velkor
