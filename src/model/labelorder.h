#pragma once

#include "src/model/pageitem.h"

#include <vector>

/// The order of labels on a page by their positions.
namespace LabelOrder {

/// Ids of the labels in reading order: line by line from the top, each line from the left.
/// @param label_size  in page-image pixels. A label belongs to a line if its centre is less than
///                    this distance below the centre of the line's topmost label.
std::vector<int> By_Lines(const std::vector<TDataItem>& items, int label_size);

/// The same with columns from the left, each from the top.
std::vector<int> By_Columns(const std::vector<TDataItem>& items, int label_size);

} // namespace LabelOrder
