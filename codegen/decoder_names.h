// The names the decoder shows for the hashes and ids of binary files: the ids of the object properties and
// every word of the library units shipped in "$compiler$\lib", the game functions among them.
#pragma once

#include "iff/hash_names.h"

#include <memory>

namespace velkor {

// Gathered once per process, on first use.
std::shared_ptr<const KnownNames> SystemDecoderNames();

} // namespace velkor
