// Child processes on Windows: CreateProcessW with stdout and stderr sent to files.
#include "tests/support/run_tool.h"

#include <windows.h>

#include <stdexcept>
#include <string>

namespace velkor::test {

namespace {

std::wstring Wide(const std::string& text) {
    if (text.empty()) return {};
    int n = MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
    std::wstring wide(static_cast<size_t>(n), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), wide.data(), n);
    return wide;
}

// One argument quoted so that the C runtime's parser of the child gives it back unchanged: backslashes
// count only before a quote.
void AppendQuoted(std::wstring& line, const std::wstring& arg) {
    if (!line.empty()) line += L' ';
    if (!arg.empty() && arg.find_first_of(L" \t\n\v\"") == std::wstring::npos) {
        line += arg;
        return;
    }
    line += L'"';
    size_t backslashes = 0;
    for (wchar_t c : arg) {
        if (c == L'\\') {
            ++backslashes;
            continue;
        }
        if (c == L'"') backslashes = backslashes * 2 + 1;
        line.append(backslashes, L'\\');
        backslashes = 0;
        line += c;
    }
    line.append(backslashes * 2, L'\\');
    line += L'"';
}

// A handle closed with the object.
class Handle {
public:
    explicit Handle(HANDLE h) : h_(h) {}
    ~Handle() {
        if (h_ != INVALID_HANDLE_VALUE && h_ != nullptr) CloseHandle(h_);
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    HANDLE Get() const { return h_; }

private:
    HANDLE h_;
};

HANDLE OpenInherited(const std::wstring& path, DWORD access, DWORD disposition) {
    SECURITY_ATTRIBUTES sa{sizeof(sa), nullptr, TRUE};
    return CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &sa, disposition,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

} // namespace

ToolResult RunProgram(const std::string& program, const std::vector<std::string>& args,
                      const std::filesystem::path& cwd) {
    TempDir io;
    auto outPath = io / "stdout";
    auto errPath = io / "stderr";
    std::wstring line;
    AppendQuoted(line, Wide(program));
    for (const auto& a : args) AppendQuoted(line, Wide(a));
    {
        Handle in(OpenInherited(L"NUL", GENERIC_READ, OPEN_EXISTING));
        Handle out(OpenInherited(outPath.wstring(), GENERIC_WRITE, CREATE_ALWAYS));
        Handle err(OpenInherited(errPath.wstring(), GENERIC_WRITE, CREATE_ALWAYS));
        if (out.Get() == INVALID_HANDLE_VALUE || err.Get() == INVALID_HANDLE_VALUE)
            throw std::runtime_error("cannot capture the output of " + program);
        STARTUPINFOW si{};
        si.cb = sizeof(si);
        si.dwFlags = STARTF_USESTDHANDLES;
        si.hStdInput = in.Get();
        si.hStdOutput = out.Get();
        si.hStdError = err.Get();
        PROCESS_INFORMATION pi{};
        std::wstring dir = cwd.empty() ? std::wstring() : cwd.wstring();
        // Under Wine a start can fail for a moment while the server restarts between test programs:
        // a few tries with a pause, and the error code when it still fails.
        DWORD error = 0;
        for (int attempt = 0; attempt < 5; ++attempt) {
            if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                               dir.empty() ? nullptr : dir.c_str(), &si, &pi)) {
                error = 0;
                break;
            }
            error = GetLastError();
            Sleep(200 << attempt);
        }
        if (error != 0)
            throw std::runtime_error("cannot start " + program + " (error " + std::to_string(error) + ")");
        Handle process(pi.hProcess);
        Handle thread(pi.hThread);
        WaitForSingleObject(pi.hProcess, INFINITE);
        DWORD code = 0;
        GetExitCodeProcess(pi.hProcess, &code);
        ToolResult r;
        r.exitCode = static_cast<int>(code);
        r.out = ReadFile(outPath);
        r.err = ReadFile(errPath);
        return r;
    }
}

} // namespace velkor::test
