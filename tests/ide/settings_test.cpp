// The settings dialog: what it shows for a fresh and a written settings file, its control rules, and
// what OK and Apply write.
#include "ide/iff_decode.h"
#include "ide/settings_dialog.h"
#include "platform/executable_path.h"
#include "platform/ini_file.h"
#include "scanner/scanner.h"
#include "tests/ide/ide_test_support.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>

namespace velkor::test {
namespace {

class SettingsTest : public IdeTest {
protected:
    void TearDown() override {
        SetExecutableFolderForTesting("");
        for (const auto& decoder : SpecialDecoders()) EnableSpecialDecoder(decoder.Name, true);
        IdeTest::TearDown();
    }
    QPushButton* Button(TfrmSettings& dialog, const char* name) {
        return dialog.findChild<QPushButton*>(QString::fromLatin1(name));
    }
};

TEST_F(SettingsTest, TabsAndTexts) {
    TfrmSettings dialog;
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Settings"));
    ASSERT_EQ(dialog.Pages->count(), 5);
    const QStringList tabs{"General", "Compiler", "Plugins", "Editor", "Iff Decoder"};
    for (int i = 0; i < 5; ++i) EXPECT_EQ(dialog.Pages->tabText(i), tabs[i]);
    EXPECT_EQ(Button(dialog, "btnOK")->text(), QStringLiteral("OK"));
    EXPECT_EQ(Button(dialog, "btnApply")->text(), QStringLiteral("&Apply"));
    EXPECT_EQ(Button(dialog, "btnCancel")->text(), QStringLiteral("&Cancel"));
    const QStringList verbosity{"&Errors only", "&Limited", "&Extensive", "&All"};
    for (int i = 0; i < 4; ++i) EXPECT_EQ(dialog.rgVerbosity[i]->text(), verbosity[i]);
    EXPECT_EQ(dialog.cbHaltOnError->text(), QStringLiteral("&Halt on errors"));
    EXPECT_EQ(dialog.cbOptimizer->text(), QStringLiteral("Enable &Optimizer"));
    EXPECT_EQ(dialog.cbFastScanner->text(), QStringLiteral("Use Fast Scanner"));
    EXPECT_EQ(dialog.cbDisableIntelligence->text(), QStringLiteral("disable smart &hints"));
    EXPECT_EQ(dialog.cbAutosave->text(), QStringLiteral("&save before compile"));
    EXPECT_EQ(dialog.cbDisableParamHint->text(), QStringLiteral("disable parameter &hints"));
    EXPECT_EQ(dialog.cbSeparateThread->text(), QStringLiteral("Decode in separate thread"));
    EXPECT_EQ(dialog.cbSeparateProcess->text(), QStringLiteral("Decode in separate process"));
    EXPECT_EQ(dialog.cbDisassemble->text(), QStringLiteral("Show script functions as listings"));
    QStringList labels;
    for (const QLabel* label : dialog.findChildren<QLabel*>()) labels << label->text();
    EXPECT_TRUE(labels.contains(QStringLiteral(
        "Specify the root directory of your SO installation. That is the directory that contains the game\\, "
        "mission\\, etc... sub-directories.")));
    EXPECT_TRUE(labels.contains(
        QStringLiteral("Select which plugins you want to load automatically at the start of Velkor.")));
    EXPECT_TRUE(labels.contains(QStringLiteral("MaxDecodeSize =")));
    EXPECT_TRUE(labels.contains(QStringLiteral("bytes")));
}

TEST_F(SettingsTest, AFreshFileShowsTheDialogDefaults) {
    WriteFile(RegistryPath(),
              "[Software\\Origin Systems\\Wing Commander Secret Ops]\r\nInstalled To:=/games/so\\\r\n");
    TfrmSettings dialog;
    EXPECT_EQ(dialog.EditSoPath->text(), QStringLiteral("/games/so"));
    EXPECT_EQ(dialog.EditMaxDecodeSize->text(), QStringLiteral("1024"));
    EXPECT_TRUE(dialog.rgVerbosity[0]->isChecked());
    EXPECT_TRUE(dialog.cbHaltOnError->isChecked());
    EXPECT_TRUE(dialog.cbOptimizer->isChecked());
    EXPECT_FALSE(dialog.cbFastScanner->isChecked());
    EXPECT_FALSE(dialog.cbDisableIntelligence->isChecked());
    EXPECT_FALSE(dialog.cbAutosave->isChecked());
    EXPECT_FALSE(dialog.cbDisableParamHint->isChecked());
    EXPECT_FALSE(dialog.cbSeparateThread->isChecked());
    EXPECT_TRUE(dialog.cbSeparateThread->isEnabled());
    EXPECT_FALSE(dialog.cbSeparateProcess->isChecked());
    EXPECT_TRUE(dialog.cbDisassemble->isChecked());
    ASSERT_EQ(dialog.cklbSpecialDecoders->count(), 14);
    EXPECT_EQ(dialog.cklbSpecialDecoders->item(0)->text(), QStringLiteral("SHIP, CAPS, CMIS"));
    EXPECT_EQ(dialog.cklbSpecialDecoders->item(13)->text(), QStringLiteral("MISS/DATA"));
    for (int i = 0; i < dialog.cklbSpecialDecoders->count(); ++i)
        EXPECT_EQ(dialog.cklbSpecialDecoders->item(i)->checkState(), Qt::Checked);
    // Nothing is written until OK or Apply.
    EXPECT_FALSE(std::filesystem::exists(IniPath()));
}

TEST_F(SettingsTest, ApplyWritesEveryKeyAndOkToo) {
    TfrmSettings dialog;
    dialog.EditSoPath->setText(QStringLiteral("/so"));
    dialog.EditMaxDecodeSize->setText(QStringLiteral("abc"));
    dialog.rgVerbosity[2]->setChecked(true);
    dialog.cbHaltOnError->setChecked(false);
    dialog.cbOptimizer->setChecked(false);
    dialog.cbFastScanner->setChecked(true);
    dialog.cbAutosave->setChecked(true);
    dialog.cbSeparateThread->setChecked(true);
    dialog.cbDisassemble->setChecked(false);
    dialog.cklbSpecialDecoders->item(4)->setCheckState(Qt::Unchecked); // VERT
    Button(dialog, "btnApply")->click();

    const TIniFile ini(IniPath());
    EXPECT_EQ(ini.ReadString("main", "sopath", ""), "/so");
    EXPECT_EQ(ini.ReadString("iffd", "maxdecodesize", ""), "1024");
    EXPECT_EQ(ini.ReadString("iffd", "VERT", ""), "0");
    EXPECT_EQ(ini.ReadString("iffd", "VTNM", ""), "1");
    EXPECT_EQ(ini.ReadString("iffd", "UseSeparateThread", ""), "1");
    EXPECT_EQ(ini.ReadString("iffd", "UseSeparateProcess", ""), "0");
    EXPECT_EQ(ini.ReadString("iffd", "disassemble", ""), "0");
    EXPECT_EQ(ini.ReadString("editor", "autosave", ""), "1");
    EXPECT_EQ(ini.ReadString("editor", "disable_intelligence", ""), "0");
    EXPECT_EQ(ini.ReadString("editor", "disable_paramhint", ""), "0");
    EXPECT_EQ(ini.ReadString("compiler", "verbosity", ""), "2");
    EXPECT_EQ(ini.ReadString("compiler", "haltonerror", ""), "0");
    EXPECT_EQ(ini.ReadString("compiler", "optimization", ""), "0");
    EXPECT_EQ(ini.ReadString("compiler", "fast_scanner", ""), "1");
    EXPECT_EQ(GetScannerClass(), ScannerClass::Fast);
    EXPECT_FALSE(SpecialDecoders()[4].Enabled);
    EXPECT_TRUE(SpecialDecoders()[5].Enabled);

    // Read back by a new dialog.
    TfrmSettings again;
    EXPECT_EQ(again.EditSoPath->text(), QStringLiteral("/so"));
    EXPECT_TRUE(again.rgVerbosity[2]->isChecked());
    EXPECT_FALSE(again.cbOptimizer->isChecked());
    EXPECT_EQ(again.cklbSpecialDecoders->item(4)->checkState(), Qt::Unchecked);
    EXPECT_TRUE(again.cbSeparateThread->isChecked());
    EXPECT_FALSE(again.cbDisassemble->isChecked());
    again.rgVerbosity[3]->setChecked(true);
    Button(again, "btnCancel")->click();
    EXPECT_EQ(TIniFile(IniPath()).ReadInteger("compiler", "verbosity", -1), 2);
    TfrmSettings third;
    third.rgVerbosity[1]->setChecked(true);
    Button(third, "btnOK")->click();
    EXPECT_EQ(TIniFile(IniPath()).ReadInteger("compiler", "verbosity", -1), 1);
    EXPECT_EQ(third.result(), QDialog::Accepted);
}

TEST_F(SettingsTest, ControlRules) {
    TfrmSettings dialog;
    dialog.cbSeparateThread->setChecked(true);
    dialog.cbSeparateProcess->setChecked(true);
    EXPECT_FALSE(dialog.cbSeparateThread->isEnabled());
    EXPECT_FALSE(dialog.cbSeparateThread->isChecked());
    dialog.cbSeparateProcess->setChecked(false);
    EXPECT_TRUE(dialog.cbSeparateThread->isEnabled());

    dialog.cbDisableIntelligence->setChecked(true);
    EXPECT_FALSE(dialog.cbDisableParamHint->isEnabled());
    EXPECT_TRUE(dialog.cbDisableParamHint->isChecked());
    dialog.cbDisableIntelligence->setChecked(false);
    EXPECT_TRUE(dialog.cbDisableParamHint->isEnabled());

    // The process box always opens unchecked, whatever was stored.
    TIniFile(IniPath()).WriteBool("iffd", "UseSeparateProcess", true);
    TIniFile(IniPath()).WriteBool("editor", "disable_intelligence", true);
    TfrmSettings stored;
    EXPECT_FALSE(stored.cbSeparateProcess->isChecked());
    EXPECT_FALSE(stored.cbDisableParamHint->isEnabled());
    EXPECT_TRUE(stored.cbDisableParamHint->isChecked());
}

TEST_F(SettingsTest, PluginsTabListsTheLibrariesBesideTheExecutable) {
    SetExecutableFolderForTesting(Dir().string());
    WriteFile(Dir() / "b_ext.so", "");
    WriteFile(Dir() / "a_ext.so", "");
    WriteFile(Dir() / "notes.txt", "");
    TIniFile(IniPath()).WriteString("autoloadext", Path("b_ext.so"), "1");
    TIniFile(IniPath()).WriteString("autoloadext", "/elsewhere/gone.so", "1");
    TfrmSettings dialog;
    ASSERT_EQ(dialog.clbPlugins->count(), 2);
    EXPECT_EQ(dialog.clbPlugins->item(0)->text(), QStringLiteral("a_ext.so"));
    EXPECT_EQ(dialog.clbPlugins->item(0)->checkState(), Qt::Unchecked);
    EXPECT_EQ(dialog.clbPlugins->item(1)->checkState(), Qt::Checked);
    dialog.clbPlugins->item(0)->setCheckState(Qt::Checked);
    dialog.clbPlugins->item(1)->setCheckState(Qt::Unchecked);
    dialog.WriteSettings();
    // The section is rewritten: only the checked entries are left.
    EXPECT_EQ(TIniFile(IniPath()).ReadSection("autoloadext"), std::vector<std::string>{Path("a_ext.so")});
    EXPECT_EQ(TIniFile(IniPath()).ReadString("autoloadext", Path("a_ext.so"), ""), "1");
}

TEST_F(SettingsTest, ASpecialDecoderWithoutAKeyIsCheckedAndZeroUnchecks) {
    TIniFile(IniPath()).WriteInteger("iffd", "FACE", 0);
    TIniFile(IniPath()).WriteInteger("iffd", "NORM", 5);
    TfrmSettings dialog;
    for (int i = 0; i < dialog.cklbSpecialDecoders->count(); ++i) {
        const QListWidgetItem* item = dialog.cklbSpecialDecoders->item(i);
        EXPECT_EQ(item->checkState(), item->text() == QStringLiteral("FACE") ? Qt::Unchecked : Qt::Checked)
            << item->text().toStdString();
    }
    LoadSpecialDecoderFlags();
    for (const auto& decoder : SpecialDecoders())
        EXPECT_EQ(decoder.Enabled, decoder.Name != "FACE") << decoder.Name;
}

TEST_F(SettingsTest, BrowseFillsTheGameFolder) {
    DialogHooks().PickFolder = [](QWidget*, const QString& start) {
        return start + QStringLiteral("/chosen");
    };
    TfrmSettings dialog;
    dialog.EditSoPath->setText(QStringLiteral("/base"));
    dialog.findChild<QPushButton*>(QStringLiteral("btnBrowse"))->click();
    EXPECT_EQ(dialog.EditSoPath->text(), QStringLiteral("/base/chosen"));
}

} // namespace
} // namespace velkor::test
