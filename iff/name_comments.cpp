#include "iff/name_comments.h"

#include "iff/value_lines.h"
#include "platform/byte_order.h"
#include "platform/numbers.h"

#include <algorithm>

namespace velkor {

namespace {

void Word(std::string& out, std::string_view indent, std::span<const std::uint8_t> data, std::size_t at,
          bool hex, const WcpNames& names) {
    const std::uint32_t word = ReadLittleEndian32(data, at);
    const std::string* name = hex ? names.Value(word) : nullptr;
    if (word == static_cast<std::uint32_t>(kNoValue))
        WriteByteRows(out, indent, data.subspan(at, 4), name ? std::string_view(*name) : std::string_view());
    else
        WriteLong(out, indent, static_cast<std::int32_t>(word), hex, name ? std::string_view(*name) : "");
}

} // namespace

NamedWordsChunk NamedWordsChunkOf(std::string_view id, std::string_view parent) {
    if (id == "FLGS" && (parent == "MISN" || parent == "SERS")) return NamedWordsChunk::Flags;
    if (id == "CRCS" && parent == "EDTR") return NamedWordsChunk::NameList;
    if (id == "COMN" && parent == "OBJ_") return NamedWordsChunk::Common;
    return NamedWordsChunk::None;
}

void WriteNamedWords(std::string& out, std::string_view indent, std::span<const std::uint8_t> data,
                     NamedWordsChunk kind, const WcpNames& names) {
    const std::size_t words = data.size() / 4;
    std::size_t at = 0;
    switch (kind) {
    case NamedWordsChunk::Flags:
        for (std::size_t i = 0; i < words; ++i, at += 4) Word(out, indent, data, at, i % 3 != 2, names);
        break;
    case NamedWordsChunk::NameList: {
        if (words == 0) break;
        const std::size_t count = std::min<std::size_t>(ReadLittleEndian32(data, 0), words - 1);
        Word(out, indent, data, 0, false, names);
        at = 4;
        for (std::size_t i = 0; i < count; ++i, at += 4) Word(out, indent, data, at, true, names);
        // The names themselves, as long as each is a string the text can hold.
        while (at < data.size()) {
            const std::span<const std::uint8_t> rest = data.subspan(at);
            const auto zero = std::find(rest.begin(), rest.end(), std::uint8_t{0});
            if (zero == rest.end()) break;
            const std::string_view text(reinterpret_cast<const char*>(rest.data()),
                                        static_cast<std::size_t>(zero - rest.begin()));
            if (!IsWritableString(text)) break;
            WriteCString(out, indent, text, {});
            at += text.size() + 1;
        }
        break;
    }
    case NamedWordsChunk::Common:
        if (words > 0) {
            Word(out, indent, data, 0, true, names);
            at = 4;
        }
        break;
    case NamedWordsChunk::None: break;
    }
    WriteByteRows(out, indent, data.subspan(at));
}

} // namespace velkor
