#include "tools/help_tables.h"

#include "codegen/object_tables.h"

namespace velkor {

namespace {

void AppendEscaped(std::string& out, std::string_view text) {
    for (char c : text) {
        switch (c) {
        case '<': out += "&lt;"; break;
        case '>': out += "&gt;"; break;
        case '&': out += "&amp;"; break;
        case '"': out += "&quot;"; break;
        default: out += c;
        }
    }
}

void AppendCode(std::string& out, std::string_view text) {
    out += "<code>";
    AppendEscaped(out, text);
    out += "</code>";
}

std::string_view TypeName(char type) {
    switch (type) {
    case 'c': return "cstring";
    case 'f': return "float";
    default: return "long";
    }
}

// "long (number), long 0 (fixed), ..." as the chunk holds them.
void AppendValues(std::string& out, const ObjectProperty& property) {
    for (std::size_t i = 0; i < property.ValueCount; ++i) {
        const PropertyValue& value = property.Values[i];
        if (i > 0) out += ", ";
        AppendEscaped(out, TypeName(value.Type));
        if (value.Type == 'c') out += " (program name)";
        if (!value.Fixed.empty()) {
            out += ' ';
            AppendEscaped(out, value.Fixed);
            out += " (fixed)";
        } else if (!value.Comment.empty()) {
            out += " (";
            AppendEscaped(out, value.Comment);
            out += ')';
        }
    }
}

// The keyword of an earlier property with the same chunk id, or empty.
std::string_view SharedIdOwner(const ObjectProperty& property) {
    for (const ObjectProperty& other : ObjectProperties()) {
        if (&other == &property) break;
        if (other.ChunkId == property.ChunkId) return other.Keyword;
    }
    return {};
}

} // namespace

std::string ObjectTypesTable() {
    std::string out = "<table>\n<tr><th>type</th><th>type number</th><th>TYPE chunk text</th></tr>\n";
    for (const ObjectType& type : ObjectTypes()) {
        out += "<tr><td>";
        AppendCode(out, type.Word);
        out += "</td><td>" + std::to_string(type.Number) + "</td><td>";
        if (type.TypeText.empty())
            out += "the <code>OBJ</code> value";
        else
            AppendCode(out, type.TypeText);
        out += "</td></tr>\n";
    }
    out += "</table>\n";
    return out;
}

std::string ObjectPropertiesTable() {
    std::string out = "<table>\n<tr><th>keyword</th><th>chunk id</th><th>property</th><th>values</th></tr>\n";
    for (const ObjectProperty& property : ObjectProperties()) {
        out += "<tr><td>";
        AppendCode(out, property.Keyword);
        out += "</td><td><code>$";
        AppendEscaped(out, property.ChunkId);
        out += "</code></td><td>";
        AppendEscaped(out, property.Comment);
        if (const std::string_view owner = SharedIdOwner(property); !owner.empty()) {
            out += " (same chunk id as ";
            AppendCode(out, owner);
            out += ')';
        }
        out += "</td><td>";
        AppendValues(out, property);
        out += "</td></tr>\n";
    }
    out += "</table>\n<p>Every object's property list starts with ";
    AppendEscaped(out, kTypePropertyComment);
    out += " (chunk id <code>$";
    AppendEscaped(out, kTypePropertyId);
    out += "</code>), one long: the type number of its type.</p>\n";
    return out;
}

std::string FillHelpTemplate(std::string_view page, std::string_view table) {
    const std::size_t at = page.find(kHelpTableMarker);
    if (at == std::string_view::npos)
        throw EHelpTemplate("The help page template has no \"" + std::string(kHelpTableMarker) + "\" line");
    std::string out;
    out.reserve(page.size() + table.size());
    out.append(page.substr(0, at));
    out.append(table);
    std::string_view rest = page.substr(at + kHelpTableMarker.size());
    // The table ends in its own line break.
    if (rest.starts_with("\r\n"))
        rest.remove_prefix(2);
    else if (rest.starts_with('\n'))
        rest.remove_prefix(1);
    out.append(rest);
    return out;
}

} // namespace velkor
