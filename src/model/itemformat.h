#pragma once

#include <QString>

/// The item display format: the pattern of a row's text in the item list, in which "%1" stands for
/// a label's value and "%2" for its text.
namespace ItemFormat {

/// Replaces a user's format that is empty or lacks the value.
extern const char* const Default_Format;

/// The format before the user chooses one.
extern const char* const Initial_Format;

/// Cleans a format that the user typed: simplifies white space, replaces an empty format with the
/// default, and replaces every "%" with "_" except those of the first "%1" and the first "%2".
QString Clean(const QString& typed);

/// The row text of a label. Uses the default format if a format lacks "%1", and appends a blank and
/// the text if it lacks "%2". Value and text are inserted literally.
QString Row_Text(const QString& format, int value, const QString& text);

} // namespace ItemFormat
