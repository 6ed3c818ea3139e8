#include "iff/map_svg.h"

#include <charconv>
#include <cmath>

namespace velkor {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

// Picture units with at most two decimals, no trailing zeros, locale-independent.
std::string Num(double value) {
    if (!std::isfinite(value)) value = 0;
    value = std::round(value * 100) / 100;
    if (value == 0) value = 0; // no "-0"
    char buffer[64];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, 2);
    std::string text(buffer, result.ptr);
    while (text.back() == '0') text.pop_back();
    if (text.back() == '.') text.pop_back();
    return text;
}

std::string Color(std::uint32_t rgb) {
    static constexpr char kHex[] = "0123456789abcdef";
    std::string text = "#";
    for (int shift = 20; shift >= 0; shift -= 4) text += kHex[(rgb >> shift) & 0xF];
    return text;
}

// Length of the UTF-8 sequence starting at `at`, or 0 when the bytes there are not one.
std::size_t Utf8Length(std::string_view text, std::size_t at) {
    const auto lead = static_cast<unsigned char>(text[at]);
    std::size_t length = 0;
    std::uint32_t code = 0;
    if (lead < 0x80) return 1;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
        code = lead & 0x1F;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        code = lead & 0x0F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        code = lead & 0x07;
    } else {
        return 0;
    }
    if (at + length > text.size()) return 0;
    for (std::size_t i = 1; i < length; ++i) {
        const auto next = static_cast<unsigned char>(text[at + i]);
        if ((next & 0xC0) != 0x80) return 0;
        code = (code << 6) | (next & 0x3F);
    }
    const bool overlong = (length == 3 && code < 0x800) || (length == 4 && code < 0x10000);
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    // U+FFFE and U+FFFF are not characters XML allows either.
    if (overlong || surrogate || code > 0x10FFFF || code == 0xFFFE || code == 0xFFFF) return 0;
    return length;
}

std::string Attr(std::string_view name, const std::string& value) {
    return " " + std::string(name) + "=\"" + value + "\"";
}

std::string Paint(const TMapItem& item) {
    std::string text = Attr("fill", item.fill ? Color(*item.fill) : "none");
    if (item.stroke) {
        text += Attr("stroke", Color(*item.stroke));
        if (item.strokeWidth != 1) text += Attr("stroke-width", Num(item.strokeWidth));
        if (item.dashed) text += Attr("stroke-dasharray", "4 3");
    }
    return text;
}

std::string Points(const TMapItem& item) {
    std::string text;
    for (const auto& [x, y] : item.points) {
        if (!text.empty()) text += ' ';
        text += Num(x) + "," + Num(y);
    }
    return text;
}

std::string Element(const TMapItem& item) {
    const auto& p = item.points;
    switch (item.kind) {
    case TMapItem::Kind::Rect:
        return "<rect" + Attr("x", Num(p[0][0])) + Attr("y", Num(p[0][1])) +
               Attr("width", Num(p[1][0] - p[0][0])) + Attr("height", Num(p[1][1] - p[0][1])) + Paint(item) +
               "/>";
    case TMapItem::Kind::Line:
        return "<line" + Attr("x1", Num(p[0][0])) + Attr("y1", Num(p[0][1])) + Attr("x2", Num(p[1][0])) +
               Attr("y2", Num(p[1][1])) + Paint(item) + "/>";
    case TMapItem::Kind::Polygon: return "<polygon" + Attr("points", Points(item)) + Paint(item) + "/>";
    case TMapItem::Kind::Polyline: return "<polyline" + Attr("points", Points(item)) + Paint(item) + "/>";
    case TMapItem::Kind::Circle:
        return "<circle" + Attr("cx", Num(p[0][0])) + Attr("cy", Num(p[0][1])) + Attr("r", Num(item.radius)) +
               Paint(item) + "/>";
    case TMapItem::Kind::Text: {
        std::string text = "<text" + Attr("x", Num(p[0][0])) + Attr("y", Num(p[0][1]));
        if (item.fontSize != 11) text += Attr("font-size", Num(item.fontSize));
        if (item.bold) text += Attr("font-weight", "bold");
        if (item.anchor == TMapItem::Anchor::Middle) text += Attr("text-anchor", "middle");
        if (item.anchor == TMapItem::Anchor::End) text += Attr("text-anchor", "end");
        if (item.fill) text += Attr("fill", Color(*item.fill));
        return text + ">" + XmlText(item.text) + "</text>";
    }
    }
    return {};
}

} // namespace

std::string XmlText(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const char c = text[i];
        const std::size_t length = Utf8Length(text, i);
        if (length == 0) {
            out += kReplacement;
            ++i;
            continue;
        }
        if (length == 1) {
            switch (c) {
            case '&': out += "&amp;"; break;
            case '<': out += "&lt;"; break;
            case '>': out += "&gt;"; break;
            case '"': out += "&quot;"; break;
            case '\'': out += "&apos;"; break;
            case '\n': out += "&#10;"; break;
            default:
                if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F)
                    out += kReplacement;
                else
                    out += c;
            }
        } else {
            out.append(text.substr(i, length));
        }
        i += length;
    }
    return out;
}

std::string SceneSvg(const TMapScene& scene, std::span<const TMapObject> objects) {
    std::string svg = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    svg += "<svg xmlns=\"http://www.w3.org/2000/svg\" version=\"1.1\"" + Attr("width", Num(scene.width)) +
           Attr("height", Num(scene.height)) +
           Attr("viewBox", "0 0 " + Num(scene.width) + " " + Num(scene.height)) +
           " font-family=\"DejaVu Sans, Verdana, sans-serif\" font-size=\"11\">\n";
    svg += "<defs>\n";
    for (std::size_t i = 0; i < scene.panels.size(); ++i) {
        const TMapRect& f = scene.panels[i].frame;
        svg += "<clipPath id=\"panel" + std::to_string(i) + "\"><rect" + Attr("x", Num(f.left)) +
               Attr("y", Num(f.top)) + Attr("width", Num(f.width)) + Attr("height", Num(f.height)) +
               "/></clipPath>\n";
    }
    svg += "</defs>\n";

    int panel = -1;  // the clipping group now open
    int object = -1; // the object group now open
    auto closeObject = [&] {
        if (object >= 0) svg += "</g>\n";
        object = -1;
    };
    for (const TMapItem& item : scene.items) {
        if (item.panel != panel) {
            closeObject();
            if (panel >= 0) svg += "</g>\n";
            panel = item.panel;
            if (panel >= 0) svg += "<g clip-path=\"url(#panel" + std::to_string(panel) + ")\">\n";
        }
        if (item.object != object) {
            closeObject();
            object = item.object;
            if (object >= 0) {
                const TMapObject& o = objects[static_cast<std::size_t>(object)];
                svg += "<g class=\"object\"><title>" + XmlText(DescribeObject(o)) + "</title>\n";
            }
        }
        svg += Element(item) + "\n";
    }
    closeObject();
    if (panel >= 0) svg += "</g>\n";
    svg += "</svg>\n";
    return svg;
}

std::string MapSvg(std::span<const TMapObject> objects, const TMapSceneOptions& options) {
    return SceneSvg(BuildMapScene(objects, options), objects);
}

} // namespace velkor
