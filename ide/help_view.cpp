#include "ide/help_view.h"

#include "ide/ide_dialogs.h"
#include "ide/ide_ini.h"
#include "platform/executable_path.h"
#include "platform/path_resolver.h"
#include "platform/strings.h"

#include <QTextBrowser>
#include <QUrl>

#include <filesystem>

namespace velkor {

namespace {

bool IsWebAddress(std::string_view root) {
    const std::string lower = LowerCase(root);
    return lower.starts_with("http://") || lower.starts_with("https://");
}

std::string WithSeparator(std::string folder) {
    if (!folder.empty() && folder.back() != '/' && folder.back() != '\\') folder += '/';
    return folder;
}

} // namespace

std::string DefaultHelpRoot() {
    std::error_code ec;
    const std::string beside = ExecutableFolder() + "docs/help/";
    if (std::filesystem::is_directory(beside, ec)) return beside;
#ifdef VELKOR_BUILT_HELP_DIR
    const std::string built = WithSeparator(VELKOR_BUILT_HELP_DIR);
    if (std::filesystem::is_directory(built, ec)) return built;
#endif
    return beside;
}

TfrmHelp::TfrmHelp(QWidget* parent)
    : TDockableView(QStringLiteral("frmHelp"), QStringLiteral("Help"), parent),
      browser_(new QTextBrowser(this)) {
    browser_->setObjectName(QStringLiteral("Browser"));
    browser_->setOpenExternalLinks(false);
    connect(browser_, &QTextBrowser::anchorClicked, this, [this](const QUrl& url) {
        if (url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https"))
            DialogHooks().OpenUrl(url.toString());
        else
            browser_->setSource(url);
    });
    setWidget(browser_);
    root_ = WithSeparator(IdeIni().ReadString("help", "root", DefaultHelpRoot()));
}

void TfrmHelp::ShowPage(const std::string& name) {
    current_ = root_ + name;
    if (IsWebAddress(root_)) {
        DialogHooks().OpenUrl(ToQ(current_));
        return;
    }
    if (const auto found = FindExisting(current_)) {
        current_ = found->string();
        browser_->setSource(QUrl::fromLocalFile(ToQ(current_)));
    } else {
        browser_->setHtml(
            QStringLiteral("<p>There is no help page <b>%1</b>.</p>").arg(ToQ(name).toHtmlEscaped()));
    }
    BringToFront();
}

void TfrmHelp::ShowTopic(const std::string& word) {
    ShowPage("help/" + word + ".html");
}

} // namespace velkor
