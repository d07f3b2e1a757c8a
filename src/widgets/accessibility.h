#pragma once

#include <QString>

class QWidget;

/// What screen readers and other aids are told of a widget beyond what it shows.
namespace Accessibility {

/// @param name         what the widget is, in a word or two.
/// @param description  what it is for, or how it is used, in a sentence.
void Describe(QWidget* widget, const QString& name, const QString& description);

/// A caption as a name: without the colon at its end.
QString Name_Of_Caption(const QString& caption);

} // namespace Accessibility
