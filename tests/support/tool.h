#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// Runs of the command-line tool, in processes of their own.
namespace Support {

/// What came of a run.
struct TToolResult
{
    int status = -1; ///< exit status; -1 when it did not end by itself
    QString output;
    QString errors;
    QStringList home; ///< what was in its home folder afterwards
};

/// A run's surroundings.
struct TToolSurroundings
{
    QString home;      ///< its home folder; a new empty one when this is empty
    QString folder;    ///< in which it runs; the test's own when this is empty
    QString display;   ///< DISPLAY; unset when this is empty
    QString file_size; ///< in blocks of 1024 bytes, beyond which no file grows; empty for no limit
};

/// Path of the tool, for runs of another kind.
QString Tool_Path();

/// Runs the tool to its end.
TToolResult Run_Tool(const QStringList& arguments, const TToolSurroundings& surroundings = {});

} // namespace Support
