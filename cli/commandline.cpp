#include "cli/commandline.h"

#include "cli/errors.h"
#include "cli/terminal.h"
#include "cli/translate.h"

#include <QCommandLineOption>
#include <QFileInfo>

namespace {

const char* const help_option = "help";

/// Whether one of the arguments is the option that shows the help.
bool Names_Help(const QStringList& arguments)
{
    return arguments.contains(QStringLiteral("-h")) || arguments.contains(QStringLiteral("--help"));
}

/// All names of an option: the short one first, if it has one.
QStringList Names(const char* option)
{
    const QString name = QString::fromLatin1(option);
    for (const char* const abbreviated : {help_option, CommonOptions::Output, CommonOptions::Force,
                                          CommonOptions::Quiet, CommonOptions::Verbose}) {
        if (name == QLatin1String(abbreviated))
            return {QString(name.at(0)), name};
    }
    return {name};
}

} // namespace

TCommandLine::TCommandLine(const QString& summary, const QStringList& arguments)
    : d_arguments(arguments)
{
    d_parser.setApplicationDescription(summary);
    // QCommandLineParser::addHelpOption would also add --help-all, which lists Qt's own options.
    Add_Flag(help_option, Tr("Show this help."));
    Add_Flag(CommonOptions::Quiet, Tr("Print no progress, warnings and reports, only errors."));
    Add_Flag(CommonOptions::Verbose, Tr("Print which files are read and written."));
}

void TCommandLine::Add_Argument(const QString& name, const QString& description, TCount count)
{
    d_argument_names += name;
    d_count = count;
    d_parser.addPositionalArgument(name, description,
                                   count == TCount::One ? name : name + QStringLiteral("..."));
}

void TCommandLine::Add_Option(const char* option, const QString& value_name,
                              const QString& description, TNeed need)
{
    d_parser.addOption({Names(option), description, value_name});
    if (need == TNeed::Required)
        d_required_options.push_back(option);
}

void TCommandLine::Add_Flag(const char* option, const QString& description)
{
    d_parser.addOption({Names(option), description});
}

void TCommandLine::Add_Output_Option(const char* option, const QString& value_name,
                                     const QString& description)
{
    Add_Option(option, value_name, description, TNeed::Required);
    Add_Force_Flag();
}

void TCommandLine::Add_Force_Flag()
{
    Add_Flag(CommonOptions::Force, Tr("Overwrite existing files."));
}

bool TCommandLine::Parse()
{
    Check_File_Names();
    // The parser skips the first argument, which it takes for the program's name.
    const bool is_valid = d_parser.parse(QStringList{QString()} + d_arguments);
    // The parser finds "-h" in "-photo.png", too.
    if (is_valid ? d_parser.isSet(help_option) : Names_Help(d_arguments)) {
        Terminal::Print_Raw(d_parser.helpText().toUtf8());
        return false;
    }
    if (!is_valid)
        throw TUsageError{d_parser.errorText()};
    Apply_Verbosity();
    Check_Argument_Count();
    for (const char* const option : d_required_options)
        Require(option);
    return true;
}

/// Refuses file names that the parser would read as short options, such as "-of.png". A shell makes
/// them of "*.png".
void TCommandLine::Check_File_Names() const
{
    constexpr int option_length = 2;
    for (const QString& argument : d_arguments) {
        if (argument == QLatin1String("--"))
            return;
        if (argument.startsWith(QLatin1Char('-')) && argument.size() > option_length &&
            QFileInfo(argument).isFile())
            throw TUsageError{
                Tr("Unknown option '%1'; a file of this name is './%1'.").arg(argument)};
    }
}

void TCommandLine::Require(const char* option) const
{
    const QString name = QString::fromLatin1(option);
    if (!d_parser.isSet(name))
        throw TUsageError{Tr("Missing option '%1'.").arg(name)};
    // A script passes an empty value when one of its variables is unset.
    if (Text(option).isEmpty())
        Throw_Invalid_Value(option, Tr("a text that is not empty"));
}

void TCommandLine::Exclude(const char* first, const char* second) const
{
    if (Is_Set(first) && Is_Set(second))
        throw TUsageError{Tr("Options '%1' and '%2' exclude each other.")
                              .arg(QLatin1String(first), QLatin1String(second))};
}

void TCommandLine::Apply_Verbosity() const
{
    Exclude(CommonOptions::Quiet, CommonOptions::Verbose);
    if (Is_Set(CommonOptions::Quiet))
        Terminal::Set_Verbosity(Terminal::TVerbosity::Quiet);
    if (Is_Set(CommonOptions::Verbose))
        Terminal::Set_Verbosity(Terminal::TVerbosity::Verbose);
}

void TCommandLine::Check_Argument_Count() const
{
    const QStringList arguments = Arguments();
    const int minimum = d_argument_names.size();
    if (d_count == TCount::One && arguments.size() > minimum)
        throw TUsageError{Tr("Unexpected argument '%1'.").arg(arguments.at(minimum))};
    // A script passes empty arguments for the reason given in Require().
    const int empty = arguments.indexOf(QString());
    const int missing = empty < 0 ? arguments.size() : qMin(empty, minimum - 1);
    if (missing < minimum)
        throw TUsageError{Tr("Missing argument '%1'.").arg(d_argument_names.at(missing))};
}

int TCommandLine::Number(const char* option, int smallest, int largest) const
{
    bool is_number = false;
    const int number = Text(option).toInt(&is_number);
    if (!is_number || number < smallest || number > largest)
        Throw_Invalid_Value(option, Tr("a whole number from %1 to %2").arg(smallest).arg(largest));
    return number;
}

std::vector<TPageRange> TCommandLine::Pages(const char* option) const
{
    const std::optional<std::vector<TPageRange>> ranges = PageRanges::Parse(Text(option));
    if (!ranges)
        Throw_Invalid_Value(option, Tr("page numbers and ranges such as 1-3,7"));
    return *ranges;
}

QString TCommandLine::One_Of(const QStringList& values)
{
    return Tr("one of %1").arg(values.join(QStringLiteral(", ")));
}

void TCommandLine::Throw_Invalid_Value(const char* option, const QString& expected) const
{
    Throw_Invalid_Value(option, Text(option), expected);
}

void TCommandLine::Throw_Invalid_Value(const char* option, const QString& text,
                                       const QString& expected)
{
    throw TUsageError{Tr("Invalid value '%2' for option '%1': expected %3.")
                          .arg(QLatin1String(option), text, expected)};
}
