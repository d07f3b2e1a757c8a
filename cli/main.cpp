// Entry point of the command-line tool: finds the subcommand, creates the application object it
// needs, runs it, and returns the exit status.

#include "cli/commandline.h"
#include "cli/commands.h"
#include "cli/errors.h"
#include "cli/terminal.h"
#include "cli/translate.h"
#include "core/unfinishedfile.h"

#include <QApplication>
#include <QFile>
#include <QTextCodec>

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace {

enum TExitStatus { Success = 0, Job_Failed = 1, Usage_Error = 2 };

/// Status of `diff` if it could not compare; its status 1 means that the documents differ.
constexpr TExitStatus Not_Compared = Usage_Error;

enum class TApplicationType {
    Core, ///< QCoreApplication
    Gui   ///< QApplication, for commands that draw pages
};

struct TCommand
{
    const char* name;
    const char* summary;
    TApplicationType application_type;
    void (*run)(TCommandLine* line);
    TExitStatus failure = Job_Failed; ///< if a file cannot be read or written
};

const std::array<TCommand, 16> commands = {{
    {"create", QT_TRANSLATE_NOOP("QuilletCli", "Create a project from images and PDFs."),
     TApplicationType::Core, Commands::Create},
    {"info", QT_TRANSLATE_NOOP("QuilletCli", "Show the content of a document."),
     TApplicationType::Core, Commands::Info},
    {"check", QT_TRANSLATE_NOOP("QuilletCli", "Check documents for defects."),
     TApplicationType::Core, Commands::Check},
    {"recover", QT_TRANSLATE_NOOP("QuilletCli", "Save the readable parts of a damaged project."),
     TApplicationType::Core, Commands::Recover},
    {"diff", QT_TRANSLATE_NOOP("QuilletCli", "Compare two documents."), TApplicationType::Core,
     Commands::Diff, Not_Compared},
    {"set", QT_TRANSLATE_NOOP("QuilletCli", "Change label size, label colour and header lines."),
     TApplicationType::Core, Commands::Set},
    {"pages",
     QT_TRANSLATE_NOOP("QuilletCli", "List, reorder, rename, rotate, remove or extract pages."),
     TApplicationType::Core, Commands::Pages},
    {"merge", QT_TRANSLATE_NOOP("QuilletCli", "Put the pages of several documents into one."),
     TApplicationType::Core, Commands::Merge},
    {"reindex", QT_TRANSLATE_NOOP("QuilletCli", "Renumber the labels of all pages."),
     TApplicationType::Core, Commands::Reindex},
    {"export-images",
     QT_TRANSLATE_NOOP("QuilletCli", "Export each page with its labels as a PNG image."),
     TApplicationType::Gui, Commands::Export_Images},
    {"export-pdf", QT_TRANSLATE_NOOP("QuilletCli", "Export all pages as a PDF report."),
     TApplicationType::Gui, Commands::Export_Pdf},
    {"export-html",
     QT_TRANSLATE_NOOP("QuilletCli", "Export all pages and the list of findings as a web page."),
     TApplicationType::Gui, Commands::Export_Html},
    {"import-items", QT_TRANSLATE_NOOP("QuilletCli", "Add labels from a CSV table to a project."),
     TApplicationType::Core, Commands::Import_Items},
    {"export-items",
     QT_TRANSLATE_NOOP("QuilletCli", "Export all labels as a CSV table or as JSON."),
     TApplicationType::Core, Commands::Export_Items},
    {"kept",
     QT_TRANSLATE_NOOP("QuilletCli", "List or copy the backups and recovery copies of the window."),
     TApplicationType::Core, Commands::Kept},
    {"thumbnail", QT_TRANSLATE_NOOP("QuilletCli", "Draw a thumbnail of the first page."),
     TApplicationType::Gui, Commands::Thumbnail},
}};

void Print_Help()
{
    Terminal::Print(Tr("Usage: quillet-cli COMMAND [OPTIONS] ...\n"
                       "Processes Quillet documents without a window.\n\n"
                       "Commands:"));
    constexpr int name_width = 15;
    for (const TCommand& command : commands)
        Terminal::Print(QStringLiteral("  ") +
                        QString::fromLatin1(command.name).leftJustified(name_width) +
                        Tr(command.summary));
    Terminal::Print(Tr("\nOptions:\n"
                       "  -h, --help     Show this help.\n"
                       "  -v, --version  Show the version.\n\n"
                       "Run 'quillet-cli COMMAND --help' for help on a command.\n"
                       "The exit status is 0 for success, 1 if the command failed and 2 for "
                       "invalid usage.\n"
                       "That of diff is 1 for different documents and 2 if it failed."));
}

/// @param command  the command whose help the message mentions; empty for the tool's own help.
TExitStatus Report_Usage_Error(const QString& message, const QString& command)
{
    Terminal::Print_Error(message);
    Terminal::Print_Error(
        Tr("Try '%1 --help'.").arg((QStringLiteral("quillet-cli ") + command).trimmed()));
    return Usage_Error;
}

/// Handles --help, --version and everything that is not a known command.
TExitStatus Run_Without_Command(const QStringList& arguments)
{
    if (arguments.isEmpty())
        return Report_Usage_Error(Tr("Missing command."), QString());
    const QString& option = arguments.first();
    const bool is_help = option == QLatin1String("-h") || option == QLatin1String("--help");
    const bool is_version = option == QLatin1String("-v") || option == QLatin1String("--version");
    if (!is_help && !is_version)
        return Report_Usage_Error(Tr("Unknown command '%1'.").arg(option), QString());
    if (arguments.size() > 1)
        return Report_Usage_Error(Tr("Unexpected argument '%1'.").arg(arguments.at(1)), QString());
    if (is_help)
        Print_Help();
    else
        Terminal::Print(QStringLiteral("quillet-cli ") + QCoreApplication::applicationVersion());
    return Success;
}

TExitStatus Run(const TCommand& command, const QStringList& arguments)
{
    try {
        TCommandLine line(Tr(command.summary), arguments);
        command.run(&line);
    } catch (const TUsageError& error) {
        return Report_Usage_Error(error.message, QString::fromLatin1(command.name));
    } catch (const TJobError& error) {
        Terminal::Print_Error(error.file, error.defect);
        return command.failure;
    } catch (const TReportedError&) {
        return Job_Failed;
    }
    return Success;
}

/// Opens /dev/null for each standard stream that is closed. Otherwise, the next file that is opened
/// would take its place, and errors could be written to a document.
void Open_Closed_Streams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // In the other direction, so that using the stream is an error.
        if (fcntl(stream, F_GETFD) < 0)
            open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
}

/// Decodes the tool's arguments.
/// @throws TUsageError for an argument that is not valid UTF-8: Qt would read or, worse, write a
/// file of another name.
QStringList Decode_Arguments(int count, char** raw_arguments)
{
    QStringList arguments;
    for (int index = 1; index < count; ++index) {
        const QString argument = QFile::decodeName(raw_arguments[index]);
        if (QFile::encodeName(argument) != raw_arguments[index])
            throw TUsageError{Tr("Argument '%1' is not valid UTF-8.").arg(argument)};
        arguments += argument;
    }
    return arguments;
}

/// Selects Qt's platform plugin without a display, and removes the user's desktop settings: pages
/// must look the same everywhere.
void Choose_Platform()
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    for (const char* const setting :
         {"QT_QPA_PLATFORMTHEME", "QT_STYLE_OVERRIDE", "QT_SCALE_FACTOR", "QT_SCREEN_SCALE_FACTORS",
          "QT_DEVICE_PIXEL_RATIO", "QT_FONT_DPI"})
        qunsetenv(setting);
}

/// Message handler that prints Qt's errors and hides its warnings, which are about the desktop
/// session.
void Print_Qt_Errors(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (type == QtCriticalMsg || type == QtFatalMsg)
        Terminal::Print_Error(message);
}

/// Creates the application object. It does not get the tool's arguments, because Qt would remove
/// the ones that it recognizes.
/// @param name  appears in the usage line of a command's help; must outlive the application.
std::unique_ptr<QCoreApplication> New_Application(TApplicationType type, QByteArray* name)
{
    static int count = 1;
    static char* arguments[] = {name->data(), nullptr};
    if (type == TApplicationType::Core)
        return std::make_unique<QCoreApplication>(count, arguments);
    Choose_Platform();
    return std::make_unique<QApplication>(count, arguments);
}

} // namespace

int main(int argument_count, char** raw_arguments)
{
    Open_Closed_Streams();
    // File names are UTF-8 even if a script runs in the C locale.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    qInstallMessageHandler(Print_Qt_Errors);
    TUnfinishedFile::Handle_Signals();
    // The resolution of a desktop, and so of the window. It determines font sizes and is stored in
    // images. Without a display, Qt would use another resolution.
    QCoreApplication::setAttribute(Qt::AA_Use96Dpi);
    QStringList arguments;
    try {
        arguments = Decode_Arguments(argument_count, raw_arguments);
    } catch (const TUsageError& error) {
        return Report_Usage_Error(error.message, QString());
    }
    const TCommand* const command =
        std::find_if(commands.cbegin(), commands.cend(), [&arguments](const TCommand& candidate) {
            return arguments.value(0) == QLatin1String(candidate.name);
        });
    const bool is_known = command != commands.cend();
    QByteArray name("quillet-cli");
    if (is_known)
        name += QByteArray(" ") + command->name;
    const std::unique_ptr<QCoreApplication> application =
        New_Application(is_known ? command->application_type : TApplicationType::Core, &name);
    QCoreApplication::setApplicationVersion(QStringLiteral(QUILLET_VERSION));

    const TExitStatus status =
        is_known ? Run(*command, arguments.mid(1)) : Run_Without_Command(arguments);
    QString problem;
    if (Terminal::Flush(&problem))
        return status;
    Terminal::Print_Error(Tr("standard output"), Tr("cannot be written: %1").arg(problem));
    return is_known ? command->failure : Job_Failed;
}
