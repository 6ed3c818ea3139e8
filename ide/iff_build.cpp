#include "ide/iff_build.h"

#include "compiler/compiler.h"
#include "ide/ide_ini.h"
#include "ide/iff_view.h"
#include "ide/page_host.h"
#include "iff/iff_compiler.h"
#include "platform/executable_path.h"
#include "platform/numbers.h"
#include "platform/path_resolver.h"
#include "platform/text_file.h"

#include <QApplication>

namespace velkor {

std::filesystem::path PlaceBuiltFile(const std::string& name) {
    if (!HasFolder(name)) return std::filesystem::path(ExecutableFolder()) / name;
    return ResolvePath(name);
}

OutputPolicy IdeOutputPolicy(const std::filesystem::path& source) {
    OutputPolicy policy;
    policy.AllowFolder(ExecutableFolder());
    if (!source.empty()) policy.AllowFolder(std::filesystem::absolute(source).parent_path());
    policy.AllowNamedFolders();
    policy.AllowAnywhere(IdeIni().ReadBool("compiler", kAllowOutputAnywhereKey, false));
    policy.SetHowToAllow("check \"Allow output anywhere\" in the settings to allow it");
    if (!source.empty()) policy.ProtectInput(source);
    return policy;
}

void BuildIffFromView(TPageHost& host, const std::filesystem::path& baseFolder) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    try {
        const std::filesystem::path text = LinkedTextFile();
        const std::string source = FromQ(host.IffView().Text());
        WriteFileAtomic(text, source);
        // The file is kept for the user to look at; the assembler takes the text from memory, so that another
        // build writing the same file meanwhile cannot change what this one assembles.
        OutputPolicy policy = IdeOutputPolicy({});
        if (!baseFolder.empty()) policy.AllowFolder(baseFolder);
        TIffCompiler assembler;
        assembler.SetInputText(source, baseFolder.empty() ? text.parent_path() : baseFolder);
        assembler.OnMessage = [&host](int, const std::string& line) { host.Output(line); };
        assembler.OnBinaryOutput = [&](const std::vector<std::uint8_t>& bytes, const std::string& name) {
            const std::filesystem::path target = PlaceBuiltFile(name);
            policy.Check(target);
            WriteFileAtomic(target, bytes);
            host.Output("******* " + target.string() + " (" +
                        FormatFloat("#,##0", static_cast<double>(bytes.size())) + " bytes) *******");
        };
        assembler.Compile();
    } catch (const EIffCompiler&) {
        // Reported through the message callback already.
    } catch (const std::exception& e) {
        host.Output(e.what());
    }
    QApplication::restoreOverrideCursor();
}

} // namespace velkor
