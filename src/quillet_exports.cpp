// Exports: annotated page images and the PDF report. Both let the view draw each page in turn.

#include "src/quillet.h"

#include "src/displaywidget.h"
#include "src/exportnames.h"
#include "src/pagewidget.h"
#include "src/reportheaderdialog.h"
#include "src/reportpainter.h"
#include "src/safefile.h"
#include "src/settingswidget.h"

#include <QBuffer>
#include <QDateTime>
#include <QFileDialog>
#include <QPainter>
#include <QPrinter>

namespace {

/// Saves a picture as PNG. It is encoded and checked before a file of that name is replaced.
bool Save_Png(const QPixmap& picture, const QString& path)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    // Every PNG ends with an empty chunk of this type and its check sum.
    const QByteArray end("IEND\xAE\x42\x60\x82", 8);
    return picture.save(&buffer, "png") && bytes.endsWith(end) && TSafeFile::Replace(path, bytes);
}

/// The page as the printer sees it, in device pixels.
QRect Page_Rectangle(const QPrinter& printer)
{
    return printer.pageLayout().paintRectPixels(printer.resolution());
}

} // namespace

void TQuillet::File_Export_Images()
{
    Keep_Work();
    const QString folder = QFileDialog::getExistingDirectory(
        this, tr("Export image files"), d_working_dir.absolutePath(), QFileDialog::ShowDirsOnly);
    if (folder.isEmpty())
        return;
    d_working_dir.setPath(folder);
    Export_Images(folder, d_page_widget->Page_Ids());
}

bool TQuillet::Export_Images(const QString& folder, const QList<int>& page_ids)
{
    const QDateTime time = QDateTime::currentDateTime();
    int counter = 1;
    return Draw_Pages(page_ids, [&](int page_id, const QPixmap& picture) {
        const QString path = ExportNames::Image_Path(folder, d_page_widget->Page_Name(page_id),
                                                     page_id, time, counter++);
        return Save_Png(picture, path);
    });
}

/// Loads each page into the view and hands on what the view draws, until use returns false or all
/// pages are done; then shows the active page again. False when there is no page or use failed.
bool TQuillet::Draw_Pages(const QList<int>& page_ids,
                          const std::function<bool(int, const QPixmap&)>& use)
{
    if (page_ids.isEmpty())
        return false;
    const int active_page = d_data.Active_Page();
    d_display_widget->setUpdatesEnabled(false);
    bool succeeded = true;
    TProgress progress = New_Progress(tr("Exporting page %1 of %2"));
    int number = 0;
    for (const int page_id : page_ids) {
        progress.Step(++number, page_ids.size());
        d_data.Set_Active_Page(page_id);
        Reload_View();
        const QPixmap picture = d_display_widget->Pixmap();
        progress.Go_On();
        succeeded = use(page_id, picture);
        if (!succeeded)
            break;
    }
    d_data.Set_Active_Page(active_page);
    Reload_View();
    d_display_widget->setUpdatesEnabled(true);
    return succeeded;
}

/// Rebuilds the view alone for the active page; without one it is left empty.
void TQuillet::Reload_View()
{
    d_display_widget->Clear();
    if (d_data.Active_Page() >= 0)
        Fill_View(nullptr);
}

void TQuillet::File_Export_Pdf()
{
    Keep_Work();
    if (Header_Dialog()->exec() != QDialog::Accepted)
        return;
    const QString file = QFileDialog::getSaveFileName(
        this, tr("Export PDF file"), d_working_dir.absolutePath(), tr("PDF File (*.pdf)"));
    if (file.isEmpty())
        return;
    const TReportSettings settings{
        d_settings_widget->PDF_Orientation(), d_settings_widget->PDF_Resolution(),
        d_header_dialog->Header1_Text(), d_header_dialog->Header2_Text()};
    Export_PDF(file, d_page_widget->Page_Ids(), settings);
    Set_Working_File(file);
    if (!settings.header_1.isEmpty() || !settings.header_2.isEmpty())
        Mark_Changed();
}

bool TQuillet::Export_PDF(const QString& file, const QList<int>& pages,
                          const TReportSettings& settings)
{
    if (pages.isEmpty() || !TReportGeometry::Is_Resolution_Code(settings.resolution))
        return false;
    // Without a file name the toolkit would print on paper.
    if (file.isEmpty())
        return false;
    TSafeFile target(file);
    QPrinter printer(QPrinter::HighResolution);
    printer.setPageOrientation(settings.orientation == 0 ? QPageLayout::Portrait
                                                         : QPageLayout::Landscape);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(target.Path_To_Write());
    printer.setPageMargins(QMarginsF(), QPageLayout::Millimeter);
    printer.setResolution(TReportGeometry::Resolution(settings.resolution));

    QPainter painter;
    if (!painter.begin(&printer))
        return false;
    TReportPainter report(&painter, settings.resolution, settings.header_1, settings.header_2,
                          Page_Rectangle(printer));
    int number = 0;
    Draw_Pages(pages, [&](int, const QPixmap& picture) {
        if (number > 0) {
            printer.newPage();
            report.Set_Page(Page_Rectangle(printer));
        }
        report.Draw_Page(picture, ++number);
        return true;
    });
    painter.end();
    // A report that did not reach the disk whole is left out in silence.
    target.Commit(TSafeFile::Is_Complete_Pdf);
    return true;
}

TReportHeaderDialog* TQuillet::Header_Dialog()
{
    if (!d_header_dialog)
        d_header_dialog = new TReportHeaderDialog(this, Qt::WindowFlags());
    return d_header_dialog;
}
