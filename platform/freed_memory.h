// Memory the program has freed is kept by the allocator for reuse and still counts as the process's own.
// Where a large structure is let go of while another grows in other blocks, handing the freed pages back
// keeps the peak at the larger of the two instead of their sum.
#pragma once

namespace velkor {

// Hands freed pages back to the system where the allocator allows it; otherwise does nothing.
void ReturnFreedMemory();

} // namespace velkor
