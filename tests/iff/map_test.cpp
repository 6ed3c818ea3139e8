// The map's reading of objects from IFF, its geometry, its symbols and its SVG text.
#include "codegen/object_tables.h"
#include "iff/checksum.h"
#include "iff/iff_compiler.h"
#include "iff/iff_reader.h"
#include "iff/map_from_text.h"
#include "iff/map_svg.h"
#include "platform/numbers.h"
#include "platform/text_file.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

namespace velkor {
namespace {

const std::filesystem::path kCases = std::filesystem::path(VELKOR_SOURCE_DIR) / "tests/iff/cases";

TMapSource CaseObjects() {
    return MapObjectsFromText(LoadTextFile(kCases / "map_objects.txt"), kCases);
}

TEST(MapObjects, EveryObjFormInFileOrderWithWhatItHolds) {
    const TMapSource source = CaseObjects();
    ASSERT_TRUE(source.errors.empty()) << source.errors.front();
    EXPECT_EQ(source.fileName, "objects.sec");
    struct Expected {
        std::string name;
        bool known;
        std::string typeText;
        std::int32_t typeNumber;
        bool placed;
        double x, y, z;
        std::string_view word;
        TMapKind kind;
    };
    const Expected expected[] = {
        {"Alpha1", true, "fighter_light", 19, true, 200, -5.5, 800, "PLAYER", TMapKind::Player},
        {"Cam", true, "PROGCAM", -1, true, 0, 300, 1500, "CAMERA", TMapKind::Camera},
        {"$00000000", false, "NAVPOINT", -1, false, 0, 0, 0, "NAVPOINT", TMapKind::Navpoint},
        {"$12345678", false, "", 21, false, 0, 0, 0, "NAVPOINT", TMapKind::Navpoint},
        {"Bad", true, "", -1, false, 0, 0, 0, "", TMapKind::Other},
        {"Far", true, "ABC", 99, true, -1e7, 0, 3e7, "", TMapKind::Other},
        {"Loose", true, "", 26, true, 1, 2, 3, "CAPSHIP", TMapKind::Capship},
    };
    ASSERT_EQ(source.objects.size(), std::size(expected));
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        SCOPED_TRACE(i);
        const TMapObject& o = source.objects[i];
        const Expected& e = expected[i];
        EXPECT_EQ(o.Ordinal, static_cast<int>(i));
        EXPECT_EQ(o.Name, e.name);
        EXPECT_EQ(o.NameKnown, e.known);
        EXPECT_EQ(o.TypeText, e.typeText);
        EXPECT_EQ(o.TypeNumber, e.typeNumber);
        EXPECT_EQ(o.Placed, e.placed);
        if (e.placed) {
            EXPECT_DOUBLE_EQ(o.X, e.x);
            EXPECT_DOUBLE_EQ(o.Y, e.y);
            EXPECT_DOUBLE_EQ(o.Z, e.z);
        }
        EXPECT_EQ(TypeWordOf(o), e.word);
        EXPECT_EQ(KindOf(o), e.kind);
    }
    EXPECT_EQ(source.objects[3].NameHash, 0x12345678u);
    EXPECT_EQ(source.objects[0].NameHash, NameHash("Alpha1"));
}

TEST(MapObjects, TheBinaryReadNamesObjectsByTheirHashOnly) {
    std::vector<std::uint8_t> bytes;
    TIffCompiler assembler;
    assembler.OnBinaryOutput = [&](const std::vector<std::uint8_t>& b, const std::string&) { bytes = b; };
    assembler.SetInputText(LoadTextFile(kCases / "map_objects.txt"), kCases);
    assembler.Compile();
    const TIffReader reader(bytes);
    const auto objects = ReadMapObjects(reader);
    ASSERT_EQ(objects.size(), 7u);
    EXPECT_EQ(objects[0].Name, "$" + IntToHex(NameHash("Alpha1"), 8));
    EXPECT_FALSE(objects[0].NameKnown);
    const auto named = ReadMapObjects(reader, {{NameHash("Alpha1"), "Alpha1"}});
    EXPECT_EQ(named[0].Name, "Alpha1");
}

TEST(MapObjects, ATextThatDoesNotAssembleKeepsTheBlocksBeforeTheError) {
    const std::string text =
        "IFF \"a.sec\" { FORM \"OBJ_\" { CHUNK \"COMN\" { crc32 \"A\" float 1 float 2 "
        "float 3 } } }\r\nIFF \"b.sec\" { FORM \"OBJ_\" { CHUNK \"COMN\" { nonsense } } }";
    const TMapSource source = MapObjectsFromText(text, {});
    ASSERT_EQ(source.objects.size(), 1u);
    EXPECT_EQ(source.objects[0].Name, "A");
    ASSERT_FALSE(source.errors.empty());
    EXPECT_NE(source.errors.front().find("[error] line 2"), std::string::npos) << source.errors.front();
}

TEST(MapObjects, TextualIffIsToldFromUnitsByItsFirstWord) {
    struct Case {
        std::string text;
        bool textual;
    };
    const Case cases[] = {
        {"IFF \"a.mis\"\r\n{", true},
        {"  // decoded\r\n// by hand\r\niff\"a\"", true},
        {"\r\nIFF", true},
        {"mission patrol;", false},
        {"IFFY", false},
        {"// only a comment", false},
        {"", false},
    };
    for (const Case& c : cases) EXPECT_EQ(IsTextualIff(c.text), c.textual) << c.text;
}

// Every type a unit can declare is drawn as its own kind, not as "other", and the word read back from
// the type number is the unit's word.
TEST(MapSymbols, EveryDeclarableTypeHasItsWordAndAKind) {
    for (const ObjectType& type : ObjectTypes()) {
        SCOPED_TRACE(std::string(type.Word));
        TMapObject byNumber;
        byNumber.TypeNumber = type.Number;
        EXPECT_EQ(TypeWordOf(byNumber), type.Word);
        EXPECT_NE(KindOf(byNumber), TMapKind::Other);
        if (!type.TypeText.empty()) {
            TMapObject byText;
            byText.TypeText = std::string(type.TypeText);
            EXPECT_EQ(KindOf(byText), KindOf(byNumber));
        }
    }
    std::set<std::string_view> captions;
    for (std::size_t k = 0; k < kMapKindCount; ++k) {
        captions.insert(KindCaption(static_cast<TMapKind>(k)));
        for (const TMapShape& shape : SymbolOf(static_cast<TMapKind>(k)))
            for (const auto& [x, y] : shape.points) {
                EXPECT_LE(std::fabs(x) + shape.radius, 1.0 + 1e-9);
                EXPECT_LE(std::fabs(y) + shape.radius, 1.0 + 1e-9);
            }
    }
    EXPECT_EQ(captions.size(), kMapKindCount);
}

TEST(MapLayout, ScaleBarsAreRoundNumbersThatFit) {
    struct Case {
        double scale, maxPicture, units;
    };
    const Case cases[] = {
        {1, 100, 100}, {1, 99, 50},          {0.01, 150, 10000}, {0.5, 30, 50},
        {2, 7, 2},     {0.001, 280, 200000}, {10, 3, 0.2},       {1, 0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.maxPicture);
        EXPECT_DOUBLE_EQ(ScaleBarUnits(c.scale, c.maxPicture), c.units);
    }
    EXPECT_EQ(FormatGameUnits(20000), "20,000");
    EXPECT_EQ(FormatGameUnits(0.2), "0.2");
    EXPECT_EQ(FormatGameUnits(0), "0");
}

TEST(MapLayout, FittingShowsEveryObjectInsideItsFrame) {
    const TMapSource source = CaseObjects();
    const TMapRect area{10, 20, 300, 200};
    for (TMapView view : {TMapView::Top, TMapView::Side}) {
        const TMapTransform t = FitTransform(BoundsOf(source.objects, view), area);
        for (const TMapObject& o : source.objects) {
            if (!o.Placed) continue;
            const auto [x, y] = t.ToPicture(Project(o, view));
            EXPECT_TRUE(area.Contains(x, y)) << o.Name;
        }
    }
    // One object alone, or none, still gets a frame of its own.
    TMapObject one;
    one.Placed = true;
    one.X = 5;
    const TMapBounds b = BoundsOf(std::span(&one, 1), TMapView::Top);
    EXPECT_GT(b.maxAcross - b.minAcross, 0);
    EXPECT_GT(b.maxUp - b.minUp, 0);
    EXPECT_GT(BoundsOf({}, TMapView::Side).maxUp, 0);
}

TEST(MapLayout, ZoomKeepsThePointUnderTheMouse) {
    TMapTransform t{0.5, 100, 100};
    const TMapPoint before = t.ToGame(140, 60);
    t.ZoomAt(1.25, 140, 60);
    EXPECT_DOUBLE_EQ(t.scale, 0.625);
    const auto [x, y] = t.ToPicture(before);
    EXPECT_NEAR(x, 140, 1e-9);
    EXPECT_NEAR(y, 60, 1e-9);
    t.ZoomAt(0, 0, 0); // refused
    EXPECT_DOUBLE_EQ(t.scale, 0.625);
}

TEST(MapScene, ObjectsAreFoundWhereTheirSymbolsAre) {
    TMapSource source = CaseObjects();
    source.objects.erase(source.objects.begin() + 5); // far away: the others would share one point
    TMapSceneOptions options;
    const TMapScene scene = BuildMapScene(source.objects, options);
    ASSERT_EQ(scene.panels.size(), 2u);
    for (const TMapPanel& panel : scene.panels) {
        EXPECT_EQ(panel.marks.size(), 3u); // the placed ones
        for (const TMapMark& mark : panel.marks) {
            EXPECT_EQ(ObjectAt(scene, mark.x + 2, mark.y - 2), mark.object);
        }
    }
    EXPECT_EQ(ObjectAt(scene, 1, 1), -1);
}

TEST(MapSvg, TextIsMadeSafeForXml) {
    struct Case {
        std::string in, out;
    };
    const Case cases[] = {
        {"Alpha <1> & \"2\" 'x'", "Alpha &lt;1&gt; &amp; &quot;2&quot; &apos;x&apos;"},
        {"a\nb", "a&#10;b"},
        {std::string("a\0b\x1F", 4), "a\xEF\xBF\xBD"
                                     "b\xEF\xBF\xBD"},
        {"caf\xC3\xA9", "caf\xC3\xA9"},
        {"\xC3", "\xEF\xBF\xBD"},
        {"\xE0\x80\x80", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
        {"\xED\xA0\x80", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
        {"\xEF\xBF\xBF", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
        {"\xF0\x9F\x9A\x80", "\xF0\x9F\x9A\x80"},
    };
    for (const Case& c : cases) EXPECT_EQ(XmlText(c.in), c.out) << c.in;
}

} // namespace
} // namespace velkor
