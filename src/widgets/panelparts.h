#pragma once

#include <QString>

class QGridLayout;
class QLayout;
class QToolButton;
class QWidget;

/// Common parts of the dock panels.
namespace PanelParts {

/// Creates a small button with a sign on it.
/// @param tool_tip     also the name for screen readers.
/// @param description  for screen readers.
QToolButton* New_Button(const QString& sign, const QString& tool_tip, const QString& description,
                        QWidget* parent);

/// Adds a caption and its editor as a row of a two-column grid. The caption wraps in a narrow
/// panel. Without its colon, it is the editor's name for screen readers.
/// @param description  for screen readers.
void Add_Row(QGridLayout* grid, int row, const QString& caption, QWidget* editor,
             const QString& description);

/// Width beyond its minimum that a panel needs to show each caption on one line.
int Caption_Room(const QWidget& panel);

/// Gives a panel's layout narrow margins, which leave more room for the page view.
void Set_Margins(QLayout* layout);

} // namespace PanelParts
