#include "src/undo/documentstep.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <iterator>

namespace {

/// For each number whether it is part of the longest ascending run that is left when other numbers
/// are taken out; negative numbers never are. Found by patience sorting: each pile's top is the
/// least number that ends a run of the pile's length.
std::vector<bool> Longest_Ascent(const std::vector<int>& numbers)
{
    std::vector<int> tops;                         // places of the piles' tops
    std::vector<int> previous(numbers.size(), -1); // place of the number before it in a run
    for (int place = 0; place < static_cast<int>(numbers.size()); ++place) {
        if (numbers[place] < 0)
            continue;
        const auto pile =
            std::lower_bound(tops.begin(), tops.end(), numbers[place],
                             [&numbers](int top, int number) { return numbers[top] < number; });
        if (pile != tops.begin())
            previous[place] = *std::prev(pile);
        if (pile == tops.end())
            tops.push_back(place);
        else
            *pile = place;
    }
    std::vector<bool> belongs(numbers.size(), false);
    for (int place = tops.empty() ? -1 : tops.back(); place >= 0; place = previous[place])
        belongs[place] = true;
    return belongs;
}

} // namespace

TRowsChange::TRowsChange(const TPageRows& before, const TPageRows& after)
{
    QHash<int, int> places; // in the list before, by page id
    for (int place = 0; place < static_cast<int>(before.size()); ++place)
        places.insert(before[place].page_id, place);
    std::vector<int> origins; // places in the list before; -1 for a row that is not the same there
    for (const TNamedPage& row : after) {
        const int place = places.value(row.page_id, -1);
        origins.push_back(place >= 0 && before[place] == row ? place : -1);
    }

    const std::vector<bool> stays = Longest_Ascent(origins);
    std::vector<bool> stayed(before.size(), false);
    for (int place = 0; place < static_cast<int>(after.size()); ++place) {
        if (stays[place])
            stayed[origins[place]] = true;
        else
            d_here.emplace_back(place, after[place]);
    }
    for (int place = 0; place < static_cast<int>(before.size()); ++place) {
        if (!stayed[place])
            d_there.emplace_back(place, before[place]);
    }
}

std::vector<int> TRowsChange::Touched_Pages() const
{
    std::vector<int> page_ids; // each once
    QSet<int> known;
    for (const TPlacedRows* rows : {&d_here, &d_there}) {
        for (const auto& row : *rows) {
            if (!known.contains(row.second.page_id))
                page_ids.push_back(row.second.page_id);
            known.insert(row.second.page_id);
        }
    }
    return page_ids;
}

void TRowsChange::Swap(TPageRows* rows)
{
    QSet<int> leaving;
    for (const auto& row : d_here)
        leaving.insert(row.second.page_id);
    const auto leaves = [&leaving](const TNamedPage& row) { return leaving.contains(row.page_id); };
    rows->erase(std::remove_if(rows->begin(), rows->end(), leaves), rows->end());

    TPageRows all;
    all.reserve(rows->size() + d_there.size());
    auto other = rows->cbegin();
    for (const auto& [place, row] : d_there) {
        while (other != rows->cend() && static_cast<int>(all.size()) < place)
            all.push_back(*other++);
        all.push_back(row);
    }
    std::copy(other, rows->cend(), std::back_inserter(all));
    rows->swap(all);
    d_here.swap(d_there);
}

void TDocumentStep::Note_Rows(const TPageRows& before, const TPageRows& after)
{
    TPageRows first = before;
    d_rows.Swap(&first);
    d_rows = TRowsChange(first, after);
}

void TDocumentStep::Note_Look(const TLabelLook& before, const TLabelLook& after)
{
    if (!d_look && before != after)
        d_look = before;
}

bool TDocumentStep::Is_Void(const TData& model, const TLabelLook& look) const
{
    return d_rows.Is_Empty() && (!d_look || *d_look == look) && data.Is_Void(model);
}

std::vector<int> TDocumentStep::Touched_Pages() const
{
    std::vector<int> page_ids = data.Touched_Pages();
    const std::vector<int> listed = d_rows.Touched_Pages();
    page_ids.insert(page_ids.end(), listed.cbegin(), listed.cend());
    return page_ids;
}

void TDocumentStep::Swap(TData* model, TDocumentFacts* facts)
{
    model->Swap(&data);
    d_rows.Swap(&facts->page_rows);
    if (d_look)
        std::swap(*d_look, facts->look);
}
