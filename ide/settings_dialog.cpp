#include "ide/settings_dialog.h"

#include "ide/ext_handler.h"
#include "ide/ide_dialogs.h"
#include "ide/ide_ini.h"
#include "ide/iff_build.h"
#include "ide/iff_decode.h"
#include "iff/decoder_settings.h"
#include "platform/executable_path.h"
#include "platform/named_folders.h"
#include "platform/numbers.h"
#include "platform/strings.h"
#include "scanner/scanner.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <filesystem>

namespace velkor {

namespace {

QCheckBox* NamedCheckBox(const char* name, const char* caption, QWidget* parent) {
    auto* box = new QCheckBox(QString::fromLatin1(caption), parent);
    box->setObjectName(QString::fromLatin1(name));
    return box;
}

// The extension libraries in the executable's folder, sorted by name.
std::vector<std::string> PluginFiles() {
    std::vector<std::string> files;
    std::error_code ec;
    for (const auto& entry : std::filesystem::directory_iterator(ExecutableFolder(), ec)) {
        const std::string name = entry.path().filename().string();
        if (entry.is_regular_file(ec) && name.size() > 3 && LowerCase(name).ends_with(kExtensionSuffix))
            files.push_back(name);
    }
    std::sort(files.begin(), files.end());
    return files;
}

} // namespace

TfrmSettings::TfrmSettings(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmSettings"));
    setWindowTitle(QStringLiteral("Settings"));
    auto* layout = new QVBoxLayout(this);
    Pages = new QTabWidget(this);
    Pages->addTab(CreateGeneralTab(), QStringLiteral("General"));
    Pages->addTab(CreateCompilerTab(), QStringLiteral("Compiler"));
    Pages->addTab(CreatePluginsTab(), QStringLiteral("Plugins"));
    Pages->addTab(CreateEditorTab(), QStringLiteral("Editor"));
    Pages->addTab(CreateDecoderTab(), QStringLiteral("Iff Decoder"));
    // Every tab shows its caption, at any font size: the dialog grows to the tab row instead of scrolling it.
    Pages->tabBar()->setUsesScrollButtons(false);
    layout->addWidget(Pages);

    auto* buttons = new QDialogButtonBox(this);
    QPushButton* ok = buttons->addButton(QStringLiteral("OK"), QDialogButtonBox::AcceptRole);
    QPushButton* apply = buttons->addButton(QStringLiteral("&Apply"), QDialogButtonBox::ApplyRole);
    QPushButton* cancel = buttons->addButton(QStringLiteral("&Cancel"), QDialogButtonBox::RejectRole);
    ok->setObjectName(QStringLiteral("btnOK"));
    apply->setObjectName(QStringLiteral("btnApply"));
    cancel->setObjectName(QStringLiteral("btnCancel"));
    ok->setDefault(true);
    // A settings file that cannot be written is said so; the dialog stays open.
    const auto write = [this] {
        try {
            WriteSettings();
            return true;
        } catch (const std::exception& e) {
            DialogHooks().ShowMessage(this, ToQ(e.what()));
            return false;
        }
    };
    connect(ok, &QPushButton::clicked, this, [this, write] {
        if (write()) accept();
    });
    connect(apply, &QPushButton::clicked, this, write);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    layout->addWidget(buttons);

    ReadSettings();
}

QWidget* TfrmSettings::CreateGeneralTab() {
    auto* tab = new QWidget(this);
    auto* layout = new QVBoxLayout(tab);
    auto* text =
        new QLabel(QStringLiteral("Specify the root directory of your SO installation. That is the directory "
                                  "that contains the game\\, mission\\, etc... sub-directories."),
                   tab);
    text->setWordWrap(true);
    layout->addWidget(text);
    auto* row = new QHBoxLayout;
    EditSoPath = new QLineEdit(tab);
    EditSoPath->setObjectName(QStringLiteral("EditSoPath"));
    auto* browse = new QPushButton(QStringLiteral("Browse..."), tab);
    browse->setObjectName(QStringLiteral("btnBrowse"));
    connect(browse, &QPushButton::clicked, this, &TfrmSettings::BrowseSoPath);
    row->addWidget(EditSoPath, 1);
    row->addWidget(browse);
    layout->addLayout(row);
    cbRestoreSession = NamedCheckBox("cbRestoreSession", "Reopen the last session's pages at start", tab);
    layout->addWidget(cbRestoreSession);
    layout->addStretch();
    return tab;
}

QWidget* TfrmSettings::CreateCompilerTab() {
    auto* tab = new QWidget(this);
    auto* layout = new QVBoxLayout(tab);
    auto* group = new QGroupBox(QStringLiteral("Messages"), tab);
    group->setObjectName(QStringLiteral("rgVerbosity"));
    auto* groupLayout = new QVBoxLayout(group);
    const char* const items[] = {"&Errors only", "&Limited", "&Extensive", "&All"};
    for (int i = 0; i < 4; ++i) {
        rgVerbosity[i] = new QRadioButton(QString::fromLatin1(items[i]), group);
        rgVerbosity[i]->setObjectName(QStringLiteral("rgVerbosity%1").arg(i));
        groupLayout->addWidget(rgVerbosity[i]);
    }
    layout->addWidget(group);
    cbHaltOnError = NamedCheckBox("cbHaltOnError", "&Halt on errors", tab);
    cbOptimizer = NamedCheckBox("cbOptimizer", "Enable &Optimizer", tab);
    cbFastScanner = NamedCheckBox("cbFastScanner", "Use Fast Scanner", tab);
    layout->addWidget(cbHaltOnError);
    layout->addWidget(cbOptimizer);
    cbAllowOutputAnywhere = NamedCheckBox("cbAllowOutputAnywhere", "Allow output anywhere", tab);
    cbAllowOutputAnywhere->setToolTip(QStringLiteral(
        "Let a unit write its files outside its own folder, the program's folder and the named "
        "folders"));
    layout->addWidget(cbFastScanner);
    layout->addWidget(cbAllowOutputAnywhere);
    layout->addStretch();
    return tab;
}

QWidget* TfrmSettings::CreatePluginsTab() {
    auto* tab = new QWidget(this);
    auto* layout = new QVBoxLayout(tab);
    auto* text = new QLabel(
        QStringLiteral("Select which plugins you want to load automatically at the start of Velkor."), tab);
    text->setWordWrap(true);
    layout->addWidget(text);
    clbPlugins = new QListWidget(tab);
    clbPlugins->setObjectName(QStringLiteral("clbPlugins"));
    layout->addWidget(clbPlugins);
    return tab;
}

QWidget* TfrmSettings::CreateEditorTab() {
    auto* tab = new QWidget(this);
    auto* layout = new QVBoxLayout(tab);
    cbDisableIntelligence = NamedCheckBox("cbDisableIntelligence", "disable smart &hints", tab);
    cbAutosave = NamedCheckBox("cbAutosave", "&save before compile", tab);
    cbDisableParamHint = NamedCheckBox("cbDisableParamHint", "disable parameter &hints", tab);
    layout->addWidget(cbDisableIntelligence);
    layout->addWidget(cbAutosave);
    layout->addWidget(cbDisableParamHint);
    layout->addStretch();
    // Parameter hints are part of code assistance: switching it off switches them off too.
    connect(cbDisableIntelligence, &QCheckBox::toggled, this, [this](bool off) {
        cbDisableParamHint->setEnabled(!off);
        if (off) cbDisableParamHint->setChecked(true);
    });
    return tab;
}

QWidget* TfrmSettings::CreateDecoderTab() {
    auto* tab = new QWidget(this);
    auto* layout = new QVBoxLayout(tab);
    auto* row = new QHBoxLayout;
    row->addWidget(new QLabel(QStringLiteral("MaxDecodeSize ="), tab));
    EditMaxDecodeSize = new QLineEdit(tab);
    EditMaxDecodeSize->setObjectName(QStringLiteral("EditMaxDecodeSize"));
    row->addWidget(EditMaxDecodeSize);
    row->addWidget(new QLabel(QStringLiteral("bytes"), tab));
    row->addStretch();
    layout->addLayout(row);
    auto* group = new QGroupBox(QStringLiteral("Special Decoders"), tab);
    auto* groupLayout = new QVBoxLayout(group);
    cklbSpecialDecoders = new QListWidget(group);
    cklbSpecialDecoders->setObjectName(QStringLiteral("cklbSpecialDecoders"));
    groupLayout->addWidget(cklbSpecialDecoders);
    layout->addWidget(group);
    cbDisassemble = NamedCheckBox("cbDisassemble", "Show script functions as listings", tab);
    layout->addWidget(cbDisassemble);
    cbSeparateThread = NamedCheckBox("cbSeparateThread", "Decode in separate thread", tab);
    cbSeparateProcess = NamedCheckBox("cbSeparateProcess", "Decode in separate process", tab);
    layout->addWidget(cbSeparateThread);
    layout->addWidget(cbSeparateProcess);
    connect(cbSeparateProcess, &QCheckBox::toggled, this, [this](bool process) {
        cbSeparateThread->setEnabled(!process);
        if (process) cbSeparateThread->setChecked(false);
    });
    return tab;
}

void TfrmSettings::BrowseSoPath() {
    const QString folder = DialogHooks().PickFolder(this, EditSoPath->text());
    if (!folder.isEmpty()) EditSoPath->setText(folder);
}

void TfrmSettings::ReadSettings() {
    const TIniFile ini = IdeIni();
    EditSoPath->setText(ToQ(ini.ReadString("main", "sopath", GameFolderSecretOps())));
    cbRestoreSession->setChecked(ini.ReadBool("main", "restore_session", true));
    EditMaxDecodeSize->setText(QString::number(ini.ReadInteger("iffd", "maxdecodesize", 1024)));

    const std::vector<std::string> autoload = ini.ReadSection("autoloadext");
    for (const std::string& file : PluginFiles()) {
        const std::string path = ExecutableFolder() + file;
        const bool listed = std::any_of(autoload.begin(), autoload.end(), [&](const std::string& key) {
            return key == path || SameText(key, file);
        });
        auto* item = new QListWidgetItem(ToQ(file), clbPlugins);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(listed ? Qt::Checked : Qt::Unchecked);
    }

    cbDisableIntelligence->setChecked(ini.ReadBool("editor", "disable_intelligence", false));
    cbAutosave->setChecked(ini.ReadBool("editor", "autosave", false));
    // After the code-assistance box, whose rule may have checked and disabled this one.
    if (cbDisableParamHint->isEnabled())
        cbDisableParamHint->setChecked(ini.ReadBool("editor", "disable_paramhint", false));

    for (const TSpecialDecoderState& decoder : SpecialDecoders()) {
        auto* item = new QListWidgetItem(ToQ(decoder.Name), cklbSpecialDecoders);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(ini.ReadInteger("iffd", decoder.Name, -1) != 0 ? Qt::Checked : Qt::Unchecked);
    }
    cbDisassemble->setChecked(ini.ReadBool("iffd", kDisassembleKey, true));
    cbSeparateThread->setChecked(ini.ReadBool("iffd", "UseSeparateThread", false));
    cbSeparateProcess->setChecked(false);
    cbSeparateThread->setEnabled(!cbSeparateProcess->isChecked());

    const int verbosity = ini.ReadInteger("compiler", "verbosity", 0);
    if (verbosity >= 0 && verbosity < 4) rgVerbosity[verbosity]->setChecked(true);
    cbHaltOnError->setChecked(ini.ReadBool("compiler", "haltonerror", true));
    cbOptimizer->setChecked(ini.ReadBool("compiler", "optimization", true));
    cbFastScanner->setChecked(ini.ReadBool("compiler", "fast_scanner", false));
    cbAllowOutputAnywhere->setChecked(ini.ReadBool("compiler", kAllowOutputAnywhereKey, false));
}

void TfrmSettings::WriteSettings() {
    TIniFile ini = IdeIni();
    ini.WriteString("main", "sopath", FromQ(EditSoPath->text()));
    ini.WriteBool("main", "restore_session", cbRestoreSession->isChecked());
    ini.WriteInteger("iffd", "maxdecodesize", StrToIntDef(FromQ(EditMaxDecodeSize->text().trimmed()), 1024));

    ini.EraseSection("autoloadext");
    for (int i = 0; i < clbPlugins->count(); ++i) {
        const QListWidgetItem* item = clbPlugins->item(i);
        if (item->checkState() == Qt::Checked)
            ini.WriteString("autoloadext", ExecutableFolder() + FromQ(item->text()), "1");
    }

    for (int i = 0; i < cklbSpecialDecoders->count(); ++i) {
        const QListWidgetItem* item = cklbSpecialDecoders->item(i);
        const bool enabled = item->checkState() == Qt::Checked;
        ini.WriteInteger("iffd", FromQ(item->text()), enabled ? 1 : 0);
        EnableSpecialDecoder(FromQ(item->text()), enabled);
    }
    ini.WriteBool("iffd", kDisassembleKey, cbDisassemble->isChecked());
    ini.WriteBool("iffd", "UseSeparateThread", cbSeparateThread->isChecked());
    ini.WriteBool("iffd", "UseSeparateProcess", cbSeparateProcess->isChecked());

    ini.WriteBool("editor", "disable_intelligence", cbDisableIntelligence->isChecked());
    ini.WriteBool("editor", "autosave", cbAutosave->isChecked());
    ini.WriteBool("editor", "disable_paramhint", cbDisableParamHint->isChecked());

    int verbosity = 0;
    for (int i = 0; i < 4; ++i) {
        if (rgVerbosity[i]->isChecked()) verbosity = i;
    }
    ini.WriteInteger("compiler", "verbosity", verbosity);
    ini.WriteBool("compiler", "haltonerror", cbHaltOnError->isChecked());
    ini.WriteBool("compiler", "optimization", cbOptimizer->isChecked());
    ini.WriteBool("compiler", "fast_scanner", cbFastScanner->isChecked());
    ini.WriteBool("compiler", kAllowOutputAnywhereKey, cbAllowOutputAnywhere->isChecked());
    SetScannerClass(cbFastScanner->isChecked() ? ScannerClass::Fast : ScannerClass::Standard);
    ini.UpdateFile();
}

} // namespace velkor
