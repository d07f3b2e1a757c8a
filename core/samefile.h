#pragma once

class QString;

/// Whether two paths are one file, under whatever names: by device and inode. Symbolic links are
/// followed; a path without a file equals none.
bool Is_Same_File(const QString& left, const QString& right);
