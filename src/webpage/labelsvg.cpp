#include "src/webpage/labelsvg.h"

#include "src/findings/findings.h"
#include "src/model/appearance.h"
#include "src/webpage/markup.h"

#include <cmath>

using Markup::Escaped;
using Markup::Number;

namespace {

/// The code, or that of no border if it has no border.
int Drawn_Border(int border_type)
{
    return Is_Border_Type(border_type) ? border_type : No_Border;
}

QString Box_Attributes(const QRectF& box)
{
    return QStringLiteral("x=\"%1\" y=\"%2\" width=\"%3\" height=\"%4\"")
        .arg(Number(box.x()), Number(box.y()), Number(box.width()), Number(box.height()));
}

bool Is_Finite(const QPointF& position)
{
    return std::isfinite(position.x()) && std::isfinite(position.y());
}

} // namespace

TLabelSvg::TLabelSvg(const TAppearance& appearance)
{
    d_style.width = appearance.label_size + LabelPainter::Margin;
    d_style.height = d_style.width;
    d_style.font_size = TAppearance::Font_Size(appearance.label_size);
}

QString TLabelSvg::Definitions() const
{
    const QString hit = Box_Attributes(Box(QPointF()));
    const QString highlight = Box_Attributes(LabelPainter::Highlight_Box(d_style));
    QString definitions = QStringLiteral("<svg width=\"0\" height=\"0\" aria-hidden=\"true\" "
                                         "class=\"definitions\"><defs>\n");
    for (const TBorderName& border : Border_Names) {
        definitions += QStringLiteral("<g id=\"border-%1\"><rect class=\"hit\" %2/>"
                                      "<rect class=\"highlight\" %3/>")
                           .arg(border.code)
                           .arg(hit, highlight);
        if (border.code != No_Border)
            definitions += Shape(border.code).arg(QStringLiteral("halo")) +
                           Shape(border.code).arg(QStringLiteral("line"));
        definitions += QStringLiteral("</g>\n");
    }
    return definitions + QStringLiteral("</defs></svg>\n");
}

/// A border's element with "%1" for its class.
QString TLabelSvg::Shape(int border_type) const
{
    const QRectF box = LabelPainter::Border_Box(d_style);
    if (border_type == Square_Border)
        return QStringLiteral("<rect class=\"%1\" ") + Box_Attributes(box) + QStringLiteral("/>");
    if (border_type == Ellipse_Border)
        return QStringLiteral("<ellipse class=\"%1\" cx=\"") + Number(box.center().x()) +
               QStringLiteral("\" cy=\"") + Number(box.center().y()) + QStringLiteral("\" rx=\"") +
               Number(box.width() / 2) + QStringLiteral("\" ry=\"") + Number(box.height() / 2) +
               QStringLiteral("\"/>");
    QString points;
    const QPolygon corners = LabelPainter::Border_Corners(d_style, border_type);
    for (const QPoint& corner : corners)
        points += QStringLiteral("%1,%2 ").arg(corner.x()).arg(corner.y());
    return QStringLiteral("<polygon class=\"%1\" points=\"") + points.trimmed() +
           QStringLiteral("\"/>");
}

QString TLabelSvg::Label(const TFinding& finding, int number, const QString& title) const
{
    const TDataItem& label = finding.label;
    const QString text = label.text.isEmpty() ? QString::number(label.value) : label.text;
    const int border = Drawn_Border(label.border_type);
    return QStringLiteral("<a class=\"label\" id=\"label-%1\" href=\"#row-%1\" "
                          "transform=\"translate(%2 %3)\"><title>")
               .arg(QString::number(number), Number(label.position.x()),
                    Number(label.position.y())) +
           Escaped(title) + QStringLiteral("</title><use href=\"#border-%1\"/>").arg(border) +
           Text(text, border) + QStringLiteral("</a>\n");
}

/// The text, placed as QPainter centres it: an element for each line. Their lengths are given,
/// since fonts differ between machines.
QString TLabelSvg::Text(const QString& text, int border_type) const
{
    const LabelPainter::TFittedText fitted = LabelPainter::Fit_Text(d_style, text);
    const QString size = Number(LabelPainter::Pixel_Size(fitted.font));
    QString elements;
    for (const LabelPainter::TTextLine& line :
         LabelPainter::Text_Lines(d_style, fitted, border_type)) {
        elements +=
            QStringLiteral("<text x=\"%1\" y=\"%2\" font-size=\"%3\"")
                .arg(Number(line.start.x() + line.length / 2), Number(line.start.y()), size);
        if (line.length > 0)
            elements += QStringLiteral(" textLength=\"%1\" lengthAdjust=\"spacingAndGlyphs\"")
                            .arg(Number(line.length));
        elements += QLatin1Char('>') + Escaped(line.text) + QStringLiteral("</text>");
    }
    return elements;
}

QRectF TLabelSvg::Box(const QPointF& position) const
{
    return QRectF(position - LabelPainter::Centre(d_style), QSizeF(d_style.width, d_style.height));
}

QRectF TLabelSvg::Sheet(const QSize& image, const TFindingsPage& page) const
{
    const QRectF picture(QPointF(), image);
    QRectF sheet = picture;
    for (const TFinding& finding : page.rows) {
        if (Is_Finite(finding.label.position))
            sheet |= Box(finding.label.position);
    }
    if (sheet.width() * sheet.height() > static_cast<double>(TPageImage::Maximum_Pixels))
        return picture;
    // The size is rounded down, as that of an exported picture.
    return QRectF(sheet.topLeft(), QSizeF(std::floor(sheet.width()), std::floor(sheet.height())));
}

bool TLabelSvg::Is_On(const QRectF& sheet, const TFinding& finding) const
{
    return Is_Finite(finding.label.position) && sheet.intersects(Box(finding.label.position));
}
