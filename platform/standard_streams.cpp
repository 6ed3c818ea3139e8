#include "platform/standard_streams.h"

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>

#include <cstdio>
#endif

namespace velkor {

void UseBinaryStandardStreams() {
#ifdef _WIN32
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
#endif
}

} // namespace velkor
