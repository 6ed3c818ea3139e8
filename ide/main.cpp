// velkor: the IDE. Every command-line argument is a file to open.
#include "ide/main_window.h"

#include <QApplication>

int main(int argc, char* argv[]) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Velkor"));
    QStringList files = QApplication::arguments();
    files.removeFirst();
    velkor::TfrmMain window(files);
    window.show();
    return QApplication::exec();
}
