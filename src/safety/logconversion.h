#pragma once

#include "core/safefile.h"
#include "core/stepreport.h"

#include <QString>
#include <QStringList>

class TKeptFolder;
class TLogReader;

/// Converts work logs to project files.
namespace LogConversion {

struct TResult
{
    bool is_written = false;
    int missing_images = 0; ///< pages whose image or labels are neither in the log nor in a file
};

/// Writes the document in a log as a project file. Images keep their format; a missing image leaves
/// a page without one.
/// @param path    target, which is replaced only when the new file is complete.
/// @param kind    a private file is written only if the log is undamaged.
/// @param report  is called before each page.
TResult Write(TLogReader* log, const QString& path, TSafeFile::TKind kind,
              const TStepReport& report);

/// Converts the logs of processes that have ended to copies in the same folder, and deletes them.
/// Logs that are not readable stay.
/// @param backup_folder  where files may be that a log refers to.
/// @return  why logs could not be converted, with their paths.
QStringList Convert_Abandoned(const TKeptFolder& folder, const QString& backup_folder,
                              const TStepReport& report);

} // namespace LogConversion
