#include "src/export/pageexporter.h"

#include "core/safefile.h"
#include "src/displaywidget.h"
#include "src/encoding/pngencoding.h"
#include "src/export/fastpng.h"
#include "src/export/findingspainter.h"
#include "src/export/printedpdf.h"

#include <QPainter>
#include <QPrinter>
#include <QScrollBar>

#include <optional>
#include <utility>

namespace {

/// The page rectangle in device pixels.
QRect Page_Rectangle(const QPrinter& printer)
{
    return printer.pageLayout().paintRectPixels(printer.resolution());
}

void Prepare_Printer(const QString& path, const QString& title, const TReportOptions& settings,
                     QPrinter* printer)
{
    printer->setDocName(title);
    printer->setPageOrientation(settings.orientation == 0 ? QPageLayout::Portrait
                                                          : QPageLayout::Landscape);
    printer->setOutputFormat(QPrinter::PdfFormat);
    printer->setOutputFileName(path);
    printer->setPageMargins(QMarginsF(), QPageLayout::Millimeter);
    printer->setResolution(TReportGeometry::Resolution(settings.resolution));
}

/// @param problem  receives the reason of a failure; may be null.
bool Write_Png(const QByteArray& png, const QString& path, QString* problem)
{
    return !png.isEmpty() && TSafeFile::Replace(path, png, 0, problem);
}

bool Finish_Pdf(const QStringList& bookmarks, TSafeFile* target)
{
    if (!bookmarks.isEmpty() && !PrintedPdf::Add_Bookmarks(target->Path_To_Write(), bookmarks))
        return false;
    return target->Commit(PrintedPdf::Is_Complete);
}

} // namespace

TPageExporter::TPageExporter(TData* data, TDisplayWidget* view, TProgressReport report,
                             QString* problem)
    : d_data(data)
    , d_view(view)
    , d_report(std::move(report))
    , d_problem(problem)
{
}

bool TPageExporter::Export_Images(const QList<int>& page_ids, const TPathOf& path_of, TPng png,
                                  int jobs) const
{
    int counter = 1;
    if (png == TPng::Fast)
        return Draw_Pages(page_ids, [&](int page_id, const QPixmap& picture) {
            return Save_Png(picture, path_of(page_id, counter++), png, d_problem);
        });
    TPngEncoder encoder(qMin(jobs, static_cast<int>(page_ids.size())));
    QList<int>::const_iterator next = page_ids.cbegin();
    const auto write_oldest = [&] {
        const QByteArray bytes = encoder.Take();
        return Write_Png(bytes, path_of(*next++, counter++), d_problem);
    };
    const auto encode = [&](int, const QPixmap& picture) {
        encoder.Add(picture.toImage());
        return !encoder.Is_Full() || write_oldest();
    };
    if (!Draw_Pages(page_ids, encode))
        return false;
    while (!encoder.Is_Empty()) {
        if (!write_oldest())
            return false;
    }
    return true;
}

TPageExporter::TOutcome TPageExporter::Export_Pdf(const QString& file, const QList<int>& page_ids,
                                                  const TReportOptions& settings,
                                                  const TReportExtras& extras) const
{
    if (page_ids.isEmpty() || !TReportGeometry::Is_Resolution_Code(settings.resolution))
        return TOutcome::Not_Begun;
    // Without a file name, Qt would print on paper.
    if (file.isEmpty())
        return TOutcome::Not_Begun;
    TSafeFile target(file);
    QPrinter printer(QPrinter::HighResolution);
    Prepare_Printer(target.Path_To_Write(), extras.title, settings, &printer);
    QPainter painter;
    if (!painter.begin(&printer))
        return Fail(target, TOutcome::Not_Begun);
    TReportPainter report(&painter, settings.resolution, settings.header_1, settings.header_2,
                          Page_Rectangle(printer), extras.footer);
    std::optional<TFindingsPainter> list;
    if (extras.list)
        list.emplace(*extras.list, report.Room(), &painter);
    if (extras.has_page_count)
        report.Set_Page_Count(page_ids.size() + (list ? list->Page_Count() : 0));
    int number = 0;
    const auto begin_page = [&] {
        if (number > 0) {
            printer.newPage();
            report.Set_Page(Page_Rectangle(printer));
        }
        report.Draw_Frame(++number);
    };
    Draw_Pages(page_ids, [&](int, const QPixmap& picture) {
        begin_page();
        report.Draw_Picture(picture);
        return true;
    });
    if (list)
        list->Draw(begin_page);
    painter.end();
    return Finish_Pdf(extras.bookmarks, &target) ? TOutcome::Complete
                                                 : Fail(target, TOutcome::Incomplete);
}

TPageExporter::TOutcome TPageExporter::Fail(const TSafeFile& target, TOutcome outcome) const
{
    if (d_problem)
        *d_problem = target.Write_Problem();
    return outcome;
}

bool TPageExporter::Draw_Pages(const QList<int>& page_ids, const TPictureHandler& handler) const
{
    if (page_ids.isEmpty())
        return false;
    const int active_page = d_data->Active_Page();
    const QPixmap background = d_view->Background_Pixmap();
    const QPoint scrolled(d_view->horizontalScrollBar()->value(),
                          d_view->verticalScrollBar()->value());
    d_view->setUpdatesEnabled(false);
    bool succeeded = true;
    int number = 0;
    for (const int page_id : page_ids) {
        Report_Part(++number, page_ids.size());
        d_data->Set_Active_Page(page_id);
        Reload_View();
        const QPixmap picture = d_view->Pixmap();
        Report_Part(number, page_ids.size());
        succeeded = handler(page_id, picture);
        if (!succeeded)
            break;
    }
    d_data->Set_Active_Page(active_page);
    Reload_View();
    if (!d_data->Page_Image_Valid())
        d_view->Show_Built_In_Image(background);
    d_view->horizontalScrollBar()->setValue(scrolled.x());
    d_view->verticalScrollBar()->setValue(scrolled.y());
    d_view->setUpdatesEnabled(true);
    return succeeded;
}

void TPageExporter::Report_Part(int number, int total) const
{
    if (d_report)
        d_report(number, total);
}

/// Rebuilds the view for the active page, if there is one.
void TPageExporter::Reload_View() const
{
    d_view->Clear();
    if (const TPageItem* const page = d_data->Active_Page_Item())
        d_view->Show_Page(*page);
}

bool TPageExporter::Save_Png(const QPixmap& picture, const QString& path, TPng png,
                             QString* problem)
{
    const QImage image = picture.toImage();
    return Write_Png(png == TPng::Fast ? FastPng::Encode(image) : PngEncoding::Encode(image), path,
                     problem);
}
