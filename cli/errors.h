#pragma once

#include <QString>

/// Thrown when the command line is invalid.
struct TUsageError
{
    QString message;
};

/// Thrown when a command fails because of a file.
struct TJobError
{
    QString file;
    QString defect; ///< what is wrong with the file
};

/// Thrown when a command fails after it has printed its errors itself.
struct TReportedError
{
};
