#pragma once

#include <QPointF>
#include <QSize>

/// Labels whose centres are outside of their page, in page-image pixels.
namespace PageEdge {

/// How far a label is outside: the larger of the horizontal and the vertical distance; 0 if its
/// centre is on the page.
double Distance_Outside(const QPointF& centre, const QSize& page);

/// The closest centre of a label that is completely on the page, or as far as the page is large
/// enough.
/// @param label_size  width and height of the label.
QPointF Nearest_Inside(const QPointF& centre, const QSize& page, int label_size);

} // namespace PageEdge
