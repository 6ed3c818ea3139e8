// TfrmSettings: the settings dialog. It reads the settings file when created and writes it on OK and
// Apply; Cancel closes without writing.
#pragma once

#include <QDialog>

class QCheckBox;
class QLineEdit;
class QListWidget;
class QRadioButton;
class QTabWidget;

namespace velkor {

class TfrmSettings : public QDialog {
    Q_OBJECT

public:
    explicit TfrmSettings(QWidget* parent = nullptr);

    // Writes every setting, applies the decoder flags and the scanner class at once.
    void WriteSettings();

    // Controls by their object names, for the main window and tests.
    QLineEdit* EditSoPath;
    QCheckBox* cbRestoreSession; // reopen the last session's pages and docks at start
    QRadioButton* rgVerbosity[4];
    QCheckBox* cbHaltOnError;
    QCheckBox* cbOptimizer;
    QCheckBox* cbFastScanner;
    QCheckBox* cbAllowOutputAnywhere; // lifts the confinement of the files a unit names
    QListWidget* clbPlugins;
    QCheckBox* cbDisableIntelligence;
    QCheckBox* cbAutosave;
    QCheckBox* cbDisableParamHint;
    QLineEdit* EditMaxDecodeSize;
    QListWidget* cklbSpecialDecoders;
    QCheckBox* cbSeparateThread;
    QCheckBox* cbSeparateProcess;
    QCheckBox* cbDisassemble;
    QTabWidget* Pages;

private:
    QWidget* CreateGeneralTab();
    QWidget* CreateCompilerTab();
    QWidget* CreatePluginsTab();
    QWidget* CreateEditorTab();
    QWidget* CreateDecoderTab();
    void ReadSettings();
    void BrowseSoPath();
};

} // namespace velkor
