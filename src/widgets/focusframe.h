#pragma once

#include <QObject>

class QAbstractScrollArea;

/// Draws a coloured frame around a scroll area that has the keyboard focus.
///
/// The style shows the focus of buttons and editors, but not that of the page view or of a list
/// without a current row.
class TFocusFrame : public QObject
{
    Q_OBJECT

public:
    /// @param view  owns this object.
    explicit TFocusFrame(QAbstractScrollArea* view);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    QAbstractScrollArea* d_view;
};
