#include "cli/terminal.h"

#include "cli/files.h"
#include "cli/translate.h"

#include <cerrno>
#include <cstdio>
#include <unistd.h>

namespace {

const char* const program = "quillet-cli: ";
/// Moves the cursor to the beginning of the line and erases the line.
const char* const erase_line = "\r\033[K";

Terminal::TVerbosity verbosity = Terminal::TVerbosity::Normal;
bool is_output_reserved = false;
int write_error = 0; ///< first error number of standard output

/// Characters that the terminal would interpret instead of showing them.
bool Is_Control(QChar character)
{
    constexpr ushort line_separator = 0x2028;
    constexpr ushort paragraph_separator = 0x2029;
    const ushort code = character.unicode();
    // Those of the category Format are invisible, and some reverse the text around them.
    return character.category() == QChar::Other_Control ||
           character.category() == QChar::Other_Format || code == line_separator ||
           code == paragraph_separator;
}

QString Escape(QChar character)
{
    switch (character.unicode()) {
    case '\n':
        return QStringLiteral("\\n");
    case '\r':
        return QStringLiteral("\\r");
    case '\t':
        return QStringLiteral("\\t");
    default:
        break;
    }
    constexpr int base = 16;
    constexpr ushort largest_byte = 0xff;
    const ushort code = character.unicode();
    return code <= largest_byte ? QStringLiteral("\\x%1").arg(code, 2, base, QLatin1Char('0'))
                                : QStringLiteral("\\u%1").arg(code, 4, base, QLatin1Char('0'));
}

/// The bytes of a line for a stream.
QByteArray For_Stream(const QString& line, int descriptor)
{
    return (isatty(descriptor) == 1 ? Terminal::Escaped(line) : line).toUtf8() + '\n';
}

/// Prints to standard error, after everything that was printed before.
void Print_Diagnostic(const QByteArray& text)
{
    std::fflush(stdout);
    std::fwrite(text.constData(), 1, static_cast<std::size_t>(text.size()), stderr);
}

/// A file's name in a message.
QString Shown(const QString& file)
{
    return file == Files::Standard_Stream ? Tr("standard input") : file;
}

} // namespace

void Terminal::Set_Verbosity(TVerbosity new_verbosity)
{
    verbosity = new_verbosity;
}

void Terminal::Print(const QString& line)
{
    Print_Raw(For_Stream(line, STDOUT_FILENO));
}

void Terminal::Print_Raw(const QByteArray& text)
{
    const auto size = static_cast<std::size_t>(text.size());
    if (std::fwrite(text.constData(), 1, size, stdout) != size && write_error == 0)
        write_error = errno;
}

void Terminal::Print_Text(const QByteArray& text)
{
    if (!Is_Output_Terminal()) {
        Print_Raw(text);
        return;
    }
    const QList<QByteArray> lines = text.split('\n');
    for (int index = 0; index < lines.size(); ++index) {
        const bool has_return = lines.at(index).endsWith('\r');
        const QByteArray line = has_return ? lines.at(index).chopped(1) : lines.at(index);
        if (index + 1 < lines.size())
            Print(QString::fromUtf8(line));
        else
            Print_Raw(Escaped(QString::fromUtf8(line)).toUtf8());
    }
}

void Terminal::Print_Report(const QString& line)
{
    if (verbosity == TVerbosity::Quiet)
        return;
    if (is_output_reserved)
        Print_Diagnostic(For_Stream(line, STDERR_FILENO));
    else
        Print(line);
}

void Terminal::Print_Error(const QString& line)
{
    Print_Diagnostic(program + For_Stream(line, STDERR_FILENO));
}

void Terminal::Print_Error(const QString& file, const QString& defect)
{
    Print_Error(Shown(file) + QStringLiteral(": ") + defect);
}

void Terminal::Print_Warning(const QString& file, const QString& text)
{
    if (verbosity != TVerbosity::Quiet)
        Print_Error(file, Tr("warning: ") + text);
}

void Terminal::Print_Detail(const QString& file, const QString& text)
{
    if (verbosity == TVerbosity::Verbose)
        Print_Error(file, text);
}

bool Terminal::Is_Output_Terminal()
{
    return isatty(STDOUT_FILENO) == 1;
}

void Terminal::Reserve_Output()
{
    is_output_reserved = true;
}

bool Terminal::Flush(QString* problem)
{
    if (std::fflush(stdout) != 0 && write_error == 0)
        write_error = errno;
    *problem = qt_error_string(write_error);
    return std::ferror(stdout) == 0;
}

QString Terminal::Escaped(const QString& text)
{
    QString escaped;
    escaped.reserve(text.size());
    for (const QChar character : text)
        escaped += Is_Control(character) ? Escape(character) : QString(character);
    return escaped;
}

TTerminalProgress::TTerminalProgress(const QString& pattern)
    : d_pattern(pattern)
    , d_is_shown(isatty(STDERR_FILENO) == 1 && verbosity != Terminal::TVerbosity::Quiet)
{
}

TTerminalProgress::~TTerminalProgress()
{
    if (d_has_line)
        std::fputs(erase_line, stderr);
}

void TTerminalProgress::Begin_Part(int number, int total)
{
    if (!d_is_shown)
        return;
    d_has_line = true;
    const QByteArray text = d_pattern.arg(number).arg(total).toUtf8();
    std::fprintf(stderr, "%s%s", erase_line, text.constData());
    std::fflush(stderr);
}

TProgressReport TTerminalProgress::Report()
{
    return [this](int number, int total) { Begin_Part(number, total); };
}
