#include "src/model/labelorder.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// A label's place. Lines run along a page and follow each other across it.
struct TPlace
{
    int id = 0;
    double along = 0.0;
    double across = 0.0;
};

/// A coordinate that can be sorted: a NaN counts as infinite.
double Sortable(double coordinate)
{
    return std::isnan(coordinate) ? std::numeric_limits<double>::infinity() : coordinate;
}

using TCoordinate = double (QPointF::*)() const;

std::vector<int> Ordered(const std::vector<TDataItem>& items, int label_size, TCoordinate along,
                         TCoordinate across)
{
    std::vector<TPlace> places;
    places.reserve(items.size());
    for (const TDataItem& item : items)
        places.push_back(
            {item.id, Sortable((item.position.*along)()), Sortable((item.position.*across)())});
    std::stable_sort(places.begin(), places.end(), [](const TPlace& left, const TPlace& right) {
        return left.across < right.across;
    });
    for (auto line = places.begin(); line != places.end();) {
        const auto end = std::find_if(line + 1, places.end(), [&](const TPlace& place) {
            return place.across >= line->across + label_size;
        });
        std::stable_sort(line, end, [](const TPlace& left, const TPlace& right) {
            return left.along < right.along;
        });
        line = end;
    }
    std::vector<int> ids;
    ids.reserve(places.size());
    for (const TPlace& place : places)
        ids.push_back(place.id);
    return ids;
}

} // namespace

std::vector<int> LabelOrder::By_Lines(const std::vector<TDataItem>& items, int label_size)
{
    return Ordered(items, label_size, &QPointF::x, &QPointF::y);
}

std::vector<int> LabelOrder::By_Columns(const std::vector<TDataItem>& items, int label_size)
{
    return Ordered(items, label_size, &QPointF::y, &QPointF::x);
}
