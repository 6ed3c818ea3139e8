#pragma once

namespace velkor {

inline constexpr const char* kCompilerVersion = "1.0 R24d";
inline constexpr const char* kConsoleCaption = "Velkor Console 3.0d (Compiler: 1.0 R24d)";

} // namespace velkor
