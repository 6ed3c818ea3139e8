// A map as a list of drawing items in picture units: panels with their frames, axes, object symbols and
// names, scale bars, the legend and the title. The SVG writer writes the list as it stands; the IDE's view
// paints it, so both show the same picture.
#pragma once

#include "iff/map_layout.h"
#include "iff/map_symbols.h"

#include <optional>
#include <string>
#include <vector>

namespace velkor {

struct TMapItem {
    enum class Kind : std::uint8_t { Rect, Line, Polygon, Polyline, Circle, Text };
    enum class Anchor : std::uint8_t { Start, Middle, End };
    Kind kind = Kind::Line;
    std::vector<std::array<double, 2>> points; // Rect: top left, bottom right; Circle and Text: the point
    double radius = 0;                         // Circle
    std::optional<std::uint32_t> stroke;       // 0xRRGGBB, or none
    std::optional<std::uint32_t> fill;         // 0xRRGGBB, or none
    double strokeWidth = 1;
    bool dashed = false;
    std::string text; // Text: UTF-8 as the data gave it; writers make it safe for their format
    double fontSize = 11;
    bool bold = false;
    Anchor anchor = Anchor::Start;
    int object = -1; // the object (index into the objects drawn) the item belongs to, or -1
    int panel = -1;  // the panel whose frame clips the item, or -1
};

// Where a placed object's symbol stands in a panel, for finding the object under the mouse.
struct TMapMark {
    int object = 0;
    double x = 0;
    double y = 0;
};

struct TMapPanel {
    TMapView view = TMapView::Top;
    TMapRect frame;          // the area the objects are drawn in
    TMapTransform transform; // game units to picture units inside the frame
    std::vector<TMapMark> marks;
};

struct TMapSceneOptions {
    std::vector<TMapView> views{TMapView::Top, TMapView::Side};
    double width = 928;
    double height = 0; // 0: as high as square panels side by side need
    TMapTheme theme = TMapTheme::Light;
    std::string title; // drawn above the panels when not empty
    bool legend = true;
    // Per panel: a transform to use instead of fitting the objects into the frame (zoomed or panned).
    std::vector<std::optional<TMapTransform>> transforms;
};

struct TMapScene {
    double width = 0;
    double height = 0;
    std::uint32_t background = 0;
    std::vector<TMapPanel> panels;
    std::vector<TMapItem> items; // in drawing order
};

// Symbols are this many picture units from their centre to their edge.
inline constexpr double kMapSymbolRadius = 7;

TMapScene BuildMapScene(std::span<const TMapObject> objects, const TMapSceneOptions& options);

// The placed object whose symbol lies within `reach` picture units of (x, y) in the panel there, nearest
// first; -1 when there is none.
int ObjectAt(const TMapScene& scene, double x, double y, double reach = kMapSymbolRadius + 2);

} // namespace velkor
