#include "src/pageinput/inputfile.h"

#include "core/spool.h"
#include "src/model/imagecheck.h"
#include "src/model/imagefiles.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

namespace {

/// A message about a page, or an empty one.
QString About_Page(int page, const QString& message)
{
    return message.isEmpty()
               ? QString()
               : QCoreApplication::translate("TInputFile", "page %1: %2").arg(page).arg(message);
}

QString Numbered_Name(const QString& path, int page)
{
    return QStringLiteral("%1 %2").arg(QFileInfo(path).completeBaseName()).arg(page);
}

} // namespace

TInputFile::TInputFile(const QString& path, const TInputOptions& options)
    : d_path(path)
    , d_options(options)
{
    if (ImageFiles::Is_Pdf(path))
        d_pdf.emplace(path);
}

QString TInputFile::Open()
{
    if (d_pdf)
        return Open_Pdf();
    const TErrorCapture messages;
    d_page_count = TPageImage::Picture_Count(d_path);
    // Without the rest of its directories, a TIFF seems to have fewer pages.
    return Damage_In(messages);
}

QString TInputFile::Open_Pdf()
{
    QString fault = d_pdf->Open();
    if (!fault.isEmpty())
        return fault;
    std::vector<TPageRange> ranges = d_options.pdf_pages;
    if (ranges.empty())
        ranges = {{1, d_pdf->Page_Count()}};
    const int last_page = PageRanges::Last_Page(ranges);
    if (last_page > d_pdf->Page_Count())
        return About_Page(last_page, d_pdf->Page_Fault(last_page, d_options.resolution));
    d_pdf_pages = PageRanges::Numbers(ranges);
    d_page_count = static_cast<int>(d_pdf_pages.size());
    return QString();
}

TInputPage TInputFile::Read(int index)
{
    return d_pdf ? Read_Pdf(index) : Read_Image(index);
}

TInputPage TInputFile::Read_Pdf(int index) const
{
    const int page = d_pdf_pages[static_cast<std::size_t>(index)];
    const QString name = Numbered_Name(d_path, page);
    const QString fault = d_pdf->Page_Fault(page, d_options.resolution);
    if (!fault.isEmpty())
        return {std::nullopt, name, About_Page(page, fault)};
    const TRenderedPage rendered = d_pdf->Render(page, d_options.resolution);
    const QString message = About_Page(page, rendered.message);
    if (rendered.png.isEmpty())
        return {std::nullopt, name, message};
    return {TPageImage::From_Bytes(Spool::Keep(rendered.png)), name, message};
}

TInputPage TInputFile::Read_Image(int index)
{
    const bool is_only_page = d_page_count == 1;
    const QString name =
        is_only_page ? QFileInfo(d_path).completeBaseName() : Numbered_Name(d_path, index + 1);
    const QString damage = index == 0 && d_options.needs_whole_images ? Damage() : QString();
    if (!damage.isEmpty())
        return {std::nullopt, name, damage};
    if (index == 0)
        d_first_picture = TPageImage::From_File(d_path, QByteArray(), d_options.orientation);
    const TErrorCapture messages;
    const TPageImage image = d_first_picture.Picture(index);
    const QString fault = Damage_In(messages);
    if (!fault.isEmpty())
        return {std::nullopt, name, About_Page(index + 1, fault)};
    if (!image.isNull())
        return {image, name, QString()};
    return {std::nullopt, name,
            is_only_page ? Image_Fault() : About_Page(index + 1, Image_Fault())};
}

/// The damage of a TIFF that libtiff has named; empty for none.
QString TInputFile::Damage_In(const TErrorCapture& messages) const
{
    return d_options.needs_whole_images ? ImageCheck::Tiff_Fault(messages.Text()) : QString();
}

/// Why the file cannot be decoded to its end; empty if it can.
QString TInputFile::Damage() const
{
    QFile file(d_path);
    if (!file.open(QIODevice::ReadOnly))
        return Image_Fault();
    const QByteArray bytes = file.readAll();
    const QString fault = ImageCheck::Fault(bytes);
    return fault.isEmpty() || !ImageCheck::Size(bytes).isEmpty() ? fault : Image_Fault();
}

QString TInputFile::Image_Fault() const
{
    if (QFileInfo(d_path).isReadable())
        return QCoreApplication::translate("TInputFile",
                                           "is not a readable image; accepted formats: %1")
            .arg(ImageFiles::Suffixes_And_Pdf().join(QStringLiteral(", ")));
    QFile file(d_path);
    file.open(QIODevice::ReadOnly);
    return file.errorString();
}
