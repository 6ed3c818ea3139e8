#include "platform/huge_pages.h"

#include <cstdint>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace velkor {

void AdviseHugePages(void* data, std::size_t size) {
#if defined(__linux__) && defined(MADV_HUGEPAGE)
    constexpr std::uintptr_t kHuge = std::uintptr_t{2} << 20;
    if (size < 4 * kHuge) return;
    const auto begin = (reinterpret_cast<std::uintptr_t>(data) + kHuge - 1) & ~(kHuge - 1);
    const auto end = (reinterpret_cast<std::uintptr_t>(data) + size) & ~(kHuge - 1);
    if (end > begin) ::madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
#else
    (void)data;
    (void)size;
#endif
}

} // namespace velkor
