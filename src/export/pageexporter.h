#pragma once

#include "core/progressreport.h"
#include "src/data.h"
#include "src/encoding/pngencoder.h"
#include "src/model/reportoptions.h"
#include "src/paint/reportpainter.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>

class QPixmap;
class TDisplayWidget;
class TSafeFile;
struct TFindings;

/// What a report can have besides TReportOptions. The defaults are those of the window.
struct TReportExtras
{
    TReportFooter footer;
    bool has_page_count = false;     ///< whether the footer shows the number of pages
    QString title;                   ///< in the properties of the file; may be empty
    QStringList bookmarks;           ///< one for each of the first pages; empty for none
    const TFindings* list = nullptr; ///< the list of findings, which follows the pages
};

/// Exports the pages of a document as PNG files or as a PDF report. Draws them with a page view.
///
/// The view is rebuilt for each page with its updates disabled. Afterwards it shows what it showed
/// before, with no label selected.
class TPageExporter
{
public:
    /// Returns the path of the file for a page.
    /// @param counter  running number of the page in this export, from 1.
    using TPathOf = std::function<QString(int page_id, int counter)>;
    /// Processes the picture of a page. Returns false to stop.
    using TPictureHandler = std::function<bool(int page_id, const QPixmap& picture)>;

    /// How pictures are compressed.
    enum class TPng {
        Small, ///< as Qt does by default
        Fast   ///< in a quarter of the time; see FastPng
    };

    /// Result of a PDF export.
    enum class TOutcome {
        Not_Begun,  ///< there is nothing to print, or the file cannot be opened
        Incomplete, ///< writing failed; there is no new file
        Complete
    };

    /// @param data, view  not owned.
    /// @param report      is called before a page is drawn, and again before its picture is used.
    /// @param problem     receives the reason if a file cannot be written; may be null, not owned.
    TPageExporter(TData* data, TDisplayWidget* view, TProgressReport report = nullptr,
                  QString* problem = nullptr);

    /// Writes each page with its labels to a PNG file, replacing existing files. Stops and returns
    /// false when a file cannot be written. Returns false when there are no pages.
    /// @param path_of  is called right before a file is written, in the order of the pages.
    /// @param jobs     number of images that are encoded at the same time.
    bool Export_Images(const QList<int>& page_ids, const TPathOf& path_of, TPng png = TPng::Small,
                       int jobs = TPngEncoder::Processors()) const;

    /// Writes pages as a PDF report, in the given order.
    /// @param file  replaced only by a complete report.
    TOutcome Export_Pdf(const QString& file, const QList<int>& page_ids,
                        const TReportOptions& settings, const TReportExtras& extras = {}) const;

    /// Draws pages until the handler returns false. Returns false in that case and when there are
    /// no pages.
    bool Draw_Pages(const QList<int>& page_ids, const TPictureHandler& handler) const;

    /// Saves a picture as PNG. On failure, returns false and an existing file is unchanged.
    /// @param problem  receives the reason; may be null.
    static bool Save_Png(const QPixmap& picture, const QString& path, TPng png = TPng::Small,
                         QString* problem = nullptr);

private:
    void Report_Part(int number, int total) const;
    void Reload_View() const;
    TOutcome Fail(const TSafeFile& target, TOutcome outcome) const;

    TData* d_data;
    TDisplayWidget* d_view;
    TProgressReport d_report;
    QString* d_problem;
};
