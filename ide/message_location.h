// Where a message of the compiler points: "[<unit>, <line>] <text>" names the unit and the line.
#pragma once

#include <QString>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velkor {

struct TMessageLocation {
    QString UnitName; // as the message gives it
    int Line = 0;     // from 1
};

// The unit and line of a message; nothing when the line does not start with "[<unit>, <line>] ".
std::optional<TMessageLocation> ParseMessageLocation(const QString& line);

// The diagnostic line that follows an error and names where in the compiler it was raised ("  raised in
// ..."), with or without the "[<unit>, <line>] " prefix.
bool IsRaisedInLine(std::string_view line);

// Whether an output line is shown at a verbosity: the diagnostic line only at the highest (3).
inline bool ShownAtVerbosity(std::string_view line, int verbosity) {
    return verbosity >= 3 || !IsRaisedInLine(line);
}

// The file of a unit named in a message: `unitName` + ".pas" in the first folder of `searchPath` that
// holds it (file names compared without case), or empty.
std::string FindUnitFile(const QString& unitName, const std::vector<std::string>& searchPath);

} // namespace velkor
