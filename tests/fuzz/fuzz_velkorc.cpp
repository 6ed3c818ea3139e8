// velkorc end to end, as a downloaded unit or text would drive it: the input picks a command, options and
// the file names that the unit or text gives (folders up and down, absolute paths, Wine drive paths, a
// link out of the working folder), then the real velkorc runs in a scratch folder. Whatever happens, no
// file outside the working folder changes, no input is overwritten and no temporary file is left behind.
//
// Layout, in a fresh scratch folder S of this process:
//   S/a/b/work      the current folder (the output folder) with the unit or text in work/src
//   S/a/b/work/out  a link to S/outside
//   S/outside       must stay empty
//   S/wine          a Wine prefix whose Z: is the root
// Three ".." from the working folder still lie inside S, so every name the input can spell lands in S.
#include "tests/fuzz/fuzz_check.h"
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace fs = std::filesystem;

namespace {

using velkor::fuzz::Check;
using velkor::fuzz::Fail;

void Write(const fs::path& path, std::string_view bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::string Read(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

struct Scratch {
    fs::path root, work, outside;
    Scratch() {
        char name[] = "/tmp/velkor-fuzz-XXXXXX";
        Check(::mkdtemp(name) != nullptr, "no scratch folder");
        root = fs::canonical(name);
        work = root / "a" / "b" / "work";
        outside = root / "outside";
        fs::create_directories(outside);
        fs::create_directories(root / "wine" / "dosdevices");
        fs::create_symlink("/", root / "wine" / "dosdevices" / "z:");
        Write(root / "a" / "keep.txt", "keep");
        ::setenv("WINEPREFIX", (root / "wine").c_str(), 1);
        ::setenv("VELKOR_REGISTRY", (root / "registry.ini").c_str(), 1);
        ::setenv("VELKOR_INI", (root / "velkor.ini").c_str(), 1);
        ::setenv("TMPDIR", (root / "tmp").c_str(), 1);
        fs::create_directories(root / "tmp");
        FreshWork();
    }
    ~Scratch() {
        std::error_code ec;
        fs::remove_all(root, ec);
    }

    // Every file and folder outside the working folder (and the temporary folder's _velkor.txt), with
    // the file's bytes.
    std::map<std::string, std::string> Snapshot() const {
        std::map<std::string, std::string> seen;
        for (auto it = fs::recursive_directory_iterator(root); it != fs::recursive_directory_iterator();
             ++it) {
            const fs::path& p = it->path();
            if (p == work || p == root / "tmp" || p == root / "wine") {
                it.disable_recursion_pending();
                continue;
            }
            seen[p.string()] =
                it->is_regular_file() && !it->is_symlink() ? Read(p) : std::string("<not a file>");
        }
        return seen;
    }

    void FreshWork() const {
        std::error_code ec;
        fs::remove_all(work, ec);
        fs::create_directories(work / "src" / "sub");
        fs::create_directories(work / "deep");
        fs::create_symlink(outside, work / "out");
    }
};

Scratch& TheScratch() {
    static Scratch scratch;
    return scratch;
}

// The pieces a name is spelt from; the scratch folder's path as the system and as Wine write it.
std::string Piece(std::uint8_t b, const Scratch& s) {
    static const char* const kPieces[] = {"..",  "/", "\\", "outside", "work", "sub",   "x.mis", "src",
                                          "out", "",  "",   ".",       "a",    "X.MIS", "deep",  "b"};
    if (b % 16 == 9) return s.root.string() + "/";
    if (b % 16 != 10) return kPieces[b % 16];
    std::string z = "Z:" + s.root.string() + "\\";
    for (char& c : z)
        if (c == '/') c = '\\';
    return z;
}

std::vector<std::string> Names(std::string_view bytes, const Scratch& s) {
    std::vector<std::string> names(1);
    for (char c : bytes) {
        if (c == ';') {
            if (names.size() == 4) break;
            names.emplace_back();
            continue;
        }
        if (names.back().size() < 200) names.back() += Piece(static_cast<std::uint8_t>(c), s);
    }
    for (auto& name : names)
        if (name.empty()) name = "x.mis";
    return names;
}

std::string Blocks(const std::vector<std::string>& names) {
    std::string text;
    for (const auto& name : names)
        text += "IFF \"" + name +
                "\"\r\n{\r\n FORM \"MISS\"\r\n {\r\n  CHUNK \"NAME\" { CSTRING \"a\" }\r\n }\r\n}\r\n";
    return text;
}

std::string Be(std::uint32_t v) {
    std::string s;
    for (int i = 3; i >= 0; --i) s += static_cast<char>(v >> (8 * i));
    return s;
}

int Run(const std::vector<std::string>& args, const fs::path& cwd) {
    std::vector<char*> argv;
    std::vector<std::string> all = {VELKORC_PATH};
    all.insert(all.end(), args.begin(), args.end());
    for (auto& a : all) argv.push_back(a.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addchdir_np(&actions, cwd.c_str());
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    pid_t pid = 0;
    const int started = posix_spawn(&pid, VELKORC_PATH, &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    Check(started == 0, "velkorc does not start");
    // libFuzzer's timeout alarm interrupts the wait; the checks must not start while velkorc still runs.
    int status = 0;
    while (::waitpid(pid, &status, 0) < 0) Check(errno == EINTR, "velkorc cannot be waited for");
    Check(WIFEXITED(status), "velkorc did not exit normally");
    return WEXITSTATUS(status);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 2 || size > 512) return 0;
    const Scratch& s = TheScratch();
    const auto before = s.Snapshot();
    s.FreshWork();

    const std::uint8_t command = data[0] % 4;
    const std::uint8_t flags = data[1];
    const std::vector<std::string> names =
        Names(std::string_view(reinterpret_cast<const char*>(data) + 2, size - 2), s);

    std::vector<std::string> args;
    fs::path input;
    switch (command) {
    case 0: // a text naming its files
        input = s.work / "src" / "t.txt";
        Write(input, Blocks(names));
        args = {"asm", "src/t.txt"};
        break;
    case 1:
    case 2: { // a unit naming its file in its header, by its output path or through a #FILE unit
        input = s.work / "src" / "u.pas";
        if (flags & 0x10) {
            Write(input, "iff \"" + names[0] + "\"\r\n{ form \"DATA\" { } }\r\n");
        } else if (flags & 0x20) {
            Write(input, "mission M;\r\n#SETOUTPUTPATH(\"" + names[0] + "\");\r\nvar a;\r\n");
        } else {
            Write(s.work / "src" / "sub" / "m.pas",
                  "mission M;\r\n#SETOUTPUTPATH(\"" + names[0] + "\");\r\nvar a;\r\n");
            Write(input, "series S;\r\n#FILE \"sub\\m.pas\";\r\n");
        }
        args = {command == 1 ? "build" : "compile", "src/u.pas"};
        if (command == 2 && (flags & 0x40)) args.insert(args.end(), {"-o", "src/linked.txt"});
        break;
    }
    default: { // a binary file decoded beside itself, its large chunk into a side file
        input = s.work / "src" / "d.iff";
        const std::string big(40, 'x');
        const std::string body = "TEST" + std::string("BIGG") + Be(40) + big + "SMAL" + Be(2) + "ab";
        Write(input, "FORM" + Be(static_cast<std::uint32_t>(body.size())) + body);
        args = {"decode", "--max-decode-size", "8", "src/d.iff"};
        if (flags & 0x40) args.insert(args.end(), {"-o", "deep/d.pas"});
        break;
    }
    }
    if (flags & 0x01) args.insert(args.end(), {"--out-dir", "deep"});
    if (flags & 0x02) args.push_back("--fast-scanner");
    if (flags & 0x04) args.push_back("--no-halt");
    const std::string inputBytes = Read(input);
    Run(args, s.work);

    Check(Read(input) == inputBytes, "an input was overwritten");
    const auto after = s.Snapshot();
    for (const auto& [path, bytes] : after)
        if (!before.contains(path) || before.at(path) != bytes)
            std::fprintf(stderr, "changed: %s\n", path.c_str());
    Check(after == before, "a file outside the working folder changed");
    for (const auto& entry : fs::recursive_directory_iterator(s.work)) {
        if (entry.path().filename().string().find(".velkor-tmp-") == std::string::npos) continue;
        std::fprintf(stderr, "left behind: %s\n", entry.path().c_str());
        for (const auto& a : args) std::fprintf(stderr, " %s", a.c_str());
        Check(false, "a temporary file was left behind");
    }
    return 0;
}
