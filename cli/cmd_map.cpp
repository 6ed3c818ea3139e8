// velkorc map: the objects of a unit (compiled), of textual IFF (assembled in memory) or of a binary IFF
// file (read as it is), drawn as SVG.
#include "cli/cli.h"
#include "cli/unit_compiler.h"
#include "compiler/compiler.h"
#include "iff/iff_reader.h"
#include "iff/map_from_text.h"
#include "iff/map_svg.h"
#include "platform/path_resolver.h"
#include "platform/text_file.h"

#include <algorithm>
#include <fstream>
#include <iostream>

namespace velkor::cli {

namespace {

bool IsBinaryIff(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    char head[4] = {};
    file.read(head, 4);
    return LooksLikeBinaryIff(std::string_view(head, static_cast<std::size_t>(file.gcount())));
}

// The objects of the unit's linked text; the exit status when it did not compile or assemble.
int MapOfUnit(const Options& options, TMapSource& source) {
    UnitCompiler run;
    try {
        run = PrepareUnitCompiler(options, false);
    } catch (const EInOutError& e) {
        PrintMessage(e.what());
        return kExitUsage;
    }
    TCompiler& c = *run.compiler;
    std::optional<std::string> linked = CompileAndLink(c);
    if (!linked) return kExitReported;
    if (c.ErrorCount > 0) return kExitReported;
    source = MapObjectsFromText(std::move(*linked), run.folder);
    for (const std::string& line : source.errors) PrintMessage(line);
    return source.errors.empty() ? kExitOk : kExitReported;
}

std::vector<TMapView> ViewsNamed(const std::string& name) {
    if (name == "top") return {TMapView::Top};
    if (name == "side") return {TMapView::Side};
    return {TMapView::Top, TMapView::Side};
}

} // namespace

int RunMap(const Options& options) {
    const std::string& input = options.files.front();
    const auto found = FindExisting(input);
    std::error_code ec;
    if (!found || std::filesystem::is_directory(*found, ec)) {
        PrintMessage("Cannot open file \"" + input + "\"");
        return kExitUsage;
    }
    TMapSource source;
    if (IsBinaryIff(*found)) {
        try {
            source.objects = ReadMapObjectsFromFile(*found);
        } catch (const Exception& e) {
            PrintMessage("velkorc: " + input + ": " + e.what());
            return kExitUsage;
        }
        source.fileName = found->filename().string();
    } else if (std::string text = LoadTextFile(*found); IsTextualIff(text)) {
        source = MapObjectsFromText(std::move(text), std::filesystem::absolute(*found).parent_path());
        for (const std::string& line : source.errors) PrintMessage(line);
        if (!source.errors.empty()) return kExitReported;
    } else if (const int status = MapOfUnit(options, source); status != kExitOk) {
        return status;
    }

    if (source.objects.empty()) {
        PrintMessage("velkorc: " + input + ": no game objects to map");
        return kExitReported;
    }
    const auto placed = std::count_if(source.objects.begin(), source.objects.end(),
                                      [](const TMapObject& o) { return o.Placed; });
    if (placed == 0) {
        PrintMessage("velkorc: " + input + ": no object has a position");
        return kExitReported;
    }
    for (const TMapObject& object : source.objects)
        if (!object.Placed)
            PrintMessage("velkorc: " + input + ": object " + object.Name + " has no position");

    TMapSceneOptions scene;
    scene.views = ViewsNamed(options.mapView);
    scene.theme = options.dark ? TMapTheme::Dark : TMapTheme::Light;
    const std::string name = ToNativePath(source.fileName).filename().string();
    scene.title = name + " (" + std::to_string(source.objects.size()) +
                  (source.objects.size() == 1 ? " object)" : " objects)");
    const std::string svg = MapSvg(source.objects, scene);
    if (options.output.empty()) {
        std::cout << svg << std::flush;
        return kExitOk;
    }
    try {
        WriteFileAtomic(ResolvePath(options.output), svg);
    } catch (const EInOutError& e) {
        PrintMessage(e.what());
        return kExitUsage;
    }
    return kExitOk;
}

} // namespace velkor::cli
