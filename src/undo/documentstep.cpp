#include "src/undo/documentstep.h"

#include <QHash>

#include <algorithm>
#include <utility>

namespace {

std::vector<int> Page_Order(const TData& data)
{
    std::vector<int> order;
    order.reserve(data.Pages().size());
    for (const TPageItem& page : data.Pages())
        order.push_back(page.page_id);
    return order;
}

/// The document's page with an id; null if there is none.
const TPageItem* Find_Page(const TData& data, int page_id)
{
    const int index = data.Page_Index(page_id);
    return index < 0 ? nullptr : &data.Pages()[static_cast<std::size_t>(index)];
}

/// Ids of the rows that are not in the other list or have another name there.
std::vector<int> Changed_Rows(const TPageRows& rows, const TPageRows& other)
{
    QHash<int, QString> names;
    for (const TNamedPage& row : other)
        names.insert(row.page_id, row.name);
    std::vector<int> page_ids;
    for (const TNamedPage& row : rows) {
        const auto name = names.constFind(row.page_id);
        if (name == names.constEnd() || *name != row.name)
            page_ids.push_back(row.page_id);
    }
    return page_ids;
}

} // namespace

TDocumentStep::TDocumentStep(const TData& data, TDocumentFacts facts)
    : d_page_order(Page_Order(data))
    , d_facts(std::move(facts))
{
}

void TDocumentStep::Store_Page(const TPageItem& page)
{
    const auto is_page = [&page](const TPageItem& stored) {
        return stored.page_id == page.page_id;
    };
    const bool is_new =
        std::find(d_page_order.cbegin(), d_page_order.cend(), page.page_id) == d_page_order.cend();
    if (!is_new && std::none_of(d_pages.cbegin(), d_pages.cend(), is_page))
        d_pages.push_back(page);
}

void TDocumentStep::Close(const TData& data)
{
    const auto is_unchanged = [&data](const TPageItem& stored) {
        const TPageItem* const page = Find_Page(data, stored.page_id);
        return page && Has_Same_Content(*page, stored);
    };
    d_pages.erase(std::remove_if(d_pages.begin(), d_pages.end(), is_unchanged), d_pages.end());
    Release_Images(data);
}

bool TDocumentStep::Is_Void(const TData& data, const TDocumentFacts& facts) const
{
    return d_pages.empty() && d_facts.rows == facts.rows && d_facts.look == facts.look &&
           d_page_order == Page_Order(data);
}

std::vector<int> TDocumentStep::Touched_Pages(const TPageRows& rows) const
{
    std::vector<int> page_ids = Changed_Rows(rows, d_facts.rows);
    const std::vector<int> others = Changed_Rows(d_facts.rows, rows);
    page_ids.insert(page_ids.end(), others.cbegin(), others.cend());
    for (const TPageItem& page : d_pages)
        page_ids.push_back(page.page_id);
    std::sort(page_ids.begin(), page_ids.end());
    page_ids.erase(std::unique(page_ids.begin(), page_ids.end()), page_ids.end());
    return page_ids;
}

void TDocumentStep::Swap(TData* data, TDocumentFacts* facts)
{
    data->Swap_Pages(&d_page_order, &d_pages);
    std::swap(d_facts, *facts);
    Release_Images(*data);
}

/// Drops the pixels of images that the document no longer has, and updates the size of the step.
void TDocumentStep::Release_Images(const TData& data)
{
    std::size_t bytes = sizeof(*this) + d_page_order.size() * sizeof(int);
    for (TPageItem& stored : d_pages) {
        bytes += sizeof(stored) + stored.data_items.size() * sizeof(TDataItem);
        const TPageItem* const page = Find_Page(data, stored.page_id);
        if (page && page->image.Is_Copy_Of(stored.image))
            continue;
        stored.image = stored.image.Encoded();
        bytes += static_cast<std::size_t>(stored.image.Source_Bytes().size());
    }
    d_bytes = static_cast<qint64>(bytes);
}
