#pragma once

#include <QString>
#include <QWidget>

class QLabel;

/// The notice in the status bar about unsaved work, with the buttons "Open" and "Dismiss".
///
/// Where the bar is too narrow for the whole text, the text is elided.
class TRecoveryNotice : public QWidget
{
    Q_OBJECT

public:
    explicit TRecoveryNotice(QWidget* parent);

    /// Replaces the text.
    /// @param details  shown as the tool tip of the text.
    void Set_Text(const QString& text, const QString& details);
    /// Shows or hides the button "Open".
    void Set_Openable(bool is_openable);
    /// The whole text, even if it is elided on the screen.
    QString Text() const;

Q_SIGNALS:
    void Open_Requested();
    void Dismissed();

private:
    QLabel* d_label;
    QWidget* d_open_button;
};
