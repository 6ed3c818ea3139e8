#include "platform/freed_memory.h"

#include <cstdlib> // defines __GLIBC__ with the C library's own headers

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace velkor {

void ReturnFreedMemory() {
#if defined(__GLIBC__)
    malloc_trim(0);
#endif
}

} // namespace velkor
