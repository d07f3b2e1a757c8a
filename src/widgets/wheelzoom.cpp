#include "src/widgets/wheelzoom.h"

#include <QGraphicsView>
#include <QScrollBar>
#include <QSlider>
#include <QWheelEvent>

TWheelZoom::TWheelZoom(QGraphicsView* view, QSlider* slider)
    : QObject(view)
    , d_view(view)
    , d_slider(slider)
{
    view->viewport()->installEventFilter(this);
}

bool TWheelZoom::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::Wheel) {
        const auto* const wheel = static_cast<QWheelEvent*>(event);
        if (wheel->modifiers() == Qt::ControlModifier && wheel->angleDelta().y() != 0) {
            Zoom(Take_Steps(wheel->angleDelta().y()), wheel->position().toPoint());
            event->accept();
            return true;
        }
    }
    return QObject::eventFilter(object, event);
}

/// Adds an angle to the wheel's rotation. Returns the resulting steps of the slider.
/// @param angle  in eighths of a degree.
int TWheelZoom::Take_Steps(int angle)
{
    constexpr int angle_of_step = QWheelEvent::DefaultDeltasPerStep / Steps_Per_Notch;
    // A change of direction takes effect at once.
    if ((angle > 0) != (d_angle > 0))
        d_angle = 0;
    d_angle += angle;
    const int steps = d_angle / angle_of_step;
    d_angle %= angle_of_step;
    return steps;
}

/// The point under the pointer, in scene coordinates. Stays the same until the pointer or the view
/// moves for another reason than zooming, so that rounding errors do not add up.
QPointF TWheelZoom::Point_Under(const QPoint& position)
{
    const QTransform transform = d_view->viewportTransform();
    if (position != d_position || transform != d_transform) {
        d_position = position;
        d_point = transform.inverted().map(QPointF(position));
    }
    return d_point;
}

void TWheelZoom::Zoom(int steps, const QPoint& position)
{
    const QPointF point = Point_Under(position);
    d_slider->setValue(d_slider->value() + steps);
    const QPoint moved = d_view->viewportTransform().map(point).toPoint() - position;
    QScrollBar* const horizontal = d_view->horizontalScrollBar();
    QScrollBar* const vertical = d_view->verticalScrollBar();
    horizontal->setValue(horizontal->value() + moved.x());
    vertical->setValue(vertical->value() + moved.y());
    d_transform = d_view->viewportTransform();
    // At the end of the scroll range, the view cannot follow. Then take the point that is there
    // now.
    constexpr double rounding = 2.0; // pixels
    if ((d_transform.map(point) - position).manhattanLength() > rounding)
        d_point = d_transform.inverted().map(QPointF(position));
}
