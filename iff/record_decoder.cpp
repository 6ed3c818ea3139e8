#include "iff/record_decoder.h"

#include "iff/value_lines.h"
#include "platform/byte_order.h"
#include "platform/numbers.h"

#include <algorithm>
#include <bit>

namespace velkor {

namespace {

class RecordWriter {
public:
    RecordWriter(std::string& out, std::string_view indent, std::span<const std::uint8_t> data,
                 const RecordLayout& layout, bool exactFloats)
        : out_(out), indent_(indent), data_(data), layout_(layout), exactFloats_(exactFloats) {}

    bool Run() {
        switch (layout_.repeat) {
        case RecordRepeat::Once: Record(); break;
        case RecordRepeat::Entries:
            while (pos_ < data_.size() && !layout_.fields.empty() && Record()) {
            }
            break;
        case RecordRepeat::TrailingFloats:
            if (Record())
                while (Field({FieldKind::Float, {}})) {
                }
            break;
        }
        WriteByteRows(out_, indent_, data_.subspan(pos_));
        return exact_;
    }

private:
    bool Record() {
        for (const RecordField& field : layout_.fields)
            if (!Field(field)) return false;
        return true;
    }

    // Writes one field; false when it does not fit in what is left.
    bool Field(const RecordField& field) {
        const std::size_t left = data_.size() - pos_;
        if (field.kind == FieldKind::CString) {
            const auto rest = data_.subspan(pos_);
            const auto zero = std::find(rest.begin(), rest.end(), std::uint8_t{0});
            if (zero == rest.end()) return false;
            const std::string_view text(reinterpret_cast<const char*>(rest.data()),
                                        static_cast<std::size_t>(zero - rest.begin()));
            if (IsWritableString(text))
                WriteCString(out_, indent_, text, field.label);
            else
                WriteByteRows(out_, indent_, rest.first(text.size() + 1), field.label);
            pos_ += text.size() + 1;
            return true;
        }
        if (left < 4) return false;
        const auto bytes = data_.subspan(pos_, 4);
        const std::uint32_t bits = ReadLittleEndian32(bytes);
        pos_ += 4;
        if (field.kind == FieldKind::Float) {
            const FloatStyle& style = layout_.timeFloats ? kTimeFloat : kPlainFloat;
            if (!WriteFloat(out_, indent_, std::bit_cast<float>(bits), style, exactFloats_, field.label))
                exact_ = false;
        } else if (bits == static_cast<std::uint32_t>(kNoValue)) {
            WriteByteRows(out_, indent_, bytes, field.label);
        } else {
            WriteLong(out_, indent_, static_cast<std::int32_t>(bits), field.kind == FieldKind::HexLong,
                      field.label);
        }
        return true;
    }

    std::string& out_;                   // the text being written
    std::string_view indent_;            // in front of every line
    std::span<const std::uint8_t> data_; // the chunk's data
    const RecordLayout& layout_;         // the fields to write
    bool exactFloats_;                   // floats in their exact form
    std::size_t pos_ = 0;                // next byte of data_
    bool exact_ = true;                  // every line reads back to its bytes
};

} // namespace

bool WriteRecords(std::string& out, std::string_view indent, std::span<const std::uint8_t> data,
                  const RecordLayout& layout, bool exactFloats) {
    return RecordWriter(out, indent, data, layout, exactFloats).Run();
}

} // namespace velkor
