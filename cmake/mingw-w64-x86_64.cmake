# Cross-building for 64-bit Windows with Debian's MinGW-w64 (g++-mingw-w64-x86-64-posix, whose threads
# model gives std::thread and std::mutex) and zlib from libz-mingw-w64-dev:
#   cmake -S . -B build-win -DCMAKE_TOOLCHAIN_FILE=cmake/mingw-w64-x86_64.cmake
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(VELKOR_MINGW_TRIPLE x86_64-w64-mingw32)

set(CMAKE_C_COMPILER ${VELKOR_MINGW_TRIPLE}-gcc-posix)
set(CMAKE_CXX_COMPILER ${VELKOR_MINGW_TRIPLE}-g++-posix)
set(CMAKE_RC_COMPILER ${VELKOR_MINGW_TRIPLE}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${VELKOR_MINGW_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# GCC 12 warns of overlapping copies inside std::string concatenation that cannot happen (its bug 105329).
set(CMAKE_CXX_FLAGS_INIT "-Wno-restrict")

# Each program runs alone: the C and C++ runtimes, winpthreads and zlib are linked in.
set(ZLIB_USE_STATIC_LIBS ON)
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")

# nlohmann-json: Debian's headers, found without the rest of the host's (cmake/mingw-json).
set(nlohmann_json_DIR ${CMAKE_CURRENT_LIST_DIR}/mingw-json)

# Programs built here run under Wine, for the tests and for build-time tools.
find_program(VELKOR_WINE NAMES wine wine64)
if(VELKOR_WINE)
    set(CMAKE_CROSSCOMPILING_EMULATOR ${VELKOR_WINE})
endif()
