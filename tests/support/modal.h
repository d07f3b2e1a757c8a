#pragma once

#include <QMessageBox>
#include <QStringList>

#include <functional>
#include <vector>

class QWidget;

/// Answers to the modal dialogs that a command opens. They use the dialog's own buttons and
/// editors, as a user does.
namespace Support {

/// Handles one modal dialog and makes it close.
using TAnswer = std::function<void(QWidget*)>;

/// Runs a command and gives each modal dialog that it opens the next answer. Closes a dialog for
/// which there is no answer.
/// @return  empty when there were exactly as many dialogs as answers; otherwise a description.
QString Run_Answering(const std::function<void()>& command, std::vector<TAnswer> answers);

/// Presses a standard button of a message box.
TAnswer Press(QMessageBox::StandardButton button);

/// The same, but first calls a function that can check the box's texts.
TAnswer Look_And_Press(const std::function<void(QMessageBox*)>& look,
                       QMessageBox::StandardButton button);

/// Types file names into a file dialog and accepts it. All of them have to be in one folder.
TAnswer Choose(const QStringList& paths);

/// Closes a dialog with Escape.
TAnswer Cancel();

/// Calls a function with the dialog, then clicks the push button with this text.
TAnswer Click(const QString& button_text, const std::function<void(QWidget*)>& prepare = nullptr);

} // namespace Support
