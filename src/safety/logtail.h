#pragma once

#include <QString>

/// The write-ahead log of a work log's database.
namespace LogTail {

struct TCommits
{
    int all = 0;
    int ignored = 0; ///< those that SQLite ignores because of damage
};

/// Counts the transactions in the write-ahead log of a database.
TCommits Count_Commits(const QString& database_path);

} // namespace LogTail
