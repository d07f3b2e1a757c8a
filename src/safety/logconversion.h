#pragma once

#include "core/progressreport.h"

#include <QString>

#include <vector>

class TKeptFolder;
class TLogReader;
class TSafeFile;
struct TKeptFile;

/// Converts work logs to project files.
namespace LogConversion {

/// What to do with a damaged log.
enum class TDamage {
    Refuse, ///< write nothing
    Accept  ///< write what is readable
};

struct TResult
{
    bool is_written = false;
    int missing_images = 0; ///< pages whose image or labels are neither in the log nor in a file
};

/// Writes the document in a log as a project file. Images keep their format; a missing image leaves
/// a page without one.
/// @param target  is replaced only when the new file is complete.
/// @param report  is called before each page.
TResult Write(TLogReader* log, TDamage damage, TSafeFile* target, const TProgressReport& report);

/// Converts the logs of processes that have ended to copies in the same folder, and deletes them.
/// Logs that are not readable stay. A log whose copy lacks images, labels or changes stays beside
/// the copy, and is not converted again.
/// @param backup_folder  where files may be that a log refers to.
/// @return  the logs that could not be converted as a whole, with the reason. Later calls do not
///          return them again.
std::vector<TKeptFile> Convert_Abandoned(const TKeptFolder& folder, const QString& backup_folder,
                                         const TProgressReport& report);

} // namespace LogConversion
