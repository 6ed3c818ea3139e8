// Scenarios read from tests/cases/ide/scenarios/*.txt: each runs in a fresh main window, one command a
// line (see tests/README.md), and is reported by its file name.
#include "compiler/symbol_queries.h"
#include "ide/completion_popup.h"
#include "ide/find_dialog.h"
#include "ide/help_view.h"
#include "ide/iff_decode.h"
#include "ide/iff_view.h"
#include "ide/proc_list.h"
#include "ide/reg_mru.h"
#include "ide/settings_dialog.h"
#include "scanner/scanner.h"
#include "tests/ide/edit_page_test_support.h"

#include <QAction>
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

const std::filesystem::path kScenarios =
    std::filesystem::path(VELKOR_SOURCE_DIR) / "tests/cases/ide/scenarios";

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
    TfrmProcList& ProcList() {
        auto* list = qobject_cast<TfrmProcList*>(dialog_.get());
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
        EXPECT_EQ(done, rest == u"ok") << Output(Window());
    };
    commands_ = {
        {"ini",
         [this](const QString& rest) {
             const QStringList f = Unescape(rest).split(u' ');
             TIniFile(IniPath()).WriteString(f.value(0).toStdString(), f.value(1).toStdString(),
                                             f.value(2).toStdString());
         }},
        {"file",
         [this](const QString& rest) {
             const auto [name, bytes] = Split(rest);
             std::filesystem::create_directories((Dir() / name.toStdString()).parent_path());
             const QByteArray latin1 = Unescape(bytes).toLatin1();
             MakeFile(name.toStdString(), latin1.toStdString());
         }},
        {"remove", [this](const QString& rest) { std::filesystem::remove(Dir() / rest.toStdString()); }},
        {"open",
         [this](const QString& rest) {
             const auto [name, how] = Split(rest);
             EXPECT_NE(Window().OpenFile(name.isEmpty() ? std::string() : Path(name.toStdString()),
                                         how == u"recent"),
                       nullptr);
             ProcessEvents();
         }},
        {"start",
         [this](const QString& rest) {
             dialog_.reset();
             window_.reset();
             QStringList files;
             for (const QString& name : rest.split(u' ', Qt::SkipEmptyParts))
                 files << QString::fromStdString(Path(name.toStdString()));
             window_.emplace(files);
         }},
        {"open-none",
         [this](const QString& rest) {
             EXPECT_EQ(Window().OpenFile(rest.isEmpty() ? std::string() : Path(rest.toStdString()), true),
                       nullptr);
         }},
        {"decode",
         [this](const QString& rest) {
             Window().DecodeFile(Path(rest.toStdString()));
             // A decode thread hands its text over through the event loop.
             const QString caption =
                 QString::fromStdString(std::filesystem::path(Path(rest.toStdString())).filename().string()) +
                 ".pas";
             for (int i = 0; i < 250 && Page().Caption() != caption; ++i)
                 QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
         }},
        {"reopen",
         [this](const QString& rest) {
             QAction* entry = Item(QStringLiteral("MenuFileReopen")).menu()->actions().value(rest.toInt());
             if (!entry) throw std::runtime_error("no recent entry " + rest.toStdString());
             entry->trigger();
             ProcessEvents();
         }},
        {"iffcaret",
         [this](const QString& rest) {
             Window().IffView().SetCaret(Split(rest).first.toInt(), Split(rest).second.toInt());
         }},
        {"demo",
         [this](const QString&) {
             if (!OpenDemo(Window())) throw std::runtime_error("the demo did not compile");
         }},
        {"caretat",
         [this](const QString& rest) {
             const auto [offset, tail] = Split(rest);
             const QString text = Unescape(tail);
             const QStringList lines = Page().Memo()->Lines();
             const auto line =
                 std::find_if(lines.begin(), lines.end(), [&](const QString& l) { return l.contains(text); });
             if (line == lines.end()) throw std::runtime_error("not in the text: " + text.toStdString());
             Page().Memo()->setCursorPosition(static_cast<int>(line - lines.begin()),
                                              static_cast<int>(line->indexOf(text)) + offset.toInt());
         }},
        {"context",
         [this](const QString& rest) {
             ContextItem(rest).trigger();
             ProcessEvents();
         }},
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
        {"activate",
         [this](const QString& rest) {
             TfrmEdit* target = Window().Pages().value(rest.toInt());
             if (!target) throw std::runtime_error("no page " + rest.toStdString());
             Window().ActivatePage(*target);
         }},
        {"top", [this](const QString& rest) { Page().Memo()->setFirstVisibleLine(rest.toInt()); }},
        {"show", [this](const QString&) { ShowActive(Window()); }},
        {"helptopic", [this](const QString& rest) { Window().HelpView().ShowTopic(rest.toStdString()); }},
        {"hidehelp", [this](const QString&) { Window().HelpView().hide(); }},
        {"focus", [this](const QString&) { Page().Memo()->setFocus(); }},
        {"close", [this](const QString& rest) { EXPECT_EQ(Window().close(), rest == u"ok"); }},
        {"clipboard", [this](const QString& rest) { QApplication::clipboard()->setText(Unescape(rest)); }},
        {"selection",
         [this](const QString& rest) {
             const QStringList f = rest.split(u' ');
             Page().Memo()->setSelection(f.value(0).toInt(), f.value(1).toInt(), f.value(2).toInt(),
                                         f.value(3).toInt());
         }},
        {"findanswer",
         [this](const QString& rest) { AnswerFindDialog(rest.split(u' ', Qt::SkipEmptyParts)); }},
        {"replaceanswer",
         [this](const QString& rest) {
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
         }},
        {"new", [this](const QString&) { Window().NewPage(); }},
        {"text", [this](const QString& rest) { Page().Memo()->SetText(Unescape(rest)); }},
        {"insert", [this](const QString& rest) { Page().Memo()->insert(Unescape(rest)); }},
        {"append", [this](const QString& rest) { Page().Memo()->append(Unescape(rest)); }},
        {"caret",
         [this](const QString& rest) {
             Page().Memo()->SetCaret(Split(rest).first.toInt(), Split(rest).second.toInt());
         }},
        {"selectall", [this](const QString&) { Page().Memo()->selectAll(); }},
        {"unmodify", [this](const QString&) { Page().SetModified(false); }},
        {"modify", [this](const QString&) { Page().SetModified(true); }},
        {"iff", [this](const QString& rest) { Window().IffView().SetText(Unescape(rest)); }},
        {"menu",
         [this](const QString& rest) {
             Item(rest).trigger();
             ProcessEvents();
         }},
        {"update",
         [this](const QString& rest) {
             if (rest == u"file")
                 Window().UpdateFileMenu();
             else if (rest == u"edit")
                 Window().UpdateEditMenu();
             else
                 Window().UpdateHelpMenu();
         }},
        {"tick", [this](const QString&) { Window().TimerTick(); }},
        {"compile", [=, this](const QString& rest) { ok(Page().Compile(), rest); }},
        {"save", [=, this](const QString& rest) { ok(Page().Save(), rest); }},
        {"saveaspage", [=, this](const QString& rest) { ok(Page().SaveAs(), rest); }},
        {"savequery", [=, this](const QString& rest) { ok(Page().SaveQuery(), rest); }},
        {"answer",
         [this](const QString& rest) {
             for (const QString& a : rest.split(u' '))
                 answers_.push_back(a == u"yes"  ? TMsgAnswer::Yes
                                    : a == u"no" ? TMsgAnswer::No
                                                 : TMsgAnswer::Cancel);
         }},
        {"saveas", [this](const QString& rest) { saveAnswers_ << Unescape(rest); }},
        {"openas", [this](const QString& rest) { openAnswers_ << Unescape(rest); }},
        {"tabclose",
         [this](const QString& rest) {
             QTabBar* bar = Window().PageControlEditor()->tabBar();
             QWidget* button = bar->tabButton(rest.toInt(), QTabBar::RightSide);
             if (!button) throw std::runtime_error("no close button");
             QTest::mouseClick(button, Qt::LeftButton);
             ProcessEvents();
         }},
        {"middleclick",
         [this](const QString& rest) {
             QTabBar* bar = Window().PageControlEditor()->tabBar();
             QTest::mouseClick(bar, Qt::MiddleButton, Qt::NoModifier, bar->tabRect(rest.toInt()).center());
             ProcessEvents();
         }},
        {"drop",
         [this](const QString& rest) {
             const auto [where, name] = Split(rest);
             Drop(where == u"page" ? Page().Memo()->viewport() : &Window(), name);
         }},
        // Dialogs and their widgets.
        {"dialog",
         [this](const QString& rest) {
             dialog_.reset();
             if (rest == u"settings")
                 dialog_ = std::make_unique<TfrmSettings>();
             else
                 dialog_ = std::make_unique<TfrmProcList>(Page());
         }},
        {"enddialog", [this](const QString&) { dialog_.reset(); }},
        {"showdialog", [this](const QString&) { dialog_->show(); }},
        {"resize",
         [this](const QString& rest) {
             dialog_->resize(Split(rest).first.toInt(), Split(rest).second.toInt());
         }},
        {"kinds", [this](const QString& rest) { ProcList().SetKindMask(rest.toInt()); }},
        {"set",
         [this](const QString& rest) {
             const auto [name, value] = Split(rest);
             if (auto* edit = qobject_cast<QLineEdit*>(&Widget(name)))
                 edit->setText(Unescape(value));
             else
                 Widget<QAbstractButton>(name).setChecked(value == u"yes");
         }},
        {"check",
         [this](const QString& rest) {
             const QStringList f = rest.split(u' ');
             QListWidgetItem* item = Widget<QListWidget>(f.value(0)).item(f.value(1).toInt());
             item->setCheckState(f.value(2) == u"yes" ? Qt::Checked : Qt::Unchecked);
         }},
        {"click", [this](const QString& rest) { Widget<QAbstractButton>(rest).click(); }},
        {"keysto",
         [this](const QString& rest) {
             Widget(Split(rest).first).setFocus();
             Keys(&Widget(Split(rest).first), Split(rest).second);
         }},
        {"typeto",
         [this](const QString& rest) {
             QTest::keyClicks(&Widget(Split(rest).first), Unescape(Split(rest).second));
         }},
        {"doubleclick",
         [this](const QString& rest) {
             auto& view = Widget<QAbstractItemView>(Split(rest).first);
             const QModelIndex index = view.model()->index(Split(rest).second.toInt(), 0);
             view.scrollTo(index);
             DoubleClick(*view.viewport(), view.visualRect(index).center());
             ProcessEvents();
         }},
        {"browse",
         [this](const QString& rest) {
             DialogHooks().PickFolder = [this, rest](QWidget*, const QString& start) {
                 return start + Unescape(rest);
             };
         }},
        {"loaddecoders", [](const QString&) { LoadSpecialDecoderFlags(); }},
        // Each modal dialog from now on: the rows of its view `rest` are kept.
        {"recordmodal",
         [this](const QString& rest) {
             DialogHooks().ExecModal = [this, rest](QDialog& dialog) {
                 ++modalDialogs_;
                 seen_ << dialog.objectName() + u' ' + Rows(rest, &dialog);
                 return dialog.result();
             };
         }},
    };

    values_ = {
        {"text", [this] { return Page().Text(); }},
        {"caption", [this] { return Page().Caption(); }},
        {"maxdecode", [this] { return QString::number(Window().MaxDecodeSize()); }},
        {"top", [this] { return QString::number(Page().Memo()->firstVisibleLine()); }},
        {"tabs",
         [this] {
             QStringList tabs;
             for (int i = 0; i < Window().PageControlEditor()->count(); ++i)
                 tabs << Window().PageControlEditor()->tabText(i);
             return tabs.join(u'|');
         }},
        {"iff-title", [this] { return Window().IffView().windowTitle(); }},
        {"hint", [this] { return Page().ParameterHint() ? Page().ParameterHint()->text() : QString(); }},
        {"word", [this] { return Page().WordAtCursor(); }},
        {"caretline", [this] { return QString::number(Page().Memo()->CaretLine()); }},
        {"help-page", [this] { return QString::fromStdString(Window().HelpView().CurrentPage()); }},
        {"help-root", [this] { return QString::fromStdString(Window().HelpView().HelpRoot()); }},
        {"help-shown", [this] { return YesNo(!Window().HelpView().isHidden()); }},
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
        {"caret",
         [this] {
             return QString::number(Page().Memo()->CaretLine()) + u' ' +
                    QString::number(Page().Memo()->CaretColumn());
         }},
        {"errorline", [this] { return QString::number(Page().Memo()->ErrorLine()); }},
        {"modified", [this] { return YesNo(Page().Modified()); }},
        {"iff", [this] { return Window().IffView().Text(); }},
        {"output-last", [this] { return OutputLines().value(OutputLines().size() - 1); }},
        {"messages", [this] { return messages_.join(u'|'); }},
        {"questions", [this] { return questions_.join(u'|'); }},
        {"dialogs", [this] { return QString::number(modalDialogs_); }},
        {"dialog-names", [this] { return modalDialogNames_.join(u'|'); }},
        {"recent", [this] { return Recent(); }},
        {"scanner",
         [] {
             return GetScannerClass() == ScannerClass::Fast ? QStringLiteral("fast")
                                                            : QStringLiteral("standard");
         }},
        {"result", [this] { return QString::number(dialog_->result()); }},
        {"compile-settings",
         [] {
             const TCompileSettings s = ReadCompileSettings();
             return QStringLiteral("%1 %2 %3").arg(s.Verbosity).arg(YesNo(s.Optimize), YesNo(s.HaltOnError));
         }},
    };

    keyed_ = {
        {"status", [this](const QString& key) { return Window().StatusPanelText(key.toInt()); }},
        {"line", [this](const QString& key) { return Page().Memo()->LineText(key.toInt()); }},
        {"context-item", [this](const QString& key) { return ContextItem(key).text(); }},
        {"item", [this](const QString& key) { return Item(key).text(); }},
        {"shortcut",
         [this](const QString& key) { return Item(key).shortcut().toString(QKeySequence::PortableText); }},
        {"item-visible", [this](const QString& key) { return YesNo(Item(key).isVisible()); }},
        {"file",
         [this](const QString& key) { return QString::fromLatin1(ReadFile(Dir() / key.toStdString())); }},
        {"marked",
         [this](const QString& key) {
             return YesNo(!Window().PageControlEditor()->tabIcon(key.toInt()).isNull());
         }},
        {"prop",
         [this](const QString& key) {
             const qsizetype dot = key.lastIndexOf(u'.');
             return Widget(key.left(dot)).property(key.mid(dot + 1).toLatin1().constData()).toString();
         }},
        {"rows", [this](const QString& key) { return Rows(key); }},
        {"checks",
         [this](const QString& key) {
             const QAbstractItemModel& model = *Widget<QAbstractItemView>(key).model();
             QString marks;
             for (int row = 0; row < model.rowCount(); ++row)
                 marks += model.index(row, 0).data(Qt::CheckStateRole).toInt() == Qt::Checked ? u'x' : u'-';
             return marks;
         }},
        {"header",
         [this](const QString& key) {
             QStringList cells;
             auto& view = Widget<QTreeView>(key);
             for (int column = 0; column < view.model()->columnCount(); ++column)
                 cells << view.model()->headerData(column, Qt::Horizontal).toString() + u' ' +
                              QString::number(view.columnWidth(column));
             return cells.join(u'|');
         }},
        {"current",
         [this](const QString& key) {
             return QString::number(Widget<QAbstractItemView>(key).currentIndex().row());
         }},
        {"buddy", [this](const QString& key) { return Widget<QLabel>(key).buddy()->objectName(); }},
        {"seen", [this](const QString& key) { return seen_.value(key.toInt()); }},
        {"decoder",
         [](const QString& key) {
             for (const auto& decoder : SpecialDecoders())
                 if (QString::fromStdString(decoder.Name) == key) return YesNo(decoder.Enabled);
             return QStringLiteral("none");
         }},
        {"symbolhint",
         [this](const QString& key) {
             const auto symbol = Page().SymbolNamed(key);
             return symbol ? QString::fromStdString(SymbolHintText(*symbol)) : QStringLiteral("none");
         }},
    };

    holds_ = {
        {"text-starts", [this](const QString& want) { return Page().Text().startsWith(want); }},
        {"text-has", [this](const QString& want) { return Page().Text().contains(want); }},
        {"text-lacks", [this](const QString& want) { return !Page().Text().contains(want); }},
        {"iff-starts", [this](const QString& want) { return Window().IffView().Text().startsWith(want); }},
        {"help-text-has",
         [this](const QString& want) { return Window().HelpView().Browser()->toPlainText().contains(want); }},
        {"help-ends",
         [this](const QString& want) {
             return QString::fromStdString(Window().HelpView().CurrentPage()).endsWith(want);
         }},
        {"completion-has", [this](const QString& want) { return CompletionRows().contains(want); }},
        {"output-first-starts",
         [this](const QString& want) { return OutputLines().value(0).startsWith(want); }},
        {"output-has", [this](const QString& want) { return OutputLines().contains(want); }},
        {"output-lacks", [this](const QString& want) { return !OutputLines().join(u'\n').contains(want); }},
        {"iff-is-text", [this](const QString&) { return Window().IffView().Text() == Page().Text(); }},
        {"nofile",
         [this](const QString& want) { return !std::filesystem::exists(Dir() / want.toStdString()); }},
        {"symbol",
         [this](const QString& want) {
             return Page().Symbols() && Page().Symbols()->Find(want.toStdString()) >= 0;
         }},
        {"label",
         [this](const QString& want) {
             const auto labels = dialog_->findChildren<QLabel*>();
             return std::any_of(labels.begin(), labels.end(),
                                [&](const QLabel* l) { return l->text() == want; });
         }},
    };
}

void Scenario::Expect(const QString& line) {
    const auto [what, rest] = Split(line);
    const auto [key, tail] = Split(rest);
    if (const auto value = values_.find(what); value != values_.end()) {
        EXPECT_EQ(value->second(), Unescape(rest));
    } else if (const auto keyed = keyed_.find(what); keyed != keyed_.end()) {
        EXPECT_EQ(keyed->second(key), Unescape(tail));
    } else if (const auto holds = holds_.find(what); holds != holds_.end()) {
        EXPECT_TRUE(holds->second(Unescape(rest))) << (window_ ? Output(*window_) : std::string());
    } else if (what == u"ini" || what == u"ini-exists") {
        const QStringList f = Unescape(rest).split(u' ');
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
    } else {
        ADD_FAILURE() << "unknown expectation " << what.toStdString();
    }
}

void Scenario::Run(const QString& line) {
    const auto [command, rest] = Split(line);
    if (command == u"expect") return Expect(rest);
    const auto found = commands_.find(command);
    if (found == commands_.end()) throw std::runtime_error("unknown command " + command.toStdString());
    found->second(rest);
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
