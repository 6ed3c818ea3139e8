// The process-wide table of read slots a scan takes its input from. Handles are numbered 1 to 32; a slot
// holds the bytes, whether it owns them and the read position. Taking and releasing a slot is thread-safe;
// between the two, only the thread that took it may use it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <vector>

namespace velkor {

inline constexpr int kIffHandleCount = 32;

using SharedBytes = std::shared_ptr<const std::vector<std::uint8_t>>;

// Takes a free slot over bytes the caller keeps alive. Throws EIffReader_NoFreeFileHandles.
int IffOpenHandle(std::span<const std::uint8_t> bytes);
// Takes a free slot that owns a share of the bytes until it is closed.
int IffOpenHandle(SharedBytes bytes);
// Reads the whole file into a memory copy owned by a new slot. Throws EInOutError when the file cannot
// be read (no slot is taken then) and EIffReader_NoFreeFileHandles.
int IffOpenFile(const std::filesystem::path& path);
// Releases the slot and drops the bytes it owns. Throws EIffReader for a handle that is not open.
void IffCloseHandle(int handle);

// Copies up to out.size() bytes from the read position on and advances past them; the number copied.
std::size_t IffRead(int handle, std::span<std::uint8_t> out);
void IffSeek(int handle, std::int64_t position);
std::int64_t IffPosition(int handle);
// The memory copy an owning slot holds (empty for a slot over borrowed bytes).
SharedBytes IffHandleCopy(int handle);
// Free slots just now; for diagnostics and tests.
int IffFreeHandleCount();

} // namespace velkor
