// The map view: the objects of a compiled mission and of a decoded sector, the way back from an object
// to its text, zooming and fitting, and the picture itself in the light and the dark palette (these last
// also run under Xvfb, see CMakeLists.txt).
#include "ide/map_canvas.h"
#include "ide/map_links.h"
#include "ide/map_view.h"
#include "iff/map_symbols.h"
#include "tests/ide/edit_page_test_support.h"

#include <QHelpEvent>
#include <QPalette>
#include <QStyle>
#include <QToolTip>
#include <QWheelEvent>

namespace velkor::test {
namespace {

const std::filesystem::path kSource(VELKOR_SOURCE_DIR);
const std::filesystem::path kCampaign = kSource / "examples/campaign";

class MapViewTest : public PageTest {
protected:
    void SetUp() override {
        PageTest::SetUp();
        // The mission with the units it includes and the string file it reads, in a folder of its own.
        for (const char* unit : {"patrol.pas", "common.pas", "frontier.pas"})
            std::filesystem::copy_file(kCampaign / unit, Dir() / unit);
        const ToolResult r =
            RunVelkorc({"asm", "--out-dir", Dir().string(), (kCampaign / "campaign_eng.txt").string()});
        ASSERT_EQ(r.exitCode, 0) << r.err;
        // The library units the missions include, where "$compiler$\lib" points.
        std::filesystem::copy(kSource / "lib", Dir() / "lib", std::filesystem::copy_options::recursive);
    }

    // Compiles the unit in a page of the window and shows the map of it.
    TfrmEdit* CompileAndMap(TfrmMain& window, const std::string& unit) {
        TfrmEdit* page = window.OpenFile(Path(unit), false);
        if (!page || !page->Compile()) {
            ADD_FAILURE() << window.OutputView().Lines().join(u'\n').toStdString();
            return nullptr;
        }
        window.MapView().show();
        window.MapView().Refresh();
        return page;
    }

    static int IndexNamed(TMapCanvas& canvas, const std::string& name) {
        const auto& objects = canvas.Objects();
        const auto found =
            std::find_if(objects.begin(), objects.end(), [&](auto& o) { return o.Name == name; });
        return found == objects.end() ? -1 : static_cast<int>(found - objects.begin());
    }

    // The line (from 0) of the first line of the page's text that contains `text`.
    static int LineContaining(const TfrmEdit& page, const QString& text) {
        const QStringList lines = page.Text().split(u'\n');
        return static_cast<int>(
            std::find_if(lines.begin(), lines.end(), [&](auto& l) { return l.contains(text); }) -
            lines.begin());
    }

    static void DoubleClick(TMapCanvas& canvas, int object) {
        const auto point = canvas.ObjectPoint(object);
        ASSERT_TRUE(point.has_value());
        QTest::mouseDClick(&canvas, Qt::LeftButton, {}, point->toPoint());
    }
};

TEST_F(MapViewTest, ACompiledMissionShowsItsObjectsLeadsToTheirDeclarationsAndZooms) {
    TfrmMain window({});
    Show(window, 1100, 800);
    TfrmEdit* page = CompileAndMap(window, "patrol.pas");
    ASSERT_NE(page, nullptr);
    TMapCanvas& canvas = *window.MapView().Canvas();
    ASSERT_EQ(canvas.Objects().size(), 6u) << canvas.Message().toStdString();
    EXPECT_FALSE(window.MapView().ShowsPageText());
    EXPECT_EQ(window.MapView().ShownPage(), page);
    for (const char* name : {"Alpha1", "Alpha2", "Raider1", "Raider2", "Raider3", "LaunchCam"}) {
        SCOPED_TRACE(name);
        const int index = IndexNamed(canvas, name);
        ASSERT_GE(index, 0);
        page->Memo()->SetCaret(0, 0);
        DoubleClick(canvas, index);
        EXPECT_EQ(window.ActivePage(), page);
        EXPECT_EQ(page->Memo()->CaretLine(), LineContaining(*page, QStringLiteral("object %1 (").arg(name)));
    }
    // The mouse resting on an object names it, with its type and position.
    const auto raider = canvas.ObjectPoint(IndexNamed(canvas, "Raider2"));
    ASSERT_TRUE(raider.has_value());
    QHelpEvent help(QEvent::ToolTip, raider->toPoint(), canvas.mapToGlobal(raider->toPoint()));
    QApplication::sendEvent(&canvas, &help);
    EXPECT_EQ(QToolTip::text(), QStringLiteral("Raider2\nSHIP \"fighter_raider\"\nx 8700, y 1200, z 21400"));

    // The wheel zooms the panel under it, a drag moves it, Fit restores both; Side leaves one panel.
    const TMapTransform fitted = canvas.Scene().panels.at(0).transform;
    const TMapRect frame = canvas.Scene().panels.at(0).frame;
    const QPointF middle(frame.left + frame.width / 2, frame.top + frame.height / 2);
    QWheelEvent wheel(middle, canvas.mapToGlobal(middle), {}, {0, 240}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&canvas, &wheel);
    EXPECT_DOUBLE_EQ(canvas.Scene().panels.at(0).transform.scale, fitted.scale * 1.25 * 1.25);
    QTest::mousePress(&canvas, Qt::LeftButton, {}, middle.toPoint());
    QTest::mouseMove(&canvas, (middle + QPointF(30, -20)).toPoint());
    QTest::mouseRelease(&canvas, Qt::LeftButton, {}, (middle + QPointF(30, -20)).toPoint());
    EXPECT_NE(canvas.Scene().panels.at(0).transform.originX, fitted.originX);
    window.MapView().findChild<QAction*>(QStringLiteral("MapFit"))->trigger();
    EXPECT_DOUBLE_EQ(canvas.Scene().panels.at(0).transform.scale, fitted.scale);
    EXPECT_DOUBLE_EQ(canvas.Scene().panels.at(0).transform.originX, fitted.originX);
    window.MapView().findChild<QAction*>(QStringLiteral("MapSide"))->trigger();
    ASSERT_EQ(canvas.Scene().panels.size(), 1u);
    EXPECT_EQ(canvas.Scene().panels[0].view, TMapView::Side);
    window.MenuItem(QStringLiteral("MenuViewMap"))->trigger();
    EXPECT_TRUE(window.MapView().isHidden());
    page->SetModified(false);
}

TEST_F(MapViewTest, TheMapFollowsEveryCompileOnItsOwn) {
    TfrmMain window({});
    window.show();
    window.MenuItem(QStringLiteral("MenuViewMap"))->trigger();
    ASSERT_TRUE(window.MapView().isVisible());
    TMapCanvas& canvas = *window.MapView().Canvas();
    QTRY_VERIFY(canvas.Message().startsWith(QStringLiteral("Compile a mission or sector")));
    TfrmEdit* page = window.OpenFile(Path("patrol.pas"), false);
    ASSERT_NE(page, nullptr);
    ASSERT_TRUE(page->Compile());
    QTRY_COMPARE(canvas.Objects().size(), 6u);
    // A series has no objects.
    TfrmEdit* series = window.OpenFile(Path("frontier.pas"), false);
    ASSERT_NE(series, nullptr);
    ASSERT_TRUE(series->Compile());
    QTRY_COMPARE(canvas.Message(), QStringLiteral("No game objects to show."));
}

TEST_F(MapViewTest, ADecodedSectorLeadsToItsObjectForms) {
    std::filesystem::copy_file(kSource / "tests/golden/campaign/outpost.sec", Dir() / "outpost.sec");
    TfrmMain window({});
    window.show();
    TfrmEdit* page = window.DecodeFile(Path("outpost.sec"));
    ASSERT_NE(page, nullptr);
    window.MapView().show();
    window.MapView().Refresh();
    TMapCanvas& canvas = *window.MapView().Canvas();
    ASSERT_EQ(canvas.Objects().size(), 7u) << canvas.Message().toStdString();
    EXPECT_TRUE(window.MapView().ShowsPageText());
    const QStringList lines = page->Text().split(u'\n');
    // Each object's double-click lands on the FORM "OBJ_" line whose TYPE chunk holds its type text.
    for (std::size_t i = 0; i < canvas.Objects().size(); ++i) {
        const TMapObject& object = canvas.Objects()[i];
        if (!object.Placed) continue;
        SCOPED_TRACE(object.TypeText);
        page->Memo()->SetCaret(0, 0);
        DoubleClick(canvas, static_cast<int>(i));
        const int line = page->Memo()->CaretLine();
        ASSERT_GE(line, 0);
        ASSERT_LT(line + 4, lines.size());
        EXPECT_EQ(lines[line].trimmed(), QStringLiteral("FORM \"OBJ_\""));
        QString bytes; // the decoder writes the TYPE text as a row of bytes
        for (const char c : object.TypeText)
            bytes += QStringLiteral(" $%1").arg(static_cast<unsigned char>(c), 2, 16, QChar(u'0')).toUpper();
        EXPECT_TRUE(lines.mid(line, 6).join(u'\n').contains(bytes)) << bytes.toStdString();
    }
    page->SetModified(false);
}

TEST(MapLinks, ObjectFormsAndGameNamesAreFoundInTheText) {
    const std::string text =
        "IFF \"a.sec\"\r\n{\r\n  FORM \"OBJS\"\r\n  {\r\n    FORM \"OBJ_\"\r\n    {\r\n"
        "    }\r\n    form   \"OBJ_\" {}\r\n    // FORM \"OBJ_\"\r\n    FORM \"OBJ_\"\n}";
    for (const auto& [object, line] : {std::pair{0, 4}, {1, 7}, {2, 9}, {3, -1}})
        EXPECT_EQ(ObjectFormLine(text, object), line) << object;
    for (const auto& [line, name] :
         {std::pair{"object Station (OutpostStation) AS CAPSHIP", "OutpostStation"},
          {"object Gate ( \"JumpGate\" ) AS JUMPPOINT", "JumpGate"},
          {"object Alpha1;", ""},
          {"object Broken (Open AS SHIP", ""}})
        EXPECT_EQ(GameNameOfDeclaration(line), name) << line;
}

class MapScreenshotTest : public MapViewTest {
protected:
    void TearDown() override {
        QApplication::setPalette(QApplication::style()->standardPalette());
        MapViewTest::TearDown();
    }

    // The map of the demo mission as the screen shows it, checked pixel by pixel where it matters.
    void CheckPicture(TMapTheme theme, const char* keepAs) {
        TfrmMain window({});
        Show(window, 1100, 800);
        ASSERT_NE(CompileAndMap(window, "patrol.pas"), nullptr);
        TMapCanvas& canvas = *window.MapView().Canvas();
        ASSERT_EQ(canvas.Theme(), theme);
        ASSERT_EQ(canvas.Objects().size(), 6u);
        const QImage image = canvas.grab().toImage();
        ASSERT_FALSE(image.isNull());
        KeepScreenshot(image, keepAs);
        const double ratio = image.width() / static_cast<double>(canvas.width());
        auto pixel = [&](double x, double y) {
            return QColor(image.pixel(static_cast<int>(x * ratio), static_cast<int>(y * ratio))).rgb() &
                   0xFFFFFF;
        };
        const TMapColors& colors = MapColors(theme);
        const TMapScene& scene = canvas.Scene();
        ASSERT_EQ(scene.panels.size(), 2u);
        // The panels' own colour just inside their frames, the background between them.
        for (const TMapPanel& panel : scene.panels)
            EXPECT_EQ(pixel(panel.frame.left + panel.frame.width - 4, panel.frame.top + 4), colors.panel);
        EXPECT_EQ(pixel(scene.width - 3, scene.height - 3), colors.background);
        // Every ship's triangle is filled with the ship colour at its middle, in both views.
        const std::uint32_t ship = colors.kinds[static_cast<std::size_t>(TMapKind::Ship)];
        int ships = 0;
        for (const TMapPanel& panel : scene.panels) {
            for (const TMapMark& mark : panel.marks) {
                if (KindOf(canvas.Objects()[static_cast<std::size_t>(mark.object)]) != TMapKind::Ship)
                    continue;
                EXPECT_EQ(pixel(mark.x, mark.y + 2), ship) << canvas.Objects()[mark.object].Name;
                ++ships;
            }
        }
        EXPECT_EQ(ships, 8);
        window.ActivePage()->SetModified(false);
    }
};

TEST_F(MapScreenshotTest, TheMapInTheLightAndTheDarkPalette) {
    QPalette light = QApplication::style()->standardPalette();
    light.setColor(QPalette::Window, QColor(0xEF, 0xEF, 0xEF));
    QApplication::setPalette(light);
    CheckPicture(TMapTheme::Light, "map_light.png");
    QPalette dark;
    for (const auto& [role, rgb] : {std::pair{QPalette::Window, 0x2B2B2B},
                                    {QPalette::WindowText, 0xE0E0E0},
                                    {QPalette::Base, 0x1E1E1E},
                                    {QPalette::Text, 0xE0E0E0},
                                    {QPalette::Button, 0x353535},
                                    {QPalette::ButtonText, 0xE0E0E0}})
        dark.setColor(role, QColor::fromRgb(rgb));
    QApplication::setPalette(dark);
    CheckPicture(TMapTheme::Dark, "map_dark.png");
}

} // namespace
} // namespace velkor::test
