#include "cli/terminal.h"

#include <cstdio>
#include <unistd.h>

namespace {

const char* const program = "quillet-cli: ";
/// Moves the cursor to the beginning of the line and erases the line.
const char* const erase_line = "\r\033[K";

} // namespace

void Terminal::Print(const QString& line)
{
    Print_Raw(line.toUtf8() + '\n');
}

void Terminal::Print_Raw(const QByteArray& text)
{
    std::fwrite(text.constData(), 1, static_cast<std::size_t>(text.size()), stdout);
}

void Terminal::Print_Error(const QString& line)
{
    std::fprintf(stderr, "%s%s\n", program, line.toUtf8().constData());
}

void Terminal::Print_Error(const QString& file, const QString& defect)
{
    Print_Error(file + QStringLiteral(": ") + defect);
}

bool Terminal::Flush()
{
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}

TTerminalProgress::TTerminalProgress(const QString& pattern)
    : d_pattern(pattern)
    , d_is_terminal(isatty(STDERR_FILENO) == 1)
{
}

TTerminalProgress::~TTerminalProgress()
{
    if (d_has_line)
        std::fputs(erase_line, stderr);
}

void TTerminalProgress::Step(int number, int total)
{
    if (!d_is_terminal)
        return;
    d_has_line = true;
    const QByteArray text = d_pattern.arg(number).arg(total).toUtf8();
    std::fprintf(stderr, "%s%s", erase_line, text.constData());
    std::fflush(stderr);
}

TStepReport TTerminalProgress::Steps()
{
    return [this](int number, int total) { Step(number, total); };
}
