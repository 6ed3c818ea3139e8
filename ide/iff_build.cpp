#include "ide/iff_build.h"

#include "ide/ide_ini.h"
#include "ide/iff_view.h"
#include "ide/page_host.h"
#include "iff/build_chain.h"
#include "iff/iff_compiler.h"
#include "platform/executable_path.h"
#include "platform/numbers.h"
#include "platform/path_resolver.h"

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
        std::string source = FromQ(host.IffView().Text());
        KeepLinkedText(source);
        // The file is kept for the user to look at; the assembler takes the text from memory, so that another
        // build writing the same file meanwhile cannot change what this one assembles.
        OutputPolicy policy = IdeOutputPolicy({});
        if (!baseFolder.empty()) policy.AllowFolder(baseFolder);
        TIffCompiler assembler;
        assembler.TakeInputText(std::move(source),
                                baseFolder.empty() ? LinkedTextFile().parent_path() : baseFolder);
        assembler.OnMessage = [&host](int, const std::string& line) { host.Output(line); };
        BuildOutputs outputs;
        outputs.Place = [&policy](const std::string& name) {
            std::filesystem::path target = PlaceBuiltFile(name);
            policy.Check(target);
            return target;
        };
        outputs.Report = [&host](const std::string&, const std::filesystem::path& path, std::size_t size) {
            host.Output("******* " + path.string() + " (" + FormatFloat("#,##0", static_cast<double>(size)) +
                        " bytes) *******");
        };
        // Without a Failed handler a file that cannot be written ends the build; its message is shown below.
        AssembleToFiles(assembler, outputs); // an assembler error is in the output list already
    } catch (const std::exception& e) {
        host.Output(e.what());
    }
    QApplication::restoreOverrideCursor();
}

} // namespace velkor
