#include "iff/iff_strings.h"

#include "iff/iff_reader.h"
#include "iff/iff_writer.h"
#include "platform/path_resolver.h"
#include "platform/strings.h"
#include "platform/text_file.h"

#include <algorithm>
#include <array>

namespace velkor {

namespace {

// An INFO text goes out from a 256-byte zero-filled buffer, its length rounded up to even: an odd length
// carries its terminating zero along, an even one goes without. Longer texts are cut to 255 bytes, so
// the buffer never overflows and a cut text keeps its terminator.
void WriteInfoText(TIffWriter& writer, std::string_view text) {
    std::array<std::uint8_t, 256> buffer{};
    text = text.substr(0, std::min<std::size_t>(text.size(), buffer.size() - 1));
    std::copy(text.begin(), text.end(), buffer.begin());
    writer.Write(std::span(buffer).first((text.size() + 1) & ~std::size_t{1}));
}

} // namespace

void TIffStringList::LoadFromFile(const std::filesystem::path& fileName) {
    const std::filesystem::path found = FindExisting(fileName.string()).value_or(fileName);
    const std::vector<std::uint8_t> bytes = ReadFileBytes(found);
    LoadFromStream(bytes);
}

void TIffStringList::LoadFromStream(std::span<const std::uint8_t> bytes) {
    TIffReader reader(bytes);
    reader.OpenForm("LANG");
    reader.OpenChunk("INFO");
    std::string text1 = reader.ReadString();
    const std::int32_t value1 = reader.ReadLong();
    const std::int32_t value2 = reader.ReadLong();
    std::string text2 = reader.ReadString();
    const std::int32_t value3 = reader.ReadLong();
    reader.ReadLong(); // the line count; the TEXT chunk itself says how many there are
    reader.CloseChunk();

    reader.OpenChunk("TEXT");
    std::vector<std::string> lines;
    do {
        lines.emplace_back(Trim(reader.ReadString()));
    } while (reader.Position() < reader.Size());
    reader.CloseChunk();
    reader.CloseForm();

    Lines.insert(Lines.end(), std::make_move_iterator(lines.begin()), std::make_move_iterator(lines.end()));
    InfoText1 = std::move(text1);
    InfoText2 = std::move(text2);
    InfoValue1 = value1;
    InfoValue2 = value2;
    InfoValue3 = value3;
}

void TIffStringList::SaveToFile(const std::filesystem::path& fileName) {
    // Built in memory and written in one atomic step at Close: a save that fails leaves the old file whole.
    TIffWriter writer(ResolvePath(fileName.string()), TIffWriter::InMemory);
    const std::size_t count = Lines.size();
    writer.OpenForm("DATA");
    writer.OpenForm("LANG");
    writer.OpenChunk("INFO");
    WriteInfoText(writer, InfoText1);
    writer.WriteLong(InfoValue1);
    writer.WriteLong(InfoValue2);
    WriteInfoText(writer, InfoText2);
    writer.WriteLong(InfoValue3);
    writer.WriteLong(static_cast<std::int32_t>(count));
    writer.CloseChunk();
    writer.OpenChunk("TEXT");
    Lines.reserve(count * 2);
    for (std::size_t i = 0; i < count; ++i) {
        writer.WriteCString(Lines[i]);
        Lines.emplace_back(); // kept from the original: every save grows the list by its own length
    }
    writer.CloseChunk();
    writer.CloseForm();
    writer.CloseForm();
    writer.Close();
}

void TIffStringList::SaveToStream(ByteStream&) {
    throw Exception("TIffStringList.SaveToStream not implemented");
}

int TIffStringList::IndexOfText(std::string_view text) const {
    if (text.empty()) return -1;
    for (std::size_t i = 0; i < Lines.size(); ++i)
        if (FindNoCase(Lines[i], text) != std::string_view::npos) return static_cast<int>(i);
    return -1;
}

int TIffStringList::IndexOf(std::string_view text) const {
    for (std::size_t i = 0; i < Lines.size(); ++i)
        if (SameText(Lines[i], text)) return static_cast<int>(i);
    return -1;
}

} // namespace velkor
