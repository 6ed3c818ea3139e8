// Every modal question the IDE asks goes through these hooks, so that tests answer them without a modal
// loop and the rest of the IDE never calls a dialog class directly.
#pragma once

#include "editor/search_options.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

class QDialog;
class QInputDialog;
class QWidget;

namespace velkor {

enum class TMsgAnswer { Yes, No, Cancel };

// What a file dialog shows. Filters are written as "Description (*.a)|*.a|Other (*.b)|*.b".
struct TFileDialogRequest {
    QString Caption;      // window title; empty for the toolkit's default
    QString Filter;       // description|pattern pairs separated by "|"
    QString DefaultExt;   // appended to a typed name without extension, e.g. ".pas"
    QString InitialDir;   // folder shown first; empty for the current one
    QString ProposedName; // file name put into the name box
};

struct TDialogHooks {
    // Yes, No, Cancel confirmation.
    std::function<TMsgAnswer(QWidget* parent, const QString& text)> AskYesNoCancel;
    // Before a replacement: Yes, No, Cancel or Yes to all for the selected match `found`.
    std::function<TReplaceAnswer(QWidget* parent, const QString& found)> AskReplace;
    // An information message with OK.
    std::function<void(QWidget* parent, const QString& text)> ShowMessage;
    // One existing file, or empty when cancelled.
    std::function<QString(QWidget* parent, const TFileDialogRequest& request)> OpenFile;
    // Several existing files in the dialog's order, or none when cancelled.
    std::function<QStringList(QWidget* parent, const TFileDialogRequest& request)> OpenFiles;
    // A file to write (no overwrite prompt), or empty when cancelled.
    std::function<QString(QWidget* parent, const TFileDialogRequest& request)> SaveFile;
    // A folder, or empty when cancelled.
    std::function<QString(QWidget* parent, const QString& start)> PickFolder;
    // A number typed by the user, or nothing when cancelled.
    std::function<std::optional<int>(QWidget* parent, const QString& caption, const QString& label,
                                     int value)>
        AskInteger;
    // Runs a dialog modally and returns its result code.
    std::function<int(QDialog& dialog)> ExecModal;
    // Opens an address in the desktop's browser.
    std::function<void(const QString& url)> OpenUrl;
};

// The process-wide hooks; every one starts as the real dialog.
TDialogHooks& DialogHooks();
// Puts the real dialogs back.
void ResetDialogHooks();

// The number prompt of AskInteger: wide enough for its caption in the window title at any font size.
std::unique_ptr<QInputDialog> MakeIntegerDialog(QWidget* parent, const QString& caption, const QString& label,
                                                int value);

// "Pascal File (*.pas)|*.pas" -> "Pascal File (*.pas)" in the toolkit's filter syntax.
QString ToQtFilter(const QString& filter);

} // namespace velkor
