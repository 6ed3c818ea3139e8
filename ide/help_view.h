// The help view: the language's HTML pages under a help root, a local folder or a web address.
#pragma once

#include "ide/dockable_view.h"

#include <string>

class QTextBrowser;

namespace velkor {

class TfrmHelp : public TDockableView {
    Q_OBJECT

public:
    explicit TfrmHelp(QWidget* parent);

    // Shows root + name: a local page in the view, a web page in the desktop's browser.
    void ShowPage(const std::string& name);
    // The page "help/<word>.html".
    void ShowTopic(const std::string& word);

    // Ends in a separator; read from the settings at creation.
    const std::string& HelpRoot() const { return root_; }
    // The address last shown (a local file or a web address).
    const std::string& CurrentPage() const { return current_; }
    QTextBrowser* Browser() const { return browser_; }

private:
    QTextBrowser* browser_; // the page, owned as a child
    std::string root_;      // help root with a trailing separator
    std::string current_;   // last page shown
};

// The shipped pages: "docs/help/" beside the executable, else the build folder's (for programs built
// elsewhere in the tree), else the first.
std::string DefaultHelpRoot();

} // namespace velkor
