#pragma once

#include "src/format/csv.h"

#include <QByteArray>
#include <QString>

namespace Support {

/// Line, column and message of the exception that a function throws when it reads a table; empty
/// without an exception.
template <typename TRead>
QString Table_Refusal(const TRead& read, const QByteArray& table)
{
    try {
        read(table);
    } catch (const TCsvException& exception) {
        return QStringLiteral("%1:%2: %3")
            .arg(exception.Place().line)
            .arg(exception.Place().column)
            .arg(exception.Message());
    }
    return QString();
}

} // namespace Support
