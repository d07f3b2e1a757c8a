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
/// From top to bottom: margin, header lines, rule, picture, rule, footer, margin. The margins are 9
/// percent of the page's width and 4.5 percent of its height. The rules are as long as three
/// columns of equal width, which fit the room between the margins to a pixel more or less. A band
/// without a header line has no height: its rule lies at the top margin.
///
/// Rectangles are QRects over inclusive corners, as the printer's page rectangle is.
class TReportGeometry
{
public:
    /// @param page    the printer's page rectangle.
    /// @param layout  with a resolution code from 1 to 4.
    TReportGeometry(const QRect& page, const TReportLayout& layout);

    /// Takes over the page rectangle of a further page. Only the margins' left, right and bottom
    /// edges move: x0, where rules, texts and picture begin; x1, where the texts end; and yb, where
    /// the footer's text ends. The lines y of both rules, the header lines, the footer's top and
    /// the rules' right end, and with it the picture's, stay where they were on the first page.
    void Set_Page(const QRect& page);

    /// Rule under the headers.
    QLine Header_Rule() const;
    /// Rule above the footer.
    QLine Footer_Rule() const;
    /// Place of the first header line; its text is aligned left and top.
    QRect Header_1() const;
    /// Place of the second header line; alone it takes the first one's place.
    QRect Header_2() const;
    /// Place of the footer; its texts are aligned bottom, left and right.
    QRect Footer() const;
    /// Room for the picture, as many pixels away from the rules and their ends as the resolution
    /// code says.
    QRect Target() const;
    /// Place of a picture that has been scaled to fit the target. In each direction in which the
    /// target is larger by more than two pixels, both its edges move in by half the difference,
    /// rounded toward zero; an odd difference leaves the place one pixel larger than the picture.
    QRect Centred(const QSize& picture) const;

    /// Whether a resolution code is one that the report knows.
    static bool Is_Resolution_Code(int resolution_code);
    /// Dots per inch of a resolution code.
    static int Resolution(int resolution_code) { return resolution_code * 96; }
    /// Width of the rules in device pixels, for a resolution code from 1 to 4.
    static int Rule_Width(int resolution_code);

private:
    void Set_Side_And_Bottom_Margins(const QRect& page);
    void Set_Header_Band(const TReportLayout& layout);

    int d_gap;              ///< between rules and picture
    int d_left = 0;         ///< x0, first column inside the margins
    int d_right = 0;        ///< x1, last column inside the margins
    int d_rule_right = 0;   ///< xr, last column of the rules
    int d_bottom = 0;       ///< yb, the bottom margin's edge
    int d_header_top = 0;   ///< y0, the top margin's edge
    int d_header_2_top = 0; ///< the header rule's line when there is no second header
    int d_header_rule = 0;  ///< hy
    int d_footer_top = 0;   ///< fy
};
