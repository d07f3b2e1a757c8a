#pragma once

#include "src/model/pageitem.h"

#include <QPointF>

#include <vector>

/// Where pasted labels go.
///
/// They keep their positions, unless one of them would lie exactly on a label of the page and hide
/// it. Then all of them move down and to the right, by a multiple of the distance.
/// @param pasted    the labels at the positions they were copied from.
/// @param present   the labels of the page.
/// @param distance  horizontal and vertical, in page-image pixels.
/// @return how far the pasted labels move.
QPointF Paste_Offset(const std::vector<TDataItem>& pasted, const std::vector<TDataItem>& present,
                     double distance);
