#pragma once

#include <QString>
#include <QStringList>

/// Recognizes image files and PDFs by their names.
namespace ImageFiles {

/// Name patterns for the dialog of File > Import: "*.bmp *.gif ...".
QString Patterns();

/// Suffixes of all image files that become pages, in alphabetical order: those in Patterns, TIFF
/// and WebP, as far as the running Qt reads them.
QStringList Suffixes();

/// The same with PDF.
QStringList Suffixes_And_Pdf();

/// Whether a path has the suffix of an image file, in upper or lower case.
bool Is_Image_Name(const QString& path);

/// The same for image files and PDFs.
bool Is_Image_Or_Pdf_Name(const QString& path);

/// Sorts paths by file name in natural order: "page 2" before "page 10".
void Sort(QStringList* paths);

} // namespace ImageFiles
