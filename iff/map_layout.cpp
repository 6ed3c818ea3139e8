#include "iff/map_layout.h"

#include "iff/map_symbols.h"
#include "platform/numbers.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace velkor {

namespace {

// A single object, or objects on one line, still get this much room around them.
constexpr double kMinSpan = 1000;
// Room kept free around the objects, as a share of the area, for symbols and names.
constexpr double kMargin = 0.08;
// Zooming stops where a game unit would be smaller than this or larger than that in the picture.
constexpr double kMinScale = 1e-36;
constexpr double kMaxScale = 1e6;

std::string Position(double value) {
    return FormatFloat("0.##", value);
}

} // namespace

std::string_view ViewCaption(TMapView view) {
    return view == TMapView::Top ? "Top view (x, z)" : "Side view (x, y)";
}

TMapPoint Project(const TMapObject& object, TMapView view) {
    return {object.X, view == TMapView::Top ? object.Z : object.Y};
}

TMapBounds BoundsOf(std::span<const TMapObject> objects, TMapView view) {
    double minA = std::numeric_limits<double>::infinity();
    double maxA = -minA;
    double minU = minA;
    double maxU = -minA;
    for (const TMapObject& object : objects) {
        if (!object.Placed) continue;
        const TMapPoint p = Project(object, view);
        minA = std::min(minA, p.across);
        maxA = std::max(maxA, p.across);
        minU = std::min(minU, p.up);
        maxU = std::max(maxU, p.up);
    }
    if (minA > maxA) return {-kMinSpan / 2, kMinSpan / 2, -kMinSpan / 2, kMinSpan / 2};
    // A flat extent takes the other direction's span, so a line of objects is not stretched across.
    const double span = std::max({maxA - minA, maxU - minU, kMinSpan});
    auto widen = [span](double& low, double& high) {
        if (high - low >= span / 4) return;
        const double middle = low / 2 + high / 2;
        low = middle - span / 8;
        high = middle + span / 8;
    };
    widen(minA, maxA);
    widen(minU, maxU);
    return {minA, maxA, minU, maxU};
}

void TMapTransform::ZoomAt(double factor, double x, double y) {
    if (!(factor > 0) || !std::isfinite(factor)) return;
    const double wanted = std::clamp(scale * factor, kMinScale, kMaxScale);
    const TMapPoint fixed = ToGame(x, y);
    scale = wanted;
    originX = x - fixed.across * scale;
    originY = y + fixed.up * scale;
}

TMapTransform FitTransform(const TMapBounds& bounds, const TMapRect& area) {
    const double usableW = std::max(1.0, area.width * (1 - 2 * kMargin));
    const double usableH = std::max(1.0, area.height * (1 - 2 * kMargin));
    const double spanA = std::max(bounds.maxAcross - bounds.minAcross, 1e-9);
    const double spanU = std::max(bounds.maxUp - bounds.minUp, 1e-9);
    TMapTransform t;
    t.scale = std::clamp(std::min(usableW / spanA, usableH / spanU), kMinScale, kMaxScale);
    const double midA = bounds.minAcross / 2 + bounds.maxAcross / 2;
    const double midU = bounds.minUp / 2 + bounds.maxUp / 2;
    t.originX = area.left + area.width / 2 - midA * t.scale;
    t.originY = area.top + area.height / 2 + midU * t.scale;
    return t;
}

double ScaleBarUnits(double scale, double maxPicture) {
    if (!(scale > 0) || !(maxPicture > 0)) return 0;
    const double most = maxPicture / scale;
    double step = std::pow(10.0, std::floor(std::log10(most)));
    for (double factor : {5.0, 2.0, 1.0}) {
        if (step * factor <= most) return step * factor;
    }
    return step;
}

std::string FormatGameUnits(double value) {
    if (value == 0) return "0";
    if (std::fabs(value) >= 1) return FormatFloat("#,##0", value);
    return FormatFloat("0.#########", value);
}

std::string DescribeObject(const TMapObject& object) {
    std::string text = object.Name + "\n";
    const std::string_view word = TypeWordOf(object);
    if (!word.empty())
        text += word;
    else if (object.TypeNumber >= 0)
        text += "type " + std::to_string(object.TypeNumber);
    else
        text += "unknown type";
    if (!object.TypeText.empty() && object.TypeText != word) text += " \"" + object.TypeText + "\"";
    text += "\n";
    if (object.Placed)
        text += "x " + Position(object.X) + ", y " + Position(object.Y) + ", z " + Position(object.Z);
    else
        text += "no position";
    return text;
}

} // namespace velkor
