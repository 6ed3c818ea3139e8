#include "iff/map_scene.h"

#include <algorithm>
#include <cmath>

namespace velkor {

namespace {

constexpr double kGap = 12;           // between panels and around the picture
constexpr double kTitleHeight = 26;   // the title's row
constexpr double kCaptionHeight = 18; // a panel's caption above its frame
constexpr double kLegendRow = 20;     // one row of the legend
constexpr double kCharWidth = 6.6;    // average width of a character of the 11-unit face, for laying out
constexpr double kLabelSize = 11;     // names and captions
// Objects further than this outside their frame are not drawn at all (a zoomed view of a large sector).
constexpr double kOffFrame = 200;

// A box of the picture that a name would cover.
struct Box {
    double left, top, right, bottom;
    bool Overlaps(const Box& other) const {
        return left < other.right && other.left < right && top < other.bottom && other.top < bottom;
    }
};

// Where a name is written: its anchor point on the baseline and how the text stands to it.
struct Label {
    double x = 0;
    double y = 0;
    TMapItem::Anchor anchor = TMapItem::Anchor::Start;
};

// Names are moved around their symbols only while there are few enough to compare each with each.
constexpr std::size_t kMaxPlacedLabels = 400;

class SceneBuilder {
public:
    SceneBuilder(std::span<const TMapObject> objects, const TMapSceneOptions& options)
        : objects_(objects), options_(options), colors_(MapColors(options.theme)) {}

    TMapScene Build();

private:
    void CountKinds();
    std::vector<std::string> LegendTexts() const;
    double LegendHeight(double width) const;
    void Panel(std::size_t index, TMapView view, const TMapRect& frame);
    std::vector<Label> PlaceLabels(const TMapPanel& panel) const;
    void Axes(const TMapPanel& panel, int index);
    void ScaleBar(const TMapPanel& panel, int index);
    void Legend(double top);
    void Symbol(TMapKind kind, double x, double y, double radius, int object, int panel);
    TMapItem& Text(std::string text, double x, double y, std::uint32_t color, int panel);

    std::span<const TMapObject> objects_;
    const TMapSceneOptions& options_;
    const TMapColors& colors_;
    std::array<int, kMapKindCount> counts_{}; // objects of each kind, placed or not
    int unplaced_ = 0;
    TMapScene scene_;
};

void SceneBuilder::CountKinds() {
    for (const TMapObject& object : objects_) {
        ++counts_[static_cast<std::size_t>(KindOf(object))];
        if (!object.Placed) ++unplaced_;
    }
}

std::vector<std::string> SceneBuilder::LegendTexts() const {
    std::vector<std::string> texts;
    for (std::size_t k = 0; k < kMapKindCount; ++k) {
        if (counts_[k] == 0) continue;
        texts.push_back(std::string(KindCaption(static_cast<TMapKind>(k))) + " (" +
                        std::to_string(counts_[k]) + ")");
    }
    return texts;
}

// Legend entries flow in rows across the picture.
double SceneBuilder::LegendHeight(double width) const {
    if (!options_.legend) return 0;
    int rows = 0;
    double x = width; // forces the first row
    for (const std::string& text : LegendTexts()) {
        const double w = 24 + static_cast<double>(text.size()) * kCharWidth + 14;
        if (x + w > width - kGap) {
            ++rows;
            x = kGap;
        }
        x += w;
    }
    return rows * kLegendRow + (unplaced_ > 0 ? kLegendRow : 0);
}

TMapScene SceneBuilder::Build() {
    CountKinds();
    const std::size_t n = std::max<std::size_t>(1, options_.views.size());
    scene_.width = std::max(options_.width, 2 * kGap + 40);
    scene_.background = colors_.background;
    const double titleH = options_.title.empty() ? 0 : kTitleHeight;
    const double legendH = LegendHeight(scene_.width);
    double height = options_.height;
    bool sideBySide = true;
    if (height <= 0) {
        const double panelW = (scene_.width - kGap * static_cast<double>(n + 1)) / static_cast<double>(n);
        height = kGap + titleH + kCaptionHeight + panelW + kGap + legendH;
    } else {
        const double areaH = height - kGap - titleH - legendH - kGap;
        sideBySide = scene_.width >= areaH;
    }
    scene_.height = std::max(height, kGap * 2 + titleH + legendH + kCaptionHeight + 40);

    scene_.items.push_back({});
    TMapItem& back = scene_.items.back();
    back.kind = TMapItem::Kind::Rect;
    back.points = {{0, 0}, {scene_.width, scene_.height}};
    back.fill = colors_.background;
    if (!options_.title.empty()) {
        TMapItem& title = Text(options_.title, kGap, kGap + 15, colors_.text, -1);
        title.fontSize = 14;
        title.bold = true;
    }

    const double areaTop = kGap + titleH;
    const double areaH = scene_.height - areaTop - legendH - kGap;
    const double count = static_cast<double>(options_.views.size());
    for (std::size_t i = 0; i < options_.views.size(); ++i) {
        const double at = static_cast<double>(i);
        TMapRect frame;
        if (sideBySide) {
            const double w = (scene_.width - kGap * (count + 1)) / count;
            frame = {kGap + at * (w + kGap), areaTop + kCaptionHeight, w, areaH - kCaptionHeight};
        } else {
            const double h = (areaH - (count - 1) * kGap) / count;
            frame = {kGap, areaTop + at * (h + kGap) + kCaptionHeight, scene_.width - 2 * kGap,
                     h - kCaptionHeight};
        }
        frame.width = std::max(frame.width, 20.0);
        frame.height = std::max(frame.height, 20.0);
        Panel(i, options_.views[i], frame);
    }
    if (options_.legend) Legend(scene_.height - kGap - legendH);
    return std::move(scene_);
}

void SceneBuilder::Panel(std::size_t index, TMapView view, const TMapRect& frame) {
    TMapPanel panel;
    panel.view = view;
    panel.frame = frame;
    if (index < options_.transforms.size() && options_.transforms[index])
        panel.transform = *options_.transforms[index];
    else
        panel.transform = FitTransform(BoundsOf(objects_, view), frame);
    const int p = static_cast<int>(index);

    Text(std::string(ViewCaption(view)), frame.left, frame.top - 5, colors_.text, -1).bold = true;
    TMapItem area;
    area.kind = TMapItem::Kind::Rect;
    area.points = {{frame.left, frame.top}, {frame.left + frame.width, frame.top + frame.height}};
    area.fill = colors_.panel;
    scene_.items.push_back(area);
    Axes(panel, p);

    for (std::size_t i = 0; i < objects_.size(); ++i) {
        const TMapObject& object = objects_[i];
        if (!object.Placed) continue;
        const auto [x, y] = panel.transform.ToPicture(Project(object, view));
        if (x < frame.left - kOffFrame || x > frame.left + frame.width + kOffFrame ||
            y < frame.top - kOffFrame || y > frame.top + frame.height + kOffFrame)
            continue;
        panel.marks.push_back({static_cast<int>(i), x, y});
    }
    const std::vector<Label> labels = PlaceLabels(panel);
    for (std::size_t m = 0; m < panel.marks.size(); ++m) {
        const TMapMark& mark = panel.marks[m];
        Symbol(KindOf(objects_[static_cast<std::size_t>(mark.object)]), mark.x, mark.y, kMapSymbolRadius,
               mark.object, p);
        TMapItem& name = Text(objects_[static_cast<std::size_t>(mark.object)].Name, labels[m].x, labels[m].y,
                              colors_.text, p);
        name.anchor = labels[m].anchor;
        name.object = mark.object;
    }
    ScaleBar(panel, p);
    TMapItem border = area;
    border.fill.reset();
    border.stroke = colors_.frame;
    scene_.items.push_back(border);
    scene_.panels.push_back(std::move(panel));
}

// Each name beside its symbol where it covers no other name or symbol and stays inside the frame: right of
// the symbol, else left of it, else above or below; the first place that is free wins, and when none is,
// the first inside the frame.
std::vector<Label> SceneBuilder::PlaceLabels(const TMapPanel& panel) const {
    const double r = kMapSymbolRadius;
    const TMapRect& f = panel.frame;
    std::vector<Label> labels;
    std::vector<Box> taken;
    const bool avoid = panel.marks.size() <= kMaxPlacedLabels;
    if (avoid) {
        for (const TMapMark& mark : panel.marks)
            taken.push_back({mark.x - r, mark.y - r, mark.x + r, mark.y + r});
        // The scale bar with its caption, in the frame's lower left corner (see ScaleBar).
        const double units = ScaleBarUnits(panel.transform.scale, f.width * 0.3);
        const double caption = static_cast<double>(FormatGameUnits(units).size() + 6) * kCharWidth;
        const double middle = f.left + 12 + units * panel.transform.scale / 2;
        taken.push_back({std::min(f.left + 10, middle - caption / 2), f.top + f.height - 30,
                         std::max(f.left + 14 + units * panel.transform.scale, middle + caption / 2),
                         f.top + f.height});
    }
    for (std::size_t m = 0; m < panel.marks.size(); ++m) {
        const TMapMark& mark = panel.marks[m];
        const double w =
            static_cast<double>(objects_[static_cast<std::size_t>(mark.object)].Name.size()) * kCharWidth;
        using A = TMapItem::Anchor;
        const Label candidates[] = {
            {mark.x + r + 3, mark.y + 4, A::Start},      {mark.x - r - 3, mark.y + 4, A::End},
            {mark.x + r + 1, mark.y + 4 + 11, A::Start}, {mark.x + r + 1, mark.y + 4 - 11, A::Start},
            {mark.x - r - 1, mark.y + 4 + 11, A::End},   {mark.x - r - 1, mark.y + 4 - 11, A::End},
            {mark.x, mark.y + r + 12, A::Middle},        {mark.x, mark.y - r - 4, A::Middle},
        };
        auto boxOf = [w](const Label& label) {
            const double left = label.anchor == A::Start ? label.x
                                : label.anchor == A::End ? label.x - w
                                                         : label.x - w / 2;
            return Box{left, label.y - 9, left + w, label.y + 3};
        };
        auto inside = [&f](const Box& b) {
            return b.left >= f.left && b.right <= f.left + f.width && b.top >= f.top &&
                   b.bottom <= f.top + f.height;
        };
        const Label* chosen = nullptr;
        const Label* firstInside = nullptr;
        for (const Label& candidate : candidates) {
            const Box box = boxOf(candidate);
            if (!inside(box)) continue;
            if (!firstInside) firstInside = &candidate;
            if (!avoid) break;
            bool free = true;
            for (std::size_t t = 0; t < taken.size() && free; ++t)
                free = t == m || !taken[t].Overlaps(box); // a symbol does not hide its own name
            if (free) {
                chosen = &candidate;
                break;
            }
        }
        const Label label = chosen ? *chosen : firstInside ? *firstInside : candidates[0];
        if (avoid) taken.push_back(boxOf(label));
        labels.push_back(label);
    }
    return labels;
}

// The lines through the game origin, with the names of their axes.
void SceneBuilder::Axes(const TMapPanel& panel, int index) {
    const TMapRect& f = panel.frame;
    const auto [ox, oy] = panel.transform.ToPicture({0, 0});
    TMapItem line;
    line.kind = TMapItem::Kind::Line;
    line.stroke = colors_.grid;
    line.dashed = true;
    line.panel = index;
    if (oy > f.top && oy < f.top + f.height) {
        line.points = {{f.left, oy}, {f.left + f.width, oy}};
        scene_.items.push_back(line);
        Text("x", f.left + f.width - 4, oy - 4, colors_.dimText, index).anchor = TMapItem::Anchor::End;
    }
    if (ox > f.left && ox < f.left + f.width) {
        line.points = {{ox, f.top}, {ox, f.top + f.height}};
        scene_.items.push_back(line);
        Text(panel.view == TMapView::Top ? "z" : "y", ox + 4, f.top + 13, colors_.dimText, index);
    }
}

void SceneBuilder::ScaleBar(const TMapPanel& panel, int index) {
    const TMapRect& f = panel.frame;
    const double units = ScaleBarUnits(panel.transform.scale, f.width * 0.3);
    if (!(units > 0)) return;
    const double length = units * panel.transform.scale;
    const double x = f.left + 12;
    const double y = f.top + f.height - 12;
    TMapItem bar;
    bar.kind = TMapItem::Kind::Polyline;
    bar.points = {{x, y - 5}, {x, y}, {x + length, y}, {x + length, y - 5}};
    bar.stroke = colors_.frame;
    bar.strokeWidth = 1.5;
    bar.panel = index;
    scene_.items.push_back(bar);
    Text(FormatGameUnits(units) + " units", x + length / 2, y - 6, colors_.dimText, index).anchor =
        TMapItem::Anchor::Middle;
}

void SceneBuilder::Legend(double top) {
    double x = scene_.width;
    double y = top - kLegendRow;
    for (std::size_t k = 0; k < kMapKindCount; ++k) {
        if (counts_[k] == 0) continue;
        const std::string text =
            std::string(KindCaption(static_cast<TMapKind>(k))) + " (" + std::to_string(counts_[k]) + ")";
        const double w = 24 + static_cast<double>(text.size()) * kCharWidth + 14;
        if (x + w > scene_.width - kGap) {
            x = kGap;
            y += kLegendRow;
        }
        Symbol(static_cast<TMapKind>(k), x + 8, y + 10, 6, -1, -1);
        Text(text, x + 20, y + 14, colors_.text, -1);
        x += w;
    }
    if (unplaced_ > 0) {
        const std::string text =
            unplaced_ == 1 ? "1 object has no position and is not shown"
                           : std::to_string(unplaced_) + " objects have no position and are not shown";
        Text(text, kGap, y + kLegendRow + 14, colors_.dimText, -1);
    }
}

void SceneBuilder::Symbol(TMapKind kind, double x, double y, double radius, int object, int panel) {
    const std::uint32_t color = colors_.kinds[static_cast<std::size_t>(kind)];
    for (const TMapShape& shape : SymbolOf(kind)) {
        TMapItem item;
        switch (shape.form) {
        case TMapShape::Form::Polygon: item.kind = TMapItem::Kind::Polygon; break;
        case TMapShape::Form::Polyline: item.kind = TMapItem::Kind::Polyline; break;
        case TMapShape::Form::Circle: item.kind = TMapItem::Kind::Circle; break;
        }
        for (const auto& [sx, sy] : shape.points) item.points.push_back({x + sx * radius, y + sy * radius});
        item.radius = shape.radius * radius;
        item.stroke = color;
        if (shape.filled) item.fill = color;
        item.strokeWidth = 1.5;
        item.object = object;
        item.panel = panel;
        scene_.items.push_back(std::move(item));
    }
}

TMapItem& SceneBuilder::Text(std::string text, double x, double y, std::uint32_t color, int panel) {
    TMapItem item;
    item.kind = TMapItem::Kind::Text;
    item.points = {{x, y}};
    item.text = std::move(text);
    item.fill = color;
    item.fontSize = kLabelSize;
    item.panel = panel;
    scene_.items.push_back(std::move(item));
    return scene_.items.back();
}

} // namespace

TMapScene BuildMapScene(std::span<const TMapObject> objects, const TMapSceneOptions& options) {
    return SceneBuilder(objects, options).Build();
}

int ObjectAt(const TMapScene& scene, double x, double y, double reach) {
    for (const TMapPanel& panel : scene.panels) {
        if (!panel.frame.Contains(x, y)) continue;
        int best = -1;
        double bestDistance = reach * reach;
        for (const TMapMark& mark : panel.marks) {
            const double d = (mark.x - x) * (mark.x - x) + (mark.y - y) * (mark.y - y);
            if (d <= bestDistance) {
                best = mark.object;
                bestDistance = d;
            }
        }
        return best;
    }
    return -1;
}

} // namespace velkor
