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
    // The dialog's option boxes in a fixed order.
    static std::vector<QAbstractButton*> Boxes(TfrmSettings& d) {
        return {d.cbHaltOnError,         d.cbOptimizer,       d.cbFastScanner,
                d.cbDisableIntelligence, d.cbAutosave,        d.cbDisableParamHint,
                d.cbSeparateThread,      d.cbSeparateProcess, d.cbDisassemble};
    }
};

TEST_F(SettingsTest, TabsAndTexts) {
    TfrmSettings dialog;
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Settings"));
    QStringList tabs;
    for (int i = 0; i < dialog.Pages->count(); ++i) tabs << dialog.Pages->tabText(i);
    EXPECT_EQ(tabs, (QStringList{"General", "Compiler", "Plugins", "Editor", "Iff Decoder"}));
    QStringList texts;
    for (const char* name : {"btnOK", "btnApply", "btnCancel"}) texts << Button(dialog, name)->text();
    for (QRadioButton* level : dialog.rgVerbosity) texts << level->text();
    for (QAbstractButton* box : Boxes(dialog)) texts << box->text();
    EXPECT_EQ(texts,
              (QStringList{"OK", "&Apply", "&Cancel", "&Errors only", "&Limited", "&Extensive", "&All",
                           "&Halt on errors", "Enable &Optimizer", "Use Fast Scanner", "disable smart &hints",
                           "&save before compile", "disable parameter &hints", "Decode in separate thread",
                           "Decode in separate process", "Show script functions as listings"}));
    QStringList labels;
    for (const QLabel* label : dialog.findChildren<QLabel*>()) labels << label->text();
    for (const char* label : {"Specify the root directory of your SO installation. That is the directory "
                              "that contains the game\\, "
                              "mission\\, etc... sub-directories.",
                              "Select which plugins you want to load automatically at the start of Velkor.",
                              "MaxDecodeSize =", "bytes"})
        EXPECT_TRUE(labels.contains(QString::fromUtf8(label))) << label;
}

TEST_F(SettingsTest, AFreshFileShowsTheDialogDefaults) {
    WriteFile(RegistryPath(),
              "[Software\\Origin Systems\\Wing Commander Secret Ops]\r\nInstalled To:=/games/so\\\r\n");
    TfrmSettings dialog;
    EXPECT_EQ(dialog.EditSoPath->text(), QStringLiteral("/games/so"));
    EXPECT_EQ(dialog.EditMaxDecodeSize->text(), QStringLiteral("1024"));
    EXPECT_TRUE(dialog.rgVerbosity[0]->isChecked());
    std::vector<bool> checked;
    for (QAbstractButton* box : Boxes(dialog)) checked.push_back(box->isChecked());
    EXPECT_EQ(checked, (std::vector<bool>{true, true, false, false, false, false, false, false, true}));
    EXPECT_TRUE(dialog.cbSeparateThread->isEnabled());
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
    const std::vector<bool> set = {false, false, true, false, true, false, true, false, false};
    for (std::size_t i = 0; i < set.size(); ++i) Boxes(dialog)[i]->setChecked(set[i]);
    dialog.cklbSpecialDecoders->item(4)->setCheckState(Qt::Unchecked); // VERT
    Button(dialog, "btnApply")->click();

    const TIniFile ini(IniPath());
    const char* const written[][3] = {{"main", "sopath", "/so"},
                                      {"iffd", "maxdecodesize", "1024"},
                                      {"iffd", "VERT", "0"},
                                      {"iffd", "VTNM", "1"},
                                      {"iffd", "UseSeparateThread", "1"},
                                      {"iffd", "UseSeparateProcess", "0"},
                                      {"iffd", "disassemble", "0"},
                                      {"editor", "autosave", "1"},
                                      {"editor", "disable_intelligence", "0"},
                                      {"editor", "disable_paramhint", "0"},
                                      {"compiler", "verbosity", "2"},
                                      {"compiler", "haltonerror", "0"},
                                      {"compiler", "optimization", "0"},
                                      {"compiler", "fast_scanner", "1"}};
    for (const auto& [section, key, value] : written)
        EXPECT_EQ(ini.ReadString(section, key, ""), value) << key;
    EXPECT_EQ(GetScannerClass(), ScannerClass::Fast);
    EXPECT_FALSE(SpecialDecoders()[4].Enabled);
    EXPECT_TRUE(SpecialDecoders()[5].Enabled);

    // Read back by a new dialog.
    TfrmSettings again;
    EXPECT_EQ(again.EditSoPath->text(), QStringLiteral("/so"));
    EXPECT_TRUE(again.rgVerbosity[2]->isChecked());
    for (std::size_t i = 0; i < set.size(); ++i) EXPECT_EQ(Boxes(again)[i]->isChecked(), set[i]) << i;
    EXPECT_EQ(again.cklbSpecialDecoders->item(4)->checkState(), Qt::Unchecked);
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
    for (const char* file : {"b_ext.so", "a_ext.so", "notes.txt"}) WriteFile(Dir() / file, "");
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
