#pragma once

#include <QObject>
#include <QPointF>

#include <functional>

class QWidget;

/// Turns Ctrl with an arrow key into a step of one page-image pixel, with Shift of ten.
///
/// The keys are taken from a widget while it has the focus, also when there is nothing to move;
/// arrow keys without Ctrl are left to it.
class TNudgeKeys : public QObject
{
    Q_OBJECT

public:
    /// Gets each step in page-image pixels, also those of a key that is held down.
    using TUse = std::function<void(const QPointF&)>;

    /// @param widget  owns this object.
    TNudgeKeys(QWidget* widget, const TUse& use);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    TUse d_use;
};
