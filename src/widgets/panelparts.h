#pragma once

#include <QString>

class QGridLayout;
class QLayout;
class QToolButton;
class QWidget;

/// Parts that the dock panels have in common.
namespace PanelParts {

/// A small button with a sign on it.
/// @param tool_tip     in words; its name for a screen reader, too.
/// @param description  for a screen reader.
QToolButton* New_Button(const QString& sign, const QString& tool_tip, const QString& description,
                        QWidget* parent);

/// Puts an editor behind its caption into a row of a two-column grid. In a narrow panel the caption
/// breaks into lines, so that nothing is cut off. Without its colon it names the editor for a
/// screen reader.
/// @param description  for a screen reader.
void Add_Row(QGridLayout* grid, int row, const QString& caption, QWidget* editor,
             const QString& description);

/// Gives a panel's layout the narrow margins of a dock, which leave the room to the page view.
void Set_Margins(QLayout* layout);

} // namespace PanelParts
