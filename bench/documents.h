#pragma once

#include <QByteArray>
#include <QImage>
#include <QList>
#include <QString>

/// Generates the documents for the benchmarks: the same bytes on every machine and in every run.
/// Page images are slow to generate, so they are cached in the build folder.
namespace Bench {

/// How well a page compresses.
enum class TGrain {
    Noisy, ///< a raw colour scan: every pixel differs from its neighbours
    Clean, ///< a colour scan after noise reduction, some megabytes as PNG
    Blank  ///< paper without print or noise, a few kilobytes as PNG
};

/// Pixels of an A4 page at 300 dpi.
constexpr int Page_Width = 2480;
constexpr int Page_Height = 3508;

/// Draws a page like a scan: paper that darkens towards its edges, lines of strokes like text, and
/// grain.
/// @param number  from 0; every page has different strokes and grain.
QImage Scan_Page(int number, TGrain grain);

/// Returns the path of a page as an image file. Generates the file if it does not exist.
/// @param format  "png", or "jpg" at quality 90.
QString Page_File(int number, TGrain grain, const QString& format);

/// Reads a whole file. Aborts if it cannot be read.
QByteArray Read_File(const QString& path);

/// The shape of a document.
struct TShape
{
    QList<int> labels; ///< number of labels for each page
    TGrain grain;
    int distinct_pages; ///< number of different pages, which repeat
};

/// A document whose pages all have the same number of labels.
TShape Shape(int pages, int labels, TGrain grain, int distinct_pages);

/// Writes a project file with cached page images and returns its path.
/// @param name  file name in the output folder.
QString Document_File(const QString& name, const TShape& shape);

/// Path for a file that a benchmark writes.
QString Output_Path(const QString& name);

/// Gives the process an empty home folder, so that no settings or recovery copies interfere.
void Use_Own_Home();

} // namespace Bench
