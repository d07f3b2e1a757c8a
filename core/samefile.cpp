// Compares device and inode, because links give one file several names.

#include "core/samefile.h"

#include <QFile>

#include <sys/stat.h>

bool Is_Same_File(const QString& left, const QString& right)
{
    struct stat states[2] = {};
    return stat(QFile::encodeName(left).constData(), &states[0]) == 0 &&
           stat(QFile::encodeName(right).constData(), &states[1]) == 0 &&
           states[0].st_dev == states[1].st_dev && states[0].st_ino == states[1].st_ino;
}
