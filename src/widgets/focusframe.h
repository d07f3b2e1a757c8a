#pragma once

#include <QObject>

class QAbstractScrollArea;

/// Shows that a scrolled view has the keyboard: its frame gets the colour of an editor's.
///
/// The style shows that for buttons and editors, but not for lists without a current row, nor for
/// the page.
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
