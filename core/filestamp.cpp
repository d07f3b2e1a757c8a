#include "core/filestamp.h"

#include <QFile>

#include <sys/stat.h>

TFileStamp TFileStamp::Of(const QString& path)
{
    struct stat state = {};
    if (stat(QFile::encodeName(path).constData(), &state) != 0)
        return {};
    return Of(state);
}

TFileStamp TFileStamp::Of(const struct stat& state)
{
    return {state.st_size, state.st_mtim.tv_sec, state.st_mtim.tv_nsec};
}
