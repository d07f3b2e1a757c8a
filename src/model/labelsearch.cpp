#include "src/model/labelsearch.h"

namespace {

/// What to look for.
class TQuery
{
public:
    explicit TQuery(const QString& text)
        : d_text(text.trimmed())
    {
        d_value = d_text.toInt(&d_is_number);
    }

    bool Matches(const TDataItem& item) const
    {
        return (d_is_number && item.value == d_value) ||
               (!d_text.isEmpty() && item.text.contains(d_text, Qt::CaseInsensitive));
    }

private:
    QString d_text;
    bool d_is_number = false;
    int d_value = 0;
};

} // namespace

std::optional<LabelSearch::TPlace> LabelSearch::Find(const std::vector<const TPageItem*>& pages,
                                                     const QString& text, const TStart& start,
                                                     TDirection direction)
{
    const TQuery query(text);
    const bool is_forward = direction == TDirection::Forward;
    std::optional<TPlace> before; // the first match before the start, or the last one
    std::optional<TPlace> after;  // the same after it
    const auto note = [is_forward](std::optional<TPlace>* found, const TPlace& place) {
        if (!is_forward || !*found)
            *found = place;
    };
    bool is_after = false;
    for (const TPageItem* const page : pages) {
        const bool is_start_page = page->page_id == start.page_id;
        is_after = is_after || (is_start_page && !start.item_id);
        for (const TDataItem& item : page->data_items) {
            const bool is_start = is_start_page && item.id == start.item_id;
            // The start itself is found last.
            const bool counts_as_after = is_start ? !is_forward : is_after;
            if (page->image.Id() != 0 && query.Matches(item))
                note(counts_as_after ? &after : &before, {page->page_id, item.id});
            is_after = is_after || is_start;
        }
    }
    const std::optional<TPlace>& nearer = is_forward ? after : before;
    return nearer ? nearer : is_forward ? before : after;
}
