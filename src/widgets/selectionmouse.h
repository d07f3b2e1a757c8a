#pragma once

#include <QObject>
#include <QPoint>
#include <QPointF>
#include <QRectF>

#include <functional>
#include <optional>

class QGraphicsView;
class QMouseEvent;
class QRubberBand;

/// Selects and moves labels of a page with the left button and Ctrl or Shift.
///
/// A click with either key toggles a label in the selection. A drag with Ctrl moves all selected
/// labels; a drag with Shift selects the labels in a rectangle, with Ctrl in addition to the
/// others. The view does not receive the events of these clicks and drags.
class TSelectionMouse : public QObject
{
    Q_OBJECT

public:
    /// What the clicks and drags do. Points are in scene coordinates.
    struct TActions
    {
        /// The id of the label at a point; empty if there is none.
        std::function<std::optional<int>(const QPointF& point)> label_at;
        /// Toggles a label in the selection.
        std::function<void(int id)> toggle;
        /// A drag of a label begins.
        std::function<void(int id)> begin_move;
        /// Moves the selected labels.
        std::function<void(const QPointF& distance)> move;
        /// The drag has ended.
        std::function<void()> end_move;
        /// Selects the labels in a rectangle.
        /// @param add  keep the others selected.
        std::function<void(const QRectF& area, bool add)> select;
    };

    /// @param view  owns this object.
    TSelectionMouse(QGraphicsView* view, TActions actions);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    bool Press(const QMouseEvent& event);
    bool Move(const QMouseEvent& event);
    bool Release(const QMouseEvent& event);
    void Begin_Drag();
    void End();
    QPointF Scene_Point(const QMouseEvent& event) const;

    enum class TState { Idle, Pressed, Moving, Selecting };

    QGraphicsView* d_view;
    TActions d_actions;
    QRubberBand* d_band = nullptr; ///< null before the first rectangle
    TState d_state = TState::Idle;
    Qt::KeyboardModifiers d_modifiers; ///< at the press
    std::optional<int> d_label;        ///< under the press
    QPoint d_pressed;                  ///< in pixels of the view
    QPointF d_start;                   ///< of the drag, in scene coordinates
    QPointF d_last;                    ///< point of a move, in scene coordinates
};
