#include "src/paint/reportpainter.h"

#include <QCoreApplication>
#include <QFontMetrics>
#include <QPainter>
#include <QPen>

namespace {

QFont Report_Font(int points)
{
    return QFont(QStringLiteral("Helvetica"), points, QFont::Normal, false);
}

TFontMeasure Measure(const QFont& font, const QPainter& painter)
{
    const QFontMetrics metrics(font, painter.device());
    return {metrics.height(), metrics.xHeight()};
}

} // namespace

QString Maker_Text()
{
    return QCoreApplication::translate("TReportPainter",
                                       "The Quillet Project - www.quillet.example");
}

TReportPainter::TReportPainter(QPainter* painter, int resolution_code, const QString& header_1,
                               const QString& header_2, const QRect& page,
                               const TReportFooter& footer)
    : d_painter(painter)
    , d_resolution_code(resolution_code)
    , d_header_1(header_1)
    , d_header_2(header_2)
    , d_heading_font(Report_Font(12))
    , d_footer_font(Report_Font(6))
    , d_footer(footer)
    , d_geometry(page,
                 TReportLayout{resolution_code, !header_1.isEmpty(), !header_2.isEmpty(),
                               Measure(d_heading_font, *painter),
                               footer.is_drawn ? Measure(d_footer_font, *painter) : TFontMeasure()})
{
}

void TReportPainter::Draw_Frame(int number)
{
    Draw_Rules();
    Draw_Headers();
    Draw_Footer(number);
}

void TReportPainter::Draw_Rules()
{
    // In Qt 6.4, a first pen like the painter's own does not reach the PDF.
    d_painter->setPen(Qt::NoPen);
    d_painter->setPen(QPen(QColor(0, 0, 0), TReportGeometry::Rule_Width(d_resolution_code)));
    d_painter->drawLine(d_geometry.Footer_Rule());
    d_painter->drawLine(d_geometry.Header_Rule());
}

void TReportPainter::Draw_Headers()
{
    d_painter->setPen(QPen(QColor(0, 0, 0)));
    d_painter->setFont(d_heading_font);
    if (!d_header_1.isEmpty())
        d_painter->drawText(d_geometry.Header_1(), Qt::AlignLeft | Qt::AlignTop, d_header_1);
    if (!d_header_2.isEmpty())
        d_painter->drawText(d_geometry.Header_2(), Qt::AlignLeft | Qt::AlignTop, d_header_2);
}

void TReportPainter::Draw_Footer(int number)
{
    if (!d_footer.is_drawn)
        return;
    const QString page = d_footer.page_count > 0
                             ? QCoreApplication::translate("TReportPainter", "Page %1 of %2")
                                   .arg(number)
                                   .arg(d_footer.page_count)
                             : QCoreApplication::translate("TReportPainter", "Page %1").arg(number);
    d_painter->setFont(d_footer_font);
    const QFontMetrics metrics(d_footer_font, d_painter->device());
    const QRect box = d_geometry.Footer();
    const int gap = metrics.height();
    const QString text = metrics.elidedText(d_footer.text.simplified(), Qt::ElideRight,
                                            box.width() - metrics.horizontalAdvance(page) - gap);
    d_painter->drawText(box, Qt::AlignLeft | Qt::AlignBottom, text);
    d_painter->drawText(box, Qt::AlignRight | Qt::AlignBottom, page);
}

void TReportPainter::Draw_Picture(const QPixmap& picture)
{
    const QPixmap scaled =
        picture.scaled(d_geometry.Target().size(), Qt::KeepAspectRatio, Qt::SmoothTransformation);
    d_painter->drawPixmap(d_geometry.Centred(scaled.size()), scaled, scaled.rect());
}
