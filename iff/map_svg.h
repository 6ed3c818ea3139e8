// A map as SVG: the scene of BuildMapScene written as plain SVG 1.1 text, each object a group with its
// description as the group's title (shown as a tooltip by browsers).
#pragma once

#include "iff/map_scene.h"

#include <string>
#include <string_view>

namespace velkor {

std::string MapSvg(std::span<const TMapObject> objects, const TMapSceneOptions& options);
std::string SceneSvg(const TMapScene& scene, std::span<const TMapObject> objects);

// Text made safe for XML character data and attribute values: markup characters escaped, control
// characters and bytes that are not UTF-8 replaced by U+FFFD.
std::string XmlText(std::string_view text);

} // namespace velkor
