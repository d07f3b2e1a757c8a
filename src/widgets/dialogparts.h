#pragma once

#include <QFrame>

class QBoxLayout;
class QDialog;
class QPushButton;

/// What the program's dialogs are put together from, so that they look and work alike.
namespace DialogParts {

/// A sunken line that separates parts of a dialog or of a panel.
/// @param shape   QFrame::HLine or QFrame::VLine.
/// @param parent  owns the line.
QFrame* Sunken_Line(QFrame::Shape shape, QWidget* parent);

/// A row with a stretch and, at its right end, "Cancel", which rejects the dialog and never is its
/// default button, and the given button, which accepts it. The row has to be put into the dialog's
/// layout, which then owns it.
QBoxLayout* Button_Row(QPushButton* accept, QDialog* dialog);

} // namespace DialogParts
