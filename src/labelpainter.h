#pragma once

#include <QColor>
#include <QPixmap>
#include <QString>

/// How labels look: everything that all labels of a page have in common.
struct TLabelStyle
{
    int width = 32; ///< of the label's pixmap, in page-image pixels
    int height = 32;
    int font_size = 12;       ///< in points, before a long text is fitted
    QColor color{250, 8, 50}; ///< of the border and the text
};

/// Border type codes as they are stored with a label. They are bit values, not a sequence.
enum TBorderType {
    No_Border = 0,
    Square_Border = 1,
    Ellipse_Border = 2,
    Triangle_Border = 4,
    Diamond_Border = 8
};

namespace LabelPainter {

/// An empty label: a transparent pixmap of the style's size, on which every label is drawn.
QPixmap Template(const TLabelStyle& style);

/// Draws one label: highlight, border, and the text fitted and centred. The same drawing serves the
/// screen, the exported images and the report.
/// @param pixmap  a copy of the style's template; drawn upon.
void Paint(QPixmap* pixmap, const TLabelStyle& style, const QString& text, int border_type,
           bool selected);

} // namespace LabelPainter
