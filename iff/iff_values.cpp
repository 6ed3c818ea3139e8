// The typed values inside a chunk and the number readers they use.
#include "compiler/scanner.h"
#include "iff/checksum.h"
#include "iff/iff_compiler.h"
#include "iff/iff_writer.h"
#include "platform/numbers.h"
#include "platform/strings.h"

#include <bit>
#include <cmath>
#include <limits>

namespace velkor {

namespace {

// What the integer conversion returns for a text that is no number. The value itself can therefore never be
// written, not even spelled out: the assembler has always refused it.
constexpr std::int32_t kNotAnInteger = 0x0F00AAFF;

enum class ValueType { Byte, Word, Long, Float, Double, Crc32, CString, File, WcpAsm, Unknown };

ValueType TypeOf(std::string_view name) {
    if (SameText(name, "BYTE")) return ValueType::Byte;
    if (SameText(name, "WORD")) return ValueType::Word;
    if (SameText(name, "LONG")) return ValueType::Long;
    if (SameText(name, "FLOAT")) return ValueType::Float;
    if (SameText(name, "DOUBLE")) return ValueType::Double;
    if (SameText(name, "CRC32")) return ValueType::Crc32;
    if (SameText(name, "CSTRING")) return ValueType::CString;
    if (SameText(name, "FILE")) return ValueType::File;
    if (SameText(name, "WCP_ASM")) return ValueType::WcpAsm;
    return ValueType::Unknown;
}

void AppendLittleEndian(std::vector<std::uint8_t>& out, std::uint64_t value, int bytes) {
    for (int i = 0; i < bytes; ++i) out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

bool StartsWithSign(std::string_view text) {
    return !text.empty() && (text[0] == '+' || text[0] == '-');
}

} // namespace

void TIffCompiler::Value() {
    const std::string_view token = Next();
    const std::string* alias = Lookup(types_, token);
    const ValueType type = TypeOf(alias ? std::string_view(*alias) : token);
    if (type == ValueType::Unknown) ExpectError("<type>", token);

    std::int32_t count = 1;
    if (NextIs('[')) {
        count = ReadInt();
        Expect("]");
    }
    pending_.clear();
    for (std::int32_t i = 0; i < count; ++i) {
        switch (type) {
        case ValueType::Byte: {
            std::int32_t v = ReadInt();
            if (v < 0 || v > 0xFF) Error("value doesn't fit into a byte");
            pending_.push_back(static_cast<std::uint8_t>(v));
            break;
        }
        case ValueType::Word: {
            std::int32_t v = ReadInt();
            if (v < 0 || v > 0xFFFF) Error("value doesn't fit into a word");
            AppendLittleEndian(pending_, static_cast<std::uint32_t>(v), 2);
            break;
        }
        case ValueType::Long: AppendLittleEndian(pending_, static_cast<std::uint32_t>(ReadInt()), 4); break;
        case ValueType::Float: {
            double v = ReadFloat();
            if (std::isfinite(v) && std::fabs(v) > static_cast<double>(std::numeric_limits<float>::max()))
                Error("value doesn't fit into a float");
            AppendLittleEndian(pending_, std::bit_cast<std::uint32_t>(static_cast<float>(v)), 4);
            break;
        }
        case ValueType::Double:
            AppendLittleEndian(pending_, std::bit_cast<std::uint64_t>(ReadFloat()), 8);
            break;
        case ValueType::Crc32: {
            const std::string_view text = Next();
            // Reading on would take the same empty token for every further item and then refuse it as the
            // chunk's next type name; that refusal comes at once, so a count of a billion does not loop.
            if (Stuck(text)) ExpectError("<type>", text);
            const std::uint32_t hash = NameHash(text);
            if (OnNameHashed) OnNameHashed(text, hash);
            AppendLittleEndian(pending_, hash, 4);
            break;
        }
        case ValueType::CString: {
            std::string_view text = Next();
            if (!IsNameKind(kind_)) ExpectError("<string>", text);
            text = ResolveConstant(text);
            CheckOutputSize(pending_.size() + text.size() + 1);
            pending_.insert(pending_.end(), text.begin(), text.end());
            pending_.push_back(0);
            break;
        }
        case ValueType::File: WriteFileContents(ReadName("<filename>")); break;
        case ValueType::WcpAsm: AssembleWcpAsm(); break;
        case ValueType::Unknown: break;
        }
        NextIs(',');
    }
    if (!pending_.empty()) writer_->Write(pending_);
}

std::int32_t TIffCompiler::ConvertInt(std::string_view text) {
    std::int32_t value = StrToIntDef(text, kNotAnInteger);
    if (value == kNotAnInteger) Error(std::string(text) + " is not a valid integer value.");
    return value;
}

std::int32_t TIffCompiler::ReadInt() {
    std::string_view text = Next();
    if (kind_ == tkNumber) return ConvertInt(text); // the usual case: a number token never starts with a sign
    std::string joined;
    if (StartsWithSign(text)) { // "-" and "5" are two tokens
        joined = text;
        joined += Next();
        text = joined;
    }
    if (kind_ == tkNumber) return ConvertInt(text);
    if (IsNameKind(kind_)) {
        std::int32_t value = StrToIntDef(ResolveConstant(text), kNotAnInteger);
        if (value == kNotAnInteger) Error(std::string(text) + " is not a valid integer value.");
        return value;
    }
    Error(std::string(text) + " is not a valid integer value.");
}

double TIffCompiler::ReadFloat() {
    std::string_view text = Next();
    std::string joined;
    if (StartsWithSign(text)) {
        joined = text;
        joined += Next();
        text = joined;
    }
    if (kind_ == tkNumber) {
        if (auto v = StrToFloat(text)) return *v;
    } else if (IsNameKind(kind_)) {
        if (auto v = StrToFloat(ResolveConstant(text))) return *v;
        Error(std::string(text) + ") is not a valid floating point value.");
    }
    Error(std::string(text) + " is not a valid floating point value.");
}

} // namespace velkor
