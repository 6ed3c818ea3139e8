#include "ide/iff_build.h"

#include "compiler/compiler.h"
#include "ide/background_job.h"
#include "ide/edit_page.h"
#include "ide/ide_ini.h"
#include "ide/iff_view.h"
#include "ide/message_location.h"
#include "ide/page_host.h"
#include "iff/build_chain.h"
#include "iff/iff_compiler.h"
#include "platform/executable_path.h"
#include "platform/named_folders.h"
#include "platform/numbers.h"
#include "platform/path_resolver.h"

#include <QApplication>

namespace velkor {

std::filesystem::path OutputFolderFor(const std::filesystem::path& unitFolder) {
    const std::string configured = IdeIni().ReadString("compiler", "outputdir", "");
    if (!configured.empty()) return ResolvePath(ExpandPath(configured));
    if (!unitFolder.empty()) return unitFolder;
    return ExecutableFolder();
}

std::filesystem::path PlaceBuiltFile(const std::string& name, const std::filesystem::path& outputFolder) {
    if (!HasFolder(name)) {
        std::error_code ec;
        std::filesystem::create_directories(outputFolder, ec);
        return ResolvePath(name, outputFolder);
    }
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

std::filesystem::path UnitFolderOf(const std::string& pageFile) {
    std::error_code ec;
    if (pageFile.empty() || !std::filesystem::is_regular_file(pageFile, ec)) return {};
    return std::filesystem::path(pageFile).parent_path();
}

void BuildIffFromView(TPageHost& host, const std::filesystem::path& baseFolder,
                      const std::filesystem::path& unitFolder) {
    QApplication::setOverrideCursor(Qt::BusyCursor);
    std::string source = host.IffView().TextUtf8();
    int verbosity = 1;
    try {
        verbosity = ReadCompileSettings().Verbosity;
    } catch (const std::exception&) {
        // The compile reports a bad verbosity; the assembler has none of its own.
    }
    const std::filesystem::path outputFolder = OutputFolderFor(unitFolder);
    OutputPolicy policy = IdeOutputPolicy({});
    if (!baseFolder.empty()) policy.AllowFolder(baseFolder);
    policy.AllowFolder(outputFolder);
    try {
        RunJob(host, QStringLiteral("Building"), [&](TJobContext& job) {
            KeepLinkedText(source);
            // The file is kept for the user to look at; the assembler takes the text from memory, so that
            // another build writing the same file meanwhile cannot change what this one assembles.
            TIffCompiler assembler;
            assembler.TakeInputText(std::move(source),
                                    baseFolder.empty() ? LinkedTextFile().parent_path() : baseFolder);
            assembler.OnMessage = [&job, verbosity](int, const std::string& line) {
                if (ShownAtVerbosity(line, verbosity)) job.Output(line);
            };
            BuildOutputs outputs;
            outputs.Place = [&](const std::string& name) {
                job.CheckStop();
                std::filesystem::path target = PlaceBuiltFile(name, outputFolder);
                policy.Check(target);
                return target;
            };
            outputs.Report = [&job](const std::string&, const std::filesystem::path& path, std::size_t size) {
                job.Output("******* " + path.string() + " (" +
                           FormatFloat("#,##0", static_cast<double>(size)) + " bytes) *******");
            };
            // Without a Failed handler a file that cannot be written ends the build; its message is shown
            // below. An assembler error is in the output list already.
            AssembleToFiles(assembler, outputs);
        });
    } catch (const std::exception& e) {
        host.Output(e.what());
    }
    QApplication::restoreOverrideCursor();
}

} // namespace velkor
