// The campaign's built files read back with TIffReader: every form and chunk in its place, and the values
// the game reads agreeing with the sources (string numbers, program names, flags, objects).
#include "iff/checksum.h"
#include "iff/iff_strings.h"
#include "tests/examples/campaign_build.h"
#include "tests/examples/iff_layout.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace velkor::test {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kFlagDescriptor = 0xEB1003A3;
constexpr std::uint32_t kParameterDescriptor = 0xEB1003A3;
constexpr std::string_view kTypeId = "\x2F\xF9\xA0\x56";       // $56A0F92F, OBJ_PROP_TYPE
constexpr std::string_view kNameId = "\x54\x23\x18\xC0";       // $C0182354, OBJ_PROP_NAME
constexpr std::string_view kNavDataId = "\x6F\x52\xEB\x7C";    // $7CEB526F, OBJ_PROP_NAV_DATA
constexpr std::string_view kMainProcId = "\x82\x89\x4A\x16";   // $164A8982, main program
constexpr std::string_view kGfProcId = "\xC2\x2A\xF3\x59";     // $59F32AC2, flow program
constexpr std::string_view kBackgroundId = "\x9D\x77\x71\xA9"; // $A971779D
// Properties whose value names a program of the unit.
const std::set<std::string_view> kProgramIds{kMainProcId, "\xAA\x1F\x85\x7C" /* DEATH */,
                                             "\x1E\x2D\x1E\x84" /* EVENT_0 */};

// The campaign, built once for all tests of this file.
const CampaignBuild& Built() {
    static TempDir dir;
    static const CampaignBuild build = BuildCampaign(dir / "out");
    return build;
}

const std::string& File(const std::string& name) {
    return Built().files.at(name);
}

const TIffStringList& Strings() {
    static const TIffStringList strings = [] {
        TIffStringList list;
        const std::string& bytes = File("campaign.eng");
        list.LoadFromStream(std::span(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()));
        return list;
    }();
    return strings;
}

std::string Line(std::uint32_t number) {
    return number < Strings().Lines.size() ? Strings().Lines[number]
                                           : "<no line " + std::to_string(number) + ">";
}

const TChunk& ChunkOf(const TForm& form, std::string_view id) {
    for (const auto& c : form.Chunks)
        if (c->ID == id) return *c;
    throw std::runtime_error("no chunk " + IdText(id) + " in " + IdText(form.ID));
}

const TForm& FormOf(const TForm& form, std::string_view type) {
    for (const auto& f : form.Forms)
        if (f->ID == type) return *f;
    throw std::runtime_error("no form " + IdText(type) + " in " + IdText(form.ID));
}

// The one chunk of a PROP form, with its data.
DataCursor Property(const TIffReader& r, const TForm& prop, std::string& id) {
    EXPECT_EQ(prop.Chunks.size(), 1u);
    EXPECT_TRUE(prop.Forms.empty());
    id = prop.Chunks.front()->ID;
    return DataCursor(ChunkBytes(r, *prop.Chunks.front()));
}

void ExpectMissionVersion(const TIffReader& r, const TForm& form) {
    DataCursor v(ChunkBytes(r, ChunkOf(form, "VERS")));
    EXPECT_EQ(v.Long(), 0x01000102u); // the bytes 2, 1, 0, 1
    for (std::uint32_t expected : {361u, 1u, 1u, 1u, 0u, 0u}) EXPECT_EQ(v.Long(), expected);
    EXPECT_EQ(v.Left(), 0u);
}

// FLGS: one record per global, its name's checksum, the descriptor and the initial value.
void ExpectFlags(const TIffReader& r, const TForm& form,
                 const std::vector<std::pair<std::string, std::uint32_t>>& flags) {
    DataCursor d(ChunkBytes(r, ChunkOf(form, "FLGS")));
    for (const auto& [name, value] : flags) {
        EXPECT_EQ(d.Long(), NameHash(name)) << name;
        EXPECT_EQ(d.Long(), kFlagDescriptor) << name;
        EXPECT_EQ(d.Long(), value) << name;
    }
    EXPECT_EQ(d.Left(), 0u);
}

// FUNC: the function records tile the chunk exactly; returns their name checksums in order and checks
// their parameter counts.
std::vector<std::uint32_t>
ExpectFunctions(const TIffReader& r, const TForm& form,
                const std::vector<std::pair<std::string, std::uint32_t>>& functions) {
    DataCursor d(ChunkBytes(r, ChunkOf(form, "FUNC")));
    std::vector<std::uint32_t> names;
    for (const auto& [name, parameters] : functions) {
        names.push_back(d.Long());
        EXPECT_EQ(names.back(), NameHash(name)) << name;
        EXPECT_EQ(d.Long(), 0u) << name;
        EXPECT_EQ(d.Long(), parameters) << name;
        for (std::uint32_t i = 0; i < parameters; ++i) EXPECT_EQ(d.Long(), kParameterDescriptor) << name;
        const std::uint32_t body = d.Long();
        EXPECT_GT(body, 0u) << name;
        EXPECT_EQ(body % 4, 0u) << name;
        if (body > d.Left()) {
            ADD_FAILURE() << name << ": body of " << body << " bytes runs past the chunk";
            return names;
        }
        d.Skip(body);
    }
    EXPECT_EQ(d.Left(), 0u) << "bytes after the last function";
    return names;
}

// EDTR/CRCS: the count, each name's checksum, then each name as a string; the names as listed.
void ExpectEditorForm(const TIffReader& r, const std::vector<std::string>& names) {
    EXPECT_EQ(Outline(r.Root()), "EDTR(CRCS)");
    DataCursor d(ChunkBytes(r, ChunkOf(r.Root(), "CRCS")));
    EXPECT_EQ(d.Long(), names.size());
    for (const auto& n : names) EXPECT_EQ(d.Long(), NameHash(n)) << n;
    for (const auto& n : names) EXPECT_EQ(d.CString(), n);
    EXPECT_EQ(d.Left(), 0u);
}

struct ObjectFacts {
    std::string game;    // the game name, recorded by its checksum
    std::string type;    // the TYPE chunk's text
    std::uint32_t kind;  // the OBJ_PROP_TYPE number
    float x, y, z;       // the position
    std::string display; // the line of the string file its NAME property points to; empty for none
};

// OBJS: one OBJ_ form per object in declaration order; each program-name property names one of the
// unit's functions.
void ExpectObjects(const TIffReader& r, const TForm& objs, const std::vector<ObjectFacts>& objects,
                   const std::vector<std::uint32_t>& functions) {
    ASSERT_EQ(objs.Forms.size(), objects.size());
    EXPECT_TRUE(objs.Chunks.empty());
    for (std::size_t i = 0; i < objects.size(); ++i) {
        const TForm& obj = *objs.Forms[i];
        const ObjectFacts& want = objects[i];
        SCOPED_TRACE(want.game);
        EXPECT_EQ(obj.ID, "OBJ_");
        EXPECT_TRUE(Outline(obj).starts_with("OBJ_(TYPE COMN PLST(PROP($56A0F92F)")) << Outline(obj);
        EXPECT_EQ(DataCursor(ChunkBytes(r, ChunkOf(obj, "TYPE"))).CString(), want.type);
        DataCursor comn(ChunkBytes(r, ChunkOf(obj, "COMN")));
        EXPECT_EQ(comn.Long(), NameHash(want.game));
        EXPECT_EQ(comn.Float(), want.x);
        EXPECT_EQ(comn.Float(), want.y);
        EXPECT_EQ(comn.Float(), want.z);
        EXPECT_EQ(comn.Left(), 0u);

        std::string display;
        const TForm& plst = FormOf(obj, "PLST");
        EXPECT_TRUE(plst.Chunks.empty());
        for (std::size_t p = 0; p < plst.Forms.size(); ++p) {
            ASSERT_EQ(plst.Forms[p]->ID, "PROP");
            std::string id;
            DataCursor value = Property(r, *plst.Forms[p], id);
            if (p == 0) {
                EXPECT_EQ(id, kTypeId);
                EXPECT_EQ(value.Long(), want.kind);
            } else if (id == kNameId) {
                display = Line(value.Long());
            } else if (id == kNavDataId) {
                value.Long(); // the nav point's number
                EXPECT_EQ(value.Long(), 0u);
                value.Long(); // its diameter
                EXPECT_EQ(value.Long(), 60u);
            } else if (kProgramIds.contains(id)) {
                const std::string program = value.CString();
                EXPECT_NE(std::find(functions.begin(), functions.end(), NameHash(program)), functions.end())
                    << "program " << program << " is no function of the unit";
            }
        }
        EXPECT_EQ(display, want.display);
    }
}

struct ObjectiveFacts {
    std::uint32_t hidden, type; // the first two fields
    std::string text;           // the line of the string file it shows
    std::uint32_t status, counter;
};

// The mission's .iff: its name, objectives, squadrons and kill board.
void ExpectMissionIff(const std::string& file, const std::string& title,
                      const std::vector<ObjectiveFacts>& objectives,
                      const std::vector<std::uint32_t>& killBoard) {
    auto forms = TopLevelForms(file);
    ASSERT_EQ(forms.size(), 1u);
    const TIffReader& r = forms[0].reader;
    std::string mobj;
    for (std::size_t i = 0; i < objectives.size(); ++i) mobj += " MOBJ";
    EXPECT_EQ(Outline(r.Root()), "MISN(NAME MOBJ(NUMO" + mobj + ") PLTS KLBD(PLST))");

    EXPECT_EQ(Line(DataCursor(ChunkBytes(r, ChunkOf(r.Root(), "NAME"))).Long()), title);
    const TForm& form = FormOf(r.Root(), "MOBJ");
    // NUMO counts the lines the objectives took in the linked text, twelve each.
    EXPECT_EQ(DataCursor(ChunkBytes(r, ChunkOf(form, "NUMO"))).Long(), 12 * objectives.size());
    std::size_t i = 0;
    for (const auto& chunk : form.Chunks) {
        if (chunk->ID != "MOBJ") continue;
        ASSERT_LT(i, objectives.size());
        const ObjectiveFacts& want = objectives[i++];
        SCOPED_TRACE(want.text);
        DataCursor d(ChunkBytes(r, *chunk));
        EXPECT_EQ(d.Long(), want.hidden);
        EXPECT_EQ(d.Long(), want.type);
        const std::uint32_t text = d.Long();
        EXPECT_EQ(Line(text), want.text);
        EXPECT_EQ(d.Long(), text) << "both string fields hold the one text";
        EXPECT_EQ(d.Long(), want.status);
        EXPECT_EQ(d.Long(), want.counter);
        for (int zero = 0; zero < 3; ++zero) EXPECT_EQ(d.Long(), 0u);
        EXPECT_EQ(d.Left(), 0u);
    }
    EXPECT_EQ(i, objectives.size());
    DataCursor kills(ChunkBytes(r, ChunkOf(FormOf(r.Root(), "KLBD"), "PLST")));
    for (std::uint32_t pilot : killBoard) EXPECT_EQ(kills.Long(), pilot);
    EXPECT_EQ(kills.Left(), 0u);
}

struct MissionSpec {
    std::string file;                                             // the .mis file
    std::string mainProc, gfProc;                                 // the programs of #MAINPROC and #GFPROC
    std::vector<std::pair<std::string, std::uint32_t>> flags;     // globals and initial values
    std::vector<std::pair<std::string, std::uint32_t>> functions; // name and parameter count
    std::vector<ObjectFacts> objects;
    std::vector<std::string> rooms;
};

void ExpectMission(const MissionSpec& m) {
    auto forms = TopLevelForms(File(m.file));
    ASSERT_EQ(forms.size(), 2u);
    const TIffReader& r = forms[0].reader;
    std::string rooms;
    for (std::size_t i = 0; i < m.rooms.size(); ++i) rooms += " ROOM(ID__)";
    std::string objects;
    for (std::size_t i = 0; i < m.objects.size(); ++i) objects += " OBJ_";
    // The object forms are looked at one by one below.
    EXPECT_EQ(Outline(r.Root(), "OBJ_"),
              "MISN(VERS PLST(PROP($56A0F92F) PROP($59F32AC2) PROP($164A8982) PROP($56A0F92F)) FLGS FUNC "
              "SCTR(ID__ OBJS(" +
                  objects.substr(1) + "))" + rooms + ")");

    ExpectMissionVersion(r, r.Root());
    const TForm& plst = FormOf(r.Root(), "PLST");
    ASSERT_EQ(plst.Forms.size(), 4u);
    std::vector<std::string> programs;
    for (std::size_t i = 0; i < 4; ++i) {
        std::string id;
        DataCursor v = Property(r, *plst.Forms[i], id);
        if (i == 0 || i == 3) {
            EXPECT_EQ(id, kTypeId);
            EXPECT_EQ(v.Long(), 16u);
        } else {
            EXPECT_EQ(id, i == 1 ? kGfProcId : kMainProcId);
            programs.push_back(v.CString());
        }
        EXPECT_EQ(v.Left(), 0u);
    }
    EXPECT_EQ(programs, (std::vector<std::string>{m.gfProc, m.mainProc}));

    ExpectFlags(r, r.Root(), m.flags);
    const auto functions = ExpectFunctions(r, r.Root(), m.functions);
    for (const auto& p : programs)
        EXPECT_NE(std::find(functions.begin(), functions.end(), NameHash(p)), functions.end()) << p;

    const TForm& sector = FormOf(r.Root(), "SCTR");
    EXPECT_EQ(DataCursor(ChunkBytes(r, ChunkOf(sector, "ID__"))).CString(), "outpost.sec");
    ExpectObjects(r, FormOf(sector, "OBJS"), m.objects, functions);
    std::size_t room = 0;
    for (const auto& form : r.Root().Forms) {
        if (form->ID != "ROOM") continue;
        ASSERT_LT(room, m.rooms.size());
        EXPECT_EQ(DataCursor(ChunkBytes(r, ChunkOf(*form, "ID__"))).CString(), m.rooms[room++]);
    }

    std::vector<std::string> crcs{"_ObjType_DO_NOT_MODIFY", "FLO_Main"};
    for (const auto& f : m.flags) crcs.push_back(f.first);
    ExpectEditorForm(forms[1].reader, crcs);
}

const std::vector<std::pair<std::string, std::uint32_t>> kCommonFunctions{
    {"WaitForKill", 2}, {"CountAlive", 3}, {"Radio", 3}, {"FlyTo", 3}};

std::vector<std::pair<std::string, std::uint32_t>>
WithCommon(std::vector<std::pair<std::string, std::uint32_t>> own) {
    own.insert(own.begin(), kCommonFunctions.begin(), kCommonFunctions.end());
    return own;
}

TEST(CampaignFiles, StringFile) {
    auto forms = TopLevelForms(File("campaign.eng"));
    ASSERT_EQ(forms.size(), 1u);
    const TIffReader& r = forms[0].reader;
    EXPECT_EQ(Outline(r.Root()), "DATA(LANG(INFO TEXT))");
    const TForm& lang = FormOf(r.Root(), "LANG");

    // Odd-length texts: each is stored with its terminator and keeps the field even.
    const auto text = ChunkBytes(r, ChunkOf(lang, "TEXT"));
    DataCursor info(ChunkBytes(r, ChunkOf(lang, "INFO")));
    EXPECT_EQ(info.CString(), "English");
    EXPECT_EQ(info.Long(), 1u);
    EXPECT_EQ(info.Long(), 0u);
    EXPECT_EQ(info.CString(), "eng");
    EXPECT_EQ(info.Long(), 0u);
    EXPECT_EQ(info.Long(), static_cast<std::uint32_t>(std::count(text.begin(), text.end(), 0)));
    EXPECT_EQ(info.Left(), 0u);

    // The table loads every line and none of the padding behind them.
    const auto& lines = Strings().Lines;
    ASSERT_EQ(lines.size(), 32u);
    EXPECT_EQ(lines.front(), "The Frontier Watch");
    EXPECT_EQ(lines.back(), "Patrol complete. Head home.");
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "-"), 0);
    EXPECT_EQ(Strings().InfoText1, "English");
    EXPECT_EQ(Strings().InfoText2, "eng");
}

TEST(CampaignFiles, Series) {
    auto forms = TopLevelForms(File("frontier.srs"));
    ASSERT_EQ(forms.size(), 2u);
    const TIffReader& r = forms[0].reader;
    EXPECT_EQ(Outline(r.Root()), "SERS(VERS PLST(PROP($164A8982)) FLGS FUNC)");
    ExpectMissionVersion(r, r.Root());
    std::string id;
    DataCursor main = Property(r, *FormOf(r.Root(), "PLST").Forms.front(), id);
    EXPECT_EQ(main.CString(), "MCP");
    const std::vector<std::pair<std::string, std::uint32_t>> flags{
        {"Progress", 0}, {"Score", 0}, {"RetriesLeft", 3}, {"WingmanLost", 0}};
    ExpectFlags(r, r.Root(), flags);
    ExpectFunctions(r, r.Root(), {{"MCP", 0}});
    ExpectEditorForm(forms[1].reader, {"FLO_Main", "Progress", "Score", "RetriesLeft", "WingmanLost"});
}

TEST(CampaignFiles, Sector) {
    auto forms = TopLevelForms(File("outpost.sec"));
    ASSERT_EQ(forms.size(), 2u);
    const TIffReader& r = forms[0].reader;
    EXPECT_EQ(Outline(r.Root(), "OBJ_"),
              "MED_(VERS PLST(PROP($56A0F92F) PROP($A971779D)) OBJS(OBJ_ OBJ_ OBJ_ OBJ_ OBJ_ OBJ_ OBJ_))");
    DataCursor v(ChunkBytes(r, ChunkOf(r.Root(), "VERS")));
    for (std::uint32_t expected : {92417u, 256u, 256u, 256u, 0u, 0u}) EXPECT_EQ(v.Long(), expected);
    EXPECT_EQ(v.Left(), 0u);
    const TForm& plst = FormOf(r.Root(), "PLST");
    std::string id;
    EXPECT_EQ(Property(r, *plst.Forms[0], id).Long(), 30u);
    EXPECT_EQ(Property(r, *plst.Forms[1], id).Long(), 3u);
    EXPECT_EQ(id, kBackgroundId);
    ExpectObjects(r, FormOf(r.Root(), "OBJS"),
                  {{"Sun", "LIGHT", 3, 0, 20000, -500000, ""},
                   {"Kessa", "HBODY", 24, 80000, -15000, 120000, ""},
                   {"OutpostStation", "station_small", 26, 0, 0, 0, "Outpost Station"},
                   {"Beacon1", "NAVPOINT", 21, 0, 0, 12000, "Beacon One"},
                   {"Beacon2", "NAVPOINT", 21, 9000, 1500, 20000, "Beacon Two"},
                   {"Beacon3", "NAVPOINT", 21, -6000, -2500, 26000, "Beacon Three"},
                   {"JumpGate", "JUMPPOINT", 9, 2000, 0, 45000, "Jump Point"}},
                  {});
    ExpectEditorForm(forms[1].reader, {"_ObjType_DO_NOT_MODIFY"});
}

TEST(CampaignFiles, PatrolMission) {
    ExpectMission(
        {"patrol.mis",
         "PatrolMain",
         "PatrolFlow",
         {{"BeaconsReached", 0}, {"RaidersDown", 0}, {"WaveActive", 0}, {"__RaiderDown_downHere", 0}},
         WithCommon({{"PatrolMain", 0},
                     {"RaiderAttack", 0},
                     {"RaiderDown", 0},
                     {"WingmanMain", 0},
                     {"WingmanDown", 0},
                     {"PatrolFlow", 0}}),
         {{"Alpha1", "fighter_light", 19, 200, 0, 800, "Alpha One"},
          {"Alpha2", "fighter_light", 20, -200, 0, 800, "Alpha Two"},
          {"Raider1", "fighter_raider", 20, 9500, 1800, 21000, "Raider"},
          {"Raider2", "fighter_raider", 20, 8700, 1200, 21400, "Raider"},
          {"Raider3", "fighter_raider", 20, 9100, 2300, 21900, "Raider"},
          {"LaunchCam", "PROGCAM", 25, 0, 300, 1500, ""}},
         {"deck.rom", "ready.rom"}});
    ExpectMissionIff(File("patrol.iff"), "Patrol the Outer Beacons",
                     {{0, 1, "Fly through all three beacons", 0, 3},
                      {0, 2, "Destroy the raiders", 0, 0},
                      {1, 3, "Keep Alpha Two alive", 0, 0}},
                     {1, 2});
}

TEST(CampaignFiles, EscortMission) {
    ExpectMission({"escort.mis",
                   "EscortMain",
                   "EscortFlow",
                   {{"HaulerSafe", 1}, {"Launched", 0}},
                   WithCommon({{"EscortMain", 0},
                               {"MiraMain", 0},
                               {"CarrierLaunch", 0},
                               {"MiraHit", 0},
                               {"MiraDown", 0},
                               {"CarrierDown", 0},
                               {"EscortFlow", 0}}),
                   {{"Alpha1", "fighter_light", 19, 300, 100, 900, "Alpha One"},
                    {"Alpha2", "fighter_light", 20, -300, 100, 900, "Alpha Two"},
                    {"Mira", "hauler", 26, 0, -400, 1500, "Hauler Mira"},
                    {"Pod", "CARGO", 22, 0, -400, 1300, ""},
                    {"Carrier", "carrier_raider", 26, 12000, 3000, 30000, "Raider Carrier"},
                    {"Raider1", "fighter_raider", 20, 12300, 3100, 29500, "Raider"},
                    {"Raider2", "fighter_raider", 20, 11700, 2900, 29500, "Raider"},
                    {"Wreckage", "DEBRSFLD", 14, 4000, 0, 22000, ""}},
                   {"deck.rom", "ready.rom", "hangar.rom"}});
    ExpectMissionIff(File("escort.iff"), "Escort the Hauler",
                     {{0, 3, "Keep the hauler alive", 0, 0},
                      {0, 1, "Bring the hauler to the jump point", 0, 0},
                      {1, 2, "Destroy the raider carrier", 0, 0}},
                     {1, 2, 5});
}

} // namespace
} // namespace velkor::test
