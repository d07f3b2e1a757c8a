#include "src/model/pageitem.h"

#include <cmath>

namespace {

/// Whether two coordinates are the same number, or both not a number. Comparing QPointF would
/// ignore small differences.
bool Is_Same(double left, double right)
{
    return left == right ? std::signbit(left) == std::signbit(right)
                         : std::isnan(left) && std::isnan(right);
}

} // namespace

bool Has_Same_Content(const TDataItem& left, const TDataItem& right)
{
    return left.id == right.id && left.value == right.value &&
           left.border_type == right.border_type &&
           Is_Same(left.position.x(), right.position.x()) &&
           Is_Same(left.position.y(), right.position.y()) && left.text == right.text;
}
