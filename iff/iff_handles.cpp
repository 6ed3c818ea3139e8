#include "iff/iff_handles.h"

#include "iff/iff_reader_errors.h"
#include "platform/text_file.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <mutex>

namespace velkor {

namespace {

struct Slot {
    std::atomic<bool> free{true};        // no scan holds the slot
    SharedBytes owned;                   // the bytes when the slot owns them
    std::span<const std::uint8_t> bytes; // what is read: the owned copy or borrowed bytes
    std::int64_t position = 0;           // next byte to read
};

std::mutex gTableLock;                    // guards taking and releasing slots
std::array<Slot, kIffHandleCount> gSlots; // handle n is gSlots[n - 1]

Slot& OpenSlot(int handle) {
    if (handle < 1 || handle > kIffHandleCount) throw EIffReader("TIffReader: handle to closed file!");
    Slot& slot = gSlots[static_cast<std::size_t>(handle - 1)];
    if (slot.free.load(std::memory_order_acquire)) throw EIffReader("TIffReader: handle to closed file!");
    return slot;
}

int Take(std::span<const std::uint8_t> bytes, SharedBytes owned) {
    std::lock_guard lock(gTableLock);
    for (std::size_t i = 0; i < gSlots.size(); ++i) {
        Slot& slot = gSlots[i];
        if (!slot.free.load(std::memory_order_relaxed)) continue;
        slot.owned = std::move(owned);
        slot.bytes = bytes;
        slot.position = 0;
        slot.free.store(false, std::memory_order_release);
        return static_cast<int>(i + 1);
    }
    throw EIffReader_NoFreeFileHandles(
        "EIffReader_NoFreeFileHandles: No free file handles! Cannot open stream");
}

} // namespace

int IffOpenHandle(std::span<const std::uint8_t> bytes) {
    return Take(bytes, nullptr);
}

int IffOpenHandle(SharedBytes bytes) {
    std::span<const std::uint8_t> view;
    if (bytes) view = std::span(*bytes);
    return Take(view, std::move(bytes));
}

int IffOpenFile(const std::filesystem::path& path) {
    return IffOpenHandle(std::make_shared<const std::vector<std::uint8_t>>(ReadFileBytes(path)));
}

void IffCloseHandle(int handle) {
    SharedBytes dropped; // released outside the lock
    {
        std::lock_guard lock(gTableLock);
        Slot& slot = OpenSlot(handle);
        dropped.swap(slot.owned);
        slot.bytes = {};
        slot.position = 0;
        slot.free.store(true, std::memory_order_release);
    }
}

std::size_t IffRead(int handle, std::span<std::uint8_t> out) {
    Slot& slot = OpenSlot(handle);
    const auto size = static_cast<std::int64_t>(slot.bytes.size());
    if (slot.position >= size) return 0;
    const auto n = std::min<std::size_t>(out.size(), static_cast<std::size_t>(size - slot.position));
    const auto from = slot.bytes.subspan(static_cast<std::size_t>(slot.position), n);
    std::copy(from.begin(), from.end(), out.begin());
    slot.position += static_cast<std::int64_t>(n);
    return n;
}

void IffSeek(int handle, std::int64_t position) {
    OpenSlot(handle).position = std::max<std::int64_t>(0, position);
}

std::int64_t IffPosition(int handle) {
    return OpenSlot(handle).position;
}

SharedBytes IffHandleCopy(int handle) {
    return OpenSlot(handle).owned;
}

int IffFreeHandleCount() {
    std::lock_guard lock(gTableLock);
    return static_cast<int>(
        std::count_if(gSlots.begin(), gSlots.end(), [](const Slot& s) { return s.free.load(); }));
}

} // namespace velkor
