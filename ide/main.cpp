// velkor: the IDE. Every command-line argument is a file to open; binary IFF files are decoded. Only a
// lone --help or --version is answered instead, before any window (or display) is needed.
#include "compiler/compiler_version.h"
#include "ide/app_icon.h"
#include "ide/main_window.h"

#include <QApplication>

#include <cstdio>
#include <cstring>

namespace {

constexpr const char* kHelp =
    "Usage: velkor [FILE]...\n"
    "The development environment for mission units: opens every FILE in an editor page, or a new unit\n"
    "page when none is given. A file whose first four bytes are \"FORM\" (a binary IFF file: .mis, .iff,\n"
    ".sec, .srs) is decoded into textual IFF and opened as a modified page.\n"
    "\n"
    "  --help      print this help and exit\n"
    "  --version   print the version and exit\n"
    "\n"
    "Settings are kept in velkor.ini beside the executable, or in $XDG_CONFIG_HOME/velkor/velkor.ini when\n"
    "that folder is not writable (VELKOR_INI names the file); recently used files and named folders in\n"
    "$XDG_CONFIG_HOME/velkor/registry.ini (VELKOR_REGISTRY names the file).\n";

} // namespace

int main(int argc, char* argv[]) {
    if (argc == 2 && std::strcmp(argv[1], "--help") == 0) {
        std::fputs(kHelp, stdout);
        return 0;
    }
    if (argc == 2 && std::strcmp(argv[1], "--version") == 0) {
        std::printf("%s\n", velkor::kConsoleCaption);
        return 0;
    }
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Velkor"));
    QApplication::setWindowIcon(velkor::VelkorIcon());
    // Lets the desktop match the windows with the installed desktop entry.
    QGuiApplication::setDesktopFileName(QStringLiteral("org.velkor.Velkor"));
    QStringList files = QApplication::arguments();
    files.removeFirst();
    velkor::TfrmMain window(files);
    window.show();
    return QApplication::exec();
}
