// The three functions the executable exports to extension libraries. This file is linked into every
// program that loads extensions (the IDE, and the tests that load the sample), never through the
// static IDE library, where the linker would drop it as unused.
#include "ide/edit_page.h"
#include "ide/velkor_extension.h"

extern "C" {

velkor::TfrmMain* extGetMainForm() {
    return velkor::TfrmMain::Instance();
}

QApplication* extGetApplication() {
    return qobject_cast<QApplication*>(QCoreApplication::instance());
}

velkor::TSyntaxEdit* extGetActiveEdit() {
    velkor::TfrmMain* main = velkor::TfrmMain::Instance();
    velkor::TfrmEdit* page = main ? main->ActivePage() : nullptr;
    return page ? page->Memo() : nullptr;
}
}
