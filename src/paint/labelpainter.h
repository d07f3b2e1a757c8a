#pragma once

#include "src/model/bordertype.h"

#include <QColor>
#include <QPixmap>
#include <QPoint>
#include <QString>

/// How labels look: everything that all labels of a page have in common.
struct TLabelStyle
{
    int width = 32; ///< of the label's pixmap, in page-image pixels
    int height = 32;
    int font_size = 12;       ///< in points, before a long text is fitted
    QColor color{250, 8, 50}; ///< of the border and the text
};

namespace LabelPainter {

/// By how many pixels a label's pixmap is wider and higher than the label that was asked for: room
/// for the border's line and the highlight.
constexpr int Margin = 5;

/// An empty label: a transparent pixmap of the style's size, on which every label is drawn.
QPixmap Template(const TLabelStyle& style);

/// Where in a label's pixmap the label's position lies, from its top-left corner, in whole pixels.
QPoint Centre(const TLabelStyle& style);

/// Draws one label: highlight, border, and the text fitted and centred. The same drawing serves the
/// screen, the exported images and the report.
///
/// A text whose width at the style's font size is more than 0.67 of the label's width is drawn
/// smaller, in proportion; one that would have to shrink below a fifth is replaced by "*".
/// @param pixmap       a copy of the style's template; drawn upon.
/// @param border_type  one of TBorderType; any other code draws no border.
void Paint(QPixmap* pixmap, const TLabelStyle& style, const QString& text, int border_type,
           bool selected);

/// The first half of Paint: all that does not depend on the text. Painting the text on a copy of
/// its result gives the same pixels as Paint.
void Paint_Frame(QPixmap* pixmap, const TLabelStyle& style, int border_type, bool selected);

/// The second half of Paint.
/// @param pixmap  what Paint_Frame drew upon with the same style and border type.
void Paint_Text(QPixmap* pixmap, const TLabelStyle& style, const QString& text, int border_type);

} // namespace LabelPainter
