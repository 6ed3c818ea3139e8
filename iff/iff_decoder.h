// The decoder: binary IFF back into textual IFF that the assembler turns into the same bytes again. Forms
// become FORM blocks, chunks CHUNK blocks of byte rows or, where a special decoder knows them, of labelled
// values; a chunk larger than the decode limit goes to a side file that a `file` value reads back.
#pragma once

#include "iff/hash_names.h"
#include "iff/iff_reader_errors.h"
#include "iff/special_decoders.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace velkor {

class TIffReader;

struct DecodeOptions {
    bool exactFloats = false; // floats in the shortest text that reads back exactly, not in "0.0#"
    // Function records as WCP_ASM listings, whatever their size, and names beside the ids that stand for
    // names; off, they are byte rows (or side files) like any other chunk.
    bool disassemble = true;
    std::shared_ptr<const KnownNames> names; // names the system knows (game functions, object properties)
};

// A file the decoded text reads with `file "<name>"`, to be written beside the text.
struct SideFile {
    std::string name;               // the file name, without a folder
    std::vector<std::uint8_t> data; // its bytes
};

struct DecodedIff {
    std::string text;                // the textual IFF, CR LF line ends
    std::vector<SideFile> sideFiles; // the files the text includes, in text order
    bool lossless = true;            // assembling the text gives back exactly the input bytes
    std::vector<std::string> notes;  // why the text cannot give back the input exactly, where that is known
};

// Decodes bytes held in memory; `fileName` names the IFF block and the side files (only its last path
// component is used) and is the source name of the reader's messages. Chunks whose size is above `limit`
// go to side files. Throws EIffReader (and its subclasses) for data that is not valid IFF.
DecodedIff DecodeIff(std::span<const std::uint8_t> bytes, std::string_view fileName, std::int64_t limit,
                     const DecodeOptions& options = {});
// Receives the text piece by piece, so that a large decode need not be held in memory at once.
using TextSink = std::function<void(std::string_view piece)>;

// The same over a reader that has scanned its data. With a sink the text goes there, in order, and
// DecodedIff::text stays empty.
DecodedIff DecodeReader(const TIffReader& reader, std::string_view fileName, std::int64_t limit,
                        const DecodeOptions& options = {}, const TextSink& sink = {});

// Decodes the file `input` into the text file `output`, the side files beside it: all of them or, when one
// cannot be written, none (the files that stood there before stay as they were). An output that is the
// input itself is refused. Returns the notes on why the text is not exact. Throws EIffReader for input that
// is not valid IFF and EInOutError when a file cannot be read or written.
std::vector<std::string> Decode(const std::filesystem::path& input, const std::filesystem::path& output,
                                std::int64_t limit, const DecodeOptions& options = {});

} // namespace velkor
