#pragma once

#include <QDialog>
#include <QGridLayout>
#include <QList>
#include <QString>

/// What tests of dialogs need: widgets found by their text, cells of the grid told in words.
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

/// What begins at a row and column of the dialog's grid; null for nothing.
QLayoutItem* Grid_Cell(const QDialog& dialog, int row, int column);

/// Adds the columns of a table of grid cells to a test's data, and a row of it.
/// @param content  in words: a text shown, "HLine" or "VLine" for a sunken line, the class of a
///                 widget without a text of its own, "horizontal spacer" or "vertical spacer", or
///                 for a row of buttons "stretch" and the texts, with ", " between.
void Add_Cell_Columns();
void Add_Cell(const char* name, int row, int column, int rows, int columns, const char* content);

/// Compares the cell of the current data row with the dialog's.
void Compare_Cell(const QDialog& dialog);

/// Shows the dialog and presses Tab; the widgets that have the focus one after the other, the first
/// one first.
QList<QWidget*> Tab_Order(QDialog* dialog, int count);

/// The text of the label that names a widget to screen readers; empty when there is none.
QString Accessible_Label(QWidget* widget);

/// Empty when every child widget has the size that its text needs and lies within the dialog;
/// otherwise tells which does not.
QString Clipped_Widget(const QDialog& dialog);

} // namespace Support
