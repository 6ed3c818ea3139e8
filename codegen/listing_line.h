// Reading one line of an instruction listing the way the optimiser looks at it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velkor {

// The leading part of the line as long as the blanks it loses when trimmed at both ends.
std::string_view ListingIndent(std::string_view line);

// The trimmed line split at single blanks; a word that begins with a quotation mark runs to the next
// quotation mark and comes back without its quotes (what follows the closing quote up to the next blank
// is dropped).
std::vector<std::string> ListingWords(std::string_view line);

// The word without its first ";".
std::string WithoutSemicolon(std::string_view word);

} // namespace velkor
