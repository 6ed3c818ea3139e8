// The typed values inside a chunk and the number readers they use.
#include "iff/checksum.h"
#include "iff/iff_compiler.h"
#include "iff/iff_writer.h"
#include "platform/byte_order.h"
#include "platform/numbers.h"
#include "platform/strings.h"
#include "scanner/scanner.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>

namespace velkor {

namespace {

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

// The value types whose items are plain numbers in the usual case: their size and largest value.
struct PlainRow {
    int width = 0; // 0: not such a type
    std::uint32_t max = 0;
};

PlainRow PlainRowOf(ValueType type) {
    switch (type) {
    case ValueType::Byte: return {1, 0xFF};
    case ValueType::Word: return {2, 0xFFFF};
    case ValueType::Long: return {4, 0xFFFFFFFF};
    default: return {};
    }
}

bool StartsWithSign(std::string_view text) {
    return !text.empty() && (text[0] == '+' || text[0] == '-');
}

} // namespace

void TIffCompiler::Value() {
    const std::string_view token = tokens_.Next();
    const ValueType type = TypeOf(ResolveType(token));
    if (type == ValueType::Unknown) ExpectError("<type>", token);

    std::int32_t count = 1;
    if (tokens_.NextIs('[')) {
        count = ReadInt();
        tokens_.Expect("]");
    }
    pending_.clear();
    const PlainRow plain = PlainRowOf(type);
    std::int32_t i = 0;
    while (i < count) {
        if (plain.width > 0 && FastValueRows) {
            // Rows of plain numbers are most of a large text: they go straight from the text into the bytes.
            // The first item they cannot take, if any, is read below, where every message comes from.
            std::array<std::uint32_t, 64> values;
            const auto want = static_cast<std::size_t>(std::min<std::int32_t>(count - i, values.size()));
            const std::size_t n = tokens_.NextPlainNumbers(plain.max, std::span(values).first(want));
            const std::size_t at = pending_.size();
            pending_.resize(at + n * static_cast<std::size_t>(plain.width));
            std::uint8_t* out = pending_.data() + at;
            for (std::size_t k = 0; k < n; ++k)
                for (int b = 0; b < plain.width; ++b)
                    *out++ = static_cast<std::uint8_t>(values[k] >> (8 * b));
            i += static_cast<std::int32_t>(n);
            if (n == want) continue;
        }
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
            const std::string_view text = tokens_.Next();
            // Reading on would take the same empty token for every further item and then refuse it as the
            // chunk's next type name; that refusal comes at once, so a count of a billion does not loop.
            if (tokens_.Stuck(text)) ExpectError("<type>", text);
            const std::uint32_t hash = NameHash(text);
            if (OnNameHashed) OnNameHashed(text, hash);
            AppendLittleEndian(pending_, hash, 4);
            break;
        }
        case ValueType::CString: {
            std::string_view text = tokens_.Next();
            if (!tokens_.IsNameKind(tokens_.Kind())) ExpectError("<string>", text);
            text = tokens_.ResolveConstant(text);
            CheckOutputSize(pending_.size() + text.size() + 1);
            pending_.insert(pending_.end(), text.begin(), text.end());
            pending_.push_back(0);
            break;
        }
        case ValueType::File: WriteFileContents(tokens_.ReadName("<filename>")); break;
        case ValueType::WcpAsm: AssembleWcpAsm(); break;
        case ValueType::Unknown: break;
        }
        tokens_.NextIs(',');
        ++i;
    }
    if (!pending_.empty()) writer_->Write(pending_);
}

std::int32_t TIffCompiler::ReadInt() {
    std::string_view text = tokens_.Next();
    if (tokens_.Kind() == tkNumber)
        return tokens_.ConvertInt(text); // the usual case: a number token never starts with a sign
    std::string joined;
    if (StartsWithSign(text)) { // "-" and "5" are two tokens
        joined = text;
        joined += tokens_.Next();
        text = joined;
    }
    if (tokens_.Kind() == tkNumber) return tokens_.ConvertInt(text);
    if (tokens_.IsNameKind(tokens_.Kind())) {
        std::int32_t value = StrToIntDef(tokens_.ResolveConstant(text), kNoValue);
        if (value == kNoValue) Error(std::string(text) + " is not a valid integer value.");
        return value;
    }
    Error(std::string(text) + " is not a valid integer value.");
}

double TIffCompiler::ReadFloat() {
    std::string_view text = tokens_.Next();
    std::string joined;
    if (StartsWithSign(text)) {
        joined = text;
        joined += tokens_.Next();
        text = joined;
    }
    if (tokens_.Kind() == tkNumber) {
        if (auto v = StrToFloat(text)) return *v;
    } else if (tokens_.IsNameKind(tokens_.Kind())) {
        if (auto v = StrToFloat(tokens_.ResolveConstant(text))) return *v;
        Error(std::string(text) + ") is not a valid floating point value.");
    }
    Error(std::string(text) + " is not a valid floating point value.");
}

} // namespace velkor
