#pragma once

#include <QString>

/// Options of a report.
struct TReportOptions
{
    int orientation = 0; ///< 0 portrait, anything else landscape
    int resolution = 0;  ///< code 1 to 4; times 96 it is the resolution in dots per inch
    QString header_1;    ///< may be empty
    QString header_2;    ///< may be empty
};
