#include "ide/map_view.h"

#include "compiler/compiler.h"
#include "ide/edit_page.h"
#include "ide/ide_ini.h"
#include "ide/iff_view.h"
#include "ide/main_window.h"
#include "ide/map_canvas.h"
#include "ide/map_links.h"
#include "iff/map_from_text.h"
#include "platform/strings.h"
#include "platform/text_file.h"

#include <QAction>
#include <QActionGroup>
#include <QTabWidget>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>

#include <algorithm>
#include <filesystem>

namespace velkor {

namespace {

// Typing in the IFF view changes its text at every key; the map reads it once the typing pauses.
constexpr int kRefreshDelayMs = 250;

std::filesystem::path FolderOf(const TfrmEdit* page) {
    if (!page) return {};
    return std::filesystem::path(page->FileName()).parent_path();
}

QString FileCaption(const std::string& fileName, std::size_t count) {
    const QString name = ToQ(std::filesystem::path(fileName).filename().string());
    return QStringLiteral("%1 (%2 %3)").arg(name).arg(count).arg(count == 1 ? "object" : "objects");
}

// Line `line` (from 1) of a text with any line breaks.
std::string LineOf(const QString& text, int line) {
    const QStringList lines = text.split(u'\n');
    if (line < 1 || line > lines.size()) return {};
    return FromQ(lines[line - 1]);
}

} // namespace

TfrmMapView::TfrmMapView(TfrmMain& main)
    : TDockableView(QStringLiteral("frmMapView"), QStringLiteral("Map"), &main), main_(main),
      canvas_(new TMapCanvas(this)), refresh_(new QTimer(this)) {
    auto* content = new QWidget(this);
    auto* layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    auto* tools = new QToolBar(content);
    tools->setObjectName(QStringLiteral("MapTools"));
    tools->setIconSize(QSize(12, 12));
    auto* modes = new QActionGroup(this);
    auto addMode = [&](const char* name, const QString& caption, TMapCanvas::Mode mode) {
        QAction* action = tools->addAction(caption);
        action->setObjectName(QString::fromLatin1(name));
        action->setCheckable(true);
        action->setChecked(mode == canvas_->CurrentMode());
        modes->addAction(action);
        connect(action, &QAction::triggered, this, [this, mode] { canvas_->SetMode(mode); });
    };
    addMode("MapTop", QStringLiteral("Top"), TMapCanvas::Mode::Top);
    addMode("MapSide", QStringLiteral("Side"), TMapCanvas::Mode::Side);
    addMode("MapBoth", QStringLiteral("Both"), TMapCanvas::Mode::Both);
    tools->addSeparator();
    QAction* fit = tools->addAction(QStringLiteral("Fit"));
    fit->setObjectName(QStringLiteral("MapFit"));
    connect(fit, &QAction::triggered, canvas_, &TMapCanvas::Fit);
    layout->addWidget(tools);
    layout->addWidget(canvas_, 1);
    setWidget(content);

    refresh_->setSingleShot(true);
    refresh_->setInterval(kRefreshDelayMs);
    connect(refresh_, &QTimer::timeout, this, &TfrmMapView::Refresh);
    connect(&main_.IffView(), &TfrmIffView::TextChanged, this, [this] {
        compiledPage_ = main_.ActivePage();
        ScheduleRefresh();
    });
    connect(main_.PageControlEditor(), &QTabWidget::currentChanged, this, &TfrmMapView::ScheduleRefresh);
    connect(canvas_, &TMapCanvas::ObjectActivated, this, &TfrmMapView::GotoObject);
}

TfrmEdit* TfrmMapView::ShownPage() const {
    return shownPage_;
}

void TfrmMapView::ScheduleRefresh() {
    pending_ = true;
    if (isVisible()) refresh_->start();
}

void TfrmMapView::showEvent(QShowEvent* event) {
    TDockableView::showEvent(event);
    if (pending_) refresh_->start();
}

void TfrmMapView::Refresh() {
    refresh_->stop();
    pending_ = false;
    TfrmEdit* page = main_.ActivePage();
    TMapSource source;
    if (page && IsTextualIff(FromQ(page->Text()))) {
        source = MapObjectsFromText(FromQ(page->Text()), FolderOf(page));
        shownPage_ = page;
        fromPageText_ = true;
    } else if (const std::string text = main_.IffView().TextUtf8(); !Trim(text).empty()) {
        source = MapObjectsFromText(text, FolderOf(compiledPage_));
        shownPage_ = compiledPage_;
        fromPageText_ = false;
    } else {
        shownPage_ = nullptr;
        canvas_->SetMessage(
            QStringLiteral("Compile a mission or sector, or open a decoded .mis or .sec file, "
                           "to see its objects here."));
        return;
    }
    if (source.objects.empty()) {
        canvas_->SetMessage(
            source.errors.empty()
                ? QStringLiteral("No game objects to show.")
                : QStringLiteral("The text does not assemble:\n%1").arg(ToQ(source.errors.front())));
        return;
    }
    if (std::none_of(source.objects.begin(), source.objects.end(),
                     [](const TMapObject& o) { return o.Placed; })) {
        canvas_->SetMessage(QStringLiteral("No object has a position."));
        return;
    }
    const std::size_t count = source.objects.size();
    canvas_->SetObjects(std::move(source.objects), FileCaption(source.fileName, count));
}

void TfrmMapView::GotoObject(int object) {
    const auto& objects = canvas_->Objects();
    if (object < 0 || static_cast<std::size_t>(object) >= objects.size() || !shownPage_) return;
    if (!fromPageText_) {
        GotoDeclaration(object);
        return;
    }
    TfrmEdit& page = *shownPage_;
    const int line = ObjectFormLine(FromQ(page.Text()), objects[static_cast<std::size_t>(object)].Ordinal);
    if (line < 0) return;
    main_.ActivatePage(page);
    page.Memo()->SetCaret(line, 0);
    page.Memo()->setFirstVisibleLine(std::max(0, line - 5));
}

void TfrmMapView::GotoDeclaration(int object) {
    TfrmEdit* page = shownPage_;
    if (!page->Symbols()) return;
    const TMapObject& target = canvas_->Objects()[static_cast<std::size_t>(object)];
    const auto lineOf = [this](int fileNumber, int line) {
        const std::string file = FileNameOf(fileNumber);
        if (TfrmEdit* open = main_.FindPage(file)) return LineOf(open->Text(), line);
        try {
            return LineOf(ToQ(LoadTextFile(file)), line);
        } catch (const std::exception&) {
            return std::string();
        }
    };
    const auto symbol = ObjectDeclaration(*page->Symbols(), target, lineOf);
    if (!symbol) {
        main_.Output("No declaration of object " + target.Name + " found");
        return;
    }
    const std::string file = FileNameOf(symbol->FileNumber);
    TfrmEdit* declaring = file.empty() ? page : main_.FindPage(file);
    if (!declaring) declaring = main_.OpenFile(file, true);
    if (!declaring) return;
    main_.ActivatePage(*declaring);
    declaring->Memo()->SetCaret(std::max(0, symbol->Line - 1), 0);
    declaring->Memo()->setFirstVisibleLine(std::max(0, symbol->Line - 1 - 5));
}

} // namespace velkor
