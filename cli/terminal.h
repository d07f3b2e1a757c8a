#pragma once

#include "core/stepreport.h"

#include <QString>

/// Output of the tool: results on standard output, errors and progress on standard error.
namespace Terminal {

/// Prints a line of the result.
void Print(const QString& line);
/// Prints a result as it is, without adding a line break.
void Print_Raw(const QByteArray& text);
/// Prints an error.
void Print_Error(const QString& line);
/// Prints an error about a file.
void Print_Error(const QString& file, const QString& defect);
/// Flushes standard output. Returns false if anything printed was lost, for example on a full disk.
bool Flush();

} // namespace Terminal

/// Shows the progress of a long operation in one line of the terminal, which the destructor erases.
/// Does nothing if standard error is not a terminal.
class TTerminalProgress
{
public:
    /// @param pattern  the line; "%1" stands for the current step and "%2" for the number of steps.
    explicit TTerminalProgress(const QString& pattern);
    ~TTerminalProgress();
    TTerminalProgress(const TTerminalProgress&) = delete;
    TTerminalProgress& operator=(const TTerminalProgress&) = delete;

    /// Shows that a step begins.
    /// @param number  of the step, from 1.
    void Step(int number, int total);
    /// Returns a function that calls Step. It must not outlive this object.
    TStepReport Steps();

private:
    QString d_pattern;
    bool d_is_terminal;
    bool d_has_line = false;
};
