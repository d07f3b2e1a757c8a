#pragma once

#include <QDateTime>
#include <QString>

/// Names of exported page images.
namespace ExportNames {

/// Path of one exported page: folder, page name with each "/", "\", ":", ">" and "<" replaced by
/// "_", "-", time stamp (day, month, year, hour, minute, second) and running number, which follows
/// the time stamp without a separator, as in "/tmp/out/Cover-161120260705091.png". All other
/// characters of the page name are kept as they are.
/// @param folder     gets a "/" unless it ends with "/" or "\".
/// @param page_name  may be empty; the file is then named "Image_" and the page id.
/// @param time       the same for all pages of an export.
/// @param counter    running number of the page in this export, from 1.
QString Image_Path(const QString& folder, const QString& page_name, int page_id,
                   const QDateTime& time, int counter);

} // namespace ExportNames
