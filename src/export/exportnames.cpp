#include "src/export/exportnames.h"

#include <QLocale>

namespace {

/// A page's name as part of a file name.
QString File_Part(const QString& page_name, int page_id)
{
    if (page_name.isEmpty())
        return QStringLiteral("Image_") + QString::number(page_id);
    QString part = page_name;
    for (const char unwanted : {'/', '\\', ':', '>', '<'})
        part.replace(QLatin1Char(unwanted), QLatin1Char('_'));
    return part;
}

} // namespace

QString ExportNames::Image_Path(const QString& folder, const QString& page_name, int page_id,
                                const QDateTime& time, int counter)
{
    QString path = folder;
    if (!path.endsWith(QLatin1Char('/')) && !path.endsWith(QLatin1Char('\\')))
        path += QLatin1Char('/');
    // Not QString::arg, since a page name may contain "%1". Not QDateTime::toString, which writes
    // other digits than ASCII in some locales.
    return path + File_Part(page_name, page_id) + QLatin1Char('-') +
           QLocale::c().toString(time, QStringLiteral("ddMMyyyyhhmmss")) +
           QString::number(counter) + QStringLiteral(".png");
}
