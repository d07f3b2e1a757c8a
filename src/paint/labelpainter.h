#pragma once

#include "src/model/appearance.h"
#include "src/model/bordertype.h"

#include <QColor>
#include <QFont>
#include <QPixmap>
#include <QPoint>
#include <QPointF>
#include <QPolygon>
#include <QRect>
#include <QString>

#include <vector>

/// The look that all labels of a page have in common.
struct TLabelStyle
{
    int width = 32; ///< of the label's pixmap, in page-image pixels
    int height = 32;
    int font_size = 12;                          ///< in points, before a long text is fitted
    QColor color = TAppearance::Initial_Color(); ///< of the border and the text
    bool has_halo = false; ///< whether a light outline keeps it readable on dark pictures
};

namespace LabelPainter {

/// Pixels by which a label's pixmap is wider and higher than the label size, as room for the border
/// line and the highlight.
constexpr int Margin = 5;

/// Creates an empty label: a transparent pixmap of the style's size.
QPixmap Template(const TLabelStyle& style);

/// The point of a label's pixmap that marks its position, in whole pixels.
QPoint Centre(const TLabelStyle& style);

/// The box of a square or an ellipse, from the label's position.
QRect Border_Box(const TLabelStyle& style);

/// The box of the highlight, from the label's position.
QRect Highlight_Box(const TLabelStyle& style);

/// The corners of a triangle or a diamond, from the label's position; none for other codes.
QPolygon Border_Corners(const TLabelStyle& style, int border_type);

/// The box in which a label's text is centred, from the label's position.
QRect Text_Box(const TLabelStyle& style, int border_type);

/// A text as a label shows it.
struct TFittedText
{
    QString text;
    QFont font;
};

/// Fits a text into a label, as Paint does.
TFittedText Fit_Text(const TLabelStyle& style, const QString& text);

/// A line of a label's text.
struct TTextLine
{
    QString text;
    QPointF start; ///< left end of the baseline, from the label's position
    double length = 0;
};

/// The lines of a fitted text, where Paint draws them.
std::vector<TTextLine> Text_Lines(const TLabelStyle& style, const TFittedText& fitted,
                                  int border_type);

/// Width of the border's line, in pixels.
constexpr double Border_Line_Width = 2.0;

/// The colour of a halo.
QColor Halo_Color();

/// Width of the line behind the border's line that makes its halo, in pixels.
constexpr double Border_Halo_Width = 4.0;

/// Width of the line around the letters that makes their halo, as a part of the font's size.
constexpr double Text_Halo_Width = 0.14;

/// Size of a font in pixels of a label.
double Pixel_Size(const QFont& font);

/// Draws a label: the highlight, the border, and the text, fitted and centred. The screen, exported
/// images and the report all use it.
///
/// A text wider than 0.67 of the label's width is drawn smaller, in proportion. A text that would
/// shrink to less than a fifth is replaced by "*".
/// @param pixmap       a copy of the style's template.
/// @param border_type  one of TBorderType; any other code draws no border.
void Paint(QPixmap* pixmap, const TLabelStyle& style, const QString& text, int border_type,
           bool selected);

/// Draws everything except the text. Painting the text on a copy gives the same pixels as Paint.
void Paint_Frame(QPixmap* pixmap, const TLabelStyle& style, int border_type, bool selected);

/// Draws the text.
/// @param pixmap  the result of Paint_Frame for the same style and border type.
void Paint_Text(QPixmap* pixmap, const TLabelStyle& style, const QString& text, int border_type);

} // namespace LabelPainter
