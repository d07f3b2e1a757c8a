#pragma once

#include <QString>

/// Recognizes image files by their names.
namespace ImageFiles {

/// Name patterns for a file dialog: "*.bmp *.gif ...".
QString Patterns();

/// Whether a path has the suffix of an image file, in upper or lower case.
bool Is_Image_Name(const QString& path);

} // namespace ImageFiles
