#pragma once

#include "src/format/csv.h"

#include <QByteArray>
#include <QString>

namespace Support {

/// Line and message of the exception that a function throws when it reads a table; empty without
/// an exception.
template <typename TRead>
QString Table_Refusal(const TRead& read, const QByteArray& table)
{
    try {
        read(table);
    } catch (const TCsvException& exception) {
        return QStringLiteral("%1: %2").arg(exception.Line()).arg(exception.Message());
    }
    return QString();
}

} // namespace Support
