// Reads the objects of arbitrary bytes as the map does, draws them as SVG and checks that the picture is
// still well-formed text: every byte of a name or type text from the data is made safe for XML.
#include "iff/iff_reader.h"
#include "iff/map_objects.h"
#include "iff/map_svg.h"
#include "tests/fuzz/fuzz_check.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

// No control character but line breaks, no lone "<" of a name: the text is what the writer made it.
void CheckText(std::string_view svg) {
    for (const char c : svg) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 && c != '\n') velkor::fuzz::Fail("a property of the map does not hold");
    }
    if (svg.substr(0, 5) != "<?xml" || svg.find("</svg>\n") != svg.size() - 7)
        velkor::fuzz::Fail("a property of the map does not hold");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const velkor::TIffReader reader(std::span(data, size));
        const auto objects = velkor::ReadMapObjects(reader);
        for (std::size_t i = 0; i < objects.size(); ++i)
            if (objects[i].Ordinal != static_cast<int>(i))
                velkor::fuzz::Fail("a property of the map does not hold");
        velkor::TMapSceneOptions options;
        options.title = "fuzz";
        CheckText(velkor::MapSvg(objects, options));
        options.views = {velkor::TMapView::Side};
        options.height = 300;
        options.theme = velkor::TMapTheme::Dark;
        CheckText(velkor::MapSvg(objects, options));
    } catch (const velkor::EIffReader&) {
    }
    return 0;
}
