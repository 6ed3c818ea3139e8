// One resolver for every file the tools look up or write: includes, string files, #FILE units, search and
// output paths, FILE values and side files. Sources written for the games use "\" and assume a file system
// that ignores letter case; here "\" and "/" both separate, a component that does not exist as written is
// matched without regard to case, and a drive-letter path ("C:\...") maps into the Wine prefix.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace velkor {

// The path with "/" separators and a drive letter mapped into the Wine prefix ($WINEPREFIX, default
// ~/.wine: dosdevices/<x>: or, for C:, drive_c). Relative paths stay relative.
std::filesystem::path ToNativePath(std::string_view path);

// The existing file or folder the path names, relative paths taken from `base` (the current folder when
// empty): exact match first, else a case-insensitive match per component. Nothing when none exists.
std::optional<std::filesystem::path> FindExisting(std::string_view path,
                                                  const std::filesystem::path& base = {});

// True for an existing regular file; a folder or a device of that name is as good as missing.
bool IsRegularFile(const std::filesystem::path& path);

// As FindExisting, for a regular file only.
std::optional<std::filesystem::path> FindExistingFile(std::string_view path,
                                                      const std::filesystem::path& base = {});

// As FindExisting, but for a path that need not exist (an output file): the longest existing prefix is
// matched as above and the rest is kept as written.
std::filesystem::path ResolvePath(std::string_view path, const std::filesystem::path& base = {});

// True when the path has a folder part ("\" or "/") or a drive letter.
bool HasFolder(std::string_view path);

// The part after the last "\", "/" or drive colon; the part up to and including it.
std::string FileNamePart(std::string_view path);
std::string FolderPart(std::string_view path);

// True for "/...", "\..." and "X:...".
bool IsAbsoluteGamePath(std::string_view path);

} // namespace velkor
