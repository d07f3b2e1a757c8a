#pragma once

#include "src/model/pageitem.h"

#include <memory>
#include <vector>

class QMimeData;

/// Labels on the clipboard, as tables with the columns of ItemTable.
namespace LabelClipboard {

/// Returns labels as a CSV table (text/csv) and as text with a tab between columns, which
/// spreadsheets paste into cells. Unknown borders become none.
/// @param page  number of their page, from 1.
std::unique_ptr<QMimeData> Copy(const std::vector<TDataItem>& items, int page);

/// Reads the labels of such a table. Spreadsheets provide only the text. Ids are 0.
/// @throws TCsvException
std::vector<TDataItem> Paste(const QMimeData& data);

} // namespace LabelClipboard
