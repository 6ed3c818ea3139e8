// How a map shows an object: its kind (from the type number, else the type text), the symbol drawn for
// the kind, and the colours of a light and a dark map. The SVG writer and the IDE's view draw from these
// same descriptions, so the two pictures agree.
#pragma once

#include "iff/map_objects.h"

#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace velkor {

enum class TMapKind : std::uint8_t {
    Player,
    Ship,
    Capship,
    Missile, // ACAPMISS and CLUSTER
    Navpoint,
    Jumppoint,
    Base, // ABSTART and ABCPOINT
    Camera,
    Light,
    Body, // HBODY
    System,
    Debris,
    Cargo,
    Ghost,
    Other,
};
inline constexpr std::size_t kMapKindCount = static_cast<std::size_t>(TMapKind::Other) + 1;

TMapKind KindOf(const TMapObject& object);
// The legend's caption of a kind: "player", "ship", "navigation point", ...
std::string_view KindCaption(TMapKind kind);
// The type word of the object as a unit writes it after AS ("SHIP", "CAMERA"), or empty when neither its
// type number nor its type text names one.
std::string_view TypeWordOf(const TMapObject& object);

// One stroke of a symbol, in symbol units: the symbol fits the square from -1 to 1, y pointing down.
struct TMapShape {
    enum class Form : std::uint8_t { Polygon, Polyline, Circle };
    Form form = Form::Polygon;
    bool filled = false;
    std::vector<std::array<double, 2>> points; // corners (Polygon, Polyline) or the centre (Circle)
    double radius = 0;                         // Circle only
};
std::span<const TMapShape> SymbolOf(TMapKind kind);

enum class TMapTheme : std::uint8_t { Light, Dark };

// Colours as 0xRRGGBB.
struct TMapColors {
    std::uint32_t background;                       // behind everything
    std::uint32_t panel;                            // inside a view's frame
    std::uint32_t frame;                            // the frame and the scale bar
    std::uint32_t grid;                             // the lines through the origin
    std::uint32_t text;                             // names and captions
    std::uint32_t dimText;                          // secondary text: coordinates, the legend's counts
    std::array<std::uint32_t, kMapKindCount> kinds; // symbol colour of each kind
};
const TMapColors& MapColors(TMapTheme theme);

} // namespace velkor
