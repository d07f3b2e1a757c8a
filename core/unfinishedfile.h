#pragma once

#include <QString>

/// Registers a file that is being written, so that a signal that ends the process deletes it.
///
/// Registering has no effect before Delete_On_Signals().
class TUnfinishedFile
{
public:
    explicit TUnfinishedFile(const QString& path);
    ~TUnfinishedFile();
    TUnfinishedFile(const TUnfinishedFile&) = delete;
    TUnfinishedFile& operator=(const TUnfinishedFile&) = delete;

    /// Deletes all registered files when SIGHUP, SIGINT or SIGTERM ends the process. Signals that
    /// the process ignores stay ignored.
    static void Delete_On_Signals();

private:
    int d_slot = -1; ///< negative if all slots are in use
};
