// velkor: the IDE. Every command-line argument is a file to open.
#include "ide/edit_page.h"
#include "ide/main_window.h"

#include <QApplication>

// The three entries extension libraries reach the IDE through.
extern "C" {
__attribute__((visibility("default"))) void* extGetMainForm() {
    return velkor::TfrmMain::Instance();
}
__attribute__((visibility("default"))) void* extGetApplication() {
    return QCoreApplication::instance();
}
__attribute__((visibility("default"))) void* extGetActiveEdit() {
    velkor::TfrmMain* main = velkor::TfrmMain::Instance();
    velkor::TfrmEdit* page = main ? main->ActivePage() : nullptr;
    return page ? page->Memo() : nullptr;
}
}

int main(int argc, char* argv[]) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Velkor"));
    QStringList files = QApplication::arguments();
    files.removeFirst();
    velkor::TfrmMain window(files);
    window.show();
    return QApplication::exec();
}
