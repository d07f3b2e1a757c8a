#include "src/export/pageexporter.h"

#include "core/safefile.h"
#include "core/workwatch.h"
#include "src/displaywidget.h"
#include "src/export/findingspainter.h"
#include "src/paint/reportpainter.h"

#include <QBuffer>
#include <QFile>
#include <QPainter>
#include <QPrinter>
#include <QScrollBar>

#include <utility>

namespace {

/// The page rectangle in device pixels.
QRect Page_Rectangle(const QPrinter& printer)
{
    return printer.pageLayout().paintRectPixels(printer.resolution());
}

void Prepare_Printer(const QString& path, const TReportOptions& settings, QPrinter* printer)
{
    printer->setPageOrientation(settings.orientation == 0 ? QPageLayout::Portrait
                                                          : QPageLayout::Landscape);
    printer->setOutputFormat(QPrinter::PdfFormat);
    printer->setOutputFileName(path);
    printer->setPageMargins(QMarginsF(), QPageLayout::Millimeter);
    printer->setResolution(TReportGeometry::Resolution(settings.resolution));
}

} // namespace

TPageExporter::TPageExporter(TData* data, TDisplayWidget* view, TStepReport report)
    : d_data(data)
    , d_view(view)
    , d_report(std::move(report))
{
}

bool TPageExporter::Export_Images(const QList<int>& page_ids, const TPathOf& path_of) const
{
    int counter = 1;
    return Draw_Pages(page_ids, [&](int page_id, const QPixmap& picture) {
        return Save_Png(picture, path_of(page_id, counter++));
    });
}

TPageExporter::TOutcome TPageExporter::Export_Pdf(const QString& file, const QList<int>& page_ids,
                                                  const TReportOptions& settings,
                                                  const TFindings* list) const
{
    if (page_ids.isEmpty() || !TReportGeometry::Is_Resolution_Code(settings.resolution))
        return TOutcome::Not_Begun;
    // Without a file name, Qt would print on paper.
    if (file.isEmpty())
        return TOutcome::Not_Begun;
    TSafeFile target(file);
    QPrinter printer(QPrinter::HighResolution);
    Prepare_Printer(target.Path_To_Write(), settings, &printer);
    QPainter painter;
    if (!painter.begin(&printer))
        return TOutcome::Not_Begun;
    TReportPainter report(&painter, settings.resolution, settings.header_1, settings.header_2,
                          Page_Rectangle(printer));
    int number = 0;
    const auto begin_page = [&] {
        if (number > 0) {
            printer.newPage();
            report.Set_Page(Page_Rectangle(printer));
        }
        report.Draw_Frame(++number);
        return report.Room();
    };
    Draw_Pages(page_ids, [&](int, const QPixmap& picture) {
        begin_page();
        report.Draw_Picture(picture);
        return true;
    });
    if (list)
        FindingsPainter::Draw(*list, begin_page, &painter);
    painter.end();
    return target.Commit(Is_Complete_Pdf) ? TOutcome::Complete : TOutcome::Incomplete;
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
        Report_Step(++number, page_ids.size());
        d_data->Set_Active_Page(page_id);
        Reload_View();
        const QPixmap picture = d_view->Pixmap();
        Report_Step(number, page_ids.size());
        succeeded = handler(page_id, picture);
        if (!succeeded)
            break;
    }
    d_data->Set_Active_Page(active_page);
    Reload_View();
    if (!d_data->Page_Image_Valid())
        d_view->Set_Background_Image(background);
    d_view->horizontalScrollBar()->setValue(scrolled.x());
    d_view->verticalScrollBar()->setValue(scrolled.y());
    d_view->setUpdatesEnabled(true);
    return succeeded;
}

void TPageExporter::Report_Step(int number, int total) const
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

bool TPageExporter::Save_Png(const QPixmap& picture, const QString& path)
{
    QByteArray bytes;
    TWatchedDevice<QBuffer> buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    // Every PNG ends with an empty chunk of this type and its checksum. Check for it before
    // replacing an existing file.
    const QByteArray end("IEND\xAE\x42\x60\x82", 8);
    return picture.save(&buffer, "png") && bytes.endsWith(end) && TSafeFile::Replace(path, bytes);
}

bool TPageExporter::Is_Complete_Pdf(const QString& path)
{
    // The last lines are "startxref", the offset of the table, and the end marker.
    constexpr qint64 tail_length = 64;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || !file.seek(qMax<qint64>(0, file.size() - tail_length)))
        return false;
    const QList<QByteArray> lines = file.readAll().split('\n');
    const int count = lines.size();
    if (count < 4 || !lines.at(count - 1).isEmpty() || lines.at(count - 2) != "%%EOF" ||
        lines.at(count - 4) != "startxref")
        return false;
    const QByteArray table = "xref\n";
    bool is_number = false;
    const qint64 offset = lines.at(count - 3).toLongLong(&is_number);
    return is_number && file.seek(offset) && file.read(table.size()) == table;
}
