#include "lsp/json_params.h"

#include <algorithm>
#include <cstdint>

namespace velkor::lsp {

const nlohmann::json& Member(const nlohmann::json& object, const char* name) {
    static const nlohmann::json none;
    if (!object.is_object()) return none;
    const auto it = object.find(name);
    return it == object.end() ? none : *it;
}

std::string StringMember(const nlohmann::json& object, const char* name) {
    const nlohmann::json& v = Member(object, name);
    if (!v.is_string()) throw EInvalidParams(std::string("\"") + name + "\" must be a string");
    return v.get<std::string>();
}

TPosition PositionMember(const nlohmann::json& object, const char* name) {
    const nlohmann::json& p = Member(object, name);
    const nlohmann::json& line = Member(p, "line");
    const nlohmann::json& character = Member(p, "character");
    if (!line.is_number_integer() || !character.is_number_integer())
        throw EInvalidParams(std::string("\"") + name + "\" must be a position");
    const auto clamp = [](std::int64_t v) {
        return static_cast<int>(std::clamp<std::int64_t>(v, 0, 1 << 30));
    };
    return {clamp(line.get<std::int64_t>()), clamp(character.get<std::int64_t>())};
}

} // namespace velkor::lsp
