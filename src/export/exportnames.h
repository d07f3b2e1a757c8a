#pragma once

#include <QDateTime>
#include <QString>

/// A page whose image gets a name by a pattern.
struct TImagePage
{
    QString document; ///< file name without folder and extension
    QString name;     ///< may be empty
    int page_id = 0;
    int number = 1; ///< in the document, from 1
    int page_count = 1;
};

/// Generates the names of exported page images.
namespace ExportNames {

/// The path of an exported page: folder, page name, "-", time stamp (day, month, year, hour,
/// minute, second) and running number without a separator, as in
/// "/tmp/out/Cover-161120260705091.png". In the page name, each "/", "\", ":", ">" and "<" is
/// replaced by "_".
/// @param folder     a "/" is appended unless it ends with "/" or "\".
/// @param page_name  may be empty; the file is then named "Image_" and the page id.
/// @param time       the same for all pages of an export.
/// @param counter    running number of the page in this export, from 1.
QString Image_Path(const QString& folder, const QString& page_name, int page_id,
                   const QDateTime& time, int counter);

/// Whether a text is a pattern for file names: it contains no "/", and in braces nothing else than
/// "document", "page", "number" or "time".
bool Is_Pattern(const QString& text);

/// The path of an exported page by a pattern. The number has as many digits as the number of pages;
/// page name and time are those of Image_Path. ".png" is appended if it is missing.
QString Pattern_Path(const QString& folder, const QString& pattern, const TImagePage& page,
                     const QDateTime& time);

} // namespace ExportNames
