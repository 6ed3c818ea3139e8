#include "iff/build_chain.h"

#include "iff/iff_compiler.h"
#include "iff/iff_writer.h"
#include "platform/atomic_file_writer.h"
#include "platform/exception.h"

namespace velkor {

std::optional<std::string> AssembleToFiles(TIffCompiler& assembler, const BuildOutputs& outputs) {
    assembler.OnBinaryOutput = [&outputs](const std::vector<std::uint8_t>& bytes, const std::string& name) {
        try {
            const std::filesystem::path path = outputs.Place(name);
            if (outputs.Write)
                outputs.Write(path, bytes);
            else
                WriteFileAtomic(path, bytes);
            if (outputs.Report) outputs.Report(name, path, bytes.size());
        } catch (const EInOutError& e) {
            if (!outputs.Failed) throw;
            outputs.Failed(e.what());
        }
    };
    if (!outputs.Write) {
        assembler.OnPlaceOutput =
            [&outputs](const std::string& name) -> std::optional<std::filesystem::path> {
            try {
                return outputs.Place(name);
            } catch (const EInOutError&) {
                return std::nullopt; // placed again at the block's end, where its failure is reported
            }
        };
        assembler.OnFileOutput = [&outputs](TIffWriter& writer, const std::string& name) {
            try {
                const auto size = static_cast<std::size_t>(writer.GetPosition());
                writer.Close();
                if (outputs.Report) outputs.Report(name, writer.FileName(), size);
            } catch (const EInOutError& e) {
                if (!outputs.Failed) throw;
                outputs.Failed(e.what());
            }
        };
    }
    try {
        assembler.Compile();
    } catch (const EIffCompiler& e) {
        return e.what();
    }
    return std::nullopt;
}

std::filesystem::path LinkedTextFile() {
    return std::filesystem::temp_directory_path() / "_velkor.txt";
}

void KeepLinkedText(std::string_view text) {
    WriteFileAtomic(LinkedTextFile(), text);
}

} // namespace velkor
