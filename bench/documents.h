#pragma once

#include <QByteArray>
#include <QImage>
#include <QList>
#include <QString>

/// The documents that the benchmarks work on, made by themselves: the same bytes on every machine
/// and in every run. What takes long to make is kept in a folder of the build.
namespace Bench {

/// What a page looks like to a codec.
enum class TGrain {
    Noisy, ///< a colour scan as the scanner gives it: every pixel differs from its neighbours
    Clean, ///< a colour scan with most of its noise taken away, some megabytes as PNG
    Blank  ///< paper without print or noise, a few kilobytes as PNG
};

/// Pixels of an A4 page at 300 dpi.
constexpr int Page_Width = 2480;
constexpr int Page_Height = 3508;

/// A page like a scan: paper that darkens towards its edges, lines of strokes like those of a text,
/// and grain.
/// @param number  from 0; every page has other strokes and other grain.
QImage Scan_Page(int number, TGrain grain);

/// A page as an image file, encoded in the first run only.
/// @param format  "png", or "jpg" at quality 90.
QString Page_File(int number, TGrain grain, const QString& format);

/// Reads a whole file; stops the program when there is none.
QByteArray Read_File(const QString& path);

/// How a document is made up.
struct TShape
{
    QList<int> labels; ///< number of labels for each page
    TGrain grain;
    int distinct_pages; ///< so many different pages follow each other again and again
};

/// A document of like pages.
TShape Shape(int pages, int labels, TGrain grain, int distinct_pages);

/// A project file, written anew on each call; the pages come from the kept image files.
/// @param name  of the file in the data folder.
QString Document_File(const QString& name, const TShape& shape);

/// A path in the data folder for a file that a benchmark writes.
QString Output_Path(const QString& name);

/// Gives the process a home of its own, so that nobody's settings and kept work play a part.
void Use_Own_Home();

} // namespace Bench
