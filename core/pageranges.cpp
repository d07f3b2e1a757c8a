#include "core/pageranges.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

namespace {

std::optional<TPageRange> Parse_Range(const QString& text)
{
    static const QRegularExpression pattern(QStringLiteral("^([0-9]+)(?:-([0-9]+))?$"));
    const QRegularExpressionMatch match = pattern.match(text.trimmed());
    if (!match.hasMatch())
        return std::nullopt;
    const int first = match.captured(1).toInt();
    const int last = match.captured(2).isEmpty() ? first : match.captured(2).toInt();
    // A number that is too large for an int reads as 0.
    if (first < 1 || last < first)
        return std::nullopt;
    return TPageRange{first, last};
}

} // namespace

std::optional<std::vector<TPageRange>> PageRanges::Parse(const QString& text)
{
    std::vector<TPageRange> ranges;
    const QStringList parts = text.split(QLatin1Char(','));
    for (const QString& part : parts) {
        const std::optional<TPageRange> range = Parse_Range(part);
        if (!range)
            return std::nullopt;
        ranges.push_back(*range);
    }
    return ranges;
}

int PageRanges::Last_Page(const std::vector<TPageRange>& ranges)
{
    int last = 0;
    for (const TPageRange& range : ranges)
        last = std::max(last, range.last);
    return last;
}

std::vector<int> PageRanges::Numbers(const std::vector<TPageRange>& ranges)
{
    std::vector<int> numbers;
    for (const TPageRange& range : ranges) {
        for (int number = range.first; number <= range.last; ++number)
            numbers.push_back(number);
    }
    return numbers;
}
