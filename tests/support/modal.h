#pragma once

#include <QMessageBox>
#include <QStringList>

#include <functional>
#include <vector>

class QWidget;

/// Answering the modal dialogs that a command opens, as a user would: the dialog is found where the
/// toolkit shows it, and its own buttons and editors are used.
namespace Support {

/// What to do with one modal dialog; has to make it close.
using TAnswer = std::function<void(QWidget*)>;

/// Runs a command, giving each modal dialog that it opens the next answer.
/// @return  empty when there were exactly as many dialogs as answers; otherwise what was wrong. A
///          dialog without an answer is closed.
QString Run_Answering(const std::function<void()>& command, std::vector<TAnswer> answers);

/// Presses a standard button of a message box.
TAnswer Press(QMessageBox::StandardButton button);

/// The same, after handing the box to a look that can check its texts.
TAnswer Look_And_Press(const std::function<void(QMessageBox*)>& look,
                       QMessageBox::StandardButton button);

/// Types names into a file dialog and accepts it. With several, they have to lie in one folder.
TAnswer Choose(const QStringList& paths);

/// Closes a dialog as Escape does.
TAnswer Cancel();

/// Clicks a dialog's push button with this text, after handing the dialog to a preparation.
TAnswer Click(const QString& button_text, const std::function<void(QWidget*)>& prepare = nullptr);

} // namespace Support
