#include "platform/ini_document.h"

#include "platform/strings.h"

#include <unordered_set>

namespace velkor {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool IsBlank(char c) {
    return static_cast<unsigned char>(c) <= ' ';
}
bool IsQuote(char c) {
    return c == '"' || c == '\'';
}
bool HasLineBreak(std::string_view s) {
    return s.find_first_of("\r\n") != std::string_view::npos;
}

bool IsEnclosedInQuotes(std::string_view s) {
    return s.size() >= 2 && IsQuote(s.front()) && s.back() == s.front();
}

std::string_view Unquote(std::string_view s) {
    return IsEnclosedInQuotes(s) ? s.substr(1, s.size() - 2) : s;
}

} // namespace

bool IsStorableIniSection(std::string_view name) {
    return !HasLineBreak(name) && name.find(']') == std::string_view::npos &&
           Trim(name).size() == name.size();
}

bool IsStorableIniKey(std::string_view name) {
    return !name.empty() && !HasLineBreak(name) && name.find('=') == std::string_view::npos &&
           Trim(name).size() == name.size() && name.front() != '[' && name.front() != ';';
}

bool IsStorableIniValue(std::string_view value) {
    return !HasLineBreak(value);
}

std::string IniValueText(std::string_view value) {
    bool quote =
        !value.empty() && (IsBlank(value.front()) || IsBlank(value.back()) || IsEnclosedInQuotes(value));
    if (!quote) return std::string(value);
    std::string text;
    text.reserve(value.size() + 2);
    text += '"';
    text += value;
    text += '"';
    return text;
}

IniDocument::IniDocument(std::string_view text) {
    if (text.starts_with(kByteOrderMark)) {
        bom_ = true;
        text.remove_prefix(kByteOrderMark.size());
    }
    bool inSection = false;
    for (auto& raw : SplitLines(text)) {
        Line line = ParseLine(raw, inSection);
        if (line.kind == LineKind::Header) inSection = true;
        line.text = std::move(raw);
        lines_.push_back(std::move(line));
    }
}

IniDocument::Line IniDocument::ParseLine(std::string_view text, bool inSection) {
    Line line;
    std::string_view trimmed = Trim(text);
    if (trimmed.empty() || trimmed.front() == ';') return line;
    if (trimmed.front() == '[') {
        std::string_view name = trimmed.substr(1);
        name = name.substr(0, name.find(']'));
        line.kind = LineKind::Header;
        line.name = Trim(name);
        return line;
    }
    size_t eq = trimmed.find('=');
    if (!inSection || eq == std::string_view::npos) return line;
    std::string_view key = Trim(trimmed.substr(0, eq));
    if (key.empty()) return line;
    line.kind = LineKind::Entry;
    line.name = key;
    line.value = Unquote(Trim(trimmed.substr(eq + 1)));
    return line;
}

size_t IniDocument::FindHeader(std::string_view section, size_t from) const {
    for (size_t i = from; i < lines_.size(); ++i)
        if (lines_[i].kind == LineKind::Header && SameText(lines_[i].name, section)) return i;
    return std::string::npos;
}

size_t IniDocument::SectionEnd(size_t header) const {
    size_t i = header + 1;
    while (i < lines_.size() && lines_[i].kind != LineKind::Header) ++i;
    return i;
}

std::vector<std::string> IniDocument::Sections() const {
    std::vector<std::string> names;
    std::unordered_set<std::string> seen;
    for (const auto& line : lines_)
        if (line.kind == LineKind::Header && seen.insert(UpperCase(line.name)).second)
            names.push_back(line.name);
    return names;
}

bool IniDocument::HasSection(std::string_view section) const {
    return FindHeader(section) != std::string::npos;
}

std::vector<IniEntry> IniDocument::Entries(std::string_view section) const {
    std::vector<IniEntry> entries;
    size_t header = FindHeader(section);
    if (header == std::string::npos) return entries;
    std::unordered_set<std::string> seen;
    for (size_t i = header + 1, end = SectionEnd(header); i < end; ++i) {
        const Line& line = lines_[i];
        if (line.kind == LineKind::Entry && seen.insert(UpperCase(line.name)).second)
            entries.push_back({line.name, line.value});
    }
    return entries;
}

std::optional<std::string> IniDocument::Value(std::string_view section, std::string_view key) const {
    size_t header = FindHeader(section);
    if (header == std::string::npos) return std::nullopt;
    for (size_t i = header + 1, end = SectionEnd(header); i < end; ++i)
        if (lines_[i].kind == LineKind::Entry && SameText(lines_[i].name, key)) return lines_[i].value;
    return std::nullopt;
}

std::vector<IniSection> IniDocument::Contents() const {
    std::vector<IniSection> sections;
    std::unordered_set<std::string> seenSections;
    std::unordered_set<std::string> seenKeys;
    bool collecting = false; // inside the first section of its name
    for (const auto& line : lines_) {
        if (line.kind == LineKind::Header) {
            collecting = seenSections.insert(UpperCase(line.name)).second;
            if (collecting) sections.push_back({line.name, {}});
            seenKeys.clear();
        } else if (line.kind == LineKind::Entry && collecting &&
                   seenKeys.insert(UpperCase(line.name)).second) {
            sections.back().entries.push_back({line.name, line.value});
        }
    }
    return sections;
}

void IniDocument::SetValue(std::string_view section, std::string_view key, std::string_view value) {
    if (!IsStorableIniSection(section))
        throw EIniFile("TIniFile: Section name cannot be stored: \"" + std::string(section) + "\"");
    if (!IsStorableIniKey(key))
        throw EIniFile("TIniFile: Key name cannot be stored: \"" + std::string(key) + "\"");
    if (!IsStorableIniValue(value))
        throw EIniFile("TIniFile: Value of \"" + std::string(key) + "\" cannot hold a line break");

    Line entry;
    entry.kind = LineKind::Entry;
    entry.name = key;
    entry.value = value;

    size_t header = FindHeader(section);
    if (header == std::string::npos) {
        if (!lines_.empty() && !Trim(lines_.back().text).empty()) lines_.emplace_back();
        Line head;
        head.kind = LineKind::Header;
        head.name = section;
        head.text = "[" + std::string(section) + "]";
        lines_.push_back(std::move(head));
        entry.text = entry.name + "=" + IniValueText(value);
        lines_.push_back(std::move(entry));
        return;
    }
    size_t insertAt = header + 1;
    for (size_t i = header + 1, end = SectionEnd(header); i < end; ++i) {
        Line& line = lines_[i];
        if (line.kind != LineKind::Entry) continue;
        if (SameText(line.name, key)) {
            // The key keeps the spelling the file gave it.
            line.value = value;
            line.text = line.name + "=" + IniValueText(value);
            return;
        }
        insertAt = i + 1;
    }
    entry.text = entry.name + "=" + IniValueText(value);
    lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(insertAt), std::move(entry));
}

void IniDocument::AddSection(std::string_view section) {
    if (!IsStorableIniSection(section))
        throw EIniFile("TIniFile: Section name cannot be stored: \"" + std::string(section) + "\"");
    if (HasSection(section)) return;
    if (!lines_.empty() && !Trim(lines_.back().text).empty()) lines_.emplace_back();
    Line head;
    head.kind = LineKind::Header;
    head.name = section;
    head.text = "[" + std::string(section) + "]";
    lines_.push_back(std::move(head));
}

bool IniDocument::EraseSection(std::string_view section) {
    std::vector<Line> kept;
    kept.reserve(lines_.size());
    bool erasing = false;
    bool erased = false;
    for (auto& line : lines_) {
        if (line.kind == LineKind::Header) {
            erasing = SameText(line.name, section);
            erased = erased || erasing;
        }
        if (!erasing) kept.push_back(std::move(line));
    }
    lines_ = std::move(kept);
    return erased;
}

bool IniDocument::DeleteKey(std::string_view section, std::string_view key) {
    size_t header = FindHeader(section);
    if (header == std::string::npos) return false;
    size_t end = SectionEnd(header);
    std::vector<Line> kept;
    kept.reserve(lines_.size());
    bool deleted = false;
    for (size_t i = 0; i < lines_.size(); ++i) {
        Line& line = lines_[i];
        if (i > header && i < end && line.kind == LineKind::Entry && SameText(line.name, key)) {
            deleted = true;
            continue;
        }
        kept.push_back(std::move(line));
    }
    lines_ = std::move(kept);
    return deleted;
}

bool IniDocument::DeleteEntriesWhere(const std::function<bool(std::string_view, std::string_view)>& match) {
    std::vector<Line> kept;
    kept.reserve(lines_.size());
    std::string section;
    bool deleted = false;
    for (auto& line : lines_) {
        if (line.kind == LineKind::Header) section = line.name;
        if (line.kind == LineKind::Entry && match(section, line.name)) {
            deleted = true;
            continue;
        }
        kept.push_back(std::move(line));
    }
    lines_ = std::move(kept);
    return deleted;
}

std::string IniDocument::Text() const {
    size_t total = bom_ ? kByteOrderMark.size() : 0;
    for (const auto& line : lines_) total += line.text.size() + 2;
    std::string text;
    text.reserve(total);
    if (bom_) text += kByteOrderMark;
    for (const auto& line : lines_) {
        text += line.text;
        text += "\r\n";
    }
    return text;
}

} // namespace velkor
