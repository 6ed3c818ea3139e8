// The special decoders: the process-wide list of named record layouts, each with an enabled flag, that
// the decoder uses to write known chunks as labelled values instead of byte rows.
#pragma once

#include "platform/exception.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace velkor {

class EIffDecoder : public Exception {
public:
    using Exception::Exception;
};

enum class FieldKind : std::uint8_t { Long, HexLong, Float, CString };

struct RecordField {
    FieldKind kind;         // how the field's bytes are read and written
    std::string_view label; // written behind the value; empty for none
};

enum class RecordRepeat : std::uint8_t {
    Once,           // one record; what follows it is written as byte rows
    Entries,        // records repeat to the end of the chunk
    TrailingFloats, // one record, then unlabelled floats to the end of the chunk
};

struct RecordLayout {
    std::span<const RecordField> fields; // the fields of one record, in chunk order
    RecordRepeat repeat;                 // what follows the first record
    bool timeFloats = false;             // floats in the TIME/TIME style
};

// Where a chunk stands: its id and the types of the forms around it.
struct ChunkPlace {
    std::string_view id;          // the chunk's id
    std::string_view parent;      // type of the form holding the chunk
    std::string_view grandparent; // type of the form above that; empty at the top
    bool insideShip = false;      // some enclosing form is a SHIP, CAPS or CMIS
};

// The decoder names in the order the settings dialog lists them.
std::vector<std::string> SpecialDecoderNames();
// Reading and setting a flag by name; an unknown name throws EIffDecoder "unknown decoder: <name>". Flags
// may be read by decodes running in other threads while they are set.
bool SpecialDecoderEnabled(std::string_view name);
void SetSpecialDecoderEnabled(std::string_view name, bool enabled);

// The layout of the first enabled decoder that knows the chunk, or null.
const RecordLayout* FindSpecialDecoder(const ChunkPlace& place);

// True for the form types the "SHIP, CAPS, CMIS" decoder looks inside.
bool IsShipForm(std::string_view type);

} // namespace velkor
