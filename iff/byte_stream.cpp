#include "iff/byte_stream.h"

#include "platform/c_file.h"
#include "platform/exception.h"

#include <algorithm>

namespace velkor {

void MemoryStream::Write(std::span<const std::uint8_t> bytes) {
    if (pos_ == data_.size()) { // appending, as nearly every write does: no zero-filling first
        data_.insert(data_.end(), bytes.begin(), bytes.end());
        pos_ = data_.size();
        return;
    }
    const auto end = pos_ + bytes.size();
    if (end > data_.size()) data_.resize(end);
    std::copy(bytes.begin(), bytes.end(), data_.begin() + static_cast<std::ptrdiff_t>(pos_));
    pos_ = end;
}

FileStream::FileStream(const std::filesystem::path& path) : path_(path) {
    file_ = OpenCFile(path, "w+b");
    if (!file_) throw EInOutError("Cannot create file \"" + path.string() + "\"");
}

FileStream::~FileStream() {
    if (file_) std::fclose(file_);
}

void FileStream::Write(std::span<const std::uint8_t> bytes) {
    if (!file_ || std::fwrite(bytes.data(), 1, bytes.size(), file_) != bytes.size())
        throw EInOutError("Cannot write file \"" + path_.string() + "\"");
    pos_ += bytes.size();
}

void FileStream::Seek(std::uint64_t position) {
    if (!file_ || std::fseek(file_, static_cast<long>(position), SEEK_SET) != 0)
        throw EInOutError("Cannot seek in file \"" + path_.string() + "\"");
    pos_ = position;
}

void FileStream::Close() {
    if (!file_) return;
    bool ok = std::fclose(file_) == 0;
    file_ = nullptr;
    if (!ok) throw EInOutError("Cannot write file \"" + path_.string() + "\"");
}

SpoolStream::SpoolStream(const std::filesystem::path& target) : file_(target), spools_(file_.Replaces()) {
    window_.reserve(kWindow);
}

template <class Op>
void SpoolStream::ToFile(Op write) {
    if (!failure_.empty()) return;
    try {
        write();
    } catch (const EInOutError& e) {
        failure_ = e.what();
    }
}

void SpoolStream::Flush() {
    ToFile([this] { file_.Write(window_); });
    flushed_ += window_.size();
    window_.clear();
}

void SpoolStream::Write(std::span<const std::uint8_t> bytes) {
    const std::uint64_t end = flushed_ + window_.size();
    if (pos_ > end) window_.resize(static_cast<std::size_t>(pos_ - flushed_)); // the gap reads as zeros
    if (pos_ < flushed_) {                                                     // a size behind the window
        const std::size_t part =
            static_cast<std::size_t>(std::min<std::uint64_t>(bytes.size(), flushed_ - pos_));
        ToFile([&] { file_.Overwrite(pos_, bytes.first(part)); });
        bytes = bytes.subspan(part);
        pos_ += part;
    }
    const auto at = static_cast<std::size_t>(pos_ - flushed_);
    const std::size_t over = std::min(bytes.size(), window_.size() - at);
    std::copy_n(bytes.begin(), over, window_.begin() + static_cast<std::ptrdiff_t>(at));
    window_.insert(window_.end(), bytes.begin() + static_cast<std::ptrdiff_t>(over), bytes.end());
    pos_ += bytes.size();
    if (spools_ && window_.size() >= kWindow) Flush();
}

void SpoolStream::Commit() {
    Flush();
    if (!failure_.empty()) throw EInOutError(failure_);
    file_.Commit();
}

} // namespace velkor
