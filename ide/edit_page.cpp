#include "ide/edit_page.h"

#include "compiler/compiler.h"
#include "compiler/symbol_table.h"
#include "ide/background_job.h"
#include "ide/code_assist.h"
#include "ide/completion_popup.h"
#include "ide/editor_theme_setting.h"
#include "ide/help_view.h"
#include "ide/ide_dialogs.h"
#include "ide/ide_ini.h"
#include "ide/iff_build.h"
#include "ide/iff_view.h"
#include "ide/message_location.h"
#include "ide/output_view.h"
#include "ide/page_host.h"
#include "platform/exception.h"
#include "platform/named_folders.h"
#include "platform/numbers.h"
#include "platform/path_resolver.h"
#include "platform/strings.h"
#include "platform/text_file.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QVBoxLayout>

#include <algorithm>
#include <filesystem>

namespace velkor {

const char* const kSourceFileFilter = "Pascal File (*.pas)|*.pas|Text File (*.txt)|*.txt";

namespace {

// The hourglass (or, while the window stays usable, the busy arrow) for the length of a scope.
class WaitCursor {
public:
    explicit WaitCursor(Qt::CursorShape shape = Qt::WaitCursor) { QApplication::setOverrideCursor(shape); }
    ~WaitCursor() { QApplication::restoreOverrideCursor(); }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

bool IsExistingFile(const std::string& name) {
    return !name.empty() && IsRegularFile(name);
}

std::string FolderOf(const std::string& file) {
    return std::filesystem::path(file).parent_path().string();
}

struct ContextItemText {
    const char* Name;     // object name of the action
    const char* Caption;  // as the user sees it
    const char* ShortCut; // empty: none
};

constexpr ContextItemText kContextItems[] = {
    {"ContextFindDeclaration", "&Find Declaration", "Ctrl+D"},
    {"ContextSymbolBrowser", "Symbol Browser", ""},
    {"ContextObjList", "Object List", ""},
    {"ContextProcList", "Function List", ""},
    {"ContextParameterList", "Parameter List", "Shift+Ctrl+Space"},
    {"ConstantList1", "Constant List", ""},
    {"CompleteWordAtCursor1", "CompleteWordAtCursor", "Ctrl+Space"},
    {"ContextClosePage", "&Close Page", "Ctrl+F4"},
    {"ContextOpenFileAtCursor", "Open &File at Cursor", "Ctrl+Return"},
    {"ContextTopicSearch", "Topic &Search", "F1"},
    {nullptr, nullptr, nullptr},
    {"ContextUndo", "&Undo", ""},
    {"ContextCut", "Cu&t", ""},
    {"ContextCopy", "&Copy", ""},
    {"ContextPaste", "&Paste", ""},
    {"ContextDelete", "&Delete", ""},
    {"ContextSelectAll", "Se&lect All", ""},
};

} // namespace

TCompileSettings ReadCompileSettings() {
    const TIniFile ini = IdeIni();
    TCompileSettings settings;
    settings.Optimize = ini.ReadBool("compiler", "optimization", false);
    settings.HaltOnError = ini.ReadBool("compiler", "haltonerror", true);
    // A hand-edited value out of range is taken as the nearest one, not refused at every compile.
    settings.Verbosity =
        static_cast<std::uint8_t>(std::clamp(ini.ReadInteger("compiler", "verbosity", 1), 0, 255));
    return settings;
}

TfrmEdit::TfrmEdit(TPageHost& host, QWidget* parent)
    : QWidget(parent), host_(host), memo_(new TPageEditor(this)), popup_(new QMenu(this)) {
    setObjectName(QStringLiteral("frmEdit"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(memo_);
    memo_->setObjectName(QStringLiteral("Memo"));
    SetFileName("Untitled" + std::to_string(host_.TakeUntitledNumber()) + ".pas");
    autosave_ = IdeIni().ReadBool("editor", "autosave", false);
    // The editor control attaches the language's highlighter; the colours follow the theme setting.
    memo_->SetThemeChoice(ReadThemeChoice());
    assist_ = std::make_unique<CodeAssist>(*this, host_, *memo_);
    completion_ = new TCompletionPopup(*this, *memo_);
    BuildContextMenu();
    connect(memo_, &TPageEditor::GotoRequested, this, [this](bool) { GotoLine(); });
    memo_->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(memo_, &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        RefreshContextMenu();
        popup_->popup(memo_->mapToGlobal(at));
    });
    memo_->SetReplacePrompt(
        [this](const QString& found, int, int) { return DialogHooks().AskReplace(this, found); });
}

TfrmEdit::~TfrmEdit() = default;

void TfrmEdit::BuildContextMenu() {
    popup_->setObjectName(QStringLiteral("PopupMenu1"));
    for (const ContextItemText& item : kContextItems) {
        if (!item.Name) {
            popup_->addSeparator();
            continue;
        }
        QAction* action = popup_->addAction(QString::fromLatin1(item.Caption));
        action->setObjectName(QString::fromLatin1(item.Name));
        if (*item.ShortCut) {
            action->setShortcut(QKeySequence(QString::fromLatin1(item.ShortCut)));
            // The page's own keys work while its editor has the focus; F1 is also the main menu's.
            if (std::string_view(item.ShortCut) != "F1") {
                action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
                addAction(action);
            }
        }
    }
    const auto on = [this](const char* name, auto slot) {
        connect(ContextItem(QString::fromLatin1(name)), &QAction::triggered, this, slot);
    };
    on("ContextFindDeclaration", &TfrmEdit::FindDeclaration);
    on("ContextParameterList", &TfrmEdit::ShowParameterHint);
    on("CompleteWordAtCursor1", &TfrmEdit::CompleteWordAtCursor);
    on("ContextOpenFileAtCursor", &TfrmEdit::OpenFileAtCursor);
    on("ContextSymbolBrowser", &TfrmEdit::SymbolBrowser);
    on("ContextObjList", &TfrmEdit::ObjectList);
    on("ContextProcList", &TfrmEdit::FunctionList);
    on("ConstantList1", &TfrmEdit::ConstantList);
    on("ContextClosePage", [this] { host_.ClosePage(*this); });
    on("ContextTopicSearch", &TfrmEdit::TopicSearch);
    on("ContextUndo", &TfrmEdit::Undo);
    on("ContextCut", &TfrmEdit::Cut);
    on("ContextCopy", &TfrmEdit::Copy);
    on("ContextPaste", &TfrmEdit::Paste);
    on("ContextDelete", &TfrmEdit::DeleteSelection);
    on("ContextSelectAll", &TfrmEdit::SelectAll);
    ContextItem(QStringLiteral("CompleteWordAtCursor1"))->setEnabled(CodeIntelligence());
}

QAction* TfrmEdit::ContextItem(const QString& name) const {
    return popup_->findChild<QAction*>(name, Qt::FindDirectChildrenOnly);
}

void TfrmEdit::RefreshContextMenu() {
    ContextItem(QStringLiteral("ContextTopicSearch"))
        ->setText(QStringLiteral("Topic &Search (") + WordAtCursor() + u')');
    const bool selected = memo_->hasSelectedText();
    ContextItem(QStringLiteral("ContextUndo"))->setEnabled(memo_->isUndoAvailable());
    ContextItem(QStringLiteral("ContextCut"))->setEnabled(selected && !memo_->isReadOnly());
    ContextItem(QStringLiteral("ContextCopy"))->setEnabled(selected);
    ContextItem(QStringLiteral("ContextPaste"))
        ->setEnabled(memo_->SendScintilla(QsciScintillaBase::SCI_CANPASTE) != 0);
    ContextItem(QStringLiteral("ContextDelete"))->setEnabled(selected && !memo_->isReadOnly());
    ContextItem(QStringLiteral("ContextSelectAll"))->setEnabled(!memo_->Text().isEmpty());
}

void TfrmEdit::SetModified(bool modified) {
    if (!modified || memo_->Modified()) {
        memo_->SetModified(modified);
        return;
    }
    const long end = memo_->SendScintilla(QsciScintillaBase::SCI_GETLENGTH);
    memo_->SendScintilla(QsciScintillaBase::SCI_APPENDTEXT, 1UL, " ");
    memo_->SendScintilla(QsciScintillaBase::SCI_DELETERANGE, static_cast<unsigned long>(end), 1L);
}

std::string TfrmEdit::FileNameKey() const {
    return LowerCase(fileName_);
}

QString TfrmEdit::Caption() const {
    return ToQ(FileNamePart(fileName_));
}

void TfrmEdit::SetFileName(const std::string& name) {
    fileName_ = name;
    setWindowTitle(Caption());
    emit CaptionChanged();
}

std::string TfrmEdit::AskOpenFileName(QWidget* parent) {
    TFileDialogRequest request;
    request.Filter = QString::fromLatin1(kSourceFileFilter);
    request.DefaultExt = QStringLiteral(".pas");
    request.InitialDir = ToQ(IdeIni().ReadString("editor", "DirLoad", ""));
    const QString chosen = DialogHooks().OpenFile(parent, request);
    if (chosen.isEmpty()) return {};
    const std::string file = FromQ(chosen);
    IdeIni().WriteString("editor", "DirLoad", FolderOf(file));
    return file;
}

bool TfrmEdit::Load(const std::string& name, bool addToRecent) {
    std::string file = name;
    const bool fromDialog = Trim(name).empty();
    if (fromDialog) file = AskOpenFileName(this);
    if (!IsExistingFile(file)) return false;
    const std::string absolute = std::filesystem::absolute(file).lexically_normal().string();
    try {
        std::optional<WaitCursor> wait;
        if (fromDialog) wait.emplace();
        memo_->LoadFromFile(absolute);
    } catch (const Exception&) {
        return false;
    }
    SetFileName(absolute);
    memo_->SetModified(false);
    if (addToRecent) host_.AddRecent(absolute);
    // Open File at Cursor works before the first compile: the unit's folder, then the library.
    assist_->SetSearchPathText(FolderOf(absolute) + "\r\n" + ExpandPath("$compiler$\\lib") + "\r\n");
    return true;
}

void TfrmEdit::WriteTo(const std::string& name) {
    memo_->SaveToFile(name);
}

bool TfrmEdit::Save() {
    if (!IsExistingFile(fileName_)) return SaveAs();
    try {
        WriteTo(fileName_);
    } catch (const Exception& e) {
        DialogHooks().ShowMessage(this, ToQ(e.what()));
        return false;
    }
    return true;
}

bool TfrmEdit::SaveAs() {
    TFileDialogRequest request;
    request.Filter = QString::fromLatin1(kSourceFileFilter);
    request.DefaultExt = QStringLiteral(".pas");
    request.InitialDir = ToQ(IdeIni().ReadString("editor", "DirLoad", ""));
    request.ProposedName = Caption();
    const QString chosen = DialogHooks().SaveFile(this, request);
    if (chosen.isEmpty()) return false;
    const std::string file = std::filesystem::absolute(FromQ(chosen)).lexically_normal().string();
    // Replacing another file loses it: the user is asked first.
    if (IsExistingFile(file) && file != fileName_ &&
        DialogHooks().AskYesNoCancel(this, ToQ(file + " already exists.\nDo you want to replace it?")) !=
            TMsgAnswer::Yes)
        return false;
    try {
        WriteTo(file);
    } catch (const Exception& e) {
        DialogHooks().ShowMessage(this, ToQ(e.what()));
        return false;
    }
    SetFileName(file);
    IdeIni().WriteString("editor", "DirLoad", FolderOf(file));
    return true;
}

bool TfrmEdit::SaveQuery() {
    if (!Modified()) return true;
    switch (DialogHooks().AskYesNoCancel(this, ToQ("Save changes to " + fileName_ + "?"))) {
    case TMsgAnswer::Yes: return Save();
    case TMsgAnswer::No: return true;
    case TMsgAnswer::Cancel: break;
    }
    return false;
}

void TfrmEdit::ReportException(const std::exception& error) {
    host_.Output(error.what());
}

bool TfrmEdit::Compile() {
    // One compile or build at a time: the window stays usable while one runs.
    if (JobRunning()) return false;
    WaitCursor wait(Qt::BusyCursor);
    bool success = true;
    if (autosave_) Save();
    host_.OutputView().BringToFront();
    host_.OutputView().Clear();
    memo_->ClearErrorLine();

    TCompiler compiler;
    std::string linked;
    try {
        std::string source = FromQ(memo_->Text());
        NormaliseLineBreaksInPlace(source);
        compiler.SetSource(std::move(source));
        const TCompileSettings settings = ReadCompileSettings();
        compiler.Optimize = settings.Optimize;
        compiler.HaltOnError = settings.HaltOnError;
        compiler.Verbosity = settings.Verbosity;
        const std::string folder = FolderOf(fileName_);
        const std::filesystem::path outputFolder = OutputFolderFor(UnitFolderOf(fileName_));
        const bool ownOutputFolder = !IdeIni().ReadString("compiler", "outputdir", "").empty();
        OutputPolicy policy = IdeOutputPolicy(fileName_);
        policy.AllowFolder(outputFolder);
        compiler.PlaceOutputFile = [outputFolder, policy](const std::string& name) {
            std::filesystem::path path = PlaceBuiltFile(name, outputFolder);
            policy.Check(path);
            return path;
        };
        const bool ran = RunJob(host_, QStringLiteral("Compiling ") + Caption(), [&](TJobContext& job) {
            compiler.OnOutput = [&job, verbosity = settings.Verbosity](const std::string& line) {
                if (ShownAtVerbosity(line, verbosity)) job.Output(line);
            };
            if (!folder.empty()) compiler.AddToSearchPath(folder);
            // The units of a project find each other's outputs, as with velkorc's --out-dir DIR -I DIR.
            if (ownOutputFolder) compiler.AddToSearchPath(outputFolder.string());
            compiler.AddToSearchPath("$compiler$\\lib");
            compiler.SetFileName(fileName_);
            compiler.Compile();
            compiler.Finish();
            linked = compiler.Link();
        });
        if (!ran) return false;
        host_.IffView().SetTextUtf8(std::move(linked));
    } catch (const std::exception& e) {
        success = false;
        const int line = compiler.ErrorLine; // from 1; the editor counts from 0
        if (line >= 1) {
            // The caret first: moving it scrolls it into view, the top line is then set as wanted.
            memo_->SetCaret(line - 1, 0);
            memo_->setFirstVisibleLine(std::max(0, line - 1 - 5));
            memo_->SetErrorLine(line - 1);
        }
        if (!dynamic_cast<const ECompiler*>(&e)) ReportException(e);
    }
    host_.OutputView().SetOrigin(compiler.UnitName, compiler.SearchPath, fileName_);
    if (success) {
        assist_->SetSymbols(std::make_shared<TSymbolTable>(compiler.Symbols()));
        std::string searchPath;
        for (const std::string& path : compiler.SearchPath) searchPath += path + "\r\n";
        assist_->SetSearchPathText(std::move(searchPath));
    }
    emit Compiled(success);
    return success;
}

void TfrmEdit::BuildIff() {
    BuildIffFromView(host_, std::filesystem::path(FileName()).parent_path(), UnitFolderOf(fileName_));
}

void TfrmEdit::Undo() {
    memo_->undo();
}
void TfrmEdit::Cut() {
    memo_->cut();
}
void TfrmEdit::Copy() {
    memo_->copy();
}
void TfrmEdit::Paste() {
    memo_->paste();
}
void TfrmEdit::DeleteSelection() {
    memo_->removeSelectedText();
}
void TfrmEdit::SelectAll() {
    memo_->selectAll();
}

void TfrmEdit::GotoLine() {
    const auto line =
        DialogHooks().AskInteger(this, QStringLiteral("Go to Line Number"),
                                 QStringLiteral("Enter new line number:"), memo_->CaretLine() + 1);
    if (!line) return;
    host_.JumpStarting(*this);
    memo_->SetCaret(*line - 1, 0);
}

void TfrmEdit::TopicSearch() {
    const QString word = WordAtCursor();
    if (!word.isEmpty()) host_.HelpView().ShowTopic(FromQ(word));
}

} // namespace velkor
