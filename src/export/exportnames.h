#pragma once

#include <QDateTime>
#include <QString>

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

} // namespace ExportNames
