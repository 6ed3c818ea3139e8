#include "editor_test_app.h"

#include <QClipboard>

namespace velkor::test {

namespace {

// Owns the application for the whole run and ends it before the process exits: Qt's own globals must
// still be alive when it goes.
class AppEnvironment : public ::testing::Environment {
public:
    QApplication& App() {
        if (!app_) {
            if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
            app_ = std::make_unique<QApplication>(argc_, argv_);
        }
        return *app_;
    }
    void TearDown() override { app_.reset(); }

private:
    int argc_ = 1;                      // QApplication keeps a reference to it
    char name_[16] = "editor_tests";    // the program name
    char* argv_[2] = {name_, nullptr};  // arguments QApplication reads
    std::unique_ptr<QApplication> app_; // the application, created on first use
};

// GoogleTest owns registered environments.
AppEnvironment* const gEnvironment =
    static_cast<AppEnvironment*>(::testing::AddGlobalTestEnvironment(new AppEnvironment));

} // namespace

QApplication& TestApp() {
    return gEnvironment->App();
}

void EditorTest::SetUp() {
    TestApp();
    edit = std::make_unique<TSyntaxEdit>();
    edit->resize(640, 400);
    edit->show();
    QApplication::processEvents();
}

void EditorTest::TearDown() {
    edit.reset();
}

void EditorTest::Load(const QString& text, int line, int index) {
    edit->setText(text);
    edit->SendScintilla(QsciScintillaBase::SCI_EMPTYUNDOBUFFER);
    edit->setModified(false);
    edit->setCursorPosition(line, index);
}

std::pair<int, int> EditorTest::Caret() const {
    int line = 0, index = 0;
    edit->getCursorPosition(&line, &index);
    return {line, index};
}

QString NumberedLines(int count) {
    QString out;
    out.reserve(count * 10);
    for (int i = 0; i < count; ++i) {
        if (i) out += QStringLiteral("\r\n");
        out += QStringLiteral("line %1").arg(i, 3, 10, QLatin1Char('0'));
    }
    return out;
}

} // namespace velkor::test
