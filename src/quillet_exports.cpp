// Exports: annotated page images, the PDF report and the web page.

#include "src/quillet.h"

#include "src/displaywidget.h"
#include "src/export/exportnames.h"
#include "src/export/pageexporter.h"
#include "src/format/imageencoder.h"
#include "src/model/pageedge.h"
#include "src/pagewidget.h"
#include "src/reportheaderdialog.h"
#include "src/settingswidget.h"
#include "src/webpage/webpage.h"

#include <QDateTime>
#include <QFileDialog>
#include <QFileInfo>
#include <QLocale>
#include <QScopedValueRollback>

#include <cmath>

namespace {

/// @param target  file or folder, named in the message.
QString Exported_Text(int pages, const QString& target)
{
    return pages == 1 ? TQuillet::tr("Exported 1 page to %1").arg(target)
                      : TQuillet::tr("Exported %1 pages to %2").arg(QString::number(pages), target);
}

/// @param problem  may be empty.
QString Unwritable_Text(const QString& path, const QString& problem)
{
    const QString name = QFileInfo(path).fileName();
    return problem.isEmpty() ? TQuillet::tr("Could not write %1").arg(name)
                             : TQuillet::tr("Could not write %1: %2").arg(name, problem);
}

} // namespace

/// Runs an export with a progress bar.
/// @param problem  receives the reason if a file cannot be written.
template <typename TExport>
auto TQuillet::Export(const TExport& run, QString* problem)
{
    const QScopedValueRollback<bool> filling(d_filling_view, true);
    TProgress progress = New_Progress(tr("Exporting page %1 of %2"));
    return run(TPageExporter(&d_data, d_display_widget, progress.Report(), problem));
}

/// Names a label that is outside of its page, as a sentence before another one; empty if there is
/// none. Such a label enlarges the exported picture.
QString TQuillet::Stray_Text(const QList<int>& page_ids) const
{
    QString text;
    int others = 0;
    for (const int page_id : page_ids) {
        const int index = d_data.Page_Index(page_id);
        if (index < 0)
            continue;
        const TPageItem& page = d_data.Pages()[static_cast<std::size_t>(index)];
        for (const TDataItem& item : page.data_items) {
            const double distance = PageEdge::Distance_Outside(item.position, page.image.size());
            if (page.image.isNull() || distance == 0.0)
                continue;
            if (!text.isEmpty())
                ++others;
            else
                text = tr("%1: label %2 is %3 pixels outside the page")
                           .arg(d_page_widget->Page_Name(page_id), QString::number(item.value),
                                QLocale().toString(std::ceil(distance), 'f', 0));
        }
    }
    if (others > 0)
        text += tr(", and %1 more").arg(others);
    return text.isEmpty() ? text : text + QStringLiteral(". ");
}

void TQuillet::File_Export_Images()
{
    Commit_Editors();
    Flush_Work();
    const QString folder = QFileDialog::getExistingDirectory(
        this, tr("Export image files"), d_working_dir.absolutePath(), QFileDialog::ShowDirsOnly);
    if (folder.isEmpty())
        return;
    d_working_dir.setPath(folder);
    Export_Images(folder, d_page_widget->Page_Ids());
}

bool TQuillet::Export_Images(const QString& folder, const QList<int>& page_ids)
{
    // Encoding the exported images needs all processors.
    const TImageEncoder::TPause pause(d_image_encoder.get());
    const QDateTime time = QDateTime::currentDateTime();
    QString path; // of the last image
    QString problem;
    const auto path_of = [&](int page_id, int counter) {
        path = ExportNames::Image_Path(folder, d_page_widget->Page_Name(page_id), page_id, time,
                                       counter);
        return path;
    };
    const bool exported = Export(
        [&](const TPageExporter& exporter) { return exporter.Export_Images(page_ids, path_of); },
        &problem);
    if (exported)
        Show_Status(Stray_Text(page_ids) +
                    Exported_Text(page_ids.size(), QDir(folder).dirName() + QLatin1Char('/')));
    else if (!path.isEmpty())
        Show_Status(Unwritable_Text(path, problem));
    return exported;
}

void TQuillet::File_Export_Pdf()
{
    Commit_Editors();
    Flush_Work();
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
    using TOutcome = TPageExporter::TOutcome;
    QString problem;
    const TOutcome outcome = Export(
        [&](const TPageExporter& exporter) { return exporter.Export_Pdf(file, pages, settings); },
        &problem);
    if (outcome == TOutcome::Complete)
        Show_Status(Stray_Text(pages) + Exported_Text(pages.size(), QFileInfo(file).fileName()));
    else if (!pages.isEmpty())
        Show_Status(Unwritable_Text(file, problem));
    // An incomplete report is discarded without a question or a message box.
    return outcome != TOutcome::Not_Begun;
}

/// Asks for a file name and writes the web page to this file.
void TQuillet::Export_Web_Page()
{
    Commit_Editors();
    Flush_Work();
    const QString file = QFileDialog::getSaveFileName(
        this, tr("Export web page"), d_working_dir.absolutePath(), tr("Web Page (*.html)"));
    if (file.isEmpty())
        return;
    const QString title =
        d_file_name.isEmpty() ? tr("Quillet") : QFileInfo(d_file_name).completeBaseName();
    const TWebPage page =
        WebPage::Of(d_data, Appearance(), Findings::Of(d_data, Named_Pages()), title);
    TProgress progress = New_Progress(tr("Exporting page %1 of %2"));
    if (WebPage::Save(page, progress.Report(), file)) {
        Show_Status(Exported_Text(d_data.Page_Count(), QFileInfo(file).fileName()));
    } else {
        Fail(tr("Cannot write %1").arg(file));
        Show_File_Error(tr("Error Exporting Web Page"), tr("The web page cannot be written."));
    }
    Set_Working_File(file);
}

TReportHeaderDialog* TQuillet::Header_Dialog()
{
    if (!d_header_dialog)
        d_header_dialog = new TReportHeaderDialog(this, Qt::WindowFlags());
    return d_header_dialog;
}
