#include "platform/executable_path.h"

#include <filesystem>
#include <mutex>
#include <system_error>

#ifdef _WIN32
#include <windows.h>
#endif

namespace fs = std::filesystem;

namespace velkor {

namespace {

constexpr char kSeparator = static_cast<char>(fs::path::preferred_separator);

std::mutex& FolderMutex() {
    static std::mutex mutex;
    return mutex;
}

// The override set by tests; empty when none.
std::string& OverrideFolder() {
    static std::string folder;
    return folder;
}

std::string WithSeparator(std::string folder) {
    if (folder.empty() || (folder.back() != '/' && folder.back() != kSeparator)) folder += kSeparator;
    return folder;
}

fs::path ExecutableFile() {
#ifdef _WIN32
    // Long paths need a bigger buffer; the call truncates and reports the full size when too small.
    std::wstring buffer(MAX_PATH, L'\0');
    for (;;) {
        DWORD n = GetModuleFileNameW(nullptr, buffer.data(), static_cast<DWORD>(buffer.size()));
        if (n == 0) return {};
        if (n < buffer.size()) return fs::path(buffer.substr(0, n));
        if (buffer.size() >= 32768) return {};
        buffer.resize(buffer.size() * 2);
    }
#else
    std::error_code ec;
    fs::path self = fs::read_symlink("/proc/self/exe", ec);
    return ec ? fs::path() : self;
#endif
}

std::string RealFolder() {
    fs::path file = ExecutableFile();
    std::error_code ec;
    fs::path folder = file.empty() ? fs::current_path(ec) : file.parent_path();
    return WithSeparator(folder.string());
}

} // namespace

std::string ExecutableFolder() {
    std::lock_guard lock(FolderMutex());
    if (!OverrideFolder().empty()) return OverrideFolder();
    // The executable does not move while it runs.
    static const std::string real = RealFolder();
    return real;
}

void SetExecutableFolderForTesting(std::string_view folder) {
    std::lock_guard lock(FolderMutex());
    OverrideFolder() = folder.empty() ? std::string() : WithSeparator(std::string(folder));
}

} // namespace velkor
