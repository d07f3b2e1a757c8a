#include "src/model/itemformat.h"

namespace ItemFormat {

namespace {

const QLatin1String value_marker("%1");
const QLatin1String text_marker("%2");
const QLatin1Char percent('%');

} // namespace

const char* const Default_Format = "Item [%1] %2";
const char* const Initial_Format = "Item[%1]";

QString Clean(const QString& typed)
{
    const QString simplified = typed.simplified();
    if (simplified.isEmpty())
        return QString::fromLatin1(Default_Format);

    const int value_position = simplified.indexOf(value_marker);
    const int text_position = simplified.indexOf(text_marker);
    QString cleaned = simplified;
    cleaned.replace(percent, QLatin1Char('_'));
    // Rows use the default format if the value is missing, so keep no marker of such a format.
    if (value_position >= 0) {
        cleaned[value_position] = percent;
        if (text_position >= 0)
            cleaned[text_position] = percent;
    }
    return cleaned;
}

QString Row_Text(const QString& format, int value, const QString& text)
{
    if (!format.contains(value_marker))
        return QString::fromLatin1(Default_Format).arg(value).arg(text);

    // The text is inserted last, so that markers in it are not replaced.
    const QString with_value = format.arg(value);
    if (format.contains(text_marker))
        return with_value.arg(text);
    return with_value + QLatin1Char(' ') + text;
}

} // namespace ItemFormat
