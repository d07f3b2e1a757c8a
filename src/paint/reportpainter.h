#pragma once

#include "src/paint/reportgeometry.h"

#include <QFont>
#include <QPixmap>
#include <QString>

class QPainter;

/// The maker's name and web address.
QString Maker_Text();

/// The footer of a report.
struct TReportFooter
{
    QString text = Maker_Text(); ///< at the left; cut off where the page number begins
    bool is_drawn = true;
    int page_count = 0; ///< for "Page 3 of 12"; 0 for "Page 3"
};

/// Draws the pages of the report: headers, rules, the page's picture and the footer. The caller
/// opens the painter and starts new pages on its device.
class TReportPainter
{
public:
    /// @param painter          active on the report's device; not owned.
    /// @param resolution_code  1 to 4; must match the resolution of the device.
    /// @param page             the device's page rectangle in device pixels.
    TReportPainter(QPainter* painter, int resolution_code, const QString& header_1,
                   const QString& header_2, const QRect& page, const TReportFooter& footer = {});

    /// Sets the number of pages that the footer shows.
    void Set_Page_Count(int count) { d_footer.page_count = count; }

    /// Sets the page rectangle of a further page.
    void Set_Page(const QRect& page) { d_geometry.Set_Page(page); }

    /// Draws headers, rules and footer of one page.
    /// @param number  page number in the footer.
    void Draw_Frame(int number);
    /// Draws a picture between the rules, scaled to fit.
    void Draw_Picture(const QPixmap& picture);
    /// The room between the rules, in device pixels.
    QRect Room() const { return d_geometry.Target(); }

private:
    void Draw_Rules();
    void Draw_Headers();
    void Draw_Footer(int number);

    QPainter* d_painter;
    int d_resolution_code;
    QString d_header_1;
    QString d_header_2;
    QFont d_heading_font;
    QFont d_footer_font;
    TReportFooter d_footer;
    TReportGeometry d_geometry;
};
