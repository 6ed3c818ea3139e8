// The end of every build, shared by #FILE units, `velkorc build` and `velkorc asm`, and the IDE's Build IFF:
// the assembler runs over the textual IFF and each finished binary file is placed, written and reported by
// the front end's own rules. The linked text can be kept as "_velkor.txt" for the user to look at.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace velkor {

class TIffCompiler;

// How a front end places, writes and reports the files of a build.
struct BuildOutputs {
    // The name an IFF block gives -> the path to write. Required.
    std::function<std::filesystem::path(const std::string& name)> Place;
    // Writes the bytes to the placed path; WriteFileAtomic when unassigned.
    std::function<void(const std::filesystem::path& path, std::span<const std::uint8_t> bytes)> Write;
    // Told of each written file: the name as the text gives it, where it went and its size in bytes.
    std::function<void(const std::string& name, const std::filesystem::path& path, std::size_t size)> Report;
    // Told of a file that could not be placed or written (EInOutError); the assembly then goes on with the
    // next block. Unassigned, the failure ends the assembly and is thrown to the caller.
    std::function<void(const std::string& message)> Failed;
};

// Runs the assembler, which has its input, handing every finished block to `outputs`. Returns the error
// ("[error] line N: <text>") when the assembler reported one through its OnMessage, which ended the run; the
// files of the blocks before it are written.
std::optional<std::string> AssembleToFiles(TIffCompiler& assembler, const BuildOutputs& outputs);

// "_velkor.txt" in the system's temporary folder: the text each #FILE unit and the IDE's Build IFF leave
// there for the user to look at.
std::filesystem::path LinkedTextFile();
// Writes the text there. Throws EInOutError.
void KeepLinkedText(std::string_view text);

} // namespace velkor
