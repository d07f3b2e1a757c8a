#pragma once

#include <QString>

/// Registers a file that is being written, so that a signal that ends the process deletes it or
/// prints a message about it.
///
/// Registering has no effect before Handle_Signals().
class TUnfinishedFile
{
public:
    struct TMessage
    {
        QString text;
    };

    /// A file to delete.
    explicit TUnfinishedFile(const QString& path);
    /// A file that stays. The message goes to standard error, after the name of the program.
    explicit TUnfinishedFile(const TMessage& message);
    ~TUnfinishedFile();
    TUnfinishedFile(const TUnfinishedFile&) = delete;
    TUnfinishedFile& operator=(const TUnfinishedFile&) = delete;

    /// Handles all registered files when SIGHUP, SIGINT or SIGTERM ends the process. Signals that
    /// the process ignores stay ignored.
    static void Handle_Signals();

private:
    int d_slot; ///< negative if the file is not registered
};
