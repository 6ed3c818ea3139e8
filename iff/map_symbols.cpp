#include "iff/map_symbols.h"

namespace velkor {

namespace {

struct TypeEntry {
    std::int32_t number;   // the OBJ_PROP_TYPE value
    std::string_view word; // the type word after AS
    std::string_view text; // the fixed TYPE text; empty where the OBJ value stands there
    TMapKind kind;
};

// The object types a unit can declare. Objects of the game's own files may carry other numbers; they
// are drawn as "other".
constexpr TypeEntry kTypes[] = {
    {20, "SHIP", "", TMapKind::Ship},
    {26, "CAPSHIP", "", TMapKind::Capship},
    {19, "PLAYER", "", TMapKind::Player},
    {21, "NAVPOINT", "NAVPOINT", TMapKind::Navpoint},
    {23, "ABSTART", "ABSTART", TMapKind::Base},
    {5, "ABCPOINT", "ABCPOINT", TMapKind::Base},
    {9, "JUMPPOINT", "JUMPPOINT", TMapKind::Jumppoint},
    {24, "HBODY", "HBODY", TMapKind::Body},
    {3, "LIGHT", "LIGHT", TMapKind::Light},
    {28, "ACAPMISS", "", TMapKind::Missile},
    {29, "CLUSTER", "", TMapKind::Missile},
    {31, "SYSTEM", "SYSTEM", TMapKind::System},
    {25, "CAMERA", "PROGCAM", TMapKind::Camera},
    {14, "DEBRSFLD", "DEBRSFLD", TMapKind::Debris},
    {27, "GHOST", "GHOST", TMapKind::Ghost},
    {22, "CARGO", "CARGO", TMapKind::Cargo},
};

const TypeEntry* EntryOf(const TMapObject& object) {
    for (const TypeEntry& entry : kTypes)
        if (entry.number == object.TypeNumber) return &entry;
    if (object.TypeText.empty()) return nullptr;
    for (const TypeEntry& entry : kTypes)
        if (entry.text == object.TypeText) return &entry;
    return nullptr;
}

using Shape = TMapShape;
using F = TMapShape::Form;

const std::vector<Shape>& Symbols(TMapKind kind) {
    static const std::array<std::vector<Shape>, kMapKindCount> table = [] {
        std::array<std::vector<Shape>, kMapKindCount> t;
        auto at = [&t](TMapKind k) -> std::vector<Shape>& { return t[static_cast<std::size_t>(k)]; };
        at(TMapKind::Player) = {{F::Polygon, true, {{0, -0.7}, {0.6, 0.55}, {-0.6, 0.55}}, 0},
                                {F::Circle, false, {{0, 0}}, 1.0}};
        at(TMapKind::Ship) = {{F::Polygon, true, {{0, -1}, {0.85, 0.8}, {-0.85, 0.8}}, 0}};
        at(TMapKind::Capship) = {
            {F::Polygon, true, {{-1, -0.45}, {0.55, -0.45}, {1, 0}, {0.55, 0.45}, {-1, 0.45}}, 0}};
        at(TMapKind::Missile) = {{F::Polygon, true, {{0, -0.8}, {0.45, 0}, {0, 0.8}, {-0.45, 0}}, 0}};
        at(TMapKind::Navpoint) = {{F::Circle, false, {{0, 0}}, 0.85}, {F::Circle, true, {{0, 0}}, 0.25}};
        at(TMapKind::Jumppoint) = {{F::Circle, false, {{0, 0}}, 1.0}, {F::Circle, false, {{0, 0}}, 0.5}};
        at(TMapKind::Base) = {{F::Polygon, false, {{-0.8, -0.8}, {0.8, -0.8}, {0.8, 0.8}, {-0.8, 0.8}}, 0},
                              {F::Polygon, true, {{-0.3, -0.3}, {0.3, -0.3}, {0.3, 0.3}, {-0.3, 0.3}}, 0}};
        at(TMapKind::Camera) = {{F::Polygon, true, {{-1, -0.5}, {0.25, -0.5}, {0.25, 0.5}, {-1, 0.5}}, 0},
                                {F::Polygon, true, {{0.25, 0}, {1, -0.6}, {1, 0.6}}, 0}};
        at(TMapKind::Light) = {{F::Circle, true, {{0, 0}}, 0.45},
                               {F::Polyline, false, {{0, -1}, {0, -0.65}}, 0},
                               {F::Polyline, false, {{0, 0.65}, {0, 1}}, 0},
                               {F::Polyline, false, {{-1, 0}, {-0.65, 0}}, 0},
                               {F::Polyline, false, {{0.65, 0}, {1, 0}}, 0},
                               {F::Polyline, false, {{-0.7, -0.7}, {-0.46, -0.46}}, 0},
                               {F::Polyline, false, {{0.46, 0.46}, {0.7, 0.7}}, 0},
                               {F::Polyline, false, {{0.7, -0.7}, {0.46, -0.46}}, 0},
                               {F::Polyline, false, {{-0.46, 0.46}, {-0.7, 0.7}}, 0}};
        at(TMapKind::Body) = {{F::Circle, true, {{0, 0}}, 1.0}};
        at(TMapKind::System) = {{F::Circle, false, {{0, 0}}, 1.0}, {F::Circle, true, {{0, 0}}, 0.35}};
        at(TMapKind::Debris) = {{F::Circle, true, {{-0.5, -0.45}}, 0.3},
                                {F::Circle, true, {{0.55, -0.2}}, 0.3},
                                {F::Circle, true, {{-0.1, 0.55}}, 0.3}};
        at(TMapKind::Cargo) = {{F::Polygon, true, {{-0.7, -0.7}, {0.7, -0.7}, {0.7, 0.7}, {-0.7, 0.7}}, 0}};
        at(TMapKind::Ghost) = {{F::Polygon, false, {{0, -1}, {0.85, 0.8}, {-0.85, 0.8}}, 0}};
        at(TMapKind::Other) = {{F::Polyline, false, {{-0.7, -0.7}, {0.7, 0.7}}, 0},
                               {F::Polyline, false, {{-0.7, 0.7}, {0.7, -0.7}}, 0}};
        return t;
    }();
    return table[static_cast<std::size_t>(kind)];
}

constexpr std::array<std::string_view, kMapKindCount> kCaptions = {
    "player",     "ship",   "capital ship", "missile or cluster", "navigation point", "jump point",
    "base point", "camera", "light",        "planet or moon",     "star system",      "debris field",
    "cargo",      "ghost",  "other",
};

constexpr TMapColors kLight = {
    0xFFFFFF,
    0xF6F7F9,
    0x5F6B7A,
    0xD3D8DF,
    0x1F2933,
    0x66717E,
    {0x0B5FD0, 0x2E7D32, 0x6A1B9A, 0xC62828, 0x00838F, 0x8E24AA, 0x6D4C41, 0x455A64, 0xD18F00, 0x8D6E63,
     0x546E7A, 0x757575, 0xE65100, 0x90A4AE, 0x37474F},
};

constexpr TMapColors kDark = {
    0x1E1F22,
    0x26282C,
    0xA0A8B4,
    0x3A3E45,
    0xE6E8EB,
    0x9AA3AE,
    {0x64B5F6, 0x81C784, 0xCE93D8, 0xEF9A9A, 0x4DD0E1, 0xBA68C8, 0xBCAAA4, 0xB0BEC5, 0xFFD54F, 0xD7B899,
     0x90A4AE, 0xBDBDBD, 0xFFB74D, 0x78909C, 0xCFD8DC},
};

} // namespace

TMapKind KindOf(const TMapObject& object) {
    const TypeEntry* entry = EntryOf(object);
    return entry ? entry->kind : TMapKind::Other;
}

std::string_view KindCaption(TMapKind kind) {
    return kCaptions[static_cast<std::size_t>(kind)];
}

std::string_view TypeWordOf(const TMapObject& object) {
    const TypeEntry* entry = EntryOf(object);
    return entry ? entry->word : std::string_view();
}

std::span<const TMapShape> SymbolOf(TMapKind kind) {
    return Symbols(kind);
}

const TMapColors& MapColors(TMapTheme theme) {
    return theme == TMapTheme::Dark ? kDark : kLight;
}

} // namespace velkor
