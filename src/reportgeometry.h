#pragma once

#include <QLine>
#include <QRect>
#include <QSize>

/// Measures of one of the report's fonts on the printer, in device pixels.
struct TFontMeasure
{
    int height = 0;   ///< of a line, QFontMetrics::height
    int x_height = 0; ///< QFontMetrics::xHeight
};

/// What the layout of a report page depends on.
struct TReportLayout
{
    int resolution_code = 1; ///< 1 to 4; times 96 it is the resolution in dots per inch
    bool has_header_1 = false;
    bool has_header_2 = false;
    TFontMeasure heading;
    TFontMeasure footer;
};

/// Where everything stands on a page of the report, in device pixels. Works on numbers alone.
///
/// Rectangles are QRects over inclusive corners, as the printer's page rectangle is.
class TReportGeometry
{
public:
    /// @param page  the printer's page rectangle.
    TReportGeometry(const QRect& page, const TReportLayout& layout);

    /// Takes over the page rectangle of a further page: its margins move the left, right and bottom
    /// edges; header and footer stay where they were on the first.
    void Set_Page(const QRect& page);

    /// Rule under the headers.
    QLine Header_Rule() const;
    /// Rule above the footer.
    QLine Footer_Rule() const;
    /// Place of the first header line; its text is aligned left and top.
    QRect Header_1() const;
    /// Place of the second header line.
    QRect Header_2() const;
    /// Place of the footer; its texts are aligned bottom, left and right.
    QRect Footer() const;
    /// Room for the picture, a small gap away from both rules.
    QRect Target() const;
    /// Place of a picture that has been scaled to fit the target: centred in it where it is smaller
    /// by more than two pixels.
    QRect Centred(const QSize& picture) const;

    /// Dots per inch of a resolution code.
    static int Resolution(int resolution_code) { return resolution_code * 96; }
    /// Width of the rules in device pixels.
    static int Rule_Width(int resolution_code);

private:
    void Set_Margins(const QRect& page);

    TReportLayout d_layout;
    int d_left = 0;       ///< x0, first column inside the margins
    int d_right = 0;      ///< x1, last column inside the margins
    int d_rule_right = 0; ///< xr, last column of the rules
    int d_bottom = 0;     ///< yb, the bottom margin's edge
    int d_header_top = 0; ///< y0, the top margin's edge
    int d_header_2_top = 0;
    int d_header_rule = 0; ///< hy
    int d_footer_top = 0;  ///< fy
};
