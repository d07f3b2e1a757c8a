#pragma once

#include <QString>

/// Which files are taken for page images by their names.
namespace ImageFiles {

/// As the pattern of a file dialog: "*.bmp *.gif ...".
QString Patterns();

/// Whether a path ends like one of them; capital letters are no different.
bool Is_Image_Name(const QString& path);

} // namespace ImageFiles
