#pragma once

#include <QCoreApplication>
#include <QString>

/// A row of the page list. The model has no page names.
struct TNamedPage
{
    int page_id = 0;
    QString name; ///< may be empty

    /// Name of a page that has not been renamed.
    static QString Default_Name(int page_id)
    {
        return QCoreApplication::translate("TPageWidget", "Page %1").arg(page_id);
    }
};

inline bool operator==(const TNamedPage& left, const TNamedPage& right)
{
    return left.page_id == right.page_id && left.name == right.name;
}

inline bool operator!=(const TNamedPage& left, const TNamedPage& right)
{
    return !(left == right);
}
