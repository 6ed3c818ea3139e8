// A sample extension library. It adds two items to the IDE's Extensions menu:
//   Count Lines      writes the number of lines of the active editor to the output view;
//   Insert Template  inserts an object declaration at the caret of the active editor.
// Both say "no active editor" in the output view when no page is open.
#include "ide/output_view.h"
#include "ide/velkor_extension.h"

#include <QAction>
#include <QMenu>

namespace {

constexpr const char* kTemplate = "object Name (Name) AS SHIP\n"
                                  "  x: 0; y: 0; z: 0;\n"
                                  "end;\n";

void Report(velkor::TfrmMain& main, const QString& line) {
    main.Output(line.toStdString());
    main.OutputView().BringToFront();
}

void CountLines() {
    velkor::TfrmMain* main = extGetMainForm();
    if (!main) return;
    velkor::TSyntaxEdit* edit = extGetActiveEdit();
    if (!edit) {
        Report(*main, QStringLiteral("Count Lines: no active editor"));
        return;
    }
    const int lines = edit->LineCount();
    Report(*main, QStringLiteral("Count Lines: %1 %2").arg(lines).arg(lines == 1 ? "line" : "lines"));
}

void InsertTemplate() {
    velkor::TfrmMain* main = extGetMainForm();
    if (!main) return;
    velkor::TSyntaxEdit* edit = extGetActiveEdit();
    if (!edit) {
        Report(*main, QStringLiteral("Insert Template: no active editor"));
        return;
    }
    // Line breaks as the page writes them, so a CR LF file stays CR LF.
    QString text = QString::fromLatin1(kTemplate);
    if (edit->eolMode() == QsciScintilla::EolWindows)
        text.replace(QStringLiteral("\n"), QStringLiteral("\r\n"));
    edit->insert(text);
    edit->setFocus();
}

void AddItem(QMenu& menu, const char* name, const QString& caption, void (*handler)()) {
    auto* action = new QAction(caption, &menu);
    action->setObjectName(QString::fromLatin1(name));
    QObject::connect(action, &QAction::triggered, action, handler);
    menu.addAction(action);
}

} // namespace

void init_ext(void* /*hostModule*/) {
    velkor::TfrmMain* main = extGetMainForm();
    if (!main) return;
    // The objects the IDE hands out are only usable when this library runs on the IDE's own Qt; a second
    // Qt in the process would have no application object of its own.
    if (extGetApplication() != qApp) {
        main->Output("Sample extension: built against another Qt than the IDE's, not installed");
        return;
    }
    QMenu* menu = main->findChild<QMenu*>(QStringLiteral("MenuExtensions"));
    if (!menu) return;
    // Loading the library again calls init_ext again: one set of items is enough.
    if (menu->findChild<QAction*>(QStringLiteral("SampleCountLines"))) return;
    menu->addSeparator();
    AddItem(*menu, "SampleCountLines", QStringLiteral("Count &Lines"), &CountLines);
    AddItem(*menu, "SampleInsertTemplate", QStringLiteral("Insert &Template"), &InsertTemplate);
    main->Output("Sample extension: Extensions > Count Lines and Insert Template are ready");
}
