// What a program hosting the compile (an editor holding files open) may tell the compiler about source
// files, and learn from it: the text it holds for a file instead of the one on disk, and which file a
// nested compile reads, so that its messages can be placed in that file.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace velkor {

class TSourceHost {
public:
    virtual ~TSourceHost() = default;
    // The text to compile for the source file found at `file`; nothing reads it from disk.
    virtual std::optional<std::string> SourceText(const std::filesystem::path& file) = 0;
    // A nested compile (an included file or a #FILE unit) of `file` starts; its symbols record it as
    // `fileName`. Every message up to the matching Left comes from that file.
    virtual void Entered(const std::filesystem::path& file, const std::string& fileName) = 0;
    virtual void Left() = 0;
};

} // namespace velkor
