#pragma once

#include <QWidget>

class QLineEdit;

/// A bar with a line editor that searches when the user presses Return.
///
/// Return finds the next match, Shift+Return the previous one, Escape closes the bar.
class TFindBar : public QWidget
{
    Q_OBJECT

public:
    /// Constructs a hidden bar.
    explicit TFindBar(QWidget* parent);

    /// Shows the bar and selects the text in its editor, ready for typing another one.
    void Open();

    bool eventFilter(QObject* watched, QEvent* event) override;

Q_SIGNALS:
    void Find_Next(const QString& text);
    void Find_Previous(const QString& text);
    /// The user closed the bar, which is hidden now.
    void Closed();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void Close();

    QLineEdit* d_editor;
};
