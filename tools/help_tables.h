// The help pages on object types and properties take their tables from the compiler's own tables, so that
// what the pages say and what the compiler writes never disagree.
#pragma once

#include "platform/exception.h"

#include <string>
#include <string_view>

namespace velkor {

// A page template without its table marker.
class EHelpTemplate : public Exception {
public:
    using Exception::Exception;
};

// The line of a page template that the table replaces.
inline constexpr std::string_view kHelpTableMarker = "<!-- table -->";

// HTML tables of every object type and every object property, in the compiler's order.
std::string ObjectTypesTable();
std::string ObjectPropertiesTable();

// The page with its marker replaced by the table. Throws EHelpTemplate when the marker is missing.
std::string FillHelpTemplate(std::string_view page, std::string_view table);

} // namespace velkor
