#include "src/widgets/selectionmouse.h"

#include <QApplication>
#include <QGraphicsView>
#include <QMouseEvent>
#include <QRubberBand>

#include <utility>

TSelectionMouse::TSelectionMouse(QGraphicsView* view, TActions actions)
    : QObject(view)
    , d_view(view)
    , d_actions(std::move(actions))
{
    view->viewport()->installEventFilter(this);
}

bool TSelectionMouse::eventFilter(QObject* object, QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick: // the second of two quick clicks
        return Press(*static_cast<QMouseEvent*>(event));
    case QEvent::MouseMove:
        return Move(*static_cast<QMouseEvent*>(event));
    case QEvent::MouseButtonRelease:
        return Release(*static_cast<QMouseEvent*>(event));
    default:
        return QObject::eventFilter(object, event);
    }
}

bool TSelectionMouse::Press(const QMouseEvent& event)
{
    if (event.button() != Qt::LeftButton)
        return d_state != TState::Idle;
    End();
    d_modifiers = event.modifiers() & ~Qt::KeypadModifier;
    const bool has_keys = d_modifiers != Qt::NoModifier &&
                          !(d_modifiers & ~(Qt::ControlModifier | Qt::ShiftModifier));
    if (!has_keys || event.buttons() != Qt::LeftButton)
        return false;
    d_state = TState::Pressed;
    d_pressed = event.pos();
    d_start = Scene_Point(event);
    d_last = d_start;
    d_label = d_actions.label_at(d_start);
    return true;
}

bool TSelectionMouse::Move(const QMouseEvent& event)
{
    // A release can get lost, for example when a dialog opens.
    if (!(event.buttons() & Qt::LeftButton))
        End();
    if (d_state == TState::Idle)
        return false;
    if (d_state == TState::Pressed &&
        (event.pos() - d_pressed).manhattanLength() >= QApplication::startDragDistance())
        Begin_Drag();
    const QPointF point = Scene_Point(event);
    if (d_state == TState::Moving)
        d_actions.move(point - std::exchange(d_last, point));
    else if (d_state == TState::Selecting)
        d_band->setGeometry(QRect(d_view->mapFromScene(d_start), event.pos()).normalized());
    return true;
}

void TSelectionMouse::Begin_Drag()
{
    if (d_modifiers & Qt::ShiftModifier) {
        d_state = TState::Selecting;
        if (!d_band)
            d_band = new QRubberBand(QRubberBand::Rectangle, d_view->viewport());
        d_band->show();
    } else if (d_label) {
        d_state = TState::Moving;
        d_actions.begin_move(*d_label);
    }
}

bool TSelectionMouse::Release(const QMouseEvent& event)
{
    if (d_state == TState::Idle || event.button() != Qt::LeftButton)
        return d_state != TState::Idle;
    const TState state = d_state;
    End();
    if (state == TState::Selecting)
        d_actions.select(QRectF(d_start, Scene_Point(event)).normalized(),
                         d_modifiers & Qt::ControlModifier);
    else if (state == TState::Pressed && d_label)
        d_actions.toggle(*d_label);
    return true;
}

void TSelectionMouse::End()
{
    if (std::exchange(d_state, TState::Idle) == TState::Moving)
        d_actions.end_move();
    if (d_band)
        d_band->hide();
}

QPointF TSelectionMouse::Scene_Point(const QMouseEvent& event) const
{
    return d_view->mapToScene(event.pos());
}
