#include "src/model/pasteoffset.h"

#include <algorithm>
#include <set>
#include <utility>

QPointF Paste_Offset(const std::vector<TDataItem>& pasted, const std::vector<TDataItem>& present,
                     double distance)
{
    std::set<std::pair<double, double>> taken;
    for (const TDataItem& item : present)
        taken.emplace(item.position.x(), item.position.y());
    QPointF offset;
    const auto is_taken = [&taken, &offset](const TDataItem& item) {
        const QPointF position = item.position + offset;
        return taken.count({position.x(), position.y()}) > 0;
    };
    // The distance is lost in the rounding of huge coordinates, so their labels can stay on others.
    for (std::size_t moves = 0; moves < present.size(); ++moves) {
        if (std::none_of(pasted.cbegin(), pasted.cend(), is_taken))
            break;
        offset += QPointF(distance, distance);
    }
    return offset;
}
