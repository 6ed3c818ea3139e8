#include "compiler/unit_forms.h"

#include "codegen/object_tables.h"
#include "compiler/compiler.h"
#include "compiler/symbol_table.h"
#include "iff/iff_text_writer.h"
#include "platform/strings.h"

#include <string_view>

namespace velkor {

namespace {

constexpr std::string_view kBackgroundProperty = "CHUNK $A971779D // OBJ_PROP_SPACE_BACKGROUND";
constexpr std::string_view kGfProcProperty = "CHUNK $59F32AC2";
constexpr std::string_view kMainProcProperty = "CHUNK $164A8982";
constexpr std::string_view kNoFlags = "must_have_at_least_one_flag";

std::string Quoted(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

void PropertyForm(IffTextWriter& w, std::string_view chunk, std::string_view value) {
    w.Open("FORM \"PROP\"");
    w.Open(chunk);
    w.Line(value);
    w.Close();
    w.Close();
}

void FileHeader(IffTextWriter& w, TCompiler& c, std::string_view extension) {
    w.Open("IFF " + Quoted(c.OutputPath + c.UnitName + std::string(extension)));
}

void VersionChunk(IffTextWriter& w) {
    w.Open("CHUNK \"VERS\"");
    w.Line("byte[4] 2, 1, 0, 1");
    for (const char* v : {"long 361", "long 1", "long 1", "long 1", "long 0", "long 0"}) w.Line(v);
    w.Close();
}

// The initial value that the global's symbol records; 0 for a name the table no longer holds (statics
// after their function, the placeholder flag).
std::int32_t InitialValue(TCompiler& c, const std::string& global) {
    const int found = c.Symbols().Find(global);
    if (found < 0) return 0;
    const TSymbol& s = c.Symbols().Get(found);
    return s.Kind == skGlobalVar || s.Kind == skStaticVar ? s.Value : 0;
}

void FlagsChunk(IffTextWriter& w, TCompiler& c) {
    auto& data = c.Data();
    // The game refuses an empty flag chunk.
    if (data.Globals.empty()) {
        data.Globals.emplace_back(kNoFlags);
        data.CrcNames.emplace_back(kNoFlags);
    }
    w.Open("CHUNK \"FLGS\"");
    for (const auto& global : data.Globals) {
        w.Line("crc32 " + global);
        w.Line("long $EB1003A3");
        w.Line("long " + std::to_string(InitialValue(c, global)));
    }
    w.Close();
}

void FunctionChunk(IffTextWriter& w, TCompiler& c, std::string& text, std::size_t* listingAt) {
    w.Open("CHUNK \"FUNC\"");
    w.Open("WCP_ASM");
    // The listing is the bulk of a large unit: its memory goes as its lines go into the text.
    if (listingAt)
        *listingAt = text.size();
    else
        c.Data().CodeList.Drain([&w](std::string_view line) { w.VerbatimLine(line, kListingIndent); });
    w.Close();
    w.Close();
}

void ObjectsForm(IffTextWriter& w, TCompiler& c) {
    w.Open("FORM \"OBJS\"");
    w.Verbatim(c.Data().Objects, 8);
    w.Close();
}

void IdChunk(IffTextWriter& w, std::string_view id) {
    w.Open("CHUNK \"ID__\"");
    w.Line("cstring " + Quoted(id));
    w.Close();
}

// Closes the file's block as its last line.
void EditorForm(IffTextWriter& w, TCompiler& c) {
    const auto& names = c.Data().CrcNames;
    w.Open("FORM \"EDTR\"");
    w.Open("CHUNK \"CRCS\"");
    w.Line("long " + std::to_string(names.size()));
    for (const auto& n : names) w.Line("crc32 " + n);
    for (const auto& n : names) w.Line("cstring " + n);
    w.Close();
    w.Close();
    w.Close();
}

void MissionObjectives(IffTextWriter& w, TCompiler& c) {
    const auto& objectives = c.Data().Objectives;
    w.Open("FORM \"MOBJ\"");
    w.Open("CHUNK \"NUMO\"");
    w.Line("long " + std::to_string(objectives.size()));
    w.Close();
    w.Verbatim(objectives, 6);
    w.Close();
}

} // namespace

void LinkMission(TCompiler& c, std::string& text, std::size_t* listingAt) {
    IffTextWriter w(text);
    auto& data = c.Data();

    FileHeader(w, c, ".mis");
    w.Open("FORM \"MISN\"");
    VersionChunk(w);
    w.Open("FORM \"PLST\"");
    PropertyForm(w, PropertyChunkHeader(kTypePropertyId, kTypePropertyComment), "long 16");
    if (!data.GfProc.empty()) PropertyForm(w, kGfProcProperty, "cstring " + Quoted(data.GfProc));
    if (!data.MainProc.empty()) PropertyForm(w, kMainProcProperty, "cstring " + Quoted(data.MainProc));
    PropertyForm(w, PropertyChunkHeader(kTypePropertyId, kTypePropertyComment), "long 16");
    w.Close();
    FlagsChunk(w, c);
    FunctionChunk(w, c, text, listingAt);
    w.Open("FORM \"SCTR\"");
    IdChunk(w, c.SectorFile);
    ObjectsForm(w, c);
    w.Close();
    for (const auto& room : *c.Rooms) {
        w.Open("FORM \"ROOM\"");
        IdChunk(w, room);
        w.Close();
    }
    w.Close();
    EditorForm(w, c);

    FileHeader(w, c, ".iff");
    w.Open("FORM \"MISN\"");
    w.Open("CHUNK \"NAME\"");
    w.Line("long " + std::to_string(c.NameNumber));
    w.Close();
    MissionObjectives(w, c);
    w.Open("FORM \"PLTS\"");
    w.Close();
    w.Open("FORM \"KLBD\"");
    w.Open("CHUNK \"PLST\"");
    for (const auto& entry : *c.KillBoard) w.Line("long " + entry);
    w.Close();
    w.Close();
    w.Close();
    w.Close();
}

void LinkSector(TCompiler& c, std::string& text) {
    IffTextWriter w(text);
    FileHeader(w, c, ".sec");
    w.Open("FORM \"MED_\"");
    w.Open("CHUNK \"VERS\"");
    for (const char* v : {"long 92417", "long 256", "long 256", "long 256", "long 0", "long 0"}) w.Line(v);
    w.Close();
    w.Open("FORM \"PLST\"");
    PropertyForm(w, PropertyChunkHeader(kTypePropertyId, kTypePropertyComment), "long 30");
    PropertyForm(w, kBackgroundProperty, "long " + std::to_string(c.Background));
    w.Close();
    ObjectsForm(w, c);
    w.Close();
    EditorForm(w, c);
}

void LinkSeries(TCompiler& c, std::string& text, std::size_t* listingAt) {
    IffTextWriter w(text);
    FileHeader(w, c, ".srs");
    w.Open("FORM \"SERS\"");
    VersionChunk(w);
    w.Open("FORM \"PLST\"");
    PropertyForm(w, kMainProcProperty, "cstring \"MCP\"");
    w.Close();
    FlagsChunk(w, c);
    FunctionChunk(w, c, text, listingAt);
    w.Close();
    EditorForm(w, c);
}

} // namespace velkor
