#pragma once

#include <QCoreApplication>
#include <QString>

/// Names of options that several commands have.
namespace Options {

constexpr char Output[] = "output";
constexpr char Force[] = "force";
constexpr char Csv[] = "csv";

} // namespace Options

/// A text for the user, in the user's language if there is a translation.
inline QString Translated(const char* source)
{
    return QCoreApplication::translate("QuilletCli", source);
}
