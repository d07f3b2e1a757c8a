#pragma once

#include <QMessageBox>

/// The message box for all questions and errors. It has a fixed width, no icons on the buttons, a
/// bold main text and an informative text of normal weight.
///
/// One instance shows all messages. Callers set texts, buttons, default button and icon before each
/// exec().
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
    /// @return the standard button that the user pressed.
    int exec() override;
    /// Sets the main text, shown in bold. The text may contain markup.
    ///
    /// This function and setInformativeText hide non-virtual functions of the base class. Call them
    /// through this type, or the text is not formatted.
    virtual void setText(const QString& text);
    /// Sets the text below the main text, shown in normal weight. The text may contain markup.
    virtual void setInformativeText(const QString& text);

private:
    int d_fixed_width; ///< pixels
};
