#include "src/widgets/focusframe.h"

#include <QAbstractScrollArea>
#include <QEvent>
#include <QPainter>

namespace {

/// The colour in which the style outlines focused editors.
QColor Focus_Color(const QPalette& palette)
{
    constexpr int darkness = 125; // per cent
    return palette.color(QPalette::Active, QPalette::Highlight).darker(darkness);
}

} // namespace

TFocusFrame::TFocusFrame(QAbstractScrollArea* view)
    : QObject(view)
    , d_view(view)
{
    view->installEventFilter(this);
}

bool TFocusFrame::eventFilter(QObject* object, QEvent* event)
{
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)
        d_view->update();
    if (event->type() != QEvent::Paint)
        return QObject::eventFilter(object, event);
    // Let the view paint its own frame first.
    const bool handled = object->event(event);
    if (d_view->hasFocus() && d_view->frameWidth() > 0) {
        QPainter painter(d_view);
        painter.setPen(Focus_Color(d_view->palette()));
        painter.drawRect(d_view->rect().adjusted(0, 0, -1, -1));
    }
    return handled;
}
