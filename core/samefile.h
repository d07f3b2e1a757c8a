#pragma once

class QString;

/// Whether two paths lead to the same file, by device and inode. Follows symbolic links. False when
/// one of the paths has no file.
bool Is_Same_File(const QString& left, const QString& right);
