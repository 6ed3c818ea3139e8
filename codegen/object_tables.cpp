#include "codegen/object_tables.h"

namespace velkor {

namespace {

constexpr ObjectType kTypes[] = {
    {"SHIP", 20, ""},
    {"CAPSHIP", 26, ""},
    {"PLAYER", 19, ""},
    {"NAVPOINT", 21, "NAVPOINT"},
    {"ABSTART", 23, "ABSTART"},
    {"ABCPOINT", 5, "ABCPOINT"},
    {"JUMPPOINT", 9, "JUMPPOINT"},
    {"HBODY", 24, "HBODY"},
    {"LIGHT", 3, "LIGHT"},
    {"ACAPMISS", 28, ""},
    {"CLUSTER", 29, ""},
    {"SYSTEM", 31, "SYSTEM"},
    {"CAMERA", 25, "PROGCAM"}, // the game knows cameras by this text
    {"DEBRSFLD", 14, "DEBRSFLD"},
    {"GHOST", 27, "GHOST"},
    {"CARGO", 22, "CARGO"},
};

constexpr PropertyValue kProgram{'c', "", ""};
constexpr PropertyValue kLong{'l', "", ""};
constexpr PropertyValue kFloat{'f', "", ""};

// EVENT_4 shares its chunk id with EVENT_H, and BRIEF_NAME with COLOR: the game reads them so.
constexpr ObjectProperty kProperties[] = {
    {"MAIN", "164A8982", "OBJ_PROP_PROG_MAIN", {kProgram}, 1},
    {"DEATH", "7C851FAA", "OBJ_PROP_PROG_DEATH", {kProgram}, 1},
    {"BRIEF", "DED3032D", "OBJ_PROP_PROG_BRIEF", {kProgram}, 1},
    {"EVENT_H", "3F524DD3", "OBJ_PROP_EVENTH", {kProgram}, 1},
    {"EVENT_0", "841E2D1E", "OBJ_PROP_EVENT0", {kProgram}, 1},
    {"EVENT_1", "F3191D88", "OBJ_PROP_EVENT1", {kProgram}, 1},
    {"EVENT_2", "6A104C32", "OBJ_PROP_EVENT2", {kProgram}, 1},
    {"EVENT_3", "1D177CA4", "OBJ_PROP_EVENT3", {kProgram}, 1},
    {"EVENT_4", "3F524DD3", "OBJ_PROP_EVENT4", {kProgram}, 1},
    {"EVENT_5", "F474D991", "OBJ_PROP_EVENT5", {kProgram}, 1},
    {"EVENT_6", "6D7D882B", "OBJ_PROP_EVENT6", {kProgram}, 1},
    {"EVENT_7", "1A7AB8BD", "OBJ_PROP_EVENT7", {kProgram}, 1},
    {"PILOT", "DB4529D3", "OBJ_PROP_PILOT", {kLong}, 1},
    {"TARGSTR", "12E9F423", "OBJ_PROP_TARGET_STRING", {kLong}, 1},
    {"NAME", "C0182354", "OBJ_PROP_NAME", {kLong}, 1},
    {"DIRECTION", "DB9BFB6D", "OBJ_PROP_DIRECTION", {kLong, kLong, kLong}, 3},
    {"LIGHTCOLOR", "8D4A2E9F", "OBJ_PROP_LIGHT_COLOR", {kFloat, kFloat, kFloat}, 3},
    {"LIGHTTYPE", "440950ED", "OBJ_PROP_LIGHT_TYPE", {kLong}, 1},
    {"LENSFLARE", "3915DCFD", "OBJ_PROP_LENS_FLARE", {kLong}, 1},
    {"BODY", "6C16661E", "OBJ_PROP_HBODY_OBJ", {kLong}, 1},
    {"RADIUS", "8D12CACF", "OBJ_PROP_RADIUS", {kFloat}, 1},
    {"ACTIONSPHERE", "214E3DDF", "OBJ_PROP_ACTIONSPHERE", {kLong}, 1},
    {"UNKNOWN2", "228C6B96", "OBJ_PROP_UNKNOWN2", {kFloat}, 1},
    {"UNKNOWN5", "7498C4FE", "OBJ_PROP_UNKNOWN5", {kLong, kLong, kLong}, 3},
    {"UNKNOWN6", "A1867673", "OBJ_PROP_UNKNOWN6", {kLong, kLong, kLong}, 3},
    {"COLOR", "7CD3CF30", "OBJ_PROP_BRIEF_COLOR", {kLong, kFloat, kFloat, kFloat}, 4},
    {"BRIEF_NAME", "7CD3CF30", "OBJ_PROP_BRIEF_NAME", {kLong}, 1},
    {"NAVDATA",
     "7CEB526F",
     "OBJ_PROP_NAV_DATA",
     {PropertyValue{'l', "", "number"}, {'l', "0", ""}, {'l', "", "diameter"}, {'l', "60", ""}},
     4},
    {"ABSDATA",
     "E2D9FD86",
     "OBJ_PROP_ABSTART_DATA",
     {PropertyValue{'l', "", "number"},
      {'l', "", "count"},
      {'l', "556", ""},
      {'l', "", "diameter"},
      {'l', "10", ""},
      {'l', "22", ""},
      {'l', "5", ""}},
     7},
    {"ABCDATA",
     "BA4BEF19",
     "OBJ_PROP_ABCPOINT_DATA",
     {PropertyValue{'l', "", "ABS number"}, {'l', "", "ABCP number"}},
     2},
};

} // namespace

const ObjectType* FindObjectType(std::string_view word) {
    for (const auto& type : kTypes)
        if (type.Word == word) return &type;
    return nullptr;
}

const ObjectProperty* FindObjectProperty(std::string_view keyword) {
    for (const auto& property : kProperties)
        if (property.Keyword == keyword) return &property;
    return nullptr;
}

std::span<const ObjectType> ObjectTypes() {
    return kTypes;
}

std::span<const ObjectProperty> ObjectProperties() {
    return kProperties;
}

std::string PropertyChunkHeader(std::string_view id, std::string_view comment) {
    std::string header = "CHUNK $";
    header += id;
    header += " // ";
    header += comment;
    return header;
}

} // namespace velkor
