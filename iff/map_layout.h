// The geometry of a map: which coordinates a view shows, how game units become picture points (fit,
// zoom, pan), and the length of a scale bar in round game units.
#pragma once

#include "iff/map_objects.h"

#include <array>
#include <span>
#include <string>
#include <string_view>

namespace velkor {

// Top: seen from above, x across and z up the picture. Side: seen from the side, x across and y up.
enum class TMapView : std::uint8_t { Top, Side };
std::string_view ViewCaption(TMapView view); // "Top view (x, z)", "Side view (x, y)"

// A position in a view's plane, in game units.
struct TMapPoint {
    double across = 0;
    double up = 0;
};
TMapPoint Project(const TMapObject& object, TMapView view);

// A rectangle of the picture, in picture units (pixels), y pointing down.
struct TMapRect {
    double left = 0;
    double top = 0;
    double width = 0;
    double height = 0;
    bool Contains(double x, double y) const {
        return x >= left && x < left + width && y >= top && y < top + height;
    }
};

// The extent of the placed objects in a view, never empty: a single point or a line gets room around it.
struct TMapBounds {
    double minAcross = 0;
    double maxAcross = 0;
    double minUp = 0;
    double maxUp = 0;
};
TMapBounds BoundsOf(std::span<const TMapObject> objects, TMapView view);

// Game units to picture points: x = originX + across * scale, y = originY - up * scale.
struct TMapTransform {
    double scale = 1;   // picture units per game unit
    double originX = 0; // where the game origin lies in the picture
    double originY = 0;

    std::array<double, 2> ToPicture(TMapPoint point) const {
        return {originX + point.across * scale, originY - point.up * scale};
    }
    TMapPoint ToGame(double x, double y) const { return {(x - originX) / scale, (originY - y) / scale}; }
    // Zooms by `factor` keeping the game point under (x, y) where it is; the scale stays in a range where
    // the picture's numbers keep their precision.
    void ZoomAt(double factor, double x, double y);
    void Pan(double dx, double dy) {
        originX += dx;
        originY += dy;
    }
};
// The transform that shows `bounds` whole and centred in `area`, keeping a margin free for names.
TMapTransform FitTransform(const TMapBounds& bounds, const TMapRect& area);

// The scale bar's length in game units: the largest 1, 2 or 5 times a power of ten that is at most
// `maxPicture` picture units long.
double ScaleBarUnits(double scale, double maxPicture);

// Game units for people: "#,##0" from 1 on, a fraction below ("0.5"), "0" for zero.
std::string FormatGameUnits(double value);

// The hover text of an object: its name, its type word and type text, its position (or that it has none).
std::string DescribeObject(const TMapObject& object);

} // namespace velkor
