#pragma once

#include <QLabel>

/// One line of plain text, elided to the width of the label.
class TElidedLabel : public QLabel
{
    Q_OBJECT

public:
    /// @param mode  where the text is elided.
    TElidedLabel(Qt::TextElideMode mode, QWidget* parent);

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Qt::TextElideMode d_mode;
};
