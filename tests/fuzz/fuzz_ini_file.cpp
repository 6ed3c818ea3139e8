// Any bytes parse as an ini file, and a read-write-read cycle keeps every value: rewriting each value in
// place, or writing them all into a fresh file, reads back exactly what was read.
#include "platform/ini_document.h"
#include "tests/fuzz/fuzz_check.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace {

using velkor::fuzz::Check;
using velkor::fuzz::Fail;

using velkor::IniDocument;
using velkor::IniSection;

bool SameContents(const std::vector<IniSection>& a, const std::vector<IniSection>& b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
        if (a[i].name != b[i].name || a[i].entries.size() != b[i].entries.size()) return false;
        for (size_t j = 0; j < a[i].entries.size(); ++j)
            if (a[i].entries[j].key != b[i].entries[j].key || a[i].entries[j].value != b[i].entries[j].value)
                return false;
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Every write below scans the text once; keep the cycle's cost in bounds.
    if (size > 64 * 1024) return 0;
    std::string_view text(reinterpret_cast<const char*>(data), size);
    IniDocument doc(text);
    const auto contents = doc.Contents();

    // The single-section queries agree with the one-pass view.
    auto names = doc.Sections();
    Check(names.size() == contents.size());
    for (size_t i = 0; i < contents.size(); ++i) {
        Check(names[i] == contents[i].name && doc.HasSection(contents[i].name));
        auto entries = doc.Entries(contents[i].name);
        Check(SameContents({{contents[i].name, entries}}, {contents[i]}));
        for (const auto& entry : entries) Check(doc.Value(contents[i].name, entry.key) == entry.value);
    }

    // Written out unchanged, it reads the same.
    Check(SameContents(IniDocument(doc.Text()).Contents(), contents));

    // Every value written back in place.
    for (const auto& section : contents)
        for (const auto& entry : section.entries) doc.SetValue(section.name, entry.key, entry.value);
    Check(SameContents(IniDocument(doc.Text()).Contents(), contents));

    // Every value written into a fresh file (sections without keys are not written there).
    IniDocument fresh;
    std::vector<IniSection> nonEmpty;
    for (const auto& section : contents) {
        if (section.entries.empty()) continue;
        nonEmpty.push_back(section);
        for (const auto& entry : section.entries) fresh.SetValue(section.name, entry.key, entry.value);
    }
    Check(SameContents(IniDocument(fresh.Text()).Contents(), nonEmpty));

    // Removing the first section and key leaves them gone.
    if (!contents.empty()) {
        if (!contents[0].entries.empty()) {
            Check(doc.DeleteKey(contents[0].name, contents[0].entries[0].key));
            Check(!IniDocument(doc.Text()).Value(contents[0].name, contents[0].entries[0].key));
        }
        Check(doc.EraseSection(contents[0].name));
        Check(!IniDocument(doc.Text()).HasSection(contents[0].name));
    }
    return 0;
}
