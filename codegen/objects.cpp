// Game objects become OBJ_ forms of the textual IFF (a TYPE chunk, a COMN chunk with the name hash and
// position, a PLST form of properties); objectives become MOBJ chunks numbered in declaration order; the
// NAME command sets the mission's name number.
#include "codegen/codegen.h"

#include "codegen/object_tables.h"
#include "compiler/compiler.h"
#include "compiler/symbol_table.h"
#include "iff/iff_text_writer.h"
#include "platform/numbers.h"
#include "platform/strings.h"
#include "scanner/scanner.h"

namespace velkor {

namespace {

bool IsWord(TCompiler& c, std::string_view word) {
    const std::string token = c.PeekToken();
    return c.TokenKind() == tkIdentifier && SameText(token, word);
}

std::string ValueLine(char type, const std::string& value) {
    if (type == 'c') return "cstring \"" + value + "\"";
    return (type == 'l' ? "long " : "float ") + value;
}

} // namespace

void TCodeGen::CompileObject() {
    auto& symbols = compiler_.Symbols();
    auto& lines = compiler_.Data().Objects;
    compiler_.NextToken(); // "object"
    const std::string name = compiler_.NextToken();
    if (compiler_.TokenKind() != tkIdentifier) {
        compiler_.Expected("<Identifier>", name);
        return;
    }
    compiler_.PeekToken();
    const bool forward = compiler_.TokenKind() == tkSemicolon;

    TSymbol object;
    object.Name = UpperCase(name);
    object.Text = name;
    object.Kind = skObject;
    object.FileNumber = compiler_.FileNumber;
    object.Line = compiler_.Line();
    object.Value = forward ? 0 : 1;
    const int existing = symbols.Find(name);
    if (existing >= 0 && symbols.Get(existing).Kind == skObject && symbols.Get(existing).Value == 0)
        symbols.At(existing) = object;
    else
        compiler_.AddSymbol(object);

    if (forward) {
        compiler_.Output(1, "#adding object forward declaration:" + name);
        compiler_.Expect(";");
        return;
    }
    if (!compiler_.Expect("(")) return;
    const std::string gameName = compiler_.NextToken();
    if (!compiler_.Expect(")")) return;

    const ObjectType* type = nullptr;
    if (IsWord(compiler_, "AS")) {
        compiler_.NextToken();
        const std::string word = compiler_.NextToken();
        type = FindObjectType(UpperCase(word));
        if (!type) compiler_.Expected("<object type>", word);
    }

    IffTextWriter w(lines);
    w.Open("FORM \"OBJ_\"");
    w.Open("CHUNK \"TYPE\"");
    std::string typeText;
    if (IsWord(compiler_, "OBJ")) {
        compiler_.NextToken();
        compiler_.Expect(":");
        typeText = compiler_.ReadValue(2);
        compiler_.Expect(";");
    }
    if (type && !type->TypeText.empty()) typeText = type->TypeText;
    w.Line("cstring \"" + typeText + "\"");
    w.Close();

    w.Open("CHUNK \"COMN\"");
    w.Line("crc32 \"" + gameName + "\"");
    for (const char* axis : {"x", "y", "z"}) {
        compiler_.Expect(axis);
        compiler_.Expect(":");
        w.Line("float " + compiler_.ReadValue(1));
        compiler_.Expect(";");
    }
    w.Close();

    w.Open("FORM \"PLST\"");
    w.Open("FORM \"PROP\"");
    w.Open(PropertyChunkHeader(kTypePropertyId, kTypePropertyComment));
    w.Line("long " + std::to_string(type ? type->Number : 0));
    w.Close();
    w.Close();
    for (;;) {
        const std::string keyword = compiler_.PeekToken();
        const std::int32_t kind = compiler_.TokenKind();
        if (kind == tkEnd || kind == tkEndOfText) break;
        if (kind == tkSemicolon) { // left behind by a property that failed
            compiler_.NextToken();
            continue;
        }
        if (keyword == "#" && compiler_.HandleDirective()) continue;
        compiler_.NextToken();
        CompileProperty(keyword, w);
    }
    w.Close();
    w.Close();
    compiler_.Expect("end");
    compiler_.Expect(";");
}

// One property, its keyword already read: "KEYWORD : values ;" with the values separated by ",".
void TCodeGen::CompileProperty(const std::string& keyword, IffTextWriter& form) {
    const std::string word = UpperCase(keyword);
    if (word == "WING") {
        compiler_.Error("WING not supported!");
        return;
    }
    const ObjectProperty* property = FindObjectProperty(word);
    if (!property) {
        compiler_.Expected("<property>", keyword);
        return;
    }
    if (!compiler_.Expect(":")) return;
    form.Open("FORM \"PROP\"");
    form.Open(PropertyChunkHeader(property->ChunkId, property->Comment));
    bool first = true;
    for (std::size_t i = 0; i < property->ValueCount; ++i) {
        const PropertyValue& v = property->Values[i];
        if (!v.Fixed.empty()) {
            form.Line(ValueLine(v.Type, std::string(v.Fixed)));
            continue;
        }
        if (!first) compiler_.Expect(",");
        first = false;
        std::string line = ValueLine(v.Type, compiler_.ReadValue(v.Type == 'c' ? 2 : v.Type == 'l' ? 0 : 1));
        if (!v.Comment.empty()) line += " // " + std::string(v.Comment);
        form.Line(line);
    }
    form.Close();
    form.Close();
    compiler_.Expect(";");
}

void TCodeGen::CompileObjective() {
    auto& symbols = compiler_.Symbols();
    const std::string keyword = compiler_.NextToken();
    if (compiler_.TokenKind() != tkObjective) {
        compiler_.Expected("object", keyword);
        return;
    }
    const std::string name = compiler_.NextToken();
    if (compiler_.TokenKind() != tkIdentifier) {
        compiler_.Expected("<Identifier>", name);
        return;
    }
    // Objectives are numbered 0, 1, 2, ... in declaration order; the name stands for the number.
    TSymbol objective;
    objective.Name = UpperCase(name);
    objective.Kind = skNumber;
    objective.FileNumber = compiler_.FileNumber;
    objective.Line = compiler_.Line();
    objective.Text = std::to_string(symbols.CountOfKind(skNumber));
    compiler_.AddSymbol(objective);

    IffTextWriter w(compiler_.Data().Objectives);
    w.Open("CHUNK \"MOBJ\"");
    for (const char* field : {"hidden", "type", "text", "status", "counter"}) {
        compiler_.Expect(field);
        compiler_.Expect(":");
        const std::string value = compiler_.ReadValue(0);
        if (std::string_view(field) == "text") {
            // One text number fills both string fields of the record.
            w.Line("long " + value + " // string1");
            w.Line("long " + value + " // string2");
        } else {
            w.Line("long " + value + " // " + field);
        }
        compiler_.Expect(";");
    }
    for (int i = 0; i < 3; ++i) w.Line("long 0");
    w.Close();
    compiler_.Expect("end");
    compiler_.Expect(";");
}

void TCodeGen::CompileNameCommand() {
    compiler_.Expect("name");
    compiler_.Expect(":");
    const std::string text = compiler_.ReadValue(2);
    // -1 doubles as "not a number", so it cannot be written as a name number.
    std::int32_t number = -1;
    if (text.size() > 1 && text[0] == '%' && text.find_first_not_of("01", 1) == std::string::npos)
        number = compiler_.ConvertNumber(text).value_or(-1);
    else
        number = StrToInt(text).value_or(-1);
    if (number == -1) {
        compiler_.Expected("<integer value>", text);
        return;
    }
    compiler_.NameNumber = number;
    compiler_.Expect(";");
}

} // namespace velkor
