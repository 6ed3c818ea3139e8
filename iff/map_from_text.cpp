#include "iff/map_from_text.h"

#include "iff/iff_compiler.h"
#include "iff/iff_reader.h"
#include "platform/strings.h"

namespace velkor {

namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

} // namespace

bool IsTextualIff(std::string_view text) {
    std::size_t at = 0;
    for (;;) {
        while (at < text.size() && IsBlank(text[at])) ++at;
        if (text.substr(at, 2) != "//") break;
        at = text.find('\n', at);
        if (at == std::string_view::npos) return false;
    }
    const std::string_view word = text.substr(at, 3);
    return SameText(word, "IFF") && (at + 3 == text.size() || IsBlank(text[at + 3]) || text[at + 3] == '"');
}

TMapSource MapObjectsFromText(std::string text, const std::filesystem::path& baseFolder) {
    TMapSource source;
    TMapNames names;
    TIffCompiler assembler;
    assembler.OnMessage = [&source](int, const std::string& line) { source.errors.push_back(line); };
    assembler.OnNameHashed = [&names](std::string_view name, std::uint32_t hash) {
        names.try_emplace(hash, name);
    };
    assembler.OnBinaryOutput = [&](const std::vector<std::uint8_t>& bytes, const std::string& fileName) {
        std::vector<TMapObject> block;
        try {
            const TIffReader reader(bytes, fileName);
            block = ReadMapObjects(reader, names);
        } catch (const EIffReader& e) {
            source.errors.emplace_back(e.what());
            return;
        }
        if (!block.empty() && source.fileName.empty()) source.fileName = fileName;
        const int before = static_cast<int>(source.objects.size());
        for (TMapObject& object : block) {
            object.Ordinal += before;
            source.objects.push_back(std::move(object));
        }
    };
    assembler.TakeInputText(std::move(text), baseFolder);
    try {
        assembler.Compile();
    } catch (const Exception& e) {
        if (source.errors.empty()) source.errors.emplace_back(e.what());
    }
    return source;
}

} // namespace velkor
