#include "src/paint/labelpainter.h"

#include <QBrush>
#include <QFont>
#include <QImage>
#include <QPainter>
#include <QPen>
#include <QPolygon>
#include <QRect>

namespace LabelPainter {

namespace {

// Not fully transparent: such pixels are not part of the label's shape, so a press between the
// border and the text would miss the label.
const QColor background_color(255, 255, 255, 1);
const QColor highlight_line_color(0, 0, 255, 128);
const QColor highlight_fill_color(0, 0, 255, 64);
constexpr double border_line_width = 2.0;    // pixels
constexpr double highlight_line_width = 1.0; // pixels
constexpr double text_width_share = 0.67;    // of the label's width
constexpr double smallest_text_scale = 0.2;  // below, a text is not readable

/// Distance from the centre to the border. Uses the width for both directions, since labels are
/// square; others are cut off at the top and the bottom.
int Radius(const TLabelStyle& style)
{
    return (style.width - Margin) / 2;
}

/// Sets up a painter in the same way for the frame and the text.
void Prepare(QPainter* painter, const TLabelStyle& style)
{
    painter->setRenderHint(QPainter::Antialiasing);
    painter->translate(Centre(style));
}

QPen Border_Pen(const TLabelStyle& style)
{
    return QPen(style.color, border_line_width);
}

void Draw_Highlight(QPainter* painter, const TLabelStyle& style)
{
    const int extent = (style.width - 1) / 2;
    painter->setPen(QPen(highlight_line_color, highlight_line_width));
    painter->setBrush(highlight_fill_color);
    painter->drawRect(-extent, -extent, style.width - 2, style.height - 2);
}

void Draw_Border(QPainter* painter, const TLabelStyle& style, int border_type)
{
    const int r = Radius(style);
    const QRect box(-r, -r, style.width - Margin - 1, style.height - Margin - 1);
    painter->setPen(Border_Pen(style));
    painter->setBrush(background_color);
    switch (border_type) {
    case Square_Border:
        painter->drawRect(box);
        break;
    case Ellipse_Border:
        painter->drawEllipse(box);
        break;
    case Triangle_Border:
        painter->drawPolygon(QPolygon({{0, -r}, {-r, 0}, {-r, r}, {r, r}, {r, 0}}));
        break;
    case Diamond_Border:
        painter->drawPolygon(QPolygon({{0, -r}, {-r, 0}, {0, r}, {r, 0}}));
        break;
    default:
        break;
    }
}

/// Shrinks the painter's font if the text is too wide for the label, or returns "*" if it is much
/// too wide.
QString Fit_Text(QPainter* painter, const TLabelStyle& style, const QString& text)
{
    const int text_width = painter->boundingRect(QRect(0, 0, 0, 0), 0, text).width();
    if (text_width <= 0)
        return text;
    const double scale = (style.width - Margin) * text_width_share / text_width;
    if (scale < smallest_text_scale)
        return QStringLiteral("*");
    if (scale < 1.0) {
        QFont font = painter->font();
        font.setPointSizeF(scale * style.font_size);
        painter->setFont(font);
    }
    return text;
}

/// The rectangle in which the text is centred.
QRect Text_Box(const TLabelStyle& style, int border_type)
{
    const int r = Radius(style);
    const int right = style.width - Margin - r - 1;
    // A triangle has room for the text only in its base.
    if (border_type == Triangle_Border)
        return QRect(QPoint(-r, 0), QPoint(right, (style.height - Margin) / 2 - 1));
    return QRect(QPoint(-r, -r), QPoint(right, style.height - Margin - r - 1));
}

} // namespace

QPixmap Template(const TLabelStyle& style)
{
    QImage image(style.width, style.height, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    return QPixmap::fromImage(image);
}

QPoint Centre(const TLabelStyle& style)
{
    return QPoint(style.width / 2, style.height / 2);
}

void Paint(QPixmap* pixmap, const TLabelStyle& style, const QString& text, int border_type,
           bool selected)
{
    Paint_Frame(pixmap, style, border_type, selected);
    Paint_Text(pixmap, style, text, border_type);
}

void Paint_Frame(QPixmap* pixmap, const TLabelStyle& style, int border_type, bool selected)
{
    if (pixmap->isNull())
        return;
    QPainter painter(pixmap);
    painter.fillRect(pixmap->rect(), background_color);
    Prepare(&painter, style);
    if (selected)
        Draw_Highlight(&painter, style);
    Draw_Border(&painter, style, border_type);
}

void Paint_Text(QPixmap* pixmap, const TLabelStyle& style, const QString& text, int border_type)
{
    if (pixmap->isNull())
        return;
    QPainter painter(pixmap);
    Prepare(&painter, style);
    painter.setPen(Border_Pen(style));
    painter.setFont(QFont(QStringLiteral("Arial"), style.font_size, QFont::Bold));
    const QString fitted = Fit_Text(&painter, style, text);
    painter.drawText(Text_Box(style, border_type), Qt::AlignCenter, fitted);
}

} // namespace LabelPainter
