#include "cli/commandline.h"

#include "cli/errors.h"
#include "cli/terminal.h"
#include "cli/words.h"

#include <QCommandLineOption>

namespace {

const char* const help_option = "help";

} // namespace

TCommandLine::TCommandLine(const QString& summary, const QStringList& arguments)
    : d_arguments(arguments)
{
    d_parser.setApplicationDescription(summary);
    // The parser's own help option would also bring the toolkit's options, which are not passed on.
    d_parser.addOption({{QStringLiteral("h"), help_option}, Translated("Tell how to use this.")});
}

void TCommandLine::Take_Arguments(const QString& name, const QString& description, TCount count)
{
    d_argument_name = name;
    d_count = count;
    d_parser.addPositionalArgument(name, description,
                                   count == TCount::One ? name : name + QStringLiteral("..."));
}

void TCommandLine::Take_Option(const char* option, const QString& value_name,
                               const QString& description, TNeed need)
{
    d_parser.addOption({QString::fromLatin1(option), description, value_name});
    if (need == TNeed::Required)
        d_required_options += QString::fromLatin1(option);
}

void TCommandLine::Take_Flag(const char* option, const QString& description)
{
    d_parser.addOption({QString::fromLatin1(option), description});
}

void TCommandLine::Take_Output(const char* option, const QString& value_name,
                               const QString& description)
{
    Take_Option(option, value_name, description, TNeed::Required);
    Take_Force();
}

void TCommandLine::Take_Force()
{
    Take_Flag(Options::Force, Translated("Replace files that are there already."));
}

bool TCommandLine::Parse()
{
    // The parser passes over the first one, which is the program elsewhere.
    const bool is_understood = d_parser.parse(QStringList{QString()} + d_arguments);
    if (d_parser.isSet(help_option)) {
        Terminal::Print_Raw(d_parser.helpText().toUtf8());
        return false;
    }
    if (!is_understood)
        throw TUsageError{d_parser.errorText()};
    Check_Count();
    for (const QString& option : std::as_const(d_required_options)) {
        if (!d_parser.isSet(option))
            throw TUsageError{Translated("Option '%1' is missing.").arg(option)};
        // Scripts come to this by a variable without a value.
        if (d_parser.value(option).isEmpty())
            Refuse_Value(option);
    }
    return true;
}

void TCommandLine::Check_Count() const
{
    const QStringList arguments = Arguments();
    const int least_count = d_argument_name.isEmpty() ? 0 : 1;
    if (arguments.size() < least_count)
        throw TUsageError{Translated("%1 is missing.").arg(d_argument_name)};
    const bool is_bounded = least_count == 0 || d_count == TCount::One;
    if (is_bounded && arguments.size() > least_count)
        throw TUsageError{Translated("Unexpected argument '%1'.").arg(arguments.at(least_count))};
}

int TCommandLine::Number(const char* option, int smallest, int largest) const
{
    bool is_number = false;
    const int number = Text(option).toInt(&is_number);
    if (!is_number || number < smallest || number > largest)
        Refuse_Value(QString::fromLatin1(option));
    return number;
}

void TCommandLine::Refuse_Value(const QString& option) const
{
    throw TUsageError{
        Translated("Option '%1' cannot be '%2'.").arg(option, d_parser.value(option))};
}
