#include "iff/iff_reader.h"

#include "platform/byte_order.h"
#include "platform/numbers.h"
#include "platform/path_resolver.h"
#include "platform/strings.h"

#include <algorithm>
#include <array>
#include <bit>
#include <optional>

namespace velkor {

namespace {

// Offsets in the format are 32-bit; larger data cannot be addressed by its own headers.
constexpr std::uint64_t kMaxData = 0xFFFFFFFFu;

// Closes the scan's handle on every way out.
class HandleLease {
public:
    explicit HandleLease(int handle) : handle_(handle) {}
    ~HandleLease() {
        try {
            IffCloseHandle(handle_);
        } catch (const EIffReader&) {
            // someone else closed it already; the slot is free either way
        }
    }
    HandleLease(const HandleLease&) = delete;
    HandleLease& operator=(const HandleLease&) = delete;
    int Handle() const { return handle_; }

private:
    int handle_; // the slot taken for the scan
};

struct ScannedItem {
    std::string id;      // chunk id or form type
    std::int64_t offset; // header position
    std::int64_t size;   // size field made even
    bool form;           // a FORM header
};

std::int64_t EvenSize(const std::array<std::uint8_t, 4>& be) {
    const std::uint32_t v = ReadBigEndian32(be);
    return static_cast<std::int64_t>(v) + (v & 1);
}

std::string Text(std::span<const std::uint8_t> bytes) {
    return std::string(bytes.begin(), bytes.end());
}

std::optional<ScannedItem> ReadItem(int handle) {
    const std::int64_t offset = IffPosition(handle);
    std::array<std::uint8_t, 4> id{};
    if (IffRead(handle, id) < id.size()) return std::nullopt;
    std::array<std::uint8_t, 4> size{};
    if (Text(id) == "FORM") {
        IffRead(handle, size); // a short size leaves nothing for the type, which reports it
        std::array<std::uint8_t, 4> type{};
        const std::size_t got = IffRead(handle, type);
        if (got < type.size())
            throw EIffReader_ErrorInForm("EIffReader_ErrorInForm: Error in Form \"" +
                                         VisibleBytes(Text(std::span(type).first(got))) + "\" at offset " +
                                         IntToHex(static_cast<std::uint32_t>(offset), 1));
        return ScannedItem{Text(type), offset, EvenSize(size), true};
    }
    if (id[0] == 0) return std::nullopt; // zero padding after the last item
    if (IffRead(handle, size) < size.size())
        throw EIffReader_ErrorInChunk("EIffReader_ErrorInChunk: Error in Chunk \"" + VisibleBytes(Text(id)) +
                                      "\" at offset " + IntToHex(static_cast<std::uint32_t>(offset), 1));
    ScannedItem item{Text(id), offset, EvenSize(size), false};
    IffSeek(handle, IffPosition(handle) + item.size);
    return item;
}

void CheckDataSize(std::span<const std::uint8_t> bytes) {
    if (bytes.size() > kMaxData) throw EIffReader("TIffReader: data larger than 4 GB!");
}

} // namespace

TIffReader::TIffReader(std::span<const std::uint8_t> bytes, std::string sourceName)
    : bytes_(bytes), sourceName_(std::move(sourceName)) {
    CheckDataSize(bytes_);
    HandleLease lease(IffOpenHandle(bytes_));
    Scan(lease.Handle());
}

TIffReader::TIffReader(SharedBytes owned, std::string sourceName, int handle)
    : owned_(std::move(owned)), bytes_(*owned_), sourceName_(std::move(sourceName)) {
    Scan(handle);
}

TIffReader TIffReader::FromCopy(std::vector<std::uint8_t> bytes, std::string sourceName) {
    CheckDataSize(bytes);
    auto shared = std::make_shared<const std::vector<std::uint8_t>>(std::move(bytes));
    HandleLease lease(IffOpenHandle(shared));
    return TIffReader(std::move(shared), std::move(sourceName), lease.Handle());
}

TIffReader TIffReader::FromFile(const std::filesystem::path& path) {
    const std::string name = path.string();
    const std::filesystem::path found = FindExisting(name).value_or(path);
    HandleLease lease(IffOpenFile(found));
    SharedBytes copy = IffHandleCopy(lease.Handle());
    CheckDataSize(*copy);
    return TIffReader(std::move(copy), name, lease.Handle());
}

void TIffReader::Scan(int handle) {
    IffSeek(handle, 0);
    std::optional<ScannedItem> item = ReadItem(handle);
    if (!item) throw EIffReader("TIffReader: " + sourceName_ + "not a valid .iff file!");
    root_ = std::make_unique<TForm>(std::move(item->id), item->offset, item->size, nullptr);
    TForm* form = root_.get();
    // Only what lies inside the first item is indexed: a file may hold further top-level forms after it
    // (every unit the compiler links ends in its editor form), which the scan leaves alone.
    const std::int64_t rootEnd = item->offset + 8 + item->size;
    while ((item = ReadItem(handle))) {
        if (item->offset >= rootEnd) break;
        while (!form->Contains(item->offset)) {
            if (!form->Parent)
                throw EIffReader("TIffReader: " + sourceName_ + ", error at offset " +
                                 IntToHex(static_cast<std::uint32_t>(item->offset), 8) + "!");
            form = form->Parent;
        }
        if (item->form) {
            form->Forms.push_back(
                std::make_unique<TForm>(std::move(item->id), item->offset, item->size, form));
            form = form->Forms.back().get();
        } else {
            form->Chunks.push_back(
                std::make_unique<TChunk>(std::move(item->id), item->offset, item->size, form));
        }
    }
    current_ = root_.get();
}

void TIffReader::OpenForm(std::string_view type) {
    if (chunk_)
        throw EIffReader("TIffReader: Attempt to open new form, but chunk " + VisibleBytes(chunk_->ID) +
                         " is still open!");
    for (const auto& form : current_->Forms) {
        if (form->ID == type) {
            current_ = form.get();
            return;
        }
    }
    throw EIffReader("TIffReader: Form (" + VisibleBytes(type) + ") doesn't exist!");
}

void TIffReader::CloseForm() {
    if (chunk_)
        throw EIffReader("TIffReader: Attempt to close form, but chunk " + VisibleBytes(chunk_->ID) +
                         " is still open!");
    if (!current_->Parent) throw EIffReader("TIffReader: Cannot close last form!");
    current_ = current_->Parent;
}

void TIffReader::OpenChunk(std::string_view id) {
    const auto& chunks = current_->Chunks;
    for (std::size_t i = 0; i < chunks.size(); ++i) {
        if (chunks[i]->ID == id) {
            current_->LastFound = static_cast<int>(i);
            chunk_ = chunks[i].get();
            position_ = chunk_->Offset + 8;
            return;
        }
    }
    current_->LastFound = -1;
    throw EIffReader("TIffReader[Form: " + VisibleBytes(current_->ID) + "]: Chunk (" + VisibleBytes(id) +
                     ") doesn't exist!");
}

void TIffReader::OpenChunk(const TChunk& chunk) {
    current_ = chunk.Parent;
    chunk_ = &chunk;
    position_ = chunk.Offset + 8;
}

void TIffReader::CloseChunk() {
    if (!chunk_) throw EIffReader("TIffReader: No chunk is open!");
    chunk_ = nullptr;
}

void TIffReader::CheckInside(const TChunk& chunk, std::int64_t end) const {
    if (end > static_cast<std::int64_t>(bytes_.size()))
        throw EIffReader("TIffReader: Chunk (" + VisibleBytes(chunk.ID) + ") at offset " +
                         IntToHex(static_cast<std::uint32_t>(chunk.Offset), 8) +
                         " runs past the end of the data!");
}

void TIffReader::Read(std::span<std::uint8_t> out) {
    if (!chunk_) throw EIffReader("TIffReader: Must open chunk before reading!");
    const auto count = static_cast<std::int64_t>(out.size());
    if (Position() + count - 8 > chunk_->Size) throw EIffReader("TIffReader: Read beyond end of chunk!");
    CheckInside(*chunk_, position_ + count);
    const auto from = bytes_.subspan(static_cast<std::size_t>(position_), out.size());
    std::copy(from.begin(), from.end(), out.begin());
    position_ += count;
}

std::int32_t TIffReader::ReadLong() {
    std::array<std::uint8_t, 4> b{};
    Read(b);
    return static_cast<std::int32_t>(ReadLittleEndian32(b));
}

float TIffReader::ReadFloat() {
    return std::bit_cast<float>(ReadLong());
}

std::string TIffReader::ReadString() {
    if (!chunk_) throw EIffReader("TIffReader: Must open chunk before reading!");
    // The bytes are read one at a time, each under Read's rules: the chunk's end comes first, then the
    // end of the data. Searching the allowed range at once gives the same result in linear time.
    const std::int64_t chunkEnd = chunk_->Offset + 8 + chunk_->Size;
    const auto dataEnd = static_cast<std::int64_t>(bytes_.size());
    const std::int64_t end = std::min(chunkEnd, dataEnd);
    const std::int64_t start = position_;
    if (start < end) {
        const auto range =
            bytes_.subspan(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start));
        const auto zero = std::find(range.begin(), range.end(), std::uint8_t{0});
        if (zero != range.end()) {
            position_ = start + (zero - range.begin()) + 1;
            return Text(std::span(range.begin(), zero));
        }
        position_ = end;
    }
    if (chunkEnd <= dataEnd) throw EIffReader("TIffReader: Read beyond end of chunk!");
    CheckInside(*chunk_, chunkEnd);
    return {}; // not reached: CheckInside throws
}

std::int64_t TIffReader::Position() const {
    if (!chunk_) throw EIffReader("TIffReader: Must open chunk before seeking!");
    return position_ - chunk_->Offset;
}

std::int64_t TIffReader::Size() const {
    return chunk_ ? chunk_->Size : current_->Size;
}

std::span<const std::uint8_t> TIffReader::ChunkData(const TChunk& chunk) const {
    CheckInside(chunk, chunk.Offset + 8 + chunk.Size);
    return bytes_.subspan(static_cast<std::size_t>(chunk.Offset + 8), static_cast<std::size_t>(chunk.Size));
}

} // namespace velkor
