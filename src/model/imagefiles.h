#pragma once

#include <QString>
#include <QStringList>

/// Recognizes image files by their names, and PDFs also by their content.
namespace ImageFiles {

/// Name patterns for the dialog of File > Import: "*.bmp *.gif ...".
QString Patterns();

/// Suffixes of all image files that become pages, in alphabetical order: those in Patterns, TIFF
/// and WebP, if the installed Qt reads them.
QStringList Suffixes();

/// The same with PDF.
QStringList Suffixes_And_Pdf();

/// Whether a path has the suffix of an image file or a PDF, in upper or lower case.
bool Is_Image_Or_Pdf_Name(const QString& path);

/// Whether a file is a PDF, by its suffix or its first bytes.
bool Is_Pdf(const QString& path);

/// Whether a file is an image by its suffix, or a PDF.
bool Is_Image_Or_Pdf(const QString& path);

/// Sorts paths by file name in natural order: "page 2" before "page 10".
void Sort(QStringList* paths);

} // namespace ImageFiles
