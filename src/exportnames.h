#pragma once

#include <QDateTime>
#include <QString>

/// Names of exported page images.
namespace ExportNames {

/// Path of one exported page: folder, page name with the characters that file systems object to
/// replaced by "_", time stamp and running number, as in "/tmp/out/Cover-161120260705091.png".
/// @param folder     gets a "/" unless it ends with "/" or "\".
/// @param page_name  may be empty; the file is then named after the page id.
/// @param counter    running number of the page in this export, from 1.
QString Image_Path(const QString& folder, const QString& page_name, int page_id,
                   const QDateTime& time, int counter);

} // namespace ExportNames
