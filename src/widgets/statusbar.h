#pragma once

#include <QStatusBar>

/// A status bar that elides messages in the middle if they are too long: many end with a path.
/// The tool tip then shows the whole message.
class TStatusBar : public QStatusBar
{
    Q_OBJECT

public:
    explicit TStatusBar(QWidget* parent);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QRect Message_Area() const;
    QString Elided_Message() const;
};
