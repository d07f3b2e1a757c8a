#pragma once

#include <QCommandLineParser>
#include <QString>
#include <QStringList>

/// A text that an option can have, and the code that it stands for.
struct TOptionText
{
    const char* text;
    int code;
};

/// The arguments of one subcommand. A command first says what it takes, then parses, then asks.
///
/// Whatever does not fit what the command takes ends in a TUsageError.
class TCommandLine
{
public:
    enum class TNeed { Optional, Required };
    enum class TCount { One, One_Or_More };

    /// @param summary    what the command does, in a sentence.
    /// @param arguments  what stands behind the command's name.
    TCommandLine(const QString& summary, const QStringList& arguments);

    /// Says what the command works on.
    void Take_Arguments(const QString& name, const QString& description,
                        TCount count = TCount::One);
    /// Says that there is an option with a value.
    void Take_Option(const char* option, const QString& value_name, const QString& description,
                     TNeed need = TNeed::Optional);
    /// Says that there is an option without a value.
    void Take_Flag(const char* option, const QString& description);
    /// Says that there is the flag that lets the command replace files.
    void Take_Force();
    /// Says that there is a required option that names what the command writes, and Take_Force.
    void Take_Output(const char* option, const QString& value_name, const QString& description);

    /// Parses the arguments; false when the user wanted help, which has been given.
    bool Parse();

    QStringList Arguments() const { return d_parser.positionalArguments(); }
    /// The only argument; empty for a command without.
    QString Argument() const { return Arguments().value(0); }
    bool Is_Set(const char* option) const { return d_parser.isSet(QString::fromLatin1(option)); }
    QString Text(const char* option) const { return d_parser.value(QString::fromLatin1(option)); }
    /// An option's value as an integer within limits.
    int Number(const char* option, int smallest, int largest) const;
    /// The code of an option's value in a table of texts; upper and lower case are alike.
    template <typename TTable>
    int Code(const char* option, const TTable& table) const;

private:
    void Check_Count() const;
    [[noreturn]] void Refuse_Value(const QString& option) const;

    QCommandLineParser d_parser;
    QStringList d_arguments;
    QStringList d_required_options;
    QString d_argument_name; ///< empty for a command that takes none
    TCount d_count = TCount::One;
};

template <typename TTable>
int TCommandLine::Code(const char* option, const TTable& table) const
{
    const QString text = Text(option);
    for (const TOptionText& entry : table) {
        if (text.compare(QLatin1String(entry.text), Qt::CaseInsensitive) == 0)
            return entry.code;
    }
    Refuse_Value(QString::fromLatin1(option));
}
