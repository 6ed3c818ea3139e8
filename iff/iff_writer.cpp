#include "iff/iff_writer.h"

#include "iff/checksum.h"
#include "platform/atomic_file_writer.h"
#include "platform/byte_order.h"
#include "platform/strings.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

namespace velkor {

void TBasicWriter::WriteCompressed(std::span<const std::uint8_t> bytes) {
    const auto n = static_cast<uLong>(bytes.size());
    uLongf capacity = std::max<uLongf>(static_cast<uLongf>(std::lround(static_cast<double>(n) * 1.1 + 32)),
                                       compressBound(n));
    std::vector<std::uint8_t> out(capacity);
    if (compress2(out.data(), &capacity, bytes.data(), n, Z_DEFAULT_COMPRESSION) != Z_OK)
        throw EIffWriter("TIffWriter.WriteCompressed: compression failed!");
    Write(std::span(out.data(), capacity));
}

void TBasicWriter::WriteLong(std::int32_t value) {
    Write(LittleEndian32(static_cast<std::uint32_t>(value)));
}

void TBasicWriter::WriteFloat(float value) {
    Write(LittleEndian32(std::bit_cast<std::uint32_t>(value)));
}

void TBasicWriter::WriteCrc(std::string_view text) {
    Write(LittleEndian32(NameHash(text)));
}

void TBasicWriter::WriteCString(std::string_view text) {
    Write(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
    const std::uint8_t zero = 0;
    Write(std::span(&zero, 1));
}

TIffWriter::TIffWriter(std::filesystem::path fileName, Mode mode)
    : fileName_(std::move(fileName)), mode_(mode) {
    if (mode_ == ToFile)
        stream_ = std::make_unique<FileStream>(fileName_);
    else if (mode_ == Atomic)
        stream_ = std::make_unique<SpoolStream>(fileName_);
    else
        stream_ = std::make_unique<MemoryStream>();
}

void TIffWriter::WriteId(std::string_view id) {
    std::array<std::uint8_t, 4> bytes{};
    for (size_t i = 0; i < 4 && i < id.size(); ++i) bytes[i] = static_cast<std::uint8_t>(id[i]);
    stream_->Write(bytes);
}

std::uint64_t TIffWriter::OpenForm(std::string_view id) {
    if (chunk_) throw EIffWriter("TIffWriter.OpenForm (" + VisibleBytes(id) + "): Form inside chunk!");
    const std::uint64_t header = stream_->Position();
    static constexpr std::uint8_t kForm[8] = {'F', 'O', 'R', 'M', 0, 0, 0, 0};
    stream_->Write(kForm);
    WriteId(id);
    forms_.push_back({std::string(id.substr(0, std::min<size_t>(4, id.size()))), header, 4});
    return header;
}

std::uint64_t TIffWriter::OpenChunk(std::string_view id) {
    if (forms_.empty())
        throw EIffWriter("TIffWriter.OpenChunk (" + VisibleBytes(id) + "): Chunk outside form!");
    if (chunk_) throw EIffWriter("TIffWriter.OpenChunk (" + VisibleBytes(id) + "): Chunk inside chunk!");
    const std::uint64_t header = stream_->Position();
    WriteId(id);
    static constexpr std::uint8_t kZero[4] = {};
    stream_->Write(kZero);
    chunk_ = Record{std::string(id.substr(0, std::min<size_t>(4, id.size()))), header, 0};
    return header;
}

void TIffWriter::AddToForms(std::uint64_t n) {
    for (auto& f : forms_) f.size += n;
}

void TIffWriter::Write(std::span<const std::uint8_t> bytes) {
    stream_->Write(bytes);
    if (chunk_) chunk_->size += bytes.size();
    AddToForms(bytes.size());
}

void TIffWriter::PatchSize(std::uint64_t header, std::uint64_t size) {
    if (size > 0xFFFFFFFFu) throw EIffWriter("TIffWriter: item larger than 4 GB!");
    const std::uint64_t here = stream_->Position();
    stream_->Seek(header + 4);
    stream_->Write(BigEndian32(static_cast<std::uint32_t>(size)));
    stream_->Seek(here);
}

std::uint64_t TIffWriter::CloseChunk() {
    if (!chunk_) throw EIffWriter("TIffWriter.CloseChunk: No open chunk!");
    if (chunk_->size % 2 != 0) {
        const std::uint8_t zero = 0;
        stream_->Write(std::span(&zero, 1));
        AddToForms(1);
    }
    PatchSize(chunk_->header, chunk_->size);
    AddToForms(8);
    chunk_.reset();
    return stream_->Position();
}

std::uint64_t TIffWriter::CloseForm() {
    if (forms_.empty()) throw EIffWriter("TIffWriter.CloseForm: No open form!");
    const Record form = forms_.back();
    forms_.pop_back();
    PatchSize(form.header, form.size);
    AddToForms(12);
    return stream_->Position();
}

void TIffWriter::Save() {
    if (mode_ == Atomic) static_cast<SpoolStream*>(stream_.get())->Commit();
    if (mode_ != InMemory) return;
    WriteFileAtomic(fileName_, static_cast<MemoryStream*>(stream_.get())->Bytes());
}

void TIffWriter::Close() {
    if (!forms_.empty())
        throw EIffWriter("TIffWriter.Destroy: Form " + VisibleBytes(forms_.back().id) + " still open!");
    Save();
    if (mode_ == ToFile) static_cast<FileStream*>(stream_.get())->Close();
    stream_.reset();
}

void TIffWriter::Discard() {
    stream_.reset();
    if (mode_ == Atomic) return;
    std::error_code ec;
    if (std::filesystem::exists(fileName_, ec)) std::filesystem::remove(fileName_, ec);
}

void TIffWriter::Reserve(std::uint64_t bytes) {
    if (mode_ == InMemory && stream_) static_cast<MemoryStream*>(stream_.get())->Reserve(bytes);
}

const std::vector<std::uint8_t>& TIffWriter::Bytes() const {
    static const std::vector<std::uint8_t> kEmpty;
    if (mode_ != InMemory || !stream_) return kEmpty;
    return static_cast<const MemoryStream*>(stream_.get())->Bytes();
}

} // namespace velkor
