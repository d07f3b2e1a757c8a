#pragma once

#include <QObject>
#include <QPoint>
#include <QPointF>
#include <QTransform>

class QGraphicsView;
class QSlider;
class QWheelEvent;

/// Moves a zoom slider when the user turns the wheel over a view with Ctrl pressed.
///
/// The point under the pointer stays there to within a pixel, as far as the view can scroll. Events
/// of less than a notch, as from touchpads, add up. Without Ctrl, or with further modifiers, the
/// wheel scrolls as usual.
class TWheelZoom : public QObject
{
    Q_OBJECT

public:
    /// @param view    owns this object.
    /// @param slider  zooms the view when its value changes; must live as long as the view.
    TWheelZoom(QGraphicsView* view, QSlider* slider);

    /// Slider steps per notch of the wheel.
    static constexpr int Steps_Per_Notch = 5;

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    int Take_Steps(int angle);
    QPointF Point_Under(const QPoint& position);
    void Zoom(int steps, const QPoint& position);

    QGraphicsView* d_view;
    QSlider* d_slider;
    int d_angle = 0;        ///< not yet a whole step of the slider; 120 per notch
    QPoint d_position;      ///< of the pointer at the last zoom, in pixels of the view
    QPointF d_point;        ///< under the pointer, in scene coordinates
    QTransform d_transform; ///< from scene to view, after the last zoom
};
