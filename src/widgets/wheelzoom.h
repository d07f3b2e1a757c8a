#pragma once

#include <QObject>
#include <QPoint>
#include <QPointF>
#include <QTransform>

class QGraphicsView;
class QSlider;
class QWheelEvent;

/// Moves a zoom slider when the wheel is turned over a view with Ctrl held down.
///
/// What is under the pointer stays there, to within a pixel and as far as the view can scroll.
/// Wheels and touchpads that report less than a notch at a time add up. The wheel alone, and with
/// other modifiers, does what it always does.
class TWheelZoom : public QObject
{
    Q_OBJECT

public:
    /// @param view    owns this object.
    /// @param slider  its changes of value zoom the view; has to live as long as the view.
    TWheelZoom(QGraphicsView* view, QSlider* slider);

    /// How far a notch of the wheel moves the slider.
    static constexpr int Steps_Per_Notch = 5;

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    int Take_Steps(int angle);
    QPointF Point_Under(const QPoint& position);
    void Zoom(int steps, const QPoint& position);

    QGraphicsView* d_view;
    QSlider* d_slider;
    int d_angle = 0;        ///< turned, but not yet a step of the slider; 120 a notch
    QPoint d_position;      ///< of the pointer at the last zoom, in pixels of the view
    QPointF d_point;        ///< what was under it, in scene coordinates
    QTransform d_transform; ///< from scene to view, as the last zoom left it
};
