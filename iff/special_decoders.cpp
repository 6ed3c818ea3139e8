#include "iff/special_decoders.h"

#include <array>
#include <atomic>

namespace velkor {

namespace {

using F = RecordField;
constexpr FieldKind L = FieldKind::Long;
constexpr FieldKind H = FieldKind::HexLong;
constexpr FieldKind R = FieldKind::Float;
constexpr FieldKind S = FieldKind::CString;

// ---- record layouts ----

constexpr F kTime[] = {{R, ""}};
constexpr F kText[] = {{S, ""}};
constexpr F kList[] = {{L, "unknown"}, {S, "file"}, {S, "music"}, {L, "string"}, {L, "unknown"}};
constexpr F kThreeFloats[] = {{R, ""}, {R, ""}, {R, ""}};
constexpr F kFvrt[] = {{L, "vert"}, {L, "light_normal"}, {R, "x_texture"}, {R, "y_texture"}};
constexpr F kFace[] = {{L, "normal_number"}, {R, "unknown1"}, {L, "texture"}, {L, "fvrt_ref"},
                       {L, "sides"},         {L, "unknown2"}, {L, ""}};
constexpr F kOneFloat[] = {{R, ""}};
constexpr F kHard[] = {{R, ""}, {R, ""}, {R, ""}, {R, ""}, {R, ""}, {R, ""},    {R, ""},
                       {R, ""}, {R, ""}, {R, ""}, {R, ""}, {R, ""}, {S, "name"}};
constexpr F kStru[] = {{S, ""}, {R, ""}, {R, ""}, {R, ""}, {R, ""}, {R, ""}, {R, ""}};
constexpr F kBullet[] = {{L, "bullet ID"},    {L, "name (points to a string in spacefli.eng)"},
                         {L, "sound"},        {R, "speed"},
                         {R, "range"},        {R, "charge time"},
                         {R, "energy"},       {R, "damage"},
                         {R, "refire delay"}, {L, "needs ammo"}};
constexpr F kMissile[] = {{L, "missile ID"},
                          {L, "name (points to a string in spacefli.eng)"},
                          {L, "sound"},
                          {R, "speed"},
                          {R, "duration"},
                          {R, "range"},
                          {R, ""},
                          {R, "pitch"},
                          {R, "mass"},
                          {R, "acceleration"},
                          {R, "lock time"},
                          {R, "damage"},
                          {R, "spin rate"},
                          {L, "ignition explosion"},
                          {L, "first explosion"},
                          {L, "final explosion"},
                          {H, "flags"},
                          {R, "refire delay"},
                          {R, "spoof probability"},
                          {R, "view cone"},
                          {L, "explosion when spawning"},
                          {L, "missile to spawn"},
                          {R, "time before spawning"},
                          {L, "missile spawn missile (boolean)"}};

// Inside SHIP, CAPS and CMIS forms.
constexpr F kBase[] = {{S, ""}};
constexpr F kPhys[] = {{R, "mass"}};
constexpr F kHitp[] = {{R, "hitpoints"}};
constexpr F kEngine[] = {{R, "speed max"},    {R, "speed std"},         {R, "speed min"},
                         {R, "acceleration"}, {R, "afterb. speed"},     {R, "afterb. acceleration"},
                         {R, "afterb. fuel"}, {R, "YPR rate of change"}};
constexpr F kCone[] = {{S, "mesh"}};
constexpr F kGunPower[] = {{R, "gun energy"}, {R, "recharge max"}, {R, "recharge std"}, {R, "recharge min"}};
constexpr F kGun[] = {{L, "gun id"}, {L, "ammo"}, {S, "hardpoint"}};
constexpr F kHardpoint[] = {{S, "hardpoint"}};
constexpr F kShields[] = {{R, "shields front"}, {R, "shields rear"}};
constexpr F kMesh[] = {{S, "mesh"}};
constexpr F kArmor[] = {{R, "armor front"}, {R, "armor rear"}, {R, "armor left"}, {R, "armor right"}};
constexpr F kDestroyed[] = {{S, "hardpoint"}, {S, "mesh"}, {S, "destroyed mesh"}, {R, "hitpoints"}};

constexpr RecordLayout kTimeLayout{kTime, RecordRepeat::Entries, true};
constexpr RecordLayout kTextLayout{kText, RecordRepeat::Entries};
constexpr RecordLayout kListLayout{kList, RecordRepeat::Entries};
constexpr RecordLayout kVectorLayout{kThreeFloats, RecordRepeat::Entries};
constexpr RecordLayout kFvrtLayout{kFvrt, RecordRepeat::Entries};
constexpr RecordLayout kFaceLayout{kFace, RecordRepeat::Entries};
constexpr RecordLayout kRadiLayout{kOneFloat, RecordRepeat::Entries};
constexpr RecordLayout kHardLayout{kHard, RecordRepeat::Entries};
constexpr RecordLayout kStruLayout{kStru, RecordRepeat::Entries};
constexpr RecordLayout kBulletLayout{kBullet, RecordRepeat::Once};
constexpr RecordLayout kMissileLayout{kMissile, RecordRepeat::Once};

struct ShipChunk {
    std::string_view parent; // the sub-form the chunk sits in; empty for any
    std::string_view id;     // the chunk id
    RecordLayout layout;     // how it is written
};

constexpr ShipChunk kShipChunks[] = {
    {"", "BASE", {kBase, RecordRepeat::Once}},
    {"", "PHYS", {kPhys, RecordRepeat::TrailingFloats}},
    {"", "HITP", {kHitp, RecordRepeat::TrailingFloats}},
    {"ENGN", "POWR", {{}, RecordRepeat::TrailingFloats}},
    {"ENGN", "DATA", {kEngine, RecordRepeat::TrailingFloats}},
    {"", "CONE", {kCone, RecordRepeat::TrailingFloats}},
    {"GUNS", "POWR", {kGunPower, RecordRepeat::TrailingFloats}},
    {"", "GUN_", {kGun, RecordRepeat::Once}},
    {"", "LNCH", {kHardpoint, RecordRepeat::Once}},
    {"SHLD", "DATA", {kShields, RecordRepeat::TrailingFloats}},
    {"ARMR", "MESH", {kMesh, RecordRepeat::Once}},
    {"ARMR", "DATA", {kArmor, RecordRepeat::TrailingFloats}},
    {"DEST", "DATA", {kDestroyed, RecordRepeat::Once}},
};

// ---- the list ----

enum class Match : std::uint8_t { Ship, Id, InForm, InTwoForms };

struct Decoder {
    std::string_view name;        // the name the settings show and the ini file keys
    Match match;                  // how the chunk's place is compared
    std::string_view grandparent; // InTwoForms: the outer form type
    std::string_view parent;      // InForm, InTwoForms: the form type holding the chunk
    std::string_view id;          // the chunk id (not for Ship)
    const RecordLayout* layout;   // the layout (not for Ship)
};

constexpr Decoder kDecoders[] = {
    {"SHIP, CAPS, CMIS", Match::Ship, "", "", "", nullptr},
    {"TIME/TIME", Match::InForm, "", "TIME", "TIME", &kTimeLayout},
    {"DATA/LANG/TEXT", Match::InTwoForms, "DATA", "LANG", "TEXT", &kTextLayout},
    {"LOUT/LIST", Match::InForm, "", "LOUT", "LIST", &kListLayout},
    {"VERT", Match::Id, "", "", "VERT", &kVectorLayout},
    {"VTNM", Match::Id, "", "", "VTNM", &kVectorLayout},
    {"NORM", Match::Id, "", "", "NORM", &kVectorLayout},
    {"FVRT", Match::Id, "", "", "FVRT", &kFvrtLayout},
    {"FACE", Match::Id, "", "", "FACE", &kFaceLayout},
    {"RADI", Match::Id, "", "", "RADI", &kRadiLayout},
    {"HARD", Match::Id, "", "", "HARD", &kHardLayout},
    {"STRU", Match::Id, "", "", "STRU", &kStruLayout},
    {"BULL/DATA", Match::InForm, "", "BULL", "DATA", &kBulletLayout},
    {"MISS/DATA", Match::InForm, "", "MISS", "DATA", &kMissileLayout},
};
constexpr std::size_t kDecoderCount = std::size(kDecoders);

// Set for a disabled decoder, so that the zero start leaves every decoder enabled.
std::array<std::atomic<bool>, kDecoderCount> gDisabled{};

std::size_t IndexOf(std::string_view name) {
    for (std::size_t i = 0; i < kDecoderCount; ++i)
        if (kDecoders[i].name == name) return i;
    throw EIffDecoder("unknown decoder: " + std::string(name));
}

const RecordLayout* ShipLayout(const ChunkPlace& place) {
    if (!place.insideShip) return nullptr;
    for (const ShipChunk& c : kShipChunks)
        if (c.id == place.id && (c.parent.empty() || c.parent == place.parent)) return &c.layout;
    return nullptr;
}

const RecordLayout* Layout(const Decoder& d, const ChunkPlace& place) {
    switch (d.match) {
    case Match::Ship: return ShipLayout(place);
    case Match::Id: break;
    case Match::InForm:
        if (place.parent != d.parent) return nullptr;
        break;
    case Match::InTwoForms:
        if (place.parent != d.parent || place.grandparent != d.grandparent) return nullptr;
        break;
    }
    return place.id == d.id ? d.layout : nullptr;
}

} // namespace

std::vector<std::string> SpecialDecoderNames() {
    std::vector<std::string> names;
    for (const Decoder& d : kDecoders) names.emplace_back(d.name);
    return names;
}

bool SpecialDecoderEnabled(std::string_view name) {
    return !gDisabled[IndexOf(name)].load(std::memory_order_relaxed);
}

void SetSpecialDecoderEnabled(std::string_view name, bool enabled) {
    gDisabled[IndexOf(name)].store(!enabled, std::memory_order_relaxed);
}

const RecordLayout* FindSpecialDecoder(const ChunkPlace& place) {
    for (std::size_t i = 0; i < kDecoderCount; ++i) {
        if (gDisabled[i].load(std::memory_order_relaxed)) continue;
        if (const RecordLayout* layout = Layout(kDecoders[i], place)) return layout;
    }
    return nullptr;
}

bool IsShipForm(std::string_view type) {
    return type == "SHIP" || type == "CAPS" || type == "CMIS";
}

} // namespace velkor
