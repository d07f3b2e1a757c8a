#pragma once

#include "core/filestamp.h"

#include <QString>

/// The document that unsaved work belongs to.
struct TWorkDocument
{
    QString path;          ///< empty if it was never saved
    TFileStamp stamp = {}; ///< of the version that the work continues; of no file if unknown
};

inline bool operator==(const TWorkDocument& first, const TWorkDocument& second)
{
    return first.path == second.path && first.stamp == second.stamp;
}

inline bool operator!=(const TWorkDocument& first, const TWorkDocument& second)
{
    return !(first == second);
}
