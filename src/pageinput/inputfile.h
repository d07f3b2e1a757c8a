#pragma once

#include "core/errorcapture.h"
#include "core/pageranges.h"
#include "src/model/pageimage.h"
#include "src/pageinput/pdffile.h"

#include <QString>

#include <optional>
#include <vector>

/// How files become pages.
struct TInputOptions
{
    TPageImage::TOrientation orientation = TPageImage::TOrientation::Upright;
    int resolution = TPdfFile::Default_Resolution; ///< of pages of a PDF, in dots per inch
    std::vector<TPageRange> pdf_pages;             ///< of each PDF; all if empty
    bool needs_whole_images = false;               ///< refuse damaged images
};

/// A page read from a file.
struct TInputPage
{
    std::optional<TPageImage> image; ///< empty if the page could not be read
    QString name;                    ///< made from the name of the file
    QString message; ///< why the page could not be read, or what may be missing in it
};

/// A file whose pages become pages of a document: an image, a TIFF with several pages, or a PDF.
class TInputFile
{
public:
    TInputFile(const QString& path, const TInputOptions& options);

    /// Counts the pages, and checks that they can be read as far as that is fast.
    /// @return why they cannot; empty on success.
    QString Open();

    QString Path() const { return d_path; }
    bool Is_Pdf() const { return d_pdf.has_value(); }
    /// Number of pages to read.
    int Page_Count() const { return d_page_count; }

    /// Reads a page.
    /// @param index  of the pages to read, from 0.
    TInputPage Read(int index);

private:
    QString Open_Pdf();
    TInputPage Read_Pdf(int index) const;
    TInputPage Read_Image(int index);
    QString Damage_In(const TErrorCapture& messages) const;
    QString Damage() const;
    QString Image_Fault() const;

    QString d_path;
    TInputOptions d_options;
    std::optional<TPdfFile> d_pdf;
    std::vector<int> d_pdf_pages; ///< numbers of the pages to read
    int d_page_count = 0;
    TPageImage d_first_picture; ///< of an image file
};
