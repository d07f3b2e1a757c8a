#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// Runs the command-line tool in a process of its own.
namespace Support {

/// Result of a run.
struct TToolResult
{
    int status = -1; ///< exit status; -1 after a crash or timeout
    QString output;
    QString errors;
    QStringList home; ///< entries of its home folder after the run
};

/// How the tool is run.
struct TToolOptions
{
    QString home;      ///< home folder; empty for a new empty folder
    QString folder;    ///< working directory; empty for the test's own
    QString display;   ///< DISPLAY; empty to unset it
    QString file_size; ///< maximum size of a file in blocks of 1024 bytes; empty for no limit
};

/// Path of the tool, for tests that start it directly.
QString Tool_Path();

/// Runs the tool and waits for it.
TToolResult Run_Tool(const QStringList& arguments, const TToolOptions& options = {});

/// The text of each page of a PDF file, as pdftotext lays it out.
QStringList Text_Of_Pages(const QString& pdf);

} // namespace Support
