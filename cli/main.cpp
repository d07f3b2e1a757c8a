// Entry point of the command-line tool: finds the subcommand, makes the application object that it
// needs, and turns what comes of it into an exit status.

#include "cli/commandline.h"
#include "cli/commands.h"
#include "cli/errors.h"
#include "cli/terminal.h"
#include "cli/words.h"

#include <QApplication>
#include <QFile>
#include <QTextCodec>

#include <algorithm>
#include <array>
#include <memory>

namespace {

enum TExitStatus { Done = 0, Job_Failed = 1, Wrong_Usage = 2 };

enum class TNeeds { Files, Drawing };

struct TCommand
{
    const char* name;
    const char* summary;
    TNeeds needs;
    void (*run)(TCommandLine* line);
};

const std::array<TCommand, 11> commands = {{
    {"create", QT_TRANSLATE_NOOP("QuilletCli", "Make a project from page images."), TNeeds::Files,
     Commands::Create},
    {"info", QT_TRANSLATE_NOOP("QuilletCli", "Tell what is in a document."), TNeeds::Files,
     Commands::Info},
    {"check", QT_TRANSLATE_NOOP("QuilletCli", "Look for defects in documents."), TNeeds::Files,
     Commands::Check},
    {"recover", QT_TRANSLATE_NOOP("QuilletCli", "Save what can be saved of a damaged project."),
     TNeeds::Files, Commands::Recover},
    {"reindex", QT_TRANSLATE_NOOP("QuilletCli", "Number the labels of all pages anew."),
     TNeeds::Files, Commands::Reindex},
    {"export-images",
     QT_TRANSLATE_NOOP("QuilletCli", "Draw each page with its labels into a PNG file."),
     TNeeds::Drawing, Commands::Export_Images},
    {"export-pdf", QT_TRANSLATE_NOOP("QuilletCli", "Make a PDF report of all pages."),
     TNeeds::Drawing, Commands::Export_Pdf},
    {"import-items", QT_TRANSLATE_NOOP("QuilletCli", "Add labels from a table to a project."),
     TNeeds::Files, Commands::Import_Items},
    {"export-items", QT_TRANSLATE_NOOP("QuilletCli", "Write all labels as a table."), TNeeds::Files,
     Commands::Export_Items},
    {"kept",
     QT_TRANSLATE_NOOP("QuilletCli", "List the safety copies of the window, or get one out."),
     TNeeds::Files, Commands::Kept},
    {"thumbnail", QT_TRANSLATE_NOOP("QuilletCli", "Draw a small picture of the first page."),
     TNeeds::Drawing, Commands::Thumbnail},
}};

void Print_Help()
{
    Terminal::Print(Translated("Usage: quillet-cli COMMAND [OPTIONS] ...\n"
                               "Works on Quillet documents without a window.\n\n"
                               "Commands:"));
    constexpr int name_width = 15;
    for (const TCommand& command : commands)
        Terminal::Print(QStringLiteral("  ") +
                        QString::fromLatin1(command.name).leftJustified(name_width) +
                        Translated(command.summary));
    Terminal::Print(Translated("\nOptions:\n"
                               "  -h, --help     Tell how to use this.\n"
                               "  -v, --version  Tell the version.\n\n"
                               "'quillet-cli COMMAND --help' tells more of a command.\n"
                               "The exit status is 0 when all went well, 1 when a job failed and 2 "
                               "for wrong usage."));
}

TExitStatus Refuse(const QString& message, const QString& command)
{
    Terminal::Complain(message);
    Terminal::Complain(
        Translated("Try '%1 --help'.").arg((QStringLiteral("quillet-cli ") + command).trimmed()));
    return Wrong_Usage;
}

/// What stands in place of a command.
TExitStatus Run_Without_Command(const QStringList& arguments)
{
    if (arguments.isEmpty())
        return Refuse(Translated("A command is missing."), QString());
    const QString& option = arguments.first();
    const bool is_help = option == QLatin1String("-h") || option == QLatin1String("--help");
    const bool is_version = option == QLatin1String("-v") || option == QLatin1String("--version");
    if (!is_help && !is_version)
        return Refuse(Translated("There is no command '%1'.").arg(option), QString());
    if (arguments.size() > 1)
        return Refuse(Translated("Unexpected argument '%1'.").arg(arguments.at(1)), QString());
    if (is_help)
        Print_Help();
    else
        Terminal::Print(QStringLiteral("quillet-cli ") + QCoreApplication::applicationVersion());
    return Done;
}

TExitStatus Run(const TCommand& command, const QStringList& arguments)
{
    try {
        TCommandLine line(Translated(command.summary), arguments);
        command.run(&line);
    } catch (const TUsageError& error) {
        return Refuse(error.message, QString::fromLatin1(command.name));
    } catch (const TJobError& error) {
        Terminal::Complain(error.file, error.defect);
        return Job_Failed;
    } catch (const TReportedError&) {
        return Job_Failed;
    }
    return Done;
}

/// The tool's arguments as texts.
/// @throws TUsageError for one that is not in UTF-8: the toolkit would read or, worse, write a file
/// of another name.
QStringList Words(int count, char** arguments)
{
    QStringList words;
    for (int place = 1; place < count; ++place) {
        const QString word = QFile::decodeName(arguments[place]);
        if (QFile::encodeName(word) != arguments[place])
            throw TUsageError{Translated("Argument '%1' is not in UTF-8.").arg(word)};
        words += word;
    }
    return words;
}

/// Drawing takes the toolkit's platform part, and that is to be the one without a display, whatever
/// the user's desktop wants of its programs.
void Choose_Platform()
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qunsetenv("QT_QPA_PLATFORMTHEME");
}

/// What the toolkit thinks of the session that it runs in is of no use to somebody who only wants a
/// file made; what keeps it from working is.
void Pass_On_Errors(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (type == QtCriticalMsg || type == QtFatalMsg)
        Terminal::Complain(message);
}

/// The application object takes no arguments of ours, since it would take its own out of them. Its
/// name is what the help of a command begins with.
std::unique_ptr<QCoreApplication> New_Application(TNeeds needs, QByteArray* name)
{
    static int count = 1;
    static char* arguments[] = {name->data(), nullptr};
    if (needs == TNeeds::Files)
        return std::make_unique<QCoreApplication>(count, arguments);
    Choose_Platform();
    return std::make_unique<QApplication>(count, arguments);
}

} // namespace

int main(int argument_count, char** arguments)
{
    // File names are UTF-8, also where a script runs in a locale that knows of ASCII only.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    qInstallMessageHandler(Pass_On_Errors);
    // The resolution that desktops have, and the window with them: fonts get their sizes by it, and
    // it is noted in images. Without a display the toolkit would assume others.
    QCoreApplication::setAttribute(Qt::AA_Use96Dpi);
    QStringList words;
    try {
        words = Words(argument_count, arguments);
    } catch (const TUsageError& error) {
        return Refuse(error.message, QString());
    }
    const TCommand* const command =
        std::find_if(commands.cbegin(), commands.cend(), [&words](const TCommand& candidate) {
            return words.value(0) == QLatin1String(candidate.name);
        });
    const bool is_known = command != commands.cend();
    QByteArray name("quillet-cli");
    if (is_known)
        name += QByteArray(" ") + command->name;
    const std::unique_ptr<QCoreApplication> application =
        New_Application(is_known ? command->needs : TNeeds::Files, &name);
    QCoreApplication::setApplicationVersion(QStringLiteral(QUILLET_VERSION));

    const TExitStatus status = is_known ? Run(*command, words.mid(1)) : Run_Without_Command(words);
    if (Terminal::Flush())
        return status;
    Terminal::Complain(Translated("standard output"), Translated("cannot be written"));
    return Job_Failed;
}
