#pragma once

#include <QString>

/// A row of the page list: names belong to the list, the model knows pages by their ids alone.
struct TNamedPage
{
    int page_id = 0;
    QString name; ///< may be empty
};

inline bool operator==(const TNamedPage& left, const TNamedPage& right)
{
    return left.page_id == right.page_id && left.name == right.name;
}

inline bool operator!=(const TNamedPage& left, const TNamedPage& right)
{
    return !(left == right);
}
