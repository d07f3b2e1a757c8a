#pragma once

#include <QLine>
#include <QRect>
#include <QSize>

/// Metrics of a font on the printer, in device pixels.
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

/// The layout of a report page, in device pixels.
///
/// From top to bottom: margin, header lines, rule, picture, rule, footer, margin. The margins are 9
/// percent of the page's width and 4.5 percent of its height. The rules span three columns of equal
/// width, which fill the space between the margins to within a pixel. Without header lines, the
/// header rule lies at the top margin.
///
/// Rectangles are QRects with inclusive corners, like the printer's page rectangle.
class TReportGeometry
{
public:
    /// @param page    the printer's page rectangle.
    /// @param layout  with a resolution code from 1 to 4.
    TReportGeometry(const QRect& page, const TReportLayout& layout);

    /// Sets the page rectangle of a further page. Moves only the left, right and bottom margins:
    /// the left end of rules, texts and picture, the right end of the texts, and the bottom of the
    /// footer. Everything else stays as on the first page: the y coordinates of the rules, the
    /// header lines, the top of the footer, and the right end of the rules and the picture.
    void Set_Page(const QRect& page);

    /// The rule under the headers.
    QLine Header_Rule() const;
    /// The rule above the footer.
    QLine Footer_Rule() const;
    /// Rectangle of the first header line, whose text is aligned left and top.
    QRect Header_1() const;
    /// Rectangle of the second header line. Without a first one, it starts at the top.
    QRect Header_2() const;
    /// Rectangle of the footer, whose texts are aligned bottom left and bottom right.
    QRect Footer() const;
    /// Rectangle for the picture. Its distance in pixels from the rules and their ends is the
    /// resolution code.
    QRect Target() const;
    /// Centres a picture that was scaled to fit the target. In a direction in which the target is
    /// more than two pixels larger, both edges move in by half the difference, rounded toward zero.
    /// After an odd difference, the rectangle is one pixel larger than the picture.
    QRect Centred(const QSize& picture) const;

    /// Whether a resolution code is valid.
    static bool Is_Resolution_Code(int resolution_code);
    /// Dots per inch of a resolution code.
    static int Resolution(int resolution_code) { return resolution_code * 96; }
    /// Width of the rules in device pixels, for a resolution code from 1 to 4.
    static int Rule_Width(int resolution_code);

private:
    void Set_Side_And_Bottom_Margins(const QRect& page);
    void Set_Header_Band(const TReportLayout& layout);

    int d_gap;              ///< between rules and picture
    int d_left = 0;         ///< first column inside the margins
    int d_right = 0;        ///< last column inside the margins
    int d_rule_right = 0;   ///< last column of the rules
    int d_bottom = 0;       ///< the bottom margin's edge
    int d_header_top = 0;   ///< the top margin's edge
    int d_header_2_top = 0; ///< the header rule's line when there is no second header
    int d_header_rule = 0;
    int d_footer_top = 0;
};
