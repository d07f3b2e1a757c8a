#pragma once

#include <QObject>
#include <QPointF>

#include <functional>

class QWidget;

/// Turns Ctrl with an arrow key into a movement of one page-image pixel; with Shift, of ten.
///
/// The watched widget never receives these keys. It still receives arrow keys without Ctrl.
class TNudgeKeys : public QObject
{
    Q_OBJECT

public:
    /// Receives each movement in page-image pixels, including those of a key that is held down.
    using TCallback = std::function<void(const QPointF&)>;

    /// @param widget  owns this object.
    TNudgeKeys(QWidget* widget, const TCallback& callback);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    TCallback d_callback;
};
