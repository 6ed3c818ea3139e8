#include "platform/c_file.h"

#include <string>

namespace velkor {

std::FILE* OpenCFile(const std::filesystem::path& path, const char* mode) {
#ifdef _WIN32
    const std::wstring wideMode(mode, mode + std::char_traits<char>::length(mode));
    return _wfopen(path.c_str(), wideMode.c_str());
#else
    return std::fopen(path.c_str(), mode);
#endif
}

} // namespace velkor
