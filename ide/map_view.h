// The map view: the game objects of the last compiled mission or sector, or of the active page when it
// holds textual IFF (a decoded .mis or .sec file), drawn at their positions. Double-clicking an object
// goes to its declaration, or to its FORM "OBJ_" line in the textual IFF.
#pragma once

#include "ide/dockable_view.h"

#include <QPointer>

class QActionGroup;
class QTimer;

namespace velkor {

class TfrmEdit;
class TfrmMain;
class TMapCanvas;

class TfrmMapView : public TDockableView {
    Q_OBJECT

public:
    explicit TfrmMapView(TfrmMain& main);

    TMapCanvas* Canvas() const { return canvas_; }
    // Reads the objects again from what the map follows: the active page when it is textual IFF, else
    // the IFF view's text of the last compile. A hidden view only notes that it must read them when shown.
    void Refresh();
    // Goes to the text the object came from.
    void GotoObject(int object);
    // The page the objects were read from (the compiled page, or the page of textual IFF); null if none.
    TfrmEdit* ShownPage() const;
    bool ShowsPageText() const { return fromPageText_; }

protected:
    void showEvent(QShowEvent* event) override;

private:
    void ScheduleRefresh();
    void GotoDeclaration(int object);

    TfrmMain& main_;
    TMapCanvas* canvas_;              // owned as a child
    QTimer* refresh_;                 // gathers a burst of changes into one refresh
    QPointer<TfrmEdit> compiledPage_; // the page active when the IFF view's text last changed
    QPointer<TfrmEdit> shownPage_;    // see ShownPage()
    bool fromPageText_ = false;       // the objects came from the page's own text
    bool pending_ = true;             // a refresh is owed
};

} // namespace velkor
