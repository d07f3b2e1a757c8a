#include "src/export/exportnames.h"

#include <QHash>
#include <QLocale>
#include <QRegularExpression>

namespace {

const QLatin1String suffix(".png");

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

/// A folder that ends with a separator.
QString Folder_Part(const QString& folder)
{
    const bool has_separator =
        folder.endsWith(QLatin1Char('/')) || folder.endsWith(QLatin1Char('\\'));
    return has_separator ? folder : folder + QLatin1Char('/');
}

/// The time in ASCII digits. QDateTime::toString uses other digits in some locales.
QString Time_Part(const QDateTime& time)
{
    return QLocale::c().toString(time, QStringLiteral("ddMMyyyyhhmmss"));
}

} // namespace

QString ExportNames::Image_Path(const QString& folder, const QString& page_name, int page_id,
                                const QDateTime& time, int counter)
{
    // Not QString::arg, since a page name may contain "%1".
    return Folder_Part(folder) + File_Part(page_name, page_id) + QLatin1Char('-') +
           Time_Part(time) + QString::number(counter) + suffix;
}

bool ExportNames::Is_Pattern(const QString& text)
{
    static const QRegularExpression pattern(
        QStringLiteral("^([^/{}]|\\{(document|page|number|time)\\})+$"));
    return pattern.match(text).hasMatch();
}

QString ExportNames::Pattern_Path(const QString& folder, const QString& pattern,
                                  const TImagePage& page, const QDateTime& time)
{
    const int digits = QString::number(page.page_count).size();
    const QHash<QString, QString> values{
        {QStringLiteral("document"), page.document},
        {QStringLiteral("page"), File_Part(page.name, page.page_id)},
        {QStringLiteral("number"),
         QString::number(page.number).rightJustified(digits, QLatin1Char('0'))},
        {QStringLiteral("time"), Time_Part(time)}};
    // Texts and placeholders alternate. Values are not searched for placeholders.
    const QStringList parts = pattern.split(QRegularExpression(QStringLiteral("[{}]")));
    QString name;
    for (int place = 0; place < parts.size(); ++place)
        name += place % 2 == 0 ? parts.at(place) : values.value(parts.at(place));
    if (!name.endsWith(suffix, Qt::CaseInsensitive))
        name += suffix;
    return Folder_Part(folder) + name;
}
