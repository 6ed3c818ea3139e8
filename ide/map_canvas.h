// The map view's drawing surface: paints the map scene of the core, zooms with the wheel, pans by
// dragging, shows an object's description when the mouse rests on it and reports double-clicked objects.
#pragma once

#include "iff/map_scene.h"

#include <QWidget>

#include <optional>
#include <vector>

namespace velkor {

class TMapCanvas : public QWidget {
    Q_OBJECT

public:
    enum class Mode { Top, Side, Both };

    explicit TMapCanvas(QWidget* parent);

    // New objects: zoom and pan start afresh.
    void SetObjects(std::vector<TMapObject> objects, const QString& title);
    // Shown instead of a map when there is nothing to draw.
    void SetMessage(const QString& message);
    void SetMode(Mode mode);
    Mode CurrentMode() const { return mode_; }
    // Every object whole in its view again.
    void Fit();

    const std::vector<TMapObject>& Objects() const { return objects_; }
    QString Message() const { return message_; }
    // The light or dark colours, chosen by the lightness of the widget's palette.
    TMapTheme Theme() const;
    // The scene as last painted (or as it would be painted now, before the first paint).
    const TMapScene& Scene();
    // Where the object's symbol stands in the first panel showing it; nothing when it is not drawn.
    std::optional<QPointF> ObjectPoint(int object);
    // The object under a widget point, or -1.
    int ObjectAtPoint(const QPointF& point);
    // Zooms the panel under the point by the factor, keeping that point where it is.
    void ZoomAt(const QPointF& point, double factor);

signals:
    void ObjectActivated(int object);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    bool event(QEvent* event) override;

private:
    std::vector<TMapView> Views() const;
    void Rebuild();
    int PanelAt(const QPointF& point);
    // The panel's transform, taken from the scene when it has been fitted so far.
    TMapTransform& Transform(int panel);

    std::vector<TMapObject> objects_;
    QString title_;
    QString message_;
    Mode mode_ = Mode::Both;
    std::vector<std::optional<TMapTransform>> transforms_; // per panel; empty: fitted
    TMapScene scene_;
    bool stale_ = true;  // the scene must be built again before it is used
    int dragPanel_ = -1; // the panel being dragged, or -1
    QPointF dragFrom_;   // where the drag last was
};

} // namespace velkor
