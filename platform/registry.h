// Keys and string values under the machine root (HKEY_LOCAL_MACHINE), addressed by key paths such as
// "\Software\velkor\mru". Key and value names compare without case; a leading, trailing or doubled "\"
// in a key path means nothing.
#pragma once

#include "platform/exception.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velkor {

// A registry operation that failed (a key that cannot be created, a value that cannot be written).
class ERegistry : public Exception {
public:
    using Exception::Exception;
};

class Registry {
public:
    virtual ~Registry() = default;

    virtual bool KeyExists(std::string_view key) const = 0;
    // True when the key exists afterwards: with `canCreate` a missing key (and its parents) is created.
    virtual bool OpenKey(std::string_view key, bool canCreate) = 0;
    // The key's value names in stored order; empty when the key is missing.
    virtual std::vector<std::string> ValueNames(std::string_view key) const = 0;
    // The value's text; nothing when the key or the value is missing.
    virtual std::optional<std::string> ReadString(std::string_view key, std::string_view name) const = 0;
    // Creates the key when missing; an existing value keeps its place and its name's spelling.
    virtual void WriteString(std::string_view key, std::string_view name, std::string_view value) = 0;
    // False when there was nothing to delete.
    virtual bool DeleteValue(std::string_view key, std::string_view name) = 0;
    // Deletes the key with its values and every key below it.
    virtual bool DeleteKey(std::string_view key) = 0;
};

// "\Software\velkor\" -> "Software\velkor": separators at either end and doubled ones dropped.
std::string NormaliseKeyPath(std::string_view key);

// True when `key` is `ancestor` or lies below it (both normalised, compared without case).
bool IsKeyAtOrBelow(std::string_view key, std::string_view ancestor);

// The registry the program uses. On Windows the system's; elsewhere Velkor's own store layered over the
// games' installation keys found in the Wine prefix, the own store winning.
Registry& MachineRegistry();

} // namespace velkor
