// The text of an ini file, parsed so that reads find sections and keys and a rewrite changes only the
// lines it must: comments, blank lines, odd spacing and lines it does not understand stay as they were.
//
// Format: "[section]" headers, "key=value" lines, ";" comments. Names are trimmed and compared without
// case; the first section of a name and the first key of a name in it count, as the system's own ini
// routines do. A value is trimmed and loses one pair of enclosing quotes ("..." or '...'); values that
// would otherwise change on the way back are written inside double quotes. Lines end in CR LF on write;
// LF and CR are accepted on read.
#pragma once

#include "platform/exception.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velkor {

// A name or value that the ini format cannot hold (a line break, "=" in a key, "]" in a section name...).
class EIniFile : public Exception {
public:
    using Exception::Exception;
};

// One key of a section and its value.
struct IniEntry {
    std::string key;   // the key as spelt in the file
    std::string value; // the value, trimmed and unquoted
};

// One section with its keys, each key once.
struct IniSection {
    std::string name;              // the section name as first spelt
    std::vector<IniEntry> entries; // its keys in file order with their first values
};

// Whether the format can hold the name or value exactly.
bool IsStorableIniSection(std::string_view name);
bool IsStorableIniKey(std::string_view name);
bool IsStorableIniValue(std::string_view value);

// The text written after "=" so that reading gives `value` back.
std::string IniValueText(std::string_view value);

class IniDocument {
public:
    explicit IniDocument(std::string_view text = {});

    // Section names in file order, each once, as first spelt.
    std::vector<std::string> Sections() const;
    bool HasSection(std::string_view section) const;
    // The keys of the section in file order, each once with its first value.
    std::vector<IniEntry> Entries(std::string_view section) const;
    std::optional<std::string> Value(std::string_view section, std::string_view key) const;
    // Every section with its entries, in one pass over the text.
    std::vector<IniSection> Contents() const;

    // Replaces the key's value, or adds the key at the end of the section, or the section at the end of
    // the text. Throws EIniFile when a name or the value cannot be stored.
    void SetValue(std::string_view section, std::string_view key, std::string_view value);
    // Adds an empty section at the end of the text unless one of that name exists. Throws EIniFile when
    // the name cannot be stored.
    void AddSection(std::string_view section);
    // Removes every section of that name with all its lines; false when there was none.
    bool EraseSection(std::string_view section);
    // Removes every line of the key in the section; false when there was none.
    bool DeleteKey(std::string_view section, std::string_view key);
    // Removes every entry line, in any section, for which match(section name, key) holds; false when
    // there was none.
    bool DeleteEntriesWhere(const std::function<bool(std::string_view, std::string_view)>& match);

    // The whole text, every line ending in CR LF.
    std::string Text() const;

private:
    enum class LineKind { Other, Header, Entry };
    struct Line {
        LineKind kind = LineKind::Other; // what the line is
        std::string text;                // the line as it stands in the file
        std::string name;                // section name of a header, key of an entry
        std::string value;               // value of an entry
    };

    static Line ParseLine(std::string_view text, bool inSection);
    size_t FindHeader(std::string_view section, size_t from = 0) const;
    size_t SectionEnd(size_t header) const;

    std::vector<Line> lines_; // every line of the text in order
    bool bom_ = false;        // whether the text starts with a UTF-8 byte-order mark, kept on write
};

} // namespace velkor
