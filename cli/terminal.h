#pragma once

#include <QString>

#include <functional>

/// What the tool tells its user: results on the standard output, everything else on the standard
/// error output.
namespace Terminal {

/// A line of the result.
void Print(const QString& line);
/// Something as it is, for what brings its own line breaks.
void Print_Raw(const QByteArray& text);
/// A line that tells of an error.
void Complain(const QString& line);
/// The same for an error in a file.
void Complain(const QString& file, const QString& defect);
/// Whether all that was printed has gone out; not so on a full disk.
bool Flush();

} // namespace Terminal

/// Tells how far a long work is, in one line of the terminal that goes away with this object. Says
/// nothing where the standard error output is no terminal.
class TTerminalProgress
{
public:
    /// @param pattern  in which "%1" stands for the step and "%2" for their number.
    explicit TTerminalProgress(const QString& pattern);
    ~TTerminalProgress();
    TTerminalProgress(const TTerminalProgress&) = delete;
    TTerminalProgress& operator=(const TTerminalProgress&) = delete;

    /// A step, counted from 1, is about to begin.
    void Step(int number, int total);
    /// The same for whoever wants to be given a function. Only valid while this object lives.
    std::function<void(int number, int total)> Steps();

private:
    QString d_pattern;
    bool d_is_terminal;
    bool d_has_line = false;
};
