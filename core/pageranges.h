#pragma once

#include <QString>

#include <optional>
#include <vector>

/// Consecutive pages, counted from 1.
struct TPageRange
{
    int first;
    int last;
};

/// Page numbers as users write them: "1-3,7".
namespace PageRanges {

/// Parses page numbers and ranges, separated by commas. Empty if the text is not valid.
std::optional<std::vector<TPageRange>> Parse(const QString& text);

/// The largest page number; 0 without ranges.
int Last_Page(const std::vector<TPageRange>& ranges);

/// All page numbers, in the order of the ranges.
std::vector<int> Numbers(const std::vector<TPageRange>& ranges);

} // namespace PageRanges
