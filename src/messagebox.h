#pragma once

#include <QMessageBox>

/// The message box for every question and every failure: a fixed width, no icons on the buttons, a
/// bold text and a normal informative text, so that all messages look the same.
///
/// One instance serves all messages; whoever shows it sets the texts, the buttons, the default
/// button and the icon anew before each exec().
class TMessageBox : public QMessageBox
{
    Q_OBJECT

public:
    explicit TMessageBox(const QWidget* parent);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

public:
    /// Shows the box modally.
    /// @return the standard button that was pressed.
    int exec() override;
    /// Sets the main text, shown bold. Markup in it is markup.
    ///
    /// This one and setInformativeText hide the base class's operations, which are not virtual:
    /// call them through this type, or the text comes without its look.
    virtual void setText(const QString& text);
    /// Sets the text below the main one, shown in normal weight. Markup in it is markup.
    virtual void setInformativeText(const QString& text);

private:
    int d_fixed_width; ///< pixels
};
