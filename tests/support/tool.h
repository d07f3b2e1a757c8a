#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>

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

/// Result of a script that runs the tool.
struct TScriptResult
{
    int status;        ///< exit status; -1 after the time limit
    QByteArray output; ///< on a terminal, the errors too
    QByteArray errors;
};

/// Path of the tool, for tests that start it directly.
QString Tool_Path();

/// Runs the tool and waits for it.
TToolResult Run_Tool(const QStringList& arguments, const TToolOptions& options = {});

/// Base of the tests of the tool. Each test has a folder of its own, in which the tool runs.
class TToolTest : public QObject
{
    Q_OBJECT

protected:
    std::unique_ptr<QTemporaryDir> d_folder;
    TToolOptions d_options; ///< how Run() runs the tool; init() sets the folder

    QString Path(const QString& name) const { return d_folder->filePath(name); }
    QByteArray Content(const QString& name) const;
    void Write(const QString& name, const QByteArray& content) const;

    TToolResult Run(const QStringList& arguments) const { return Run_Tool(arguments, d_options); }

    /// Runs a script of Bash in which "$tool" is the tool.
    TScriptResult Shell(const QString& script) const;

    /// Runs such a script on a new terminal, which receives both streams.
    TScriptResult On_Terminal(const QString& script) const;

protected slots:
    /// Makes the folder. Tests with sample files write them after calling this.
    void init();
};

/// The text of each page of a PDF file, as pdftotext lays it out.
QStringList Text_Of_Pages(const QString& pdf);

} // namespace Support
