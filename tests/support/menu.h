#pragma once

#include <QStringList>

class QWidget;

/// Helpers for tests of context menus. They use the keyboard.
namespace Support {

/// Opens the context menu of a widget, goes to an entry with the arrow key and presses Return.
/// @return  empty on success; otherwise what went wrong.
QString Choose_From_Menu(QWidget* widget, const QString& text);

/// Opens the context menu of a widget and closes it.
/// @return  the texts of its entries; empty for a separator, in parentheses for a disabled entry.
QStringList Menu_Entries(QWidget* widget);

} // namespace Support
