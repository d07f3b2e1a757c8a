#pragma once

#include "src/model/appearance.h"
#include "src/model/bordertype.h"

#include <QColor>
#include <QPixmap>
#include <QPoint>
#include <QString>

/// The look that all labels of a page have in common.
struct TLabelStyle
{
    int width = 32; ///< of the label's pixmap, in page-image pixels
    int height = 32;
    int font_size = 12;                          ///< in points, before a long text is fitted
    QColor color = TAppearance::Initial_Color(); ///< of the border and the text
};

namespace LabelPainter {

/// Pixels by which a label's pixmap is wider and higher than the label size, as room for the border
/// line and the highlight.
constexpr int Margin = 5;

/// Creates an empty label: a transparent pixmap of the style's size.
QPixmap Template(const TLabelStyle& style);

/// The point of a label's pixmap that marks its position, in whole pixels.
QPoint Centre(const TLabelStyle& style);

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
