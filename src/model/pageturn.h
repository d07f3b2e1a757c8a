#pragma once

#include "src/model/pageitem.h"

#include <QPointF>
#include <QSize>

/// Rotates pages by a right angle.
namespace PageTurn {

enum class TDirection { Left, Right };

/// Where a point of the page image is after the rotation.
/// @param size  of the image before.
QPointF Turned(const QPointF& point, const QSize& size, TDirection direction);

/// The page with its image rotated. The labels move with the image but stay upright. The page must
/// have an image.
TPageItem Turned(const TPageItem& page, TDirection direction);

} // namespace PageTurn
