#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// Runs programs that read untrusted files. Each run has its own process, limited in memory and
/// time, so that whatever happens there does not affect this program.
namespace ToolRun {

constexpr qint64 Memory_Limit = 2LL * 1024 * 1024 * 1024; ///< bytes
constexpr int Time_Limit = 60'000;                        ///< milliseconds

struct TResult
{
    QByteArray output;
    QByteArray messages; ///< what the program printed on standard error
    QString fault;       ///< why it failed; empty on success
};

/// Runs a program and waits for it. Meanwhile, notifies TWorkWatch.
TResult Run(const QString& program, const QStringList& arguments, int time_limit = Time_Limit);

} // namespace ToolRun
