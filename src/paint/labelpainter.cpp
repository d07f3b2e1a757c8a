#include "src/paint/labelpainter.h"

#include <QBrush>
#include <QFontMetricsF>
#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPen>

namespace LabelPainter {

namespace {

// Almost transparent. Fully transparent pixels are not part of the label's shape, so a press
// between the border and the text would miss the label.
const QColor background_color(255, 255, 255, 1);
const QColor highlight_line_color(0, 0, 255, 128);
const QColor highlight_fill_color(0, 0, 255, 64);
constexpr double highlight_line_width = 1.0; // pixels
constexpr double text_width_share = 0.67;    // of the label's width
constexpr double points_per_inch = 72.0;
constexpr double smallest_text_scale = 0.2; // below this, text is unreadable

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
    return QPen(style.color, Border_Line_Width);
}

void Draw_Highlight(QPainter* painter, const TLabelStyle& style)
{
    painter->setPen(QPen(highlight_line_color, highlight_line_width));
    painter->setBrush(highlight_fill_color);
    painter->drawRect(Highlight_Box(style));
}

void Draw_Shape(QPainter* painter, const TLabelStyle& style, int border_type)
{
    switch (border_type) {
    case Square_Border:
        painter->drawRect(Border_Box(style));
        break;
    case Ellipse_Border:
        painter->drawEllipse(Border_Box(style));
        break;
    case Triangle_Border:
    case Diamond_Border:
        painter->drawPolygon(Border_Corners(style, border_type));
        break;
    default:
        break;
    }
}

void Draw_Border(QPainter* painter, const TLabelStyle& style, int border_type)
{
    if (style.has_halo) {
        painter->setPen(QPen(Halo_Color(), Border_Halo_Width));
        painter->setBrush(Qt::NoBrush);
        Draw_Shape(painter, style, border_type);
    }
    painter->setPen(Border_Pen(style));
    painter->setBrush(background_color);
    Draw_Shape(painter, style, border_type);
}

void Draw_Text_Halo(QPainter* painter, const TLabelStyle& style, const TFittedText& fitted,
                    int border_type)
{
    QPainterPath letters;
    for (const TTextLine& line : Text_Lines(style, fitted, border_type))
        letters.addText(line.start, fitted.font, line.text);
    painter->strokePath(letters, QPen(Halo_Color(), Text_Halo_Width * Pixel_Size(fitted.font),
                                      Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
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

QRect Border_Box(const TLabelStyle& style)
{
    const int r = Radius(style);
    return QRect(-r, -r, style.width - Margin - 1, style.height - Margin - 1);
}

QRect Highlight_Box(const TLabelStyle& style)
{
    const int extent = (style.width - 1) / 2;
    return QRect(-extent, -extent, style.width - 2, style.height - 2);
}

QPolygon Border_Corners(const TLabelStyle& style, int border_type)
{
    const int r = Radius(style);
    if (border_type == Triangle_Border)
        return QPolygon({{0, -r}, {-r, 0}, {-r, r}, {r, r}, {r, 0}});
    if (border_type == Diamond_Border)
        return QPolygon({{0, -r}, {-r, 0}, {0, r}, {r, 0}});
    return QPolygon();
}

QRect Text_Box(const TLabelStyle& style, int border_type)
{
    const int r = Radius(style);
    const int right = style.width - Margin - r - 1;
    // A triangle has room for the text only in its base.
    if (border_type == Triangle_Border)
        return QRect(QPoint(-r, 0), QPoint(right, (style.height - Margin) / 2 - 1));
    return QRect(QPoint(-r, -r), QPoint(right, style.height - Margin - r - 1));
}

TFittedText Fit_Text(const TLabelStyle& style, const QString& text)
{
    TFittedText fitted{text, QFont(QStringLiteral("Arial"), style.font_size, QFont::Bold)};
    const int text_width =
        QFontMetrics(fitted.font).boundingRect(QRect(0, 0, 0, 0), 0, text).width();
    if (text_width <= 0)
        return fitted;
    const double scale = (style.width - Margin) * text_width_share / text_width;
    if (scale < smallest_text_scale)
        fitted.text = QStringLiteral("*");
    else if (scale < 1.0)
        fitted.font.setPointSizeF(scale * style.font_size);
    return fitted;
}

std::vector<TTextLine> Text_Lines(const TLabelStyle& style, const TFittedText& fitted,
                                  int border_type)
{
    const QFontMetricsF metrics(fitted.font);
    const QPointF centre = QRectF(Text_Box(style, border_type)).center();
    const QStringList texts = fitted.text.split(QLatin1Char('\n'));
    double baseline = centre.y() - texts.size() * metrics.height() / 2 + metrics.ascent();
    std::vector<TTextLine> lines;
    for (const QString& text : texts) {
        const double length = metrics.horizontalAdvance(text);
        lines.push_back({text, QPointF(centre.x() - length / 2, baseline), length});
        baseline += metrics.height();
    }
    return lines;
}

QColor Halo_Color()
{
    return QColor(255, 255, 255, 204);
}

double Pixel_Size(const QFont& font)
{
    const QImage device(1, 1, QImage::Format_ARGB32);
    return font.pointSizeF() * device.logicalDpiY() / points_per_inch;
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
    const TFittedText fitted = Fit_Text(style, text);
    if (style.has_halo)
        Draw_Text_Halo(&painter, style, fitted, border_type);
    painter.setPen(Border_Pen(style));
    painter.setFont(fitted.font);
    painter.drawText(Text_Box(style, border_type), Qt::AlignCenter, fitted.text);
}

} // namespace LabelPainter
