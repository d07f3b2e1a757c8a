#include "cli/commandline.h"

#include "cli/errors.h"
#include "cli/terminal.h"
#include "cli/translate.h"

#include <QCommandLineOption>

namespace {

const char* const help_option = "help";

/// Whether one of the arguments is the option that shows the help.
bool Names_Help(const QStringList& arguments)
{
    return arguments.contains(QStringLiteral("-h")) || arguments.contains(QStringLiteral("--help"));
}

} // namespace

TCommandLine::TCommandLine(const QString& summary, const QStringList& arguments)
    : d_arguments(arguments)
{
    d_parser.setApplicationDescription(summary);
    // QCommandLineParser::addHelpOption would also add --help-all, which lists Qt's own options.
    d_parser.addOption({{QStringLiteral("h"), help_option}, Tr("Show this help.")});
}

void TCommandLine::Add_Argument(const QString& name, const QString& description, TCount count)
{
    d_argument_name = name;
    d_count = count;
    d_parser.addPositionalArgument(name, description,
                                   count == TCount::One ? name : name + QStringLiteral("..."));
}

void TCommandLine::Add_Option(const char* option, const QString& value_name,
                              const QString& description, TNeed need)
{
    d_parser.addOption({QString::fromLatin1(option), description, value_name});
    if (need == TNeed::Required)
        d_required_options.push_back(option);
}

void TCommandLine::Add_Flag(const char* option, const QString& description)
{
    d_parser.addOption({QString::fromLatin1(option), description});
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
    // The parser skips the first argument, which it takes for the program's name.
    const bool is_valid = d_parser.parse(QStringList{QString()} + d_arguments);
    // "-photo.png" contains "-h" to the parser.
    if (is_valid ? d_parser.isSet(help_option) : Names_Help(d_arguments)) {
        Terminal::Print_Raw(d_parser.helpText().toUtf8());
        return false;
    }
    if (!is_valid)
        throw TUsageError{d_parser.errorText()};
    Check_Argument_Count();
    for (const char* const option : d_required_options)
        Require(option);
    return true;
}

void TCommandLine::Require(const char* option) const
{
    const QString name = QString::fromLatin1(option);
    if (!d_parser.isSet(name))
        throw TUsageError{Tr("Missing option '%1'.").arg(name)};
    // A script passes an empty value when one of its variables is unset.
    if (Text(option).isEmpty())
        Throw_Invalid_Value(option);
}

void TCommandLine::Check_Argument_Count() const
{
    const QStringList arguments = Arguments();
    const int minimum = d_argument_name.isEmpty() ? 0 : 1;
    if (d_count == TCount::One && arguments.size() > minimum)
        throw TUsageError{Tr("Unexpected argument '%1'.").arg(arguments.at(minimum))};
    // Arguments are empty for the same reason as values: see Require().
    if (arguments.size() < minimum || arguments.contains(QString()))
        throw TUsageError{Tr("Missing argument '%1'.").arg(d_argument_name)};
}

int TCommandLine::Number(const char* option, int smallest, int largest) const
{
    bool is_number = false;
    const int number = Text(option).toInt(&is_number);
    if (!is_number || number < smallest || number > largest)
        Throw_Invalid_Value(option);
    return number;
}

std::vector<TPageRange> TCommandLine::Pages(const char* option) const
{
    const std::optional<std::vector<TPageRange>> ranges = PageRanges::Parse(Text(option));
    if (!ranges)
        Throw_Invalid_Value(option);
    return *ranges;
}

void TCommandLine::Throw_Invalid_Value(const char* option) const
{
    throw TUsageError{
        Tr("Invalid value '%2' for option '%1'.").arg(QLatin1String(option), Text(option))};
}
