#pragma once

#include "src/paint/labelpainter.h"

#include <QPointF>
#include <QRectF>
#include <QSize>
#include <QString>

#include <vector>

struct TAppearance;
struct TFinding;
struct TFindingsPage;

/// Draws labels in SVG, with the shapes, positions and sizes of LabelPainter. A thin light outline
/// keeps them readable on dark pictures.
class TLabelSvg
{
public:
    explicit TLabelSvg(const TAppearance& appearance);

    /// Definitions of the borders, to which the labels refer. A file needs them once.
    QString Definitions() const;

    /// A label as a link to its row.
    /// @param number  of the label in the document, from 1.
    /// @param title   its tool tip and name, in plain text.
    QString Label(const TFinding& finding, int number, const QString& title) const;

    /// The area that a page shows, in pixels of its image: the image and all labels, like an
    /// exported picture, or the image alone if that exceeds TPageImage::Maximum_Pixels.
    QRectF Sheet(const QSize& image, const TFindingsPage& page) const;

    /// Whether at least a part of a label is on its sheet. Never if its coordinates are not finite.
    bool Is_On(const QRectF& sheet, const TFinding& finding) const;

private:
    QRectF Box(const QPointF& position) const;
    QString Text(const QString& text, int border_type) const;
    QString Shape(int border_type) const;

    TLabelStyle d_style;
};
