#include "src/model/datachange.h"

#include <algorithm>
#include <iterator>

namespace {

int Page_Of(const TDataChange::TPage& edit)
{
    return edit.page.page_id;
}

template <typename TEdit>
int Page_Of(const TEdit& edit)
{
    return edit.page_id;
}

TPageItem* Find_Page(std::vector<TPageItem>* pages, int page_id)
{
    const auto found = std::find_if(pages->begin(), pages->end(), [page_id](const TPageItem& page) {
        return page.page_id == page_id;
    });
    return found == pages->end() ? nullptr : &*found;
}

/// Takes labels out of a page and notes what and where they were.
void Take_Labels(std::vector<TDataItem>* items, TDataChange::TLabels* edit)
{
    QSet<int> ids;
    for (const auto& label : edit->labels)
        ids.insert(label.second.id);
    edit->labels.clear();
    std::vector<TDataItem> others;
    others.reserve(items->size());
    int place = 0;
    for (TDataItem& item : *items) {
        if (ids.contains(item.id))
            edit->labels.emplace_back(place, std::move(item));
        else
            others.push_back(std::move(item));
        ++place;
    }
    items->swap(others);
}

/// Puts labels back where they were.
void Put_Labels(std::vector<TDataItem>* items, TDataChange::TLabels* edit)
{
    std::sort(edit->labels.begin(), edit->labels.end(),
              [](const auto& left, const auto& right) { return left.first < right.first; });
    std::vector<TDataItem> all;
    all.reserve(items->size() + edit->labels.size());
    auto other = items->begin();
    for (auto& [place, label] : edit->labels) {
        while (other != items->end() && static_cast<int>(all.size()) < place)
            all.push_back(std::move(*other++));
        all.push_back(label);
        // What it is stands in the document from now on.
        label = TDataItem();
        label.id = all.back().id;
    }
    std::move(other, items->end(), std::back_inserter(all));
    items->swap(all);
}

void Exchange(std::vector<TPageItem>* pages, TDataChange::TContent* edit)
{
    TPageItem* const page = Find_Page(pages, edit->page_id);
    if (!page)
        return;
    const auto item =
        std::find_if(page->data_items.begin(), page->data_items.end(),
                     [edit](const TDataItem& one) { return one.id == edit->other.id; });
    if (item == page->data_items.end())
        return;
    std::swap(*item, edit->other);
    std::swap(item->selected, edit->other.selected);
}

void Exchange(std::vector<TPageItem>* pages, TDataChange::TLabels* edit)
{
    TPageItem* const page = Find_Page(pages, edit->page_id);
    if (!page)
        return;
    if (edit->are_present)
        Take_Labels(&page->data_items, edit);
    else
        Put_Labels(&page->data_items, edit);
    edit->are_present = !edit->are_present;
}

void Exchange(std::vector<TPageItem>* pages, TDataChange::TValues* edit)
{
    TPageItem* const page = Find_Page(pages, edit->page_id);
    if (!page)
        return;
    for (auto& [place, value] : edit->others) {
        if (static_cast<std::size_t>(place) < page->data_items.size())
            std::swap(page->data_items[place].value, value);
    }
}

void Exchange(std::vector<TPageItem>* pages, TDataChange::TPage* edit)
{
    if (edit->is_present) {
        TPageItem* const page = Find_Page(pages, edit->page.page_id);
        if (!page)
            return;
        edit->page = std::move(*page);
        edit->page.image = edit->page.image.Encoded();
        pages->erase(pages->begin() + (page - pages->data()));
    } else {
        const int place = std::min(edit->place, static_cast<int>(pages->size()));
        TPageItem empty{edit->page.page_id, TPageImage(), {}};
        pages->insert(pages->begin() + place, std::exchange(edit->page, std::move(empty)));
    }
    edit->is_present = !edit->is_present;
}

void Exchange(std::vector<TPageItem>* pages, TDataChange::TImage* edit)
{
    TPageItem* const page = Find_Page(pages, edit->page_id);
    if (page)
        edit->other = std::exchange(page->image, edit->other).Encoded();
}

} // namespace

void TDataChange::Swap(std::vector<TPageItem>* pages)
{
    Close();
    // Each way is gone in the order that is the reverse of the other's.
    std::reverse(d_edits.begin(), d_edits.end());
    for (TEdit& edit : d_edits)
        std::visit([pages](auto& one) { Exchange(pages, &one); }, edit);
}

bool TDataChange::Is_Void(const TData& data) const
{
    return std::all_of(d_edits.cbegin(), d_edits.cend(), [&data](const TEdit& edit) {
        const auto* const content = std::get_if<TContent>(&edit);
        return content && data.Has_Content(content->page_id, content->other);
    });
}

std::vector<int> TDataChange::Touched_Pages() const
{
    std::vector<int> page_ids;
    QSet<int> known;
    for (const TEdit& edit : d_edits) {
        const int page_id = std::visit([](const auto& one) { return Page_Of(one); }, edit);
        if (!known.contains(page_id))
            page_ids.push_back(page_id);
        known.insert(page_id);
    }
    return page_ids;
}

void TDataChange::Note_Content(int page_id, const TDataItem& before)
{
    const QPair<int, int> key(page_id, before.id);
    if (d_noted.contains(key))
        return;
    d_noted.insert(key);
    d_edits.emplace_back(TContent{page_id, before});
}

void TDataChange::Note_Added_Label(int page_id, int place, int id)
{
    TDataItem label;
    label.id = id;
    End_Removing();
    d_edits.emplace_back(TLabels{page_id, true, {{place, label}}});
}

void TDataChange::Note_Removed_Label(int page_id, int place, const TDataItem& label)
{
    if (!Is_Removing(page_id))
        d_edits.emplace_back(TLabels{page_id, false, {}});
    std::get<TLabels>(d_edits.back()).labels.emplace_back(place, label);
    d_is_removing = true;
}

void TDataChange::Note_Values(TValues values)
{
    if (!values.others.empty())
        d_edits.emplace_back(std::move(values));
}

void TDataChange::Note_Added_Page(int place, int page_id)
{
    d_edits.emplace_back(TPage{place, true, {page_id, TPageImage(), {}}});
}

void TDataChange::Note_Removed_Page(int place, TPageItem page)
{
    page.image = page.image.Encoded();
    d_edits.emplace_back(TPage{place, false, std::move(page)});
}

void TDataChange::Note_Image(int page_id, const TPageImage& before)
{
    d_edits.emplace_back(TImage{page_id, before.Encoded()});
}

bool TDataChange::Is_Removing(int page_id) const
{
    if (!d_is_removing || d_edits.empty())
        return false;
    const auto* const labels = std::get_if<TLabels>(&d_edits.back());
    return labels && !labels->are_present && labels->page_id == page_id;
}
