#pragma once

#include "core/progressreport.h"

#include <QString>

/// Output of the tool: results on standard output; errors, warnings and progress on standard error.
/// If both go to the same place, they appear in the order in which they are printed.
///
/// On terminals, control characters in a line are shown escaped: a file name could contain the
/// terminal's commands.
namespace Terminal {

enum class TVerbosity {
    Quiet, ///< no progress, warnings and reports
    Normal,
    Verbose ///< also details
};

void Set_Verbosity(TVerbosity verbosity);

/// Prints a line of the result.
void Print(const QString& line);
/// Prints a result as it is, without adding a line break.
void Print_Raw(const QByteArray& text);
/// Prints a text of several lines in UTF-8, without adding a line break.
void Print_Text(const QByteArray& text);
/// Prints what the command has done, unless quiet. Goes to standard output, or to standard error if
/// standard output is reserved.
void Print_Report(const QString& line);
/// Prints an error.
void Print_Error(const QString& line);
/// Prints an error about a file.
void Print_Error(const QString& file, const QString& defect);
/// Prints a warning about a file, unless quiet.
void Print_Warning(const QString& file, const QString& text);
/// Prints what the command does with a file, if verbose.
void Print_Detail(const QString& file, const QString& text);

bool Is_Output_Terminal();
/// Reserves standard output for the content of a file.
void Reserve_Output();
/// Flushes standard output. Returns false if anything printed was lost, for example on a full disk.
/// @param problem  receives the system's reason.
bool Flush(QString* problem);

/// Replaces control characters and characters that change the direction of text by "\n", "\x1b" or
/// "\u202e".
QString Escaped(const QString& text);

} // namespace Terminal

/// Shows the progress of a long operation in one line of the terminal, which the destructor erases.
/// Does nothing if standard error is not a terminal, or if the tool is quiet.
class TTerminalProgress
{
public:
    /// @param pattern  the line; "%1" stands for the current part and "%2" for the number of parts.
    explicit TTerminalProgress(const QString& pattern);
    ~TTerminalProgress();
    TTerminalProgress(const TTerminalProgress&) = delete;
    TTerminalProgress& operator=(const TTerminalProgress&) = delete;

    /// Shows that a part begins.
    /// @param number  of the part, from 1.
    void Begin_Part(int number, int total);
    /// Returns a function that calls Begin_Part. It must not outlive this object.
    TProgressReport Report();

private:
    QString d_pattern;
    bool d_is_shown;
    bool d_has_line = false;
};
