// The IDE's figures for scripts/bench.py, on the offscreen platform unless a display is named:
//   ide_bench output N            seconds for the output list to take N lines and show the last
//   ide_bench compile UNIT V      seconds for an editor page to compile UNIT at verbosity V, messages shown
// Each prints one number. Settings and registry go to a temporary folder.
#include "ide/edit_page.h"
#include "ide/main_window.h"
#include "ide/output_view.h"
#include "platform/executable_path.h"
#include "platform/ini_file.h"

#include <QApplication>
#include <QElapsedTimer>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <unistd.h>

namespace {

int Usage() {
    std::fprintf(stderr, "usage: ide_bench output LINES | ide_bench compile UNIT VERBOSITY\n");
    return 2;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) return Usage();
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    const std::filesystem::path settings =
        std::filesystem::temp_directory_path() / ("velkor-ide-bench-" + std::to_string(::getpid()));
    std::filesystem::create_directories(settings);
    setenv("VELKOR_INI", (settings / "velkor.ini").c_str(), 1);
    setenv("VELKOR_REGISTRY", (settings / "registry.ini").c_str(), 1);
    velkor::TIniFile ini(settings / "velkor.ini");
    ini.WriteString("main", "sopath", settings.string()); // no first-run settings dialog
    QApplication app(argc, argv);
    // The library units lie in the build folder, one above this program.
    velkor::SetExecutableFolderForTesting(
        std::filesystem::canonical("/proc/self/exe").parent_path().parent_path().string());

    const std::string mode = argv[1];
    double seconds = -1;
    {
        velkor::TfrmMain window({});
        window.show();
        QApplication::processEvents();
        QElapsedTimer clock;
        if (mode == "output") {
            const int lines = std::atoi(argv[2]);
            clock.start();
            for (int i = 0; i < lines; ++i)
                window.Output("[bench, " + std::to_string(i + 1) + "] line of output");
            window.OutputView().Flush();
            window.OutputView().repaint();
            QApplication::processEvents();
            seconds = static_cast<double>(clock.nsecsElapsed()) / 1e9;
        } else if (mode == "compile" && argc >= 4) {
            ini.WriteInteger("compiler", "verbosity", std::atoi(argv[3]));
            velkor::TfrmEdit* page = window.OpenFile(std::filesystem::absolute(argv[2]).string(), false);
            if (!page) return Usage();
            QApplication::processEvents();
            clock.start();
            const bool compiled = page->Compile();
            window.OutputView().Flush();
            QApplication::processEvents();
            seconds = static_cast<double>(clock.nsecsElapsed()) / 1e9;
            if (!compiled) {
                std::fprintf(stderr, "the compile failed\n");
                return 1;
            }
        } else {
            return Usage();
        }
        window.ActivePage()->SetModified(false);
    }
    std::filesystem::remove_all(settings);
    std::printf("%.4f\n", seconds);
    return seconds < 0 ? 1 : 0;
}
