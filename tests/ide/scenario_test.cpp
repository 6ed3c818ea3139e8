// Scenarios read from tests/cases/ide/scenarios/*.txt: each runs in a fresh main window, one command a
// line (see tests/README.md), and is reported by its file name.
#include "ide/completion_popup.h"
#include "ide/find_dialog.h"
#include "ide/help_view.h"
#include "ide/iff_view.h"
#include "ide/reg_mru.h"
#include "tests/ide/edit_page_test_support.h"

#include <QAction>
#include <QClipboard>
#include <QComboBox>
#include <QKeySequence>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <QTextBrowser>

#include <algorithm>
#include <deque>
#include <optional>

namespace velkor::test {
namespace {

const std::filesystem::path kScenarios =
    std::filesystem::path(VELKOR_SOURCE_DIR) / "tests/cases/ide/scenarios";

std::vector<std::string> ScenarioNames() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(kScenarios))
        if (entry.path().extension() == ".txt") names.push_back(entry.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

class Scenario : public PageTest, public ::testing::WithParamInterface<std::string> {
protected:
    void TearDown() override {
        window_.reset();
        PageTest::TearDown();
    }

    // C escapes (\r \n \t \\) undone and $DIR replaced by the test's folder.
    QString Unescape(const QString& in) const {
        QString out;
        for (qsizetype i = 0; i < in.size(); ++i) {
            if (in[i] != u'\\' || i + 1 == in.size()) {
                out += in[i];
                continue;
            }
            const QChar c = in[++i];
            if (c == u'x' && i + 2 < in.size()) {
                out += QChar(in.mid(i + 1, 2).toUShort(nullptr, 16));
                i += 2;
            } else {
                out += c == u'r' ? QChar(u'\r') : c == u'n' ? QChar(u'\n') : c == u't' ? QChar(u'\t') : c;
            }
        }
        return out.replace(QStringLiteral("$DIR"), QString::fromStdString(Dir().string()));
    }

    TfrmMain& Window() {
        if (!window_) window_.emplace(QStringList{});
        return *window_;
    }
    TfrmEdit& Page() {
        TfrmEdit* page = Window().ActivePage();
        if (!page) throw std::runtime_error("no page");
        return *page;
    }
    QAction& Item(const QString& name) {
        QAction* action = Window().MenuItem(name);
        if (!action) throw std::runtime_error("no item " + name.toStdString());
        return *action;
    }
    QAction& ContextItem(const QString& name) {
        QAction* action = Page().ContextItem(name);
        if (!action) throw std::runtime_error("no context item " + name.toStdString());
        return *action;
    }
    QStringList CompletionRows() {
        QStringList rows;
        for (int i = 0; i < Page().Completion().List()->count(); ++i)
            rows << Page().Completion().List()->item(i)->text();
        return rows;
    }
    QStringList OutputLines() { return Window().OutputView().Lines(); }

    void Run(const QString& command, const QString& rest);
    void Expect(const QString& what, const QString& rest);

    // The next find dialogs: "ok", "all" or "cancel" presses that button (none: closed), "find=T" and "new=T"
    // fill the boxes, "+Name" and "-Name" check and uncheck an option, "findonly" leaves replace mode.
    void AnswerFindDialog(const QStringList& steps) {
        DialogHooks().ExecModal = [this, steps](QDialog& shown) {
            ++modalDialogs_;
            auto& dialog = static_cast<TSyntaxFindDialog&>(shown);
            dialogFind_ = dialog.FindText();
            dialogTitle_ = dialog.windowTitle();
            dialogReplace_ = dialog.NewTextComboBox()->isEnabled();
            QPushButton* button = nullptr;
            for (const QString& step : steps) {
                if (step == u"ok")
                    button = dialog.OkButton();
                else if (step == u"all")
                    button = dialog.ReplaceAllButton();
                else if (step == u"cancel")
                    button = dialog.CancelButton();
                else if (step == u"findonly")
                    dialog.SetReplaceMode(false);
                else if (step.startsWith(u"find="))
                    dialog.SetFindText(Unescape(step.mid(5)));
                else if (step.startsWith(u"new="))
                    dialog.NewTextComboBox()->setEditText(Unescape(step.mid(4)));
                else if (auto* box = dialog.findChild<QAbstractButton*>(step.mid(1)))
                    box->setChecked(step[0] == u'+');
                else
                    ADD_FAILURE() << "no option " << step.toStdString();
            }
            if (!button) return static_cast<int>(QDialog::Rejected);
            dialog.setResult(QDialog::Rejected);
            button->click();
            return dialog.result();
        };
    }

    std::optional<TfrmMain> window_;   // made at the first command that needs it
    QString dialogFind_, dialogTitle_; // what the last find dialog showed
    bool dialogReplace_ = false;       // whether it was in replace mode
};

// "word rest of line" split at the first space.
std::pair<QString, QString> Split(const QString& line) {
    const qsizetype space = line.indexOf(u' ');
    return space < 0 ? std::pair{line, QString()} : std::pair{line.left(space), line.mid(space + 1)};
}

void Scenario::Run(const QString& command, const QString& rest) {
    const auto [first, tail] = Split(rest);
    if (command == u"ini") {
        const QStringList f = rest.split(u' ');
        TIniFile(IniPath()).WriteString(f.value(0).toStdString(), f.value(1).toStdString(),
                                        Unescape(f.value(2)).toStdString());
    } else if (command == u"file") {
        std::filesystem::create_directories((Dir() / first.toStdString()).parent_path());
        MakeFile(first.toStdString(), Unescape(tail).toStdString());
    } else if (command == u"open") {
        EXPECT_NE(
            Window().OpenFile(first.isEmpty() ? std::string() : Path(first.toStdString()), tail == u"recent"),
            nullptr);
        ProcessEvents();
    } else if (command == u"start") {
        window_.reset();
        QStringList files;
        for (const QString& name : rest.split(u' ', Qt::SkipEmptyParts))
            files << QString::fromStdString(Path(name.toStdString()));
        window_.emplace(files);
    } else if (command == u"open-none") {
        EXPECT_EQ(Window().OpenFile(rest.isEmpty() ? std::string() : Path(rest.toStdString()), true),
                  nullptr);
    } else if (command == u"reopen") {
        QAction* entry = Item(QStringLiteral("MenuFileReopen")).menu()->actions().value(rest.toInt());
        if (!entry) throw std::runtime_error("no recent entry " + rest.toStdString());
        entry->trigger();
        ProcessEvents();
    } else if (command == u"iffcaret") {
        Window().IffView().SetCaret(first.toInt(), tail.toInt());
    } else if (command == u"demo") {
        if (!OpenDemo(Window())) throw std::runtime_error("the demo did not compile");
    } else if (command == u"caretat") {
        const QString text = Unescape(tail);
        const QStringList lines = Page().Memo()->Lines();
        const auto line =
            std::find_if(lines.begin(), lines.end(), [&](const QString& l) { return l.contains(text); });
        if (line == lines.end()) throw std::runtime_error("not in the text: " + text.toStdString());
        Page().Memo()->setCursorPosition(static_cast<int>(line - lines.begin()),
                                         static_cast<int>(line->indexOf(text)) + first.toInt());
    } else if (command == u"context") {
        ContextItem(rest).trigger();
        ProcessEvents();
    } else if (command == u"key") {
        for (const QString& name : rest.split(u' ')) {
            const QKeyCombination key = QKeySequence(name, QKeySequence::PortableText)[0];
            QTest::keyClick(Page().Memo(), key.key(), key.keyboardModifiers());
        }
        ProcessEvents();
    } else if (command == u"type") {
        QTest::keyClicks(Page().Memo(), Unescape(rest));
    } else if (command == u"hinttick") {
        Page().HintTimerTick();
    } else if (command == u"showhint") {
        Page().ShowParameterHint();
    } else if (command == u"closehint") {
        Page().CloseParameterHint();
    } else if (command == u"complete") {
        Page().CompleteWordAtCursor();
    } else if (command == u"finddecl") {
        Page().FindDeclaration();
    } else if (command == u"openatcursor") {
        Page().OpenFileAtCursor();
    } else if (command == u"refreshcontext") {
        Page().RefreshContextMenu();
    } else if (command == u"activate") {
        TfrmEdit* page = Window().Pages().value(rest.toInt());
        if (!page) throw std::runtime_error("no page " + rest.toStdString());
        Window().ActivatePage(*page);
    } else if (command == u"top") {
        Page().Memo()->setFirstVisibleLine(rest.toInt());
    } else if (command == u"show") {
        ShowActive(Window());
    } else if (command == u"helptopic") {
        Window().HelpView().ShowTopic(rest.toStdString());
    } else if (command == u"hidehelp") {
        Window().HelpView().hide();
    } else if (command == u"focus") {
        Page().Memo()->setFocus();
    } else if (command == u"close") {
        EXPECT_EQ(Window().close(), rest == u"ok");
    } else if (command == u"clipboard") {
        QApplication::clipboard()->setText(Unescape(rest));
    } else if (command == u"selection") {
        const QStringList f = rest.split(u' ');
        Page().Memo()->setSelection(f.value(0).toInt(), f.value(1).toInt(), f.value(2).toInt(),
                                    f.value(3).toInt());
    } else if (command == u"find") {
        Page().Find();
    } else if (command == u"replace") {
        Page().Replace();
    } else if (command == u"searchagain") {
        Page().SearchAgain();
    } else if (command == u"findanswer") {
        AnswerFindDialog(rest.split(u' ', Qt::SkipEmptyParts));
    } else if (command == u"replaceanswer") {
        std::deque<TReplaceAnswer> given;
        for (const QString& a : rest.split(u' '))
            given.push_back(a == u"yes"   ? TReplaceAnswer::Yes
                            : a == u"no"  ? TReplaceAnswer::No
                            : a == u"all" ? TReplaceAnswer::All
                                          : TReplaceAnswer::Cancel);
        DialogHooks().AskReplace = [this, given](QWidget*, const QString& found) mutable {
            replacePrompts_ << found;
            if (given.empty()) return TReplaceAnswer::Cancel;
            const TReplaceAnswer answer = given.front();
            given.pop_front();
            return answer;
        };
    } else if (command == u"new") {
        Window().NewPage();
    } else if (command == u"text") {
        Page().Memo()->SetText(Unescape(rest));
    } else if (command == u"insert") {
        Page().Memo()->insert(Unescape(rest));
    } else if (command == u"saveaspage") {
        EXPECT_EQ(Page().SaveAs(), rest == u"ok");
    } else if (command == u"append") {
        Page().Memo()->append(Unescape(rest));
    } else if (command == u"caret") {
        Page().Memo()->SetCaret(first.toInt(), tail.toInt());
    } else if (command == u"selectall") {
        Page().Memo()->selectAll();
    } else if (command == u"unmodify") {
        Page().SetModified(false);
    } else if (command == u"iff") {
        Window().IffView().SetText(Unescape(rest));
    } else if (command == u"menu") {
        Item(rest).trigger();
        ProcessEvents();
    } else if (command == u"update") {
        Window();
        if (rest == u"file")
            window_->UpdateFileMenu();
        else if (rest == u"edit")
            window_->UpdateEditMenu();
        else if (rest == u"help")
            window_->UpdateHelpMenu();
        else
            ADD_FAILURE() << "no menu " << rest.toStdString();
    } else if (command == u"tick") {
        Window().TimerTick();
    } else if (command == u"compile") {
        EXPECT_EQ(Page().Compile(), rest == u"ok") << Output(Window());
    } else if (command == u"save") {
        EXPECT_EQ(Page().Save(), rest == u"ok");
    } else if (command == u"savequery") {
        EXPECT_EQ(Page().SaveQuery(), rest == u"ok");
    } else if (command == u"answer") {
        for (const QString& a : rest.split(u' '))
            answers_.push_back(a == u"yes"  ? TMsgAnswer::Yes
                               : a == u"no" ? TMsgAnswer::No
                                            : TMsgAnswer::Cancel);
    } else if (command == u"saveas") {
        saveAnswers_ << Unescape(rest);
    } else if (command == u"openas") {
        openAnswers_ << Unescape(rest);
    } else if (command == u"expect") {
        Expect(first, tail);
    } else {
        ADD_FAILURE() << "unknown command " << command.toStdString();
    }
}

void Scenario::Expect(const QString& what, const QString& rest) {
    const QString want = Unescape(rest);
    const auto [first, tail] = Split(rest);
    if (what == u"text")
        EXPECT_EQ(Page().Text(), want);
    else if (what == u"caption")
        EXPECT_EQ(Page().Caption(), want);
    else if (what == u"text-starts")
        EXPECT_TRUE(Page().Text().startsWith(want)) << Page().Text().toStdString();
    else if (what == u"ini") {
        const QStringList f = rest.split(u' ');
        EXPECT_EQ(TIniFile(IniPath()).ReadString(f.value(0).toStdString(), f.value(1).toStdString(), "?"),
                  Unescape(f.value(2)).toStdString());
    } else if (what == u"maxdecode")
        EXPECT_EQ(Window().MaxDecodeSize(), rest.toInt());
    else if (what == u"top")
        EXPECT_EQ(Page().Memo()->firstVisibleLine(), rest.toInt());
    else if (what == u"tabs") {
        QStringList tabs;
        for (int i = 0; i < Window().PageControlEditor()->count(); ++i)
            tabs << window_->PageControlEditor()->tabText(i);
        EXPECT_EQ(tabs.join(u'|'), want);
    } else if (what == u"status")
        EXPECT_EQ(Window().StatusPanelText(first.toInt()), Unescape(tail));
    else if (what == u"iff-title")
        EXPECT_EQ(Window().IffView().windowTitle(), want);
    else if (what == u"hint")
        EXPECT_EQ(Page().ParameterHint() ? Page().ParameterHint()->text() : QString(), want);
    else if (what == u"line")
        EXPECT_EQ(Page().Memo()->LineText(first.toInt()), Unescape(tail));
    else if (what == u"word")
        EXPECT_EQ(Page().WordAtCursor(), want);
    else if (what == u"context-item")
        EXPECT_EQ(ContextItem(first).text(), Unescape(tail));
    else if (what == u"context-enabled" || what == u"context-disabled")
        EXPECT_EQ(ContextItem(rest).isEnabled(), what == u"context-enabled") << rest.toStdString();
    else if (what == u"caretline")
        EXPECT_EQ(Page().Memo()->CaretLine(), rest.toInt());
    else if (what == u"help-page")
        EXPECT_EQ(QString::fromStdString(Window().HelpView().CurrentPage()), want);
    else if (what == u"help-root")
        EXPECT_EQ(QString::fromStdString(Window().HelpView().HelpRoot()), want);
    else if (what == u"help-shown")
        EXPECT_EQ(!Window().HelpView().isHidden(), rest == u"yes");
    else if (what == u"help-text-has")
        EXPECT_TRUE(Window().HelpView().Browser()->toPlainText().contains(want)) << rest.toStdString();
    else if (what == u"urls")
        EXPECT_EQ(urls_.join(u'|'), want);
    else if (what == u"completion-open")
        EXPECT_EQ(Page().Completion().IsOpen(), rest == u"yes");
    else if (what == u"completion-rows")
        EXPECT_EQ(CompletionRows().join(u'|'), want);
    else if (what == u"completion-has")
        EXPECT_TRUE(CompletionRows().contains(want)) << rest.toStdString();
    else if (what == u"completion-count")
        EXPECT_EQ(CompletionRows().size(), rest.toInt());
    else if (what == u"completion-row")
        EXPECT_EQ(Page().Completion().List()->currentRow(), rest.toInt());
    else if (what == u"intelligence")
        EXPECT_EQ(Page().CodeIntelligence(), rest == u"yes");
    else if (what == u"paramhints")
        EXPECT_EQ(Page().ParameterHintsEnabled(), rest == u"yes");
    else if (what == u"searchpath")
        EXPECT_EQ(QString::fromStdString(Page().SearchPathText()), want);
    else if (what == u"visible")
        EXPECT_EQ(Window().isVisible(), rest == u"yes");
    else if (what == u"ini-exists") {
        const QStringList f = rest.split(u' ');
        EXPECT_EQ(TIniFile(IniPath()).ValueExists(f.value(0).toStdString(), f.value(1).toStdString()),
                  f.value(2) == u"yes");
    } else if (what == u"modified-text")
        EXPECT_EQ(Window().ModifiedText(), want);
    else if (what == u"insert-mode")
        EXPECT_EQ(Window().InsertModeText(), want);
    else if (what == u"symbol")
        EXPECT_TRUE(Page().Symbols() && Page().Symbols()->Find(rest.toStdString()) >= 0)
            << rest.toStdString();
    else if (what == u"enabled-like")
        EXPECT_EQ(Item(first).isEnabled(), ContextItem(tail).isEnabled());
    else if (what == u"selected")
        EXPECT_EQ(Page().Memo()->selectedText(), want);
    else if (what == u"search-options")
        EXPECT_EQ(Page().LastSearchOptions(), rest.toUInt(nullptr, 16));
    else if (what == u"dialog-find")
        EXPECT_EQ(dialogFind_, want);
    else if (what == u"dialog-title")
        EXPECT_EQ(dialogTitle_, want);
    else if (what == u"dialog-replace")
        EXPECT_EQ(dialogReplace_, rest == u"yes");
    else if (what == u"replace-prompts")
        EXPECT_EQ(replacePrompts_.join(u'|'), want);
    else if (what == u"title")
        EXPECT_EQ(Window().windowTitle(), want);
    else if (what == u"pages")
        EXPECT_EQ(Window().Pages().size(), rest.toInt());
    else if (what == u"caret")
        EXPECT_EQ(std::make_pair(Page().Memo()->CaretLine(), Page().Memo()->CaretColumn()),
                  std::make_pair(first.toInt(), tail.toInt()));
    else if (what == u"errorline")
        EXPECT_EQ(Page().Memo()->ErrorLine(), rest.toInt());
    else if (what == u"modified")
        EXPECT_EQ(Page().Modified(), rest == u"yes");
    else if (what == u"enabled" || what == u"disabled")
        for (const QString& name : rest.split(u' '))
            EXPECT_EQ(Item(name).isEnabled(), what == u"enabled") << name.toStdString();
    else if (what == u"item")
        EXPECT_EQ(Item(first).text(), Unescape(tail));
    else if (what == u"iff")
        EXPECT_EQ(Window().IffView().Text(), want);
    else if (what == u"iff-starts")
        EXPECT_TRUE(Window().IffView().Text().startsWith(want)) << Window().IffView().Text().toStdString();
    else if (what == u"iff-is-text")
        EXPECT_EQ(Window().IffView().Text(), Page().Text());
    else if (what == u"output-first-starts")
        EXPECT_TRUE(OutputLines().value(0).startsWith(want)) << Output(Window());
    else if (what == u"output-last")
        EXPECT_EQ(OutputLines().value(OutputLines().size() - 1), want);
    else if (what == u"output-has")
        EXPECT_TRUE(OutputLines().contains(want)) << Output(Window());
    else if (what == u"output-lacks")
        EXPECT_FALSE(OutputLines().join(u'\n').contains(want)) << Output(Window());
    else if (what == u"messages")
        EXPECT_EQ(messages_.join(u'|'), want);
    else if (what == u"questions")
        EXPECT_EQ(questions_.join(u'|'), want);
    else if (what == u"dialogs")
        EXPECT_EQ(modalDialogs_, rest.toInt());
    else if (what == u"help-ends")
        EXPECT_TRUE(QString::fromStdString(Window().HelpView().CurrentPage()).endsWith(want));
    else if (what == u"recent") {
        QStringList paths;
        for (const auto& item : Window().RegMru1().Items()) paths << QString::fromStdString(item.Path);
        EXPECT_EQ(paths.join(u'|'), want);
    } else if (what == u"file")
        EXPECT_EQ(QString::fromLatin1(ReadFile(Dir() / first.toStdString())), Unescape(tail));
    else if (what == u"nofile")
        EXPECT_FALSE(std::filesystem::exists(Dir() / rest.toStdString()));
    else
        ADD_FAILURE() << "unknown expectation " << what.toStdString();
}

TEST_P(Scenario, Runs) {
    const std::string text = ReadFile(kScenarios / (GetParam() + ".txt"));
    int number = 0;
    for (const QString& line : QString::fromStdString(text).split(u'\n')) {
        ++number;
        if (line.trimmed().isEmpty() || line.startsWith(u'#')) continue;
        SCOPED_TRACE(GetParam() + ".txt:" + std::to_string(number) + ": " + line.toStdString());
        const auto [command, rest] = Split(line);
        try {
            Run(command, rest);
        } catch (const std::exception& e) {
            FAIL() << e.what();
        }
        if (HasFatalFailure()) return;
    }
}

// File names are test names: letters, digits and underscores.
INSTANTIATE_TEST_SUITE_P(Ide, Scenario, ::testing::ValuesIn(ScenarioNames()),
                         [](const ::testing::TestParamInfo<std::string>& file) { return file.param; });

} // namespace
} // namespace velkor::test
