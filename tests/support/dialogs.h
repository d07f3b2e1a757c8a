#pragma once

#include <QDialog>
#include <QGridLayout>
#include <QList>
#include <QString>

/// Helpers for tests of dialogs: find widgets by their text, describe cells of the grid in words.
namespace Support {

/// The child widget of a type that shows a text; null when there is none.
template <typename TWidget>
TWidget* Child_With_Text(const QWidget& parent, const QString& text)
{
    for (TWidget* const widget : parent.findChildren<TWidget*>()) {
        if (widget->text() == text)
            return widget;
    }
    return nullptr;
}

/// The dialog's layout.
QGridLayout* Grid(const QDialog& dialog);

/// The item that begins at a row and column of the dialog's grid; null when there is none.
QLayoutItem* Grid_Cell(const QDialog& dialog, int row, int column);

/// Adds the columns of a table of grid cells to a test's data, and a row of it.
/// @param content  in words: a text that is shown, "HLine" or "VLine" for a sunken line, the class
///                 of a widget without a text of its own, "horizontal spacer" or "vertical spacer".
///                 A row of buttons is "stretch" and their texts, separated by ", ".
void Add_Cell_Columns();
void Add_Cell(const char* name, int row, int column, int rows, int columns, const char* content);

/// Compares the cell of the current data row with the dialog.
void Compare_Cell(const QDialog& dialog);

/// Shows the dialog and presses Tab; returns the widgets in the order in which they get the focus.
QList<QWidget*> Tab_Order(QDialog* dialog, int count);

/// The text of the label that names a widget for screen readers; empty when there is none.
QString Accessible_Label(QWidget* widget);

/// Describes a child widget that is too small for its text or lies outside the dialog; empty when
/// there is none.
QString Clipped_Widget(const QDialog& dialog);

} // namespace Support
