// Pointer interaction of the page view: clicks, drags and right clicks.

#include "src/displaywidget.h"

#include <QGraphicsPixmapItem>
#include <QGraphicsScene>
#include <QMouseEvent>
#include <QVariant>

#include <cmath>
#include <utility>

namespace {

/// A drag moves a label only beyond this distance (horizontal plus vertical, in scene units), so
/// that a click with an unsteady hand does not move it.
constexpr double drag_threshold = 1.0;

/// Rounds to the nearest integer, and halves up, even below zero.
int Round_Half_Up(double number)
{
    return static_cast<int>(std::floor(number + 0.5));
}

} // namespace

void TDisplayWidget::mousePressEvent(QMouseEvent* event)
{
    // These are the buttons of the previous press: the first press on the page never pans it, so a
    // click that clears the selection does not show a hand cursor.
    if (d_mouse_buttons & Qt::LeftButton)
        setDragMode(QGraphicsView::ScrollHandDrag);
    QGraphicsView::mousePressEvent(event);

    d_mouse_buttons = event->buttons();
    const QPointF scene_point = Scene_Point(*event);
    d_item_moved = false;
    d_pressed_item = nullptr;
    // Use the buttons of the event: a slot may run an event loop, in which d_mouse_buttons changes.
    if (event->buttons() & Qt::LeftButton)
        Press_Item(scene_point);
    if (event->buttons() & Qt::RightButton)
        emit Right_Mouse_Click(scene_point);
}

void TDisplayWidget::mouseMoveEvent(QMouseEvent* event)
{
    if (!d_pressed_item)
        QGraphicsView::mouseMoveEvent(event);
    else if (event->buttons() & Qt::LeftButton)
        Drag_Item(Scene_Point(*event));
}

void TDisplayWidget::mouseReleaseEvent(QMouseEvent* event)
{
    QGraphicsView::mouseReleaseEvent(event);
    setDragMode(QGraphicsView::NoDrag);
    if (!(d_mouse_buttons & Qt::LeftButton))
        return;
    // Reset before emitting the signal, since a slot may remove the label.
    const QGraphicsPixmapItem* item = std::exchange(d_pressed_item, nullptr);
    if (item)
        emit Update_Item_Position(item->data(Id_Key).toInt(), item->data(Centre_Key).toPointF());
    else if (!d_item_moved)
        emit Item_Clicked(-1);
}

void TDisplayWidget::mouseDoubleClickEvent(QMouseEvent*)
{
    // The two single presses have been handled already.
}

/// The scene position of a mouse event, which is rounded to whole pixels of the viewport.
QPointF TDisplayWidget::Scene_Point(const QMouseEvent& event) const
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    const QPointF position = event.position();
#else
    const QPointF position = event.localPos();
#endif
    return mapToScene(QPoint(Round_Half_Up(position.x()), Round_Half_Up(position.y())));
}

/// The topmost label at a point; null if there is none.
QGraphicsPixmapItem* TDisplayWidget::Label_At(const QPointF& scene_point) const
{
    // Every item except the page image is a label.
    QGraphicsItem* const item = d_scene->itemAt(scene_point, transform());
    return item == d_background_item ? nullptr : qgraphicsitem_cast<QGraphicsPixmapItem*>(item);
}

std::optional<int> TDisplayWidget::Item_At(const QPointF& scene_point) const
{
    const QGraphicsPixmapItem* const item = Label_At(scene_point);
    return item ? std::make_optional(item->data(Id_Key).toInt()) : std::nullopt;
}

void TDisplayWidget::Press_Item(const QPointF& scene_point)
{
    QGraphicsPixmapItem* const item = Label_At(scene_point);
    if (!item)
        return;
    d_pressed_item = item;
    d_last_scene_point = scene_point;
    emit Item_Clicked(item->data(Id_Key).toInt());
}

void TDisplayWidget::Drag_Item(const QPointF& scene_point)
{
    const QPointF distance = scene_point - d_last_scene_point;
    // Small movements do not change the last point, so they add up.
    if (distance.manhattanLength() <= drag_threshold)
        return;
    d_last_scene_point = scene_point;
    d_pressed_item->setData(Centre_Key, d_pressed_item->data(Centre_Key).toPointF() + distance);
    d_pressed_item->moveBy(distance.x(), distance.y());
    d_item_moved = true;
}
