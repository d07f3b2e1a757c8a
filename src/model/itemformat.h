#pragma once

#include <QString>

/// The item display format: a text pattern in which "%1" stands for a label's value and "%2" for
/// its text, and how the rows of the item list are made from it.
namespace ItemFormat {

/// The format that serves when a user's format is empty or lacks the value.
extern const char* const Default_Format;

/// A format as the user typed it, made safe: white space simplified, the default for an empty one,
/// every "%" that does not begin the first "%1" or the first "%2" turned into "_".
QString Clean(const QString& typed);

/// The row text of a label. A format without "%1" yields the default format; one without "%2" gets
/// the text appended after a blank. Value and text are inserted literally.
QString Row_Text(const QString& format, int value, const QString& text);

} // namespace ItemFormat
