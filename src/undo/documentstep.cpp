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

std::size_t Bytes_Of(const QString& text)
{
    return static_cast<std::size_t>(text.size()) * sizeof(QChar);
}

std::size_t Text_Bytes(const TPageItem& page)
{
    std::size_t bytes = 0;
    for (const TDataItem& item : page.data_items)
        bytes += Bytes_Of(item.text);
    return bytes;
}

std::size_t Text_Bytes(const TPageRows& rows)
{
    std::size_t bytes = 0;
    for (const TNamedPage& row : rows)
        bytes += Bytes_Of(row.name);
    return bytes;
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

TDocumentStep::TDocumentStep(const TData& data, TRowsAndLook rows_and_look)
    : d_page_order(Page_Order(data))
    , d_rows_and_look(std::move(rows_and_look))
    , d_text_bytes(Text_Bytes(d_rows_and_look.rows))
{
}

void TDocumentStep::Store_Page(const TPageItem& page)
{
    const auto is_page = [&page](const TPageItem& stored) {
        return stored.page_id == page.page_id;
    };
    const bool is_new =
        std::find(d_page_order.cbegin(), d_page_order.cend(), page.page_id) == d_page_order.cend();
    if (is_new || std::any_of(d_pages.cbegin(), d_pages.cend(), is_page))
        return;
    d_pages.push_back(page);
    d_text_bytes += Text_Bytes(page);
}

void TDocumentStep::Close(const TData& data)
{
    const auto is_unchanged = [this, &data](const TPageItem& stored) {
        return Is_Unchanged(data, stored);
    };
    const auto unchanged = std::remove_if(d_pages.begin(), d_pages.end(), is_unchanged);
    if (unchanged != d_pages.end()) {
        d_pages.erase(unchanged, d_pages.end());
        Count_Texts();
    }
    Release_Images(data);
}

/// Whether the document has a stored page with the same content.
bool TDocumentStep::Is_Unchanged(const TData& data, const TPageItem& stored)
{
    const TPageItem* const page = Find_Page(data, stored.page_id);
    if (!page)
        return false;
    const std::vector<TDataItem>& items = page->data_items;
    const std::vector<TDataItem>& others = stored.data_items;
    // Usually the same label differs as at the last comparison. Comparing all labels of a large
    // page after each keystroke would take too long.
    if (d_difference < std::min(items.size(), others.size()) &&
        !Has_Same_Content(items[d_difference], others[d_difference]))
        return false;
    const auto has_same_content = [](const TDataItem& one, const TDataItem& other) {
        return Has_Same_Content(one, other);
    };
    const auto difference = std::mismatch(items.cbegin(), items.cend(), others.cbegin(),
                                          others.cend(), has_same_content);
    d_difference = static_cast<std::size_t>(difference.first - items.cbegin());
    return difference.first == items.cend() && difference.second == others.cend() &&
           page->image.Is_Same(stored.image);
}

bool TDocumentStep::Is_No_Op(const TData& data, const TRowsAndLook& rows_and_look) const
{
    return d_pages.empty() && d_rows_and_look.rows == rows_and_look.rows &&
           d_rows_and_look.look == rows_and_look.look && d_page_order == Page_Order(data);
}

std::vector<int> TDocumentStep::Touched_Pages(const TPageRows& rows) const
{
    std::vector<int> page_ids = Changed_Rows(rows, d_rows_and_look.rows);
    const std::vector<int> others = Changed_Rows(d_rows_and_look.rows, rows);
    page_ids.insert(page_ids.end(), others.cbegin(), others.cend());
    for (const TPageItem& page : d_pages)
        page_ids.push_back(page.page_id);
    std::sort(page_ids.begin(), page_ids.end());
    page_ids.erase(std::unique(page_ids.begin(), page_ids.end()), page_ids.end());
    return page_ids;
}

void TDocumentStep::Swap(TData* data, TRowsAndLook* rows_and_look)
{
    data->Swap_Pages(&d_page_order, &d_pages);
    std::swap(d_rows_and_look, *rows_and_look);
    Count_Texts();
    Release_Images(*data);
}

/// Drops the pixels of images that the document no longer has, and updates the size of the step.
void TDocumentStep::Release_Images(const TData& data)
{
    std::size_t bytes = sizeof(*this) + d_page_order.size() * sizeof(int) +
                        static_cast<std::size_t>(d_rows_and_look.rows.size()) * sizeof(TNamedPage) +
                        d_text_bytes;
    for (TPageItem& stored : d_pages) {
        bytes += sizeof(stored) + stored.data_items.size() * sizeof(TDataItem);
        const TPageItem* const page = Find_Page(data, stored.page_id);
        if (page && page->image.Is_Copy_Of(stored.image))
            continue;
        stored.image = stored.image.Encoded();
        bytes += static_cast<std::size_t>(stored.image.Stored_Source().Size());
    }
    d_bytes = static_cast<qint64>(bytes);
}

void TDocumentStep::Count_Texts()
{
    d_text_bytes = Text_Bytes(d_rows_and_look.rows);
    for (const TPageItem& page : d_pages)
        d_text_bytes += Text_Bytes(page);
}
