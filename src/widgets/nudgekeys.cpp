#include "src/widgets/nudgekeys.h"

#include <QKeyEvent>
#include <QWidget>

namespace {

constexpr double short_distance = 1.0; // page-image pixels
constexpr double long_distance = 10.0; // page-image pixels

/// The direction of an arrow key; null for other keys.
QPointF Direction(int key)
{
    switch (key) {
    case Qt::Key_Left:
        return {-1.0, 0.0};
    case Qt::Key_Right:
        return {1.0, 0.0};
    case Qt::Key_Up:
        return {0.0, -1.0};
    case Qt::Key_Down:
        return {0.0, 1.0};
    default:
        return {};
    }
}

} // namespace

TNudgeKeys::TNudgeKeys(QWidget* widget, const TCallback& callback)
    : QObject(widget)
    , d_callback(callback)
{
    widget->installEventFilter(this);
}

bool TNudgeKeys::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() != QEvent::KeyPress)
        return QObject::eventFilter(object, event);
    const auto* const press = static_cast<QKeyEvent*>(event);
    const QPointF direction = Direction(press->key());
    // The arrow keys of the number pad do the same.
    const Qt::KeyboardModifiers modifiers = press->modifiers() & ~Qt::KeypadModifier;
    const bool is_long = modifiers == (Qt::ControlModifier | Qt::ShiftModifier);
    if (direction.isNull() || (!is_long && modifiers != Qt::ControlModifier))
        return QObject::eventFilter(object, event);
    d_callback(direction * (is_long ? long_distance : short_distance));
    event->accept();
    return true;
}
