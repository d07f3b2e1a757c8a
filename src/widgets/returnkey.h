#pragma once

#include <QObject>

#include <functional>

class QWidget;

/// Calls a function when the user presses Return or Enter in a widget. The widget does not receive
/// these keys.
class TReturnKey : public QObject
{
    Q_OBJECT

public:
    using TCallback = std::function<void()>;

    /// @param widget  owns this object.
    TReturnKey(QWidget* widget, TCallback callback);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    TCallback d_callback;
};
