#pragma once

#include <QString>

/// The tool was called in a way that it does not understand.
struct TUsageError
{
    QString message;
};

/// Something could not be done, and the user knows already why.
struct TReportedError
{
};

/// What was asked for could not be done.
struct TJobError
{
    QString file;   ///< that has the defect
    QString defect; ///< what is wrong with it
};
