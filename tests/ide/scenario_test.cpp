// Scenarios read from tests/cases/ide/scenarios/*.txt: each runs in a fresh main window, one command a
// line (see tests/README.md), and is reported by its file name.
#include "compiler/symbol_queries.h"
#include "ide/completion_popup.h"
#include "ide/file_tree_view.h"
#include "ide/find_dialog.h"
#include "ide/help_view.h"
#include "ide/ide_ini.h"
#include "ide/iff_decode.h"
#include "ide/iff_view.h"
#include "ide/output_model.h"
#include "ide/problem_markers.h"
#include "ide/problems_view.h"
#include "ide/proc_list.h"
#include "ide/reg_mru.h"
#include "ide/settings_dialog.h"
#include "scanner/scanner.h"
#include "tests/ide/edit_page_test_support.h"

#include <QAction>
#include <QBrush>
#include <QClipboard>
#include <QComboBox>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QTextBrowser>
#include <QTreeView>
#include <QUrl>

#include <algorithm>
#include <deque>
#include <functional>
#include <map>
#include <optional>

namespace velkor::test {
namespace {

const std::filesystem::path kSource = VELKOR_SOURCE_DIR;
const std::filesystem::path kScenarios = kSource / "tests/cases/ide/scenarios";

std::vector<std::string> ScenarioNames() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(kScenarios))
        if (entry.path().extension() == ".txt") names.push_back(entry.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

// "word rest of line" split at the first space.
std::pair<QString, QString> Split(const QString& line) {
    const qsizetype space = line.indexOf(u' ');
    return space < 0 ? std::pair{line, QString()} : std::pair{line.left(space), line.mid(space + 1)};
}

QString YesNo(bool yes) {
    return yes ? QStringLiteral("yes") : QStringLiteral("no");
}

class Scenario : public PageTest, public ::testing::WithParamInterface<std::string> {
protected:
    void SetUp() override;
    void TearDown() override {
        dialog_.reset();
        window_.reset();
        for (const auto& decoder : SpecialDecoders()) EnableSpecialDecoder(decoder.Name, true);
        PageTest::TearDown();
    }

    // C escapes (\r \n \t \\ \xHH) undone and $DIR replaced by the test's folder.
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
    QDialog& Dialog() {
        if (!dialog_) throw std::runtime_error("no dialog open");
        return *dialog_;
    }
    TfrmProcList& ProcList() {
        auto* list = qobject_cast<TfrmProcList*>(&Dialog());
        if (!list) throw std::runtime_error("no symbol list open");
        return *list;
    }
    // A widget of the open dialog (else of the window) by object name or class name; "." is the dialog.
    template <class T = QWidget>
    T& Widget(const QString& name, QWidget* root = nullptr) {
        if (!root) root = dialog_ ? static_cast<QWidget*>(dialog_.get()) : &Window();
        if (T* self = qobject_cast<T*>(root); self && name == u".") return *self;
        for (T* widget : root->findChildren<T*>())
            if (widget->objectName() == name || QLatin1String(widget->metaObject()->className()) == name)
                return *widget;
        throw std::runtime_error("no widget " + name.toStdString());
    }
    // The rows of an item view (cells joined by ":") or the tabs of a tab widget, joined by "|".
    QString Rows(const QString& name, QWidget* root = nullptr) {
        QStringList rows;
        if (auto* tabs = qobject_cast<QTabWidget*>(&Widget(name, root))) {
            for (int i = 0; i < tabs->count(); ++i) rows << tabs->tabText(i);
            return rows.join(u'|');
        }
        const QAbstractItemModel& model = *Widget<QAbstractItemView>(name, root).model();
        for (int row = 0; row < model.rowCount(); ++row) {
            QStringList cells;
            for (int column = 0; column < model.columnCount(); ++column)
                cells << model.index(row, column).data().toString();
            rows << cells.join(u':');
        }
        return rows.join(u'|');
    }
    TDockableView& View(const QString& name) {
        TfrmMain& w = Window();
        const std::map<QString, TDockableView*> views = {{"output", &w.OutputView()},
                                                         {"help", &w.HelpView()},
                                                         {"iff", &w.IffView()},
                                                         {"files", &w.FileTreeView()},
                                                         {"problems", &w.ProblemsView()}};
        return *views.at(name);
    }
    QAction& Action(const QString& name) {
        auto* action = Window().findChild<QAction*>(name);
        if (!action) throw std::runtime_error("no action " + name.toStdString());
        return *action;
    }
    QStringList CompletionRows() {
        QStringList rows;
        for (int i = 0; i < Page().Completion().List()->count(); ++i)
            rows << Page().Completion().List()->item(i)->text();
        return rows;
    }
    QStringList OutputLines() { return Window().OutputView().Lines(); }
    QString Recent() {
        QStringList paths;
        for (const auto& item : Window().RegMru1().Items()) paths << QString::fromStdString(item.Path);
        return paths.join(u'|');
    }
    void Drop(QWidget* target, const QString& file) {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(QString::fromStdString(Path(file.toStdString())))});
        const QPoint at = target->rect().center();
        QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &enter);
        EXPECT_TRUE(enter.isAccepted());
        QDropEvent drop(QPointF(at), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &drop);
        EXPECT_TRUE(drop.isAccepted());
    }
    void Keys(QWidget* target, const QString& names) {
        for (const QString& name : names.split(u' ')) {
            const QKeyCombination key = QKeySequence(name, QKeySequence::PortableText)[0];
            QTest::keyClick(target, key.key(), key.keyboardModifiers());
        }
        ProcessEvents();
    }

    void Run(const QString& line);
    void Expect(const QString& line);

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
    std::unique_ptr<QDialog> dialog_;  // the dialog the widget commands work on
    QString dialogFind_, dialogTitle_; // what the last find dialog showed
    bool dialogReplace_ = false;       // whether it was in replace mode
    QStringList seen_;                 // rows of the view named by "recordmodal" in each modal dialog

    std::map<QString, std::function<void(const QString&)>> commands_; // COMMAND REST
    std::map<QString, std::function<QString()>> values_;              // expect WHAT VALUE
    std::map<QString, std::function<QString(const QString&)>> keyed_; // expect WHAT KEY VALUE
    std::map<QString, std::function<bool(const QString&)>> holds_;    // expect WHAT TEXT
};

void Scenario::SetUp() {
    PageTest::SetUp();
    const auto page = [this](void (TfrmEdit::*act)()) {
        return [this, act](const QString&) { (Page().*act)(); };
    };
    const auto ok = [this](bool done, const QString& rest) {
        if (!rest.isEmpty()) EXPECT_EQ(done, rest == u"ok") << Output(Window());
    };
    // The commands of one line; the longer ones are in Run.
    commands_ = {
        {"remove", [this](const QString& rest) { std::filesystem::remove(Dir() / rest.toStdString()); }},
        {"demo", [this](const QString&) { ASSERT_TRUE(OpenDemo(Window())); }},
        {"key", [this](const QString& rest) { Keys(Page().Memo(), rest); }},
        {"type", [this](const QString& rest) { QTest::keyClicks(Page().Memo(), Unescape(rest)); }},
        {"hinttick", page(&TfrmEdit::HintTimerTick)},
        {"showhint", page(&TfrmEdit::ShowParameterHint)},
        {"closehint", page(&TfrmEdit::CloseParameterHint)},
        {"complete", page(&TfrmEdit::CompleteWordAtCursor)},
        {"finddecl", page(&TfrmEdit::FindDeclaration)},
        {"openatcursor", page(&TfrmEdit::OpenFileAtCursor)},
        {"refreshcontext", page(&TfrmEdit::RefreshContextMenu)},
        {"find", page(&TfrmEdit::Find)},
        {"replace", page(&TfrmEdit::Replace)},
        {"searchagain", page(&TfrmEdit::SearchAgain)},
        {"top", [this](const QString& rest) { Page().Memo()->setFirstVisibleLine(rest.toInt()); }},
        {"show", [this](const QString&) { ShowActive(Window()); }},
        {"helptopic", [this](const QString& rest) { Window().HelpView().ShowTopic(rest.toStdString()); }},
        {"hidehelp", [this](const QString&) { Window().HelpView().hide(); }},
        {"focus", [this](const QString&) { Page().Memo()->setFocus(); }},
        {"close", [this](const QString& rest) { EXPECT_EQ(Window().close(), rest == u"ok"); }},
        {"clipboard", [this](const QString& rest) { QApplication::clipboard()->setText(Unescape(rest)); }},
        {"findanswer",
         [this](const QString& rest) { AnswerFindDialog(rest.split(u' ', Qt::SkipEmptyParts)); }},
        {"new", [this](const QString&) { Window().NewPage(); }},
        {"text", [this](const QString& rest) { Page().Memo()->SetText(Unescape(rest)); }},
        {"insert", [this](const QString& rest) { Page().Memo()->insert(Unescape(rest)); }},
        {"append", [this](const QString& rest) { Page().Memo()->append(Unescape(rest)); }},
        {"selectall", [this](const QString&) { Page().Memo()->selectAll(); }},
        {"unmodify", [this](const QString&) { Page().SetModified(false); }},
        {"modify", [this](const QString&) { Page().SetModified(true); }},
        {"iff", [this](const QString& rest) { Window().IffView().SetText(Unescape(rest)); }},
        {"action", [this](const QString& rest) { Action(rest).trigger(); }},
        {"output",
         [this](const QString& rest) {
             Window().Output(rest.toStdString());
             Window().OutputView().Flush();
         }},
        {"tick", [this](const QString&) { Window().TimerTick(); }},
        {"compile", [=, this](const QString& rest) { ok(Page().Compile(), rest); }},
        {"save", [=, this](const QString& rest) { ok(Page().Save(), rest); }},
        {"saveaspage", [=, this](const QString& rest) { ok(Page().SaveAs(), rest); }},
        {"savequery", [=, this](const QString& rest) { ok(Page().SaveQuery(), rest); }},
        {"saveas", [this](const QString& rest) { saveAnswers_ << Unescape(rest); }},
        {"openas", [this](const QString& rest) { openAnswers_ << Unescape(rest); }},
        {"enddialog", [this](const QString&) { dialog_.reset(); }},
        {"showdialog", [this](const QString&) { Dialog().show(); }},
        {"kinds", [this](const QString& rest) { ProcList().SetKindMask(rest.toInt()); }},
        {"click", [this](const QString& rest) { Widget<QAbstractButton>(rest).click(); }},
        {"loaddecoders", [](const QString&) { LoadSpecialDecoderFlags(); }},
        {"copy",
         [this](const QString& rest) {
             MakeFile(Split(rest).second.toStdString(), ReadFile(kSource / Split(rest).first.toStdString()));
         }},
        {"showview", [this](const QString& rest) { View(rest).show(); }},
        {"hideview", [this](const QString& rest) { View(rest).hide(); }},
        {"clearrecent", [this](const QString&) { Window().RegMru1().Clear(); }},
    };

    // What `expect WHAT VALUE` compares with VALUE; the longer ones are in Expect.
    values_ = {
        {"text", [this] { return Page().Text(); }},
        {"caption", [this] { return Page().Caption(); }},
        {"maxdecode", [this] { return QString::number(Window().MaxDecodeSize()); }},
        {"top", [this] { return QString::number(Page().Memo()->firstVisibleLine()); }},
        {"iff-title", [this] { return Window().IffView().windowTitle(); }},
        {"hint", [this] { return Page().ParameterHint() ? Page().ParameterHint()->text() : QString(); }},
        {"word", [this] { return Page().WordAtCursor(); }},
        {"caretline", [this] { return QString::number(Page().Memo()->CaretLine()); }},
        {"help-page", [this] { return QString::fromStdString(Window().HelpView().CurrentPage()); }},
        {"help-root", [this] { return QString::fromStdString(Window().HelpView().HelpRoot()); }},
        {"help-shown", [this] { return YesNo(!Window().HelpView().isHidden()); }},
        {"clipboard", [] { return QApplication::clipboard()->text(); }},
        {"urls", [this] { return urls_.join(u'|'); }},
        {"completion-open", [this] { return YesNo(Page().Completion().IsOpen()); }},
        {"completion-rows", [this] { return CompletionRows().join(u'|'); }},
        {"completion-count", [this] { return QString::number(CompletionRows().size()); }},
        {"completion-row", [this] { return QString::number(Page().Completion().List()->currentRow()); }},
        {"intelligence", [this] { return YesNo(Page().CodeIntelligence()); }},
        {"paramhints", [this] { return YesNo(Page().ParameterHintsEnabled()); }},
        {"searchpath", [this] { return QString::fromStdString(Page().SearchPathText()); }},
        {"visible", [this] { return YesNo(Window().isVisible()); }},
        {"modified-text", [this] { return Window().ModifiedText(); }},
        {"insert-mode", [this] { return Window().InsertModeText(); }},
        {"selected", [this] { return Page().Memo()->selectedText(); }},
        {"search-options", [this] { return QString::number(Page().LastSearchOptions(), 16); }},
        {"dialog-find", [this] { return dialogFind_; }},
        {"dialog-title", [this] { return dialogTitle_; }},
        {"dialog-replace", [this] { return YesNo(dialogReplace_); }},
        {"replace-prompts", [this] { return replacePrompts_.join(u'|'); }},
        {"title", [this] { return Window().windowTitle(); }},
        {"pages", [this] { return QString::number(Window().Pages().size()); }},
        {"errorline", [this] { return QString::number(Page().Memo()->ErrorLine()); }},
        {"modified", [this] { return YesNo(Page().Modified()); }},
        {"iff", [this] { return Window().IffView().Text(); }},
        {"output-last", [this] { return OutputLines().value(OutputLines().size() - 1); }},
        {"messages", [this] { return messages_.join(u'|'); }},
        {"questions", [this] { return questions_.join(u'|'); }},
        {"dialogs", [this] { return QString::number(modalDialogs_); }},
        {"recent", [this] { return Recent(); }},
        {"sopath", [this] { return ToQ(Window().SoPath()); }},
        {"dialog-names", [this] { return modalDialogNames_.join(u'|'); }},
        {"problems", [this] { return QString::number(Window().ProblemsView().Entries().size()); }},
        {"marks",
         [this] {
             QStringList lines;
             for (const int line : TProblemMarkers::Of(*Page().Memo()).MarkedLines())
                 lines << QString::number(line);
             return lines.join(u' ');
         }},
        {"underlined",
         [this] {
             const auto indicator = static_cast<unsigned long>(TProblemMarkers::kErrorIndicator);
             return YesNo(Page().Memo()->SendScintilla(QsciScintillaBase::SCI_INDICATOREND, indicator, 0L) !=
                          0);
         }},
        {"result", [this] { return QString::number(Dialog().result()); }},
    };

    // What `expect WHAT KEY VALUE` compares with VALUE.
    keyed_ = {
        {"status", [this](const QString& key) { return Window().StatusPanelText(key.toInt()); }},
        {"line", [this](const QString& key) { return Page().Memo()->LineText(key.toInt()); }},
        {"context-item", [this](const QString& key) { return ContextItem(key).text(); }},
        {"item", [this](const QString& key) { return Item(key).text(); }},
        {"item-visible", [this](const QString& key) { return YesNo(Item(key).isVisible()); }},
        {"file",
         [this](const QString& key) { return QString::fromLatin1(ReadFile(Dir() / key.toStdString())); }},
        {"rows", [this](const QString& key) { return Rows(key); }},
        {"view-shown", [this](const QString& key) { return YesNo(View(key).isVisible()); }},
        {"site", [this](const QString& key) { return ToQ(Window().SiteOf(View(key))); }},
        {"docked",
         [this](const QString& key) { return YesNo(Window().DockAreaSize(key.toStdString()) >= 20); }},
        {"action-text", [this](const QString& key) { return Action(key).text(); }},
        {"colour",
         [this](const QString& key) {
             const QVariant brush = Window().OutputView().Model().index(key.toInt()).data(Qt::ForegroundRole);
             return brush.isValid() ? brush.value<QBrush>().color().name() : QStringLiteral("none");
         }},
        {"reopen-item",
         [this](const QString& key) {
             return Item("MenuFileReopen").menu()->actions().value(key.toInt())->text();
         }},
        {"seen", [this](const QString& key) { return seen_.value(key.toInt()); }},
        {"buddy", [this](const QString& key) { return Widget<QLabel>(key).buddy()->objectName(); }},
    };

    // What `expect WHAT TEXT` holds of TEXT.
    holds_ = {
        {"text-starts", [this](const QString& want) { return Page().Text().startsWith(want); }},
        {"help-text-has",
         [this](const QString& want) { return Window().HelpView().Browser()->toPlainText().contains(want); }},
        {"symbol",
         [this](const QString& want) {
             return Page().Symbols() && Page().Symbols()->Find(want.toStdString()) >= 0;
         }},
        {"text-lacks", [this](const QString& want) { return !Page().Text().contains(want); }},
        {"text-has", [this](const QString& want) { return Page().Text().contains(want); }},
        {"iff-starts", [this](const QString& want) { return Window().IffView().Text().startsWith(want); }},
        {"help-ends",
         [this](const QString& want) { return ToQ(Window().HelpView().CurrentPage()).endsWith(want); }},
        {"completion-has", [this](const QString& want) { return CompletionRows().contains(want); }},
        {"output-first-starts",
         [this](const QString& want) { return OutputLines().value(0).startsWith(want); }},
        {"output-has", [this](const QString& want) { return OutputLines().contains(want); }},
        {"output-lacks", [this](const QString& want) { return !OutputLines().join(u'\n').contains(want); }},
        {"iff-is-text", [this](const QString&) { return Window().IffView().Text() == Page().Text(); }},
        {"nofile",
         [this](const QString& want) { return !std::filesystem::exists(Dir() / want.toStdString()); }},
    };
}

void Scenario::Run(const QString& line) {
    // Plain names, not structured bindings: lambdas below capture them.
    const QString command = Split(line).first, rest = Split(line).second;
    const QString first = Split(rest).first, tail = Split(rest).second;
    if (command == u"expect") return Expect(rest);
    if (const auto simple = commands_.find(command); simple != commands_.end()) return simple->second(rest);
    if (command == u"ini") {
        const QStringList f = Unescape(rest).split(u' ');
        TIniFile(IniPath()).WriteString(f.value(0).toStdString(), f.value(1).toStdString(),
                                        f.value(2).toStdString());
    } else if (command == u"file") {
        std::filesystem::create_directories((Dir() / first.toStdString()).parent_path());
        MakeFile(first.toStdString(), Unescape(tail).toLatin1().toStdString());
    } else if (command == u"open" || command == u"open-none") {
        const std::string file = first.isEmpty() ? std::string() : Path(first.toStdString());
        EXPECT_EQ(Window().OpenFile(file, tail == u"recent" || command == u"open-none") != nullptr,
                  command == u"open");
        ProcessEvents();
    } else if (command == u"start") {
        dialog_.reset();
        window_.reset();
        QStringList files;
        for (const QString& name : rest.split(u' ', Qt::SkipEmptyParts))
            files << ToQ(Path(name.toStdString()));
        window_.emplace(files);
    } else if (command == u"decode") {
        Window().DecodeFile(Path(rest.toStdString()));
        // A decode thread hands its text over through the event loop.
        QTest::qWaitFor([&] { return Page().Caption() == rest.section(u'/', -1) + ".pas"; }, 5000);
    } else if (command == u"reopen") {
        QAction* entry = Item(QStringLiteral("MenuFileReopen")).menu()->actions().value(rest.toInt());
        if (!entry) throw std::runtime_error("no recent entry " + rest.toStdString());
        entry->trigger();
        ProcessEvents();
    } else if (command == u"iffcaret") {
        Window().IffView().SetCaret(first.toInt(), tail.toInt());
    } else if (command == u"caretat") {
        const QString text = Unescape(tail);
        const QStringList lines = Page().Memo()->Lines();
        const auto at =
            std::find_if(lines.begin(), lines.end(), [&](const QString& l) { return l.contains(text); });
        if (at == lines.end()) throw std::runtime_error("not in the text: " + text.toStdString());
        Page().Memo()->setCursorPosition(static_cast<int>(at - lines.begin()),
                                         static_cast<int>(at->indexOf(text)) + first.toInt());
    } else if (command == u"context" || command == u"menu") {
        (command == u"menu" ? Item(rest) : ContextItem(rest)).trigger();
        ProcessEvents();
    } else if (command == u"activate") {
        TfrmEdit* target = Window().Pages().value(rest.toInt());
        if (!target) throw std::runtime_error("no page " + rest.toStdString());
        Window().ActivatePage(*target);
    } else if (command == u"selection") {
        const QStringList f = rest.split(u' ');
        Page().Memo()->setSelection(f.value(0).toInt(), f.value(1).toInt(), f.value(2).toInt(),
                                    f.value(3).toInt());
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
    } else if (command == u"caret") {
        Page().Memo()->SetCaret(first.toInt(), tail.toInt());
    } else if (command == u"update") {
        Window();
        if (rest == u"file")
            window_->UpdateFileMenu();
        else if (rest == u"edit")
            window_->UpdateEditMenu();
        else
            window_->UpdateHelpMenu();
    } else if (command == u"answer") {
        for (const QString& a : rest.split(u' '))
            answers_.push_back(a == u"yes"  ? TMsgAnswer::Yes
                               : a == u"no" ? TMsgAnswer::No
                                            : TMsgAnswer::Cancel);
    } else if (command == u"tabclose" || command == u"middleclick") {
        QTabBar* bar = Window().PageControlEditor()->tabBar();
        if (command == u"middleclick")
            QTest::mouseClick(bar, Qt::MiddleButton, Qt::NoModifier, bar->tabRect(rest.toInt()).center());
        else if (QWidget* button = bar->tabButton(rest.toInt(), QTabBar::RightSide))
            QTest::mouseClick(button, Qt::LeftButton);
        else
            throw std::runtime_error("no close button");
        ProcessEvents();
    } else if (command == u"drop") {
        Drop(first == u"page" ? Page().Memo()->viewport() : &Window(), tail);
    } else if (command == u"dialog") {
        dialog_.reset();
        if (rest == u"settings")
            dialog_ = std::make_unique<TfrmSettings>();
        else
            dialog_ = std::make_unique<TfrmProcList>(Page());
    } else if (command == u"dock") {
        Window().DockView(View(first), tail.toStdString());
    } else if (command == u"viewgeometry") {
        const QStringList f = tail.split(u' ');
        View(first).setGeometry(f.value(0).toInt(), f.value(1).toInt(), f.value(2).toInt(),
                                f.value(3).toInt());
    } else if (command == u"resize") {
        Dialog().resize(first.toInt(), tail.toInt());
    } else if (command == u"set") {
        if (auto* edit = qobject_cast<QLineEdit*>(&Widget(first)))
            edit->setText(Unescape(tail));
        else
            Widget<QAbstractButton>(first).setChecked(tail == u"yes");
    } else if (command == u"check") {
        const auto [row, state] = Split(tail);
        Widget<QListWidget>(first)
            .item(row.toInt())
            ->setCheckState(state == u"yes" ? Qt::Checked : Qt::Unchecked);
    } else if (command == u"keysto") {
        Widget(first).setFocus();
        Keys(&Widget(first), tail);
    } else if (command == u"typeto") {
        QTest::keyClicks(&Widget(first), Unescape(tail));
    } else if (command == u"doubleclick") {
        // ROW is a number or the start of the row's text.
        ProcessEvents();
        auto& view = Widget<QAbstractItemView>(first);
        const QAbstractItemModel& model = *view.model();
        bool number = false;
        int row = tail.toInt(&number);
        while (!number && row < model.rowCount() && !model.index(row, 0).data().toString().startsWith(tail))
            ++row;
        const QModelIndex index = model.index(row, 0);
        view.scrollTo(index);
        DoubleClick(*view.viewport(), view.visualRect(index).center());
        ProcessEvents();
    } else if (command == u"askinteger") {
        // The next number asked for is `rest`; the caption and label asked with are questions.
        DialogHooks().AskInteger = [this, rest](QWidget*, const QString& caption, const QString& label, int) {
            questions_ << caption + u'/' + label;
            return std::optional<int>(rest.toInt());
        };
    } else if (command == u"select") {
        auto& view = Widget<QAbstractItemView>(first);
        view.selectionModel()->clear();
        for (const QString& row : tail.split(u' '))
            view.selectionModel()->select(view.model()->index(row.toInt(), 0), QItemSelectionModel::Select);
    } else if (command == u"browse") {
        DialogHooks().PickFolder = [this, rest](QWidget*, const QString& start) {
            return start + Unescape(rest);
        };
    } else if (command == u"recordmodal") {
        // Each modal dialog from now on: the rows of its view `rest` are kept.
        DialogHooks().ExecModal = [this, rest](QDialog& dialog) {
            ++modalDialogs_;
            seen_ << dialog.objectName() + u' ' + Rows(rest, &dialog);
            return dialog.result();
        };
    } else {
        throw std::runtime_error("unknown command " + command.toStdString());
    }
}

void Scenario::Expect(const QString& line) {
    const QString what = Split(line).first, rest = Split(line).second;
    const QString key = Split(rest).first, tail = Split(rest).second;
    const QString want = Unescape(rest);
    if (const auto value = values_.find(what); value != values_.end()) {
        EXPECT_EQ(value->second(), want);
    } else if (const auto keyed = keyed_.find(what); keyed != keyed_.end()) {
        EXPECT_EQ(keyed->second(key), Unescape(tail));
    } else if (const auto holds = holds_.find(what); holds != holds_.end()) {
        EXPECT_TRUE(holds->second(want)) << (window_ ? Output(*window_) : std::string());
    } else if (what == u"ini" || what == u"ini-exists") {
        const QStringList f = want.split(u' ');
        const TIniFile ini(IniPath());
        const std::string section = f.value(0).toStdString(), name = f.value(1).toStdString();
        if (what == u"ini")
            EXPECT_EQ(ini.ReadString(section, name, "?"), f.value(2).toStdString());
        else
            EXPECT_EQ(ini.ValueExists(section, name), f.value(2) == u"yes");
    } else if (what == u"enabled" || what == u"disabled") {
        for (const QString& name : rest.split(u' '))
            EXPECT_EQ(Item(name).isEnabled(), what == u"enabled") << name.toStdString();
    } else if (what == u"context-enabled" || what == u"context-disabled") {
        EXPECT_EQ(ContextItem(rest).isEnabled(), what == u"context-enabled");
    } else if (what == u"enabled-like") {
        EXPECT_EQ(Item(key).isEnabled(), ContextItem(tail).isEnabled());
    } else if (what == u"tabs") {
        QStringList tabs;
        for (int i = 0; i < Window().PageControlEditor()->count(); ++i)
            tabs << window_->PageControlEditor()->tabText(i);
        EXPECT_EQ(tabs.join(u'|'), want);
    } else if (what == u"caret") {
        EXPECT_EQ(QStringLiteral("%1 %2").arg(Page().Memo()->CaretLine()).arg(Page().Memo()->CaretColumn()),
                  want);
    } else if (what == u"scanner") {
        EXPECT_EQ(GetScannerClass() == ScannerClass::Fast, rest == u"fast");
    } else if (what == u"compile-settings") {
        const TCompileSettings s = ReadCompileSettings();
        EXPECT_EQ(QStringLiteral("%1 %2 %3").arg(s.Verbosity).arg(YesNo(s.Optimize), YesNo(s.HaltOnError)),
                  want);
    } else if (what == u"shortcut") {
        EXPECT_EQ(Item(key).shortcut(), QKeySequence(tail));
    } else if (what == u"marked") {
        EXPECT_EQ(!Window().PageControlEditor()->tabIcon(key.toInt()).isNull(), tail == u"yes");
    } else if (what == u"prop") {
        // NAME.PROPERTY of a widget, "." for the dialog itself.
        const qsizetype dot = key.lastIndexOf(u'.');
        EXPECT_EQ(Widget(key.left(dot)).property(key.mid(dot + 1).toLatin1().constData()).toString(),
                  Unescape(tail));
    } else if (what == u"checks") {
        const QAbstractItemModel& model = *Widget<QAbstractItemView>(key).model();
        QString marks;
        for (int row = 0; row < model.rowCount(); ++row)
            marks += model.index(row, 0).data(Qt::CheckStateRole).toInt() == Qt::Checked ? u'x' : u'-';
        EXPECT_EQ(marks, tail);
    } else if (what == u"header") {
        QStringList cells;
        auto& view = Widget<QTreeView>(key);
        for (int column = 0; column < view.model()->columnCount(); ++column)
            cells << view.model()->headerData(column, Qt::Horizontal).toString() + u' ' +
                         QString::number(view.columnWidth(column));
        EXPECT_EQ(cells.join(u'|'), tail);
    } else if (what == u"current") {
        EXPECT_EQ(Widget<QAbstractItemView>(key).currentIndex().row(), tail.toInt());
    } else if (what == u"decoder") {
        const auto decoders = SpecialDecoders();
        const auto named =
            std::find_if(decoders.begin(), decoders.end(), [&](const auto& d) { return ToQ(d.Name) == key; });
        ASSERT_NE(named, decoders.end());
        EXPECT_EQ(named->Enabled, tail == u"yes");
    } else if (what == u"symbolhint") {
        const auto symbol = Page().SymbolNamed(key);
        ASSERT_TRUE(symbol);
        EXPECT_EQ(ToQ(SymbolHintText(*symbol)), Unescape(tail));
    } else if (what == u"label") {
        const auto labels = Dialog().findChildren<QLabel*>();
        EXPECT_TRUE(
            std::any_of(labels.begin(), labels.end(), [&](const QLabel* l) { return l->text() == want; }));
    } else {
        ADD_FAILURE() << "unknown expectation " << what.toStdString();
    }
}

TEST_P(Scenario, Runs) {
    const std::string text = ReadFile(kScenarios / (GetParam() + ".txt"));
    int number = 0;
    for (const QString& line : QString::fromStdString(text).split(u'\n')) {
        ++number;
        if (line.trimmed().isEmpty() || line.startsWith(u'#')) continue;
        SCOPED_TRACE(GetParam() + ".txt:" + std::to_string(number) + ": " + line.toStdString());
        try {
            Run(line);
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
