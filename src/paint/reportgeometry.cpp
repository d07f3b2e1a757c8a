#include "src/paint/reportgeometry.h"

#include <cassert>
#include <iterator>

namespace {

constexpr double horizontal_margin = 0.09; ///< part of the page's width, on either side
constexpr double vertical_margin = 0.045;  ///< part of the page's height, above and below
constexpr int rule_columns = 3;
/// Differences of up to this many pixels between target and picture are rounding errors of scaling.
constexpr int scaling_tolerance = 2;
/// In device pixels, by resolution code from 1. 192 and 288 dots per inch share a width.
constexpr int rule_widths[] = {1, 2, 2, 3};

int Margin(int length, double part)
{
    return static_cast<int>(length * part);
}

/// How far both edges must move in to centre a length in the available space.
int Inset(int room, int length)
{
    const int difference = room - length;
    return difference > scaling_tolerance ? difference / 2 : 0;
}

} // namespace

TReportGeometry::TReportGeometry(const QRect& page, const TReportLayout& layout)
    : d_gap(layout.resolution_code)
{
    assert(Is_Resolution_Code(layout.resolution_code));
    Set_Side_And_Bottom_Margins(page);
    const int column =
        static_cast<int>((d_right - d_left + 1) / static_cast<double>(rule_columns) + 0.5);
    d_rule_right = d_left + rule_columns * column - 1;
    d_header_top = page.top() + Margin(page.height(), vertical_margin);
    Set_Header_Band(layout);
    d_footer_top = d_bottom - layout.footer.height - layout.footer.x_height;
}

void TReportGeometry::Set_Page(const QRect& page)
{
    Set_Side_And_Bottom_Margins(page);
}

QLine TReportGeometry::Header_Rule() const
{
    return QLine(d_left, d_header_rule, d_rule_right, d_header_rule);
}

QLine TReportGeometry::Footer_Rule() const
{
    return QLine(d_left, d_footer_top - 1, d_rule_right, d_footer_top - 1);
}

QRect TReportGeometry::Header_1() const
{
    return QRect(QPoint(d_left, d_header_top), QPoint(d_right, d_header_2_top - 1));
}

QRect TReportGeometry::Header_2() const
{
    return QRect(QPoint(d_left, d_header_2_top), QPoint(d_right, d_header_rule - 1));
}

QRect TReportGeometry::Footer() const
{
    return QRect(QPoint(d_left, d_footer_top), QPoint(d_right, d_bottom - 1));
}

QRect TReportGeometry::Target() const
{
    return QRect(QPoint(d_left + d_gap, d_header_rule + d_gap),
                 QPoint(d_rule_right - d_gap, d_footer_top - 1 - d_gap));
}

QRect TReportGeometry::Centred(const QSize& picture) const
{
    const QRect target = Target();
    const int x = Inset(target.width(), picture.width());
    const int y = Inset(target.height(), picture.height());
    return target.adjusted(x, y, -x, -y);
}

bool TReportGeometry::Is_Resolution_Code(int resolution_code)
{
    return resolution_code >= 1 && resolution_code <= static_cast<int>(std::size(rule_widths));
}

int TReportGeometry::Rule_Width(int resolution_code)
{
    assert(Is_Resolution_Code(resolution_code));
    return rule_widths[resolution_code - 1];
}

void TReportGeometry::Set_Side_And_Bottom_Margins(const QRect& page)
{
    const int side = Margin(page.width(), horizontal_margin);
    d_left = page.left() + side;
    d_right = page.right() - side;
    d_bottom = page.bottom() - Margin(page.height(), vertical_margin);
}

void TReportGeometry::Set_Header_Band(const TReportLayout& layout)
{
    const int line = layout.heading.height;
    int end_of_lines = d_header_top;
    if (layout.has_header_1)
        end_of_lines += line;
    d_header_2_top = end_of_lines;
    if (layout.has_header_2)
        end_of_lines += line;
    const bool has_header = layout.has_header_1 || layout.has_header_2;
    d_header_rule = end_of_lines + (has_header ? layout.heading.x_height : 0);
    // Without a second line, the first one has the whole band.
    if (!layout.has_header_2)
        d_header_2_top = d_header_rule;
}
