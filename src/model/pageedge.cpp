#include "src/model/pageedge.h"

#include <algorithm>

namespace {

double Outside(double place, int length)
{
    return std::max({0.0, -place, place - length});
}

double Inside(double place, int length, int label_size)
{
    const double margin = std::min(label_size, length) / 2.0;
    return std::clamp(place, margin, length - margin);
}

} // namespace

double PageEdge::Distance_Outside(const QPointF& centre, const QSize& page)
{
    return std::max(Outside(centre.x(), page.width()), Outside(centre.y(), page.height()));
}

QPointF PageEdge::Nearest_Inside(const QPointF& centre, const QSize& page, int label_size)
{
    return {Inside(centre.x(), page.width(), label_size),
            Inside(centre.y(), page.height(), label_size)};
}
