// Reading a message's parameters, which may be anything: a member that is missing or of the wrong type is
// the InvalidParams error, never a crash.
#pragma once

#include "lsp/text_document.h"

#include <nlohmann/json.hpp>

#include <stdexcept>
#include <string>

namespace velkor::lsp {

// A request's parameters were not what the method takes: the InvalidParams error.
class EInvalidParams : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The member, or null when the value is not an object or has no such member.
const nlohmann::json& Member(const nlohmann::json& object, const char* name);
std::string StringMember(const nlohmann::json& object, const char* name);
// A position member ({"line", "character"}), its numbers clamped to what the documents can hold.
TPosition PositionMember(const nlohmann::json& object, const char* name);

} // namespace velkor::lsp
