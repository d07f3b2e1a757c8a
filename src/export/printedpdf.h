#pragma once

#include <QString>
#include <QStringList>

/// PDF files as QPrinter writes them.
namespace PrintedPdf {

/// Whether a file ends with its end marker and its cross-reference table is at the given offset.
/// Detects truncated files.
bool Is_Complete(const QString& path);

/// Appends bookmarks, which QPrinter cannot write. On failure, returns false; the file may then be
/// incomplete.
/// @param titles  one for each of the first pages.
bool Add_Bookmarks(const QString& path, const QStringList& titles);

} // namespace PrintedPdf
