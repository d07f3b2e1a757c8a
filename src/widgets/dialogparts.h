#pragma once

#include <QFrame>

class QBoxLayout;
class QDialog;
class QGridLayout;
class QPushButton;

/// Common parts of the dialogs, so that all of them look and work alike.
namespace DialogParts {

/// Creates a sunken line that separates parts of a dialog or a panel.
/// @param shape   QFrame::HLine or QFrame::VLine.
/// @param parent  owns the line.
QFrame* Sunken_Line(QFrame::Shape shape, QWidget* parent);

/// Adds an empty row that takes the height that the other rows do not need.
void Add_Space(QGridLayout* grid, int row, int column_count);

/// Creates a row of buttons, aligned to the right: "Cancel", which rejects the dialog and is never
/// the default button, and the given button, which accepts it. The caller must add the row to a
/// layout, which then owns it.
QBoxLayout* Button_Row(QPushButton* accept, QDialog* dialog);

} // namespace DialogParts
