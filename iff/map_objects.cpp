#include "iff/map_objects.h"

#include "iff/iff_reader.h"
#include "platform/byte_order.h"
#include "platform/numbers.h"

#include <bit>
#include <cmath>
#include <optional>
#include <span>

namespace velkor {

namespace {

// The OBJ_PROP_TYPE property's chunk id, $56A0F92F as the assembler writes a numeric id: low byte first.
constexpr std::string_view kTypePropertyId("\x2F\xF9\xA0\x56", 4);

// The chunk's data, or nothing when its header claims more bytes than the data holds.
std::optional<std::span<const std::uint8_t>> DataOf(const TIffReader& reader, const TChunk& chunk) {
    try {
        return reader.ChunkData(chunk);
    } catch (const EIffReader&) {
        return std::nullopt;
    }
}

const TChunk* FirstChunk(const TForm& form, std::string_view id) {
    for (const auto& chunk : form.Chunks)
        if (chunk->ID == id) return chunk.get();
    return nullptr;
}

void ReadPosition(const TIffReader& reader, const TForm& form, TMapObject& object) {
    const TChunk* comn = FirstChunk(form, "COMN");
    if (!comn) return;
    const auto data = DataOf(reader, *comn);
    if (!data || data->size() < 4) return;
    object.NameHash = ReadLittleEndian32(*data);
    if (data->size() < 16) return;
    double axis[3];
    for (int i = 0; i < 3; ++i)
        axis[i] =
            std::bit_cast<float>(ReadLittleEndian32(data->subspan(4 + 4 * static_cast<std::size_t>(i), 4)));
    if (!std::isfinite(axis[0]) || !std::isfinite(axis[1]) || !std::isfinite(axis[2])) return;
    object.X = axis[0];
    object.Y = axis[1];
    object.Z = axis[2];
    object.Placed = true;
}

void ReadTypeText(const TIffReader& reader, const TForm& form, TMapObject& object) {
    const TChunk* type = FirstChunk(form, "TYPE");
    if (!type) return;
    const auto data = DataOf(reader, *type);
    if (!data) return;
    std::size_t end = 0;
    while (end < data->size() && (*data)[end] != 0) ++end;
    object.TypeText.assign(data->begin(), data->begin() + static_cast<std::ptrdiff_t>(end));
}

// The first OBJ_PROP_TYPE of the object's property list (PLST, then its PROP forms).
void ReadTypeNumber(const TIffReader& reader, const TForm& form, TMapObject& object) {
    for (const auto& list : form.Forms) {
        if (list->ID != "PLST") continue;
        for (const auto& property : list->Forms) {
            if (property->ID != "PROP") continue;
            const TChunk* chunk = FirstChunk(*property, kTypePropertyId);
            if (!chunk) continue;
            const auto data = DataOf(reader, *chunk);
            if (!data || data->size() < 4) continue;
            object.TypeNumber = static_cast<std::int32_t>(ReadLittleEndian32(*data));
            return;
        }
    }
}

} // namespace

std::vector<TMapObject> ReadMapObjects(const TIffReader& reader, const TMapNames& names) {
    std::vector<TMapObject> objects;
    // Depth first in file order, without recursion: hostile data nests forms as deep as it likes.
    std::vector<const TForm*> pending{&reader.Root()};
    while (!pending.empty()) {
        const TForm* form = pending.back();
        pending.pop_back();
        for (auto it = form->Forms.rbegin(); it != form->Forms.rend(); ++it) pending.push_back(it->get());
        if (form->ID != "OBJ_") continue;

        TMapObject object;
        object.Ordinal = static_cast<int>(objects.size());
        object.Offset = form->Offset;
        ReadPosition(reader, *form, object);
        ReadTypeText(reader, *form, object);
        ReadTypeNumber(reader, *form, object);
        if (const auto found = names.find(object.NameHash); found != names.end()) {
            object.Name = found->second;
            object.NameKnown = true;
        } else {
            object.Name = "$" + IntToHex(object.NameHash, 8);
        }
        objects.push_back(std::move(object));
    }
    return objects;
}

std::vector<TMapObject> ReadMapObjectsFromFile(const std::filesystem::path& path) {
    const TIffReader reader = TIffReader::FromFile(path);
    return ReadMapObjects(reader);
}

bool LooksLikeBinaryIff(std::string_view head) {
    return head.substr(0, 4) == "FORM";
}

} // namespace velkor
