// C stdio files opened by path on every system: Windows paths are wide and need the wide call.
#pragma once

#include <cstdio>
#include <filesystem>

namespace velkor {

// std::fopen for a path; null when the file cannot be opened.
std::FILE* OpenCFile(const std::filesystem::path& path, const char* mode);

} // namespace velkor
