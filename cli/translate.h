#pragma once

#include <QCoreApplication>
#include <QString>

/// Translates a text of the tool into the user's language.
inline QString Tr(const char* source)
{
    return QCoreApplication::translate("QuilletCli", source);
}
