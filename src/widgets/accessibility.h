#pragma once

#include <QString>

class QWidget;

/// Names and descriptions of widgets for screen readers and other assistive technologies.
namespace Accessibility {

/// Sets the accessible name and description of a widget.
/// @param name         what the widget is, in a word or two.
/// @param description  what it is for, or how it is used, in a sentence.
void Describe(QWidget* widget, const QString& name, const QString& description);

/// A caption without its final colon.
QString Name_Of_Caption(const QString& caption);

} // namespace Accessibility
