// Looks at built IFF files the way a reviewer would: the top-level forms one after the other, each
// indexed by its own TIffReader, a compact outline of the tree, and the typed values of a chunk.
#pragma once

#include "iff/iff_reader.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace velkor::test {

// One top-level form of a file: where it starts and a reader over exactly its bytes.
struct TopForm {
    std::size_t offset; // position of its "FORM" header in the file
    TIffReader reader;  // indexes this form alone (a reader looks no further than its first item)
};

// Splits a file into its top-level forms. A unit's file holds the game's form and, behind it, the editor
// form. Fails the current test (and returns what it found) when the headers do not tile the file.
std::vector<TopForm> TopLevelForms(std::string_view file);

// The outline of a form: its type, then its children in file order in parentheses, separated by blanks;
// a chunk or form whose id is not printable is written "$" and its 32-bit value, as the text names it.
// Forms of the type `collapsed` are written without their children. Example: MISN(VERS PLST(PROP($56A0F92F))
// FLGS)
std::string Outline(const TForm& form, std::string_view collapsed = {});

// A chunk's id as the textual IFF writes it: the 4 characters, or "$" and 8 hexadecimal digits.
std::string IdText(std::string_view id);

// The data of a chunk without its pad byte (the header's true size).
std::span<const std::uint8_t> ChunkBytes(const TIffReader& reader, const TChunk& chunk);

// Reads the typed values of chunk data, little-endian, failing the test when reading past the end.
class DataCursor {
public:
    explicit DataCursor(std::span<const std::uint8_t> data) : data_(data) {}
    std::uint32_t Long();
    float Float();
    std::string CString();
    void Skip(std::size_t bytes) { at_ += std::min(bytes, Left()); }
    std::size_t Left() const { return data_.size() - at_; }

private:
    std::span<const std::uint8_t> data_; // the chunk's data
    std::size_t at_ = 0;                 // next byte to read
};

// Where two files first differ, named by the innermost form or chunk of `expected` holding that byte,
// for a readable failure message. Empty when they are equal.
std::string FirstDifference(std::string_view expected, std::string_view actual);

} // namespace velkor::test
