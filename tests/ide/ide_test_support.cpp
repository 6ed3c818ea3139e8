#include "tests/ide/ide_test_support.h"

#include "platform/named_folders.h"
#include "scanner/scanner.h"

#include <QApplication>
#include <QDialog>
#include <QMouseEvent>

#include <cstdlib>

namespace velkor::test {

void EnsureApplication() {
    // main() below made it; the application must outlive every test and go before static destructors.
    ASSERT_NE(QApplication::instance(), nullptr);
}

void DoubleClick(QWidget& widget, const QPoint& at) {
    const QPointF global = widget.mapToGlobal(QPointF(at));
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease,
                                    QEvent::MouseButtonDblClick, QEvent::MouseButtonRelease}) {
        const bool down = type != QEvent::MouseButtonRelease;
        QMouseEvent click(type, QPointF(at), global, Qt::LeftButton, down ? Qt::LeftButton : Qt::NoButton,
                          Qt::NoModifier);
        QApplication::sendEvent(&widget, &click);
    }
}

std::vector<QStringList> ReadCases(const char* name) {
    const std::string text = ReadFile(std::filesystem::path(VELKOR_SOURCE_DIR) / "tests/cases/ide" / name);
    std::vector<QStringList> rows;
    for (const QString& line : QString::fromStdString(text).split(u'\n')) {
        if (!line.trimmed().isEmpty() && !line.startsWith(u'#')) rows.push_back(line.split(u'\t'));
    }
    return rows;
}

void IdeTest::SetUp() {
    dir_ = std::make_unique<TempDir>();
    setenv("VELKOR_INI", IniPath().c_str(), 1);
    setenv("VELKOR_REGISTRY", RegistryPath().c_str(), 1);
    setenv("WINEPREFIX", (dir_->path() / "wine").c_str(), 1);
    ResetNamedFoldersForTesting();
    EnsureApplication();
    TDialogHooks& hooks = DialogHooks();
    hooks.ShowMessage = [this](QWidget*, const QString& text) { messages_ << text; };
    hooks.AskYesNoCancel = [this](QWidget*, const QString& text) {
        questions_ << text;
        if (answers_.empty()) return TMsgAnswer::Cancel;
        const TMsgAnswer answer = answers_.front();
        answers_.pop_front();
        return answer;
    };
    hooks.AskReplace = [this](QWidget*, const QString& found) {
        replacePrompts_ << found;
        return TReplaceAnswer::Cancel;
    };
    hooks.OpenFile = [this](QWidget*, const TFileDialogRequest&) {
        return openAnswers_.isEmpty() ? QString() : openAnswers_.takeFirst();
    };
    hooks.OpenFiles = [this](QWidget*, const TFileDialogRequest&) {
        QStringList files = openAnswers_;
        openAnswers_.clear();
        return files;
    };
    hooks.SaveFile = [this](QWidget*, const TFileDialogRequest&) {
        return saveAnswers_.isEmpty() ? QString() : saveAnswers_.takeFirst();
    };
    hooks.PickFolder = [](QWidget*, const QString&) { return QString(); };
    hooks.AskInteger = [](QWidget*, const QString&, const QString&, int) -> std::optional<int> {
        return std::nullopt;
    };
    hooks.ExecModal = [this](QDialog& dialog) {
        ++modalDialogs_;
        modalDialogNames_ << dialog.objectName();
        return static_cast<int>(QDialog::Rejected);
    };
    hooks.OpenUrl = [this](const QString& url) { urls_ << url; };
}

void IdeTest::TearDown() {
    ProcessEvents();
    ResetDialogHooks();
    SetScannerClass(ScannerClass::Standard);
    unsetenv("VELKOR_INI");
    unsetenv("VELKOR_REGISTRY");
    dir_.reset();
}

void IdeTest::ProcessEvents() {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace velkor::test

// This main replaces GoogleTest's: the application lives on main's stack, so it is gone before the
// toolkit's own globals are torn down at exit.
int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
