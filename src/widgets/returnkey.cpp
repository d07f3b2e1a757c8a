#include "src/widgets/returnkey.h"

#include <QKeyEvent>
#include <QWidget>

#include <utility>

TReturnKey::TReturnKey(QWidget* widget, TCallback callback)
    : QObject(widget)
    , d_callback(std::move(callback))
{
    widget->installEventFilter(this);
}

bool TReturnKey::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() != QEvent::KeyPress)
        return QObject::eventFilter(object, event);
    const auto* const press = static_cast<QKeyEvent*>(event);
    const bool is_return = press->key() == Qt::Key_Return || press->key() == Qt::Key_Enter;
    if (!is_return || press->modifiers() & ~Qt::KeypadModifier)
        return QObject::eventFilter(object, event);
    // Holding the key down must not call the function again.
    if (!press->isAutoRepeat())
        d_callback();
    return true;
}
