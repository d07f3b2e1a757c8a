#pragma once

#include "core/stepreport.h"
#include "src/data.h"
#include "src/model/reportoptions.h"

#include <QList>
#include <QString>

#include <functional>

class QPixmap;
class TDisplayWidget;

/// Draws the pages of a document in turn by a page view, and writes what it draws: as a PNG file
/// each, or as a PDF report.
///
/// The view is rebuilt for each page, with its painting switched off; afterwards it shows the page
/// that is active, with no label selected, and the model's active page is the one from before.
class TPageExporter
{
public:
    /// Path of the file for a page.
    /// @param counter  running number of the page in this export, from 1.
    using TPathOf = std::function<QString(int page_id, int counter)>;
    /// Takes the picture of a page; false ends the drawing.
    using TUse = std::function<bool(int page_id, const QPixmap& picture)>;

    /// How far a report has come.
    enum class TOutcome {
        Not_Begun,  ///< nothing to print, or the file could not be opened
        Incomplete, ///< it did not reach the disk as a whole, and is not there
        Complete
    };

    /// @param data, view  not owned.
    /// @param report      is called before a page is drawn, and again before its picture is used.
    TPageExporter(TData* data, TDisplayWidget* view, TStepReport report = nullptr);

    /// Writes each page with its labels as a PNG file, replacing files of the same name; false when
    /// there is no page or a file could not be written, which ends the export.
    bool Export_Images(const QList<int>& page_ids, const TPathOf& path_of) const;

    /// Writes pages as a PDF report, in the given order.
    /// @param file  is replaced when the report is complete.
    TOutcome Export_Pdf(const QString& file, const QList<int>& page_ids,
                        const TReportOptions& settings) const;

    /// Lets the view draw pages until one is not used or all are done; false when there is no page
    /// or one was not used.
    bool Draw_Pages(const QList<int>& page_ids, const TUse& use) const;

    /// Saves a picture as PNG; false leaves a file of that name as it was.
    static bool Save_Png(const QPixmap& picture, const QString& path);

    /// Whether a PDF file ends with its end mark and its cross-reference table is at the offset
    /// that the end names. A file with missing bytes fails that.
    static bool Is_Complete_Pdf(const QString& path);

private:
    void Report_Step(int number, int total) const;
    void Reload_View() const;

    TData* d_data;
    TDisplayWidget* d_view;
    TStepReport d_report;
};
