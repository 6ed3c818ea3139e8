// A large buffer that is filled from start to end costs a page fault for every 4 KiB on its first touch;
// backed by huge pages it costs one for every 2 MiB, which is most of the kernel time a large build spends.
#pragma once

#include <cstddef>

namespace velkor {

// Asks the system to back the whole huge pages within [data, data + size) with huge pages where it can.
// Does nothing for a buffer under 8 MiB, where the faults saved would not pay for the pages' rounding.
void AdviseHugePages(void* data, std::size_t size);

} // namespace velkor
