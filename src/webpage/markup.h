#pragma once

#include <QString>

/// Conversion of texts and numbers to HTML.
namespace Markup {

/// A text as HTML, for content and quoted attributes. Characters that HTML does not allow become
/// U+FFFD.
QString Escaped(const QString& text);

/// A number with at most three decimals, in the C locale.
QString Number(double number);

} // namespace Markup
