#include "editor_test_app.h"

#include <QFile>

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

std::vector<QStringList> Rows(const char* name) {
    QFile file(QStringLiteral(VELKOR_SOURCE_DIR "/tests/cases/editor/") + QLatin1String(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    std::vector<QStringList> rows;
    for (const QString& line : QString::fromUtf8(file.readAll()).split(u'\n'))
        if (!line.trimmed().isEmpty() && !line.startsWith(u'#')) rows.push_back(line.split(u'\t'));
    return rows;
}

std::string Unescape(QString field) {
    return field.replace(QStringLiteral("\\n"), QStringLiteral("\n"))
        .replace(QStringLiteral("\\r"), QStringLiteral("\r"))
        .toStdString();
}

Marked Parse(QString s) {
    s.replace(QStringLiteral("\\n"), QStringLiteral("\n"));
    Marked m;
    int line = 0, index = 0;
    for (QChar c : s) {
        if (c == u'|')
            m.caret = {line, index};
        else if (c == u'^')
            m.anchor = {line, index};
        else {
            m.text += c == u'\n' ? QStringLiteral("\r\n") : QString(c);
            c == u'\n' ? (++line, index = 0) : ++index;
        }
    }
    return m;
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

void EditorTest::Load(const Marked& m) {
    Load(m.text, std::max(m.caret.first, 0), std::max(m.caret.second, 0));
    if (m.anchor.first >= 0)
        edit->setSelection(m.anchor.first, m.anchor.second, m.caret.first, m.caret.second);
}

void EditorTest::ExpectText(const Marked& m) {
    EXPECT_EQ(edit->text().toStdString(), m.text.toStdString());
    if (m.caret.first < 0) return;
    EXPECT_EQ(Caret(), m.caret);
    int l1 = -1, i1 = -1, l2 = -1, i2 = -1;
    edit->getSelection(&l1, &i1, &l2, &i2);
    const auto anchor = m.anchor.first < 0             ? std::pair{-1, -1}
                        : std::pair{l1, i1} == m.caret ? std::pair{l2, i2}
                                                       : std::pair{l1, i1};
    EXPECT_EQ(anchor, m.anchor);
}

std::pair<int, int> EditorTest::Caret() const {
    int line = 0, index = 0;
    edit->getCursorPosition(&line, &index);
    return {line, index};
}

QString NumberedLines(int count) {
    QString out;
    for (int i = 0; i < count; ++i)
        out += QStringLiteral("%1line %2").arg(i ? "\r\n" : "").arg(i, 3, 10, QChar(u'0'));
    return out;
}

} // namespace velkor::test
