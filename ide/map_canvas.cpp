#include "ide/map_canvas.h"

#include "ide/ide_ini.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>
#include <QWheelEvent>

#include <cmath>

namespace velkor {

namespace {

// One notch of the wheel zooms by this factor.
constexpr double kWheelZoom = 1.25;

QColor Rgb(std::uint32_t rgb) {
    return QColor::fromRgb(static_cast<int>((rgb >> 16) & 0xFF), static_cast<int>((rgb >> 8) & 0xFF),
                           static_cast<int>(rgb & 0xFF));
}

QPolygonF Polygon(const TMapItem& item) {
    QPolygonF polygon;
    for (const auto& [x, y] : item.points) polygon << QPointF(x, y);
    return polygon;
}

void Paint(QPainter& painter, const TMapItem& item) {
    if (item.stroke) {
        QPen pen(Rgb(*item.stroke));
        pen.setWidthF(item.strokeWidth);
        if (item.dashed) pen.setDashPattern({4, 3});
        painter.setPen(pen);
    } else {
        painter.setPen(Qt::NoPen);
    }
    painter.setBrush(item.fill && item.kind != TMapItem::Kind::Text ? QBrush(Rgb(*item.fill)) : QBrush());
    const auto& p = item.points;
    switch (item.kind) {
    case TMapItem::Kind::Rect:
        painter.drawRect(QRectF(QPointF(p[0][0], p[0][1]), QPointF(p[1][0], p[1][1])));
        break;
    case TMapItem::Kind::Line: painter.drawLine(QPointF(p[0][0], p[0][1]), QPointF(p[1][0], p[1][1])); break;
    case TMapItem::Kind::Polygon: painter.drawPolygon(Polygon(item)); break;
    case TMapItem::Kind::Polyline: painter.drawPolyline(Polygon(item)); break;
    case TMapItem::Kind::Circle:
        painter.drawEllipse(QPointF(p[0][0], p[0][1]), item.radius, item.radius);
        break;
    case TMapItem::Kind::Text: {
        QFont font = painter.font();
        font.setPixelSize(static_cast<int>(std::lround(item.fontSize)));
        font.setBold(item.bold);
        painter.setFont(font);
        painter.setPen(item.fill ? Rgb(*item.fill) : painter.pen().color());
        const QString text = ToQ(item.text);
        double x = p[0][0];
        const double width = painter.fontMetrics().horizontalAdvance(text);
        if (item.anchor == TMapItem::Anchor::Middle) x -= width / 2;
        if (item.anchor == TMapItem::Anchor::End) x -= width;
        painter.drawText(QPointF(x, p[0][1]), text);
        break;
    }
    }
}

} // namespace

TMapCanvas::TMapCanvas(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("MapCanvas"));
    setMouseTracking(true);
    setMinimumSize(120, 120);
    QFont face(QStringLiteral("Sans Serif"));
    face.setStyleHint(QFont::SansSerif);
    setFont(face);
}

void TMapCanvas::SetObjects(std::vector<TMapObject> objects, const QString& title) {
    objects_ = std::move(objects);
    title_ = title;
    message_.clear();
    transforms_.clear();
    stale_ = true;
    update();
}

void TMapCanvas::SetMessage(const QString& message) {
    objects_.clear();
    title_.clear();
    message_ = message;
    transforms_.clear();
    stale_ = true;
    update();
}

void TMapCanvas::SetMode(Mode mode) {
    if (mode == mode_) return;
    mode_ = mode;
    transforms_.clear();
    stale_ = true;
    update();
}

void TMapCanvas::Fit() {
    transforms_.clear();
    stale_ = true;
    update();
}

TMapTheme TMapCanvas::Theme() const {
    return palette().color(QPalette::Window).lightness() < 128 ? TMapTheme::Dark : TMapTheme::Light;
}

std::vector<TMapView> TMapCanvas::Views() const {
    switch (mode_) {
    case Mode::Top: return {TMapView::Top};
    case Mode::Side: return {TMapView::Side};
    case Mode::Both: break;
    }
    return {TMapView::Top, TMapView::Side};
}

void TMapCanvas::Rebuild() {
    TMapSceneOptions options;
    options.views = Views();
    options.width = width();
    options.height = height();
    options.theme = Theme();
    options.title = FromQ(title_);
    options.transforms = transforms_;
    scene_ = BuildMapScene(objects_, options);
    stale_ = false;
}

const TMapScene& TMapCanvas::Scene() {
    if (stale_) Rebuild();
    return scene_;
}

void TMapCanvas::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!message_.isEmpty() || objects_.empty()) {
        const TMapColors& colors = MapColors(Theme());
        painter.fillRect(rect(), Rgb(colors.panel));
        painter.setPen(Rgb(colors.dimText));
        painter.drawText(rect().adjusted(8, 8, -8, -8), Qt::AlignCenter | Qt::TextWordWrap,
                         message_.isEmpty() ? QStringLiteral("No objects to show") : message_);
        return;
    }
    const TMapScene& scene = Scene();
    for (const TMapItem& item : scene.items) {
        if (item.panel >= 0) {
            const TMapRect& f = scene.panels[static_cast<std::size_t>(item.panel)].frame;
            painter.setClipRect(QRectF(f.left, f.top, f.width, f.height));
        } else {
            painter.setClipping(false);
        }
        Paint(painter, item);
    }
}

void TMapCanvas::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    // Frames change with the size; a fitted view fits again, a zoomed one keeps its scale.
    stale_ = true;
}

int TMapCanvas::PanelAt(const QPointF& point) {
    const TMapScene& scene = Scene();
    for (std::size_t i = 0; i < scene.panels.size(); ++i)
        if (scene.panels[i].frame.Contains(point.x(), point.y())) return static_cast<int>(i);
    return -1;
}

TMapTransform& TMapCanvas::Transform(int panel) {
    const auto index = static_cast<std::size_t>(panel);
    if (transforms_.size() <= index) transforms_.resize(index + 1);
    if (!transforms_[index]) transforms_[index] = Scene().panels[index].transform;
    return *transforms_[index];
}

void TMapCanvas::ZoomAt(const QPointF& point, double factor) {
    const int panel = PanelAt(point);
    if (panel < 0) return;
    Transform(panel).ZoomAt(factor, point.x(), point.y());
    stale_ = true;
    update();
}

std::optional<QPointF> TMapCanvas::ObjectPoint(int object) {
    for (const TMapPanel& panel : Scene().panels)
        for (const TMapMark& mark : panel.marks)
            if (mark.object == object) return QPointF(mark.x, mark.y);
    return std::nullopt;
}

int TMapCanvas::ObjectAtPoint(const QPointF& point) {
    if (objects_.empty()) return -1;
    return ObjectAt(Scene(), point.x(), point.y());
}

void TMapCanvas::wheelEvent(QWheelEvent* event) {
    const double notches = event->angleDelta().y() / 120.0;
    if (notches == 0) return;
    ZoomAt(event->position(), std::pow(kWheelZoom, notches));
    event->accept();
}

void TMapCanvas::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    dragPanel_ = PanelAt(event->position());
    dragFrom_ = event->position();
    if (dragPanel_ >= 0) setCursor(Qt::ClosedHandCursor);
}

void TMapCanvas::mouseMoveEvent(QMouseEvent* event) {
    if (dragPanel_ < 0 || !(event->buttons() & Qt::LeftButton)) return;
    const QPointF delta = event->position() - dragFrom_;
    dragFrom_ = event->position();
    Transform(dragPanel_).Pan(delta.x(), delta.y());
    stale_ = true;
    update();
}

void TMapCanvas::mouseReleaseEvent(QMouseEvent*) {
    dragPanel_ = -1;
    unsetCursor();
}

void TMapCanvas::mouseDoubleClickEvent(QMouseEvent* event) {
    const int object = ObjectAtPoint(event->position());
    if (object >= 0) emit ObjectActivated(object);
}

bool TMapCanvas::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        auto* help = static_cast<QHelpEvent*>(event);
        const int object = ObjectAtPoint(help->pos());
        if (object >= 0)
            QToolTip::showText(help->globalPos(),
                               ToQ(DescribeObject(objects_[static_cast<std::size_t>(object)])), this);
        else
            QToolTip::hideText();
        return true;
    }
    return QWidget::event(event);
}

} // namespace velkor
