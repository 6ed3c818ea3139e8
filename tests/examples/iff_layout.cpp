#include "tests/examples/iff_layout.h"

#include "platform/numbers.h"

#include <gtest/gtest.h>

#include <bit>
#include <cctype>

namespace velkor::test {

namespace {

std::uint32_t BigEndian(std::string_view bytes, std::size_t at) {
    std::uint32_t v = 0;
    for (std::size_t i = 0; i < 4; ++i) v = v << 8 | static_cast<std::uint8_t>(bytes[at + i]);
    return v;
}

bool Printable(std::string_view id) {
    for (char c : id)
        if (!(std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == ' ')) return false;
    return id.size() == 4;
}

// The path of the innermost item holding `offset`, e.g. "MISN/FUNC".
void Locate(const TForm& form, std::int64_t offset, std::string& path) {
    for (const TIffItem* item : form.Children()) {
        const std::int64_t end = item->Offset + 8 + item->Size;
        if (offset < item->Offset || offset >= end) continue;
        path += "/" + IdText(item->ID);
        if (item->IsForm()) Locate(static_cast<const TForm&>(*item), offset, path);
        return;
    }
}

} // namespace

std::string IdText(std::string_view id) {
    if (Printable(id)) return std::string(id);
    std::uint32_t v = 0;
    for (std::size_t i = 0; i < id.size() && i < 4; ++i)
        v |= static_cast<std::uint32_t>(static_cast<std::uint8_t>(id[i])) << (8 * i);
    return "$" + IntToHex(v, 8);
}

std::vector<TopForm> TopLevelForms(std::string_view file) {
    std::vector<TopForm> forms;
    std::size_t at = 0;
    while (at < file.size()) {
        if (file.size() - at < 12 || file.substr(at, 4) != "FORM") {
            ADD_FAILURE() << "no FORM header at offset " << at;
            return forms;
        }
        const std::size_t end = at + 8 + BigEndian(file, at + 4);
        if (end > file.size()) {
            ADD_FAILURE() << "the form at offset " << at << " runs past the end of the file";
            return forms;
        }
        std::vector<std::uint8_t> bytes(file.begin() + static_cast<std::ptrdiff_t>(at),
                                        file.begin() + static_cast<std::ptrdiff_t>(end));
        forms.push_back({at, TIffReader::FromCopy(std::move(bytes))});
        at = end;
    }
    return forms;
}

std::string Outline(const TForm& form, std::string_view collapsed) {
    std::string text = IdText(form.ID);
    const auto children = form.Children();
    if (children.empty() || form.ID == collapsed) return text;
    text += "(";
    for (std::size_t i = 0; i < children.size(); ++i) {
        if (i) text += " ";
        text += children[i]->IsForm() ? Outline(static_cast<const TForm&>(*children[i]), collapsed)
                                      : IdText(children[i]->ID);
    }
    return text + ")";
}

std::span<const std::uint8_t> ChunkBytes(const TIffReader& reader, const TChunk& chunk) {
    const auto all = reader.Bytes();
    const auto at = static_cast<std::size_t>(chunk.Offset);
    std::uint32_t size = 0;
    for (std::size_t i = 4; i < 8; ++i) size = size << 8 | all[at + i];
    return all.subspan(at + 8, size);
}

std::uint32_t DataCursor::Long() {
    if (Left() < 4) {
        ADD_FAILURE() << "long read past the end of the chunk";
        at_ = data_.size();
        return 0;
    }
    std::uint32_t v = 0;
    for (int i = 3; i >= 0; --i) v = v << 8 | data_[at_ + static_cast<std::size_t>(i)];
    at_ += 4;
    return v;
}

float DataCursor::Float() {
    const std::uint32_t bits = Long();
    return std::bit_cast<float>(bits);
}

std::string DataCursor::CString() {
    std::string text;
    while (at_ < data_.size() && data_[at_] != 0) text += static_cast<char>(data_[at_++]);
    if (at_ == data_.size()) {
        ADD_FAILURE() << "cstring without its terminating zero";
        return text;
    }
    ++at_;
    return text;
}

std::string FirstDifference(std::string_view expected, std::string_view actual) {
    std::size_t at = 0;
    while (at < expected.size() && at < actual.size() && expected[at] == actual[at]) ++at;
    if (at == expected.size() && at == actual.size()) return {};
    std::string where = "offset " + std::to_string(at) + " (expected " + std::to_string(expected.size()) +
                        " bytes, got " + std::to_string(actual.size()) + ")";
    try {
        for (auto& top : TopLevelForms(expected)) {
            const auto local = static_cast<std::int64_t>(at) - static_cast<std::int64_t>(top.offset);
            if (local < 0 || local >= static_cast<std::int64_t>(top.reader.Bytes().size())) continue;
            std::string path = IdText(top.reader.Root().ID);
            Locate(top.reader.Root(), local, path);
            where += " in " + path;
        }
    } catch (const std::exception& e) {
        where += std::string(" (") + e.what() + ")";
    }
    return where;
}

} // namespace velkor::test
