// Loads arbitrary bytes as a string table; whatever loads is saved and loaded again.
#include "iff/iff_reader_errors.h"
#include "iff/iff_strings.h"

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::filesystem::path kFile =
        std::filesystem::temp_directory_path() / ("fuzz_string_table_" + std::to_string(getpid()) + ".eng");
    velkor::TIffStringList list;
    try {
        list.LoadFromStream(std::span(data, size));
    } catch (const velkor::EIffReader&) {
        return 0;
    }
    (void)list.IndexOfText("a");
    (void)list.IndexOf("");
    list.SaveToFile(kFile);
    velkor::TIffStringList again;
    try {
        again.LoadFromFile(kFile);
    } catch (const velkor::EIffReader&) {
    }
    std::error_code ec;
    std::filesystem::remove(kFile, ec);
    return 0;
}
