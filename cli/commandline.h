#pragma once

#include "core/pageranges.h"

#include <QCommandLineParser>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

/// Names of the options that several commands share.
namespace CommonOptions {

constexpr char Output[] = "output";
constexpr char Force[] = "force";
constexpr char Quiet[] = "quiet";
constexpr char Verbose[] = "verbose";
constexpr char Csv[] = "csv";
constexpr char Json[] = "json";
constexpr char Findings[] = "findings";
constexpr char Folder[] = "folder";
constexpr char Title[] = "title";
constexpr char Header_1[] = "header-1";
constexpr char Header_2[] = "header-2";

} // namespace CommonOptions

/// A permitted value of an option, and the code it stands for.
struct TOptionValue
{
    const char* text;
    int code;
};

/// Command line of one subcommand. A command declares its arguments and options, calls Parse, and
/// then reads them. Every command has --help, --quiet and --verbose; --output, --force, --quiet and
/// --verbose also have short names.
///
/// Throws a TUsageError for anything that does not match the declarations.
class TCommandLine
{
public:
    enum class TNeed { Optional, Required };
    enum class TCount { One, One_Or_More };

    /// @param summary    what the command does, in one sentence.
    /// @param arguments  everything after the command's name.
    TCommandLine(const QString& summary, const QStringList& arguments);

    /// Declares a positional argument. With several of them, each is required once.
    void Add_Argument(const QString& name, const QString& description, TCount count = TCount::One);
    /// Declares an option with a value.
    void Add_Option(const char* option, const QString& value_name, const QString& description,
                    TNeed need = TNeed::Optional);
    /// Declares an option without a value.
    void Add_Flag(const char* option, const QString& description);
    /// Declares --force, which lets the command overwrite files.
    void Add_Force_Flag();
    /// Declares a required option that names the output, and --force.
    void Add_Output_Option(const char* option, const QString& value_name,
                           const QString& description);

    /// Parses the arguments. Returns false after printing the help, if the user asked for it.
    bool Parse();

    /// Checks that an option is present and not empty.
    void Require(const char* option) const;

    QStringList Arguments() const { return d_parser.positionalArguments(); }
    /// Returns the only argument; empty for a command without arguments.
    QString Argument() const { return Arguments().value(0); }
    bool Is_Set(const char* option) const { return d_parser.isSet(QString::fromLatin1(option)); }
    QString Text(const char* option) const { return d_parser.value(QString::fromLatin1(option)); }
    /// Returns the values of an option that was given several times.
    QStringList Texts(const char* option) const
    {
        return d_parser.values(QString::fromLatin1(option));
    }
    /// Checks that two options are not used together.
    void Exclude(const char* first, const char* second) const;
    /// Returns an option's value as an integer between two limits.
    int Number(const char* option, int smallest, int largest) const;
    /// Returns an option's value as pages: "1-3,7".
    std::vector<TPageRange> Pages(const char* option) const;
    /// Returns the code of an option's value, ignoring case.
    /// @param values  range of TOptionValue.
    template <typename TValues>
    int Code(const char* option, const TValues& values) const;

    /// The code of a text, ignoring case; empty if it is not permitted.
    /// @param values  range of TOptionValue.
    template <typename TValues>
    static std::optional<int> Find_Code(const QString& text, const TValues& values);

    /// Throws the error of an option with an invalid value.
    /// @param expected  what is allowed.
    [[noreturn]] void Throw_Invalid_Value(const char* option, const QString& expected) const;
    /// The same for one of several values.
    [[noreturn]] static void Throw_Invalid_Value(const char* option, const QString& text,
                                                 const QString& expected);

private:
    /// "one of 1, 2, 3"
    static QString One_Of(const QStringList& values);
    void Apply_Verbosity() const;
    void Check_File_Names() const;
    void Check_Argument_Count() const;

    QCommandLineParser d_parser;
    QStringList d_arguments;
    std::vector<const char*> d_required_options;
    QStringList d_argument_names;
    TCount d_count = TCount::One;
};

template <typename TValues>
int TCommandLine::Code(const char* option, const TValues& values) const
{
    if (const std::optional<int> code = Find_Code(Text(option), values))
        return *code;
    QStringList allowed;
    for (const TOptionValue& value : values)
        allowed += QLatin1String(value.text);
    Throw_Invalid_Value(option, One_Of(allowed));
}

template <typename TValues>
std::optional<int> TCommandLine::Find_Code(const QString& text, const TValues& values)
{
    for (const TOptionValue& value : values) {
        if (text.compare(QLatin1String(value.text), Qt::CaseInsensitive) == 0)
            return value.code;
    }
    return std::nullopt;
}
