// The game's object types and object properties: the words a unit writes and what goes into the object
// form for them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace velkor {

struct ObjectType {
    std::string_view Word;     // the type word after AS, upper case
    std::int32_t Number;       // written into the OBJ_PROP_TYPE property
    std::string_view TypeText; // the TYPE chunk's text; empty: the object's OBJ value
};

struct PropertyValue {
    char Type;                // 'c' cstring, 'l' long, 'f' float
    std::string_view Fixed;   // written as it stands, nothing read; empty: a value read from the source
    std::string_view Comment; // written behind the value as " // <comment>"; none when empty
};

struct ObjectProperty {
    std::string_view Keyword;            // as written in a unit, upper case
    std::string_view ChunkId;            // eight hexadecimal digits
    std::string_view Comment;            // the property's name, written behind the chunk id
    std::array<PropertyValue, 7> Values; // the chunk's values in order
    std::size_t ValueCount;              // how many of Values are used
};

// The entry of an upper-case word, or null.
const ObjectType* FindObjectType(std::string_view word);
const ObjectProperty* FindObjectProperty(std::string_view keyword);

// Every entry, in the order the tables list them (for the help pages).
std::span<const ObjectType> ObjectTypes();
std::span<const ObjectProperty> ObjectProperties();

// The property every object form starts with: its type number.
inline constexpr std::string_view kTypePropertyId = "56A0F92F";
inline constexpr std::string_view kTypePropertyComment = "OBJ_PROP_TYPE";

// The header line of a property's chunk: "CHUNK $<id> // <comment>".
std::string PropertyChunkHeader(std::string_view id, std::string_view comment);

} // namespace velkor
