#include "src/data.h"

#include <QSet>

#include <algorithm>
#include <cassert>
#include <iterator>
#include <utility>

// A macro, so that the assertion prints the name of the misused operation.
#define ASSERT_ACTIVE_PAGE()                                                                       \
    assert(!(d_active_page_index < 0));                                                            \
    assert(static_cast<unsigned int>(d_active_page_index) < d_page_items.size())

namespace {

/// Selects those labels of a page that are selected in another version of it.
void Copy_Selection(const TPageItem& from, TPageItem* to)
{
    QSet<int> selected;
    for (const TDataItem& item : from.data_items) {
        if (item.selected)
            selected.insert(item.id);
    }
    for (TDataItem& item : to->data_items)
        item.selected = selected.contains(item.id);
}

/// Asserts that a page was found. The parameter is named like the member, so that the message is
/// the same as from operations on the active page.
int Checked_Index(int d_active_page_index)
{
    assert(!(d_active_page_index < 0));
    return d_active_page_index;
}

} // namespace

int TData::d_next_page_id = 1;
quint64 TData::d_last_revision = 0;

TData::TData()
{
    d_next_page_id = 1;
}

int TData::Add_Page()
{
    return Add_Page(TPageImage());
}

int TData::Add_Page(const QImage& image)
{
    return Add_Page(TPageImage(image));
}

int TData::Add_Page(const TPageImage& image)
{
    d_page_items.push_back({d_next_page_id, image, {}, ++d_last_revision});
    return d_next_page_id++;
}

void TData::Remove_Page(int page_id)
{
    const int index = Page_Index(page_id);
    if (index < 0)
        return;
    const int active_index = d_active_page_index;
    if (index == active_index)
        Make_Active(-1);
    Record(index);
    d_page_items.erase(d_page_items.begin() + index);
    if (index < active_index)
        --d_active_page_index;
}

bool TData::Set_Active_Page(int page_id)
{
    Make_Active(Page_Index(page_id));
    return d_active_page_index >= 0;
}

int TData::Active_Page() const
{
    const TPageItem* const page = Active_Page_Item();
    return page ? page->page_id : -1;
}

int TData::Page_Index(int page_id) const
{
    const auto found =
        std::find_if(d_page_items.cbegin(), d_page_items.cend(),
                     [page_id](const TPageItem& page) { return page.page_id == page_id; });
    return found == d_page_items.cend()
               ? -1
               : static_cast<int>(std::distance(d_page_items.cbegin(), found));
}

int TData::Page_Id(int index) const
{
    assert(static_cast<unsigned int>(index) < d_page_items.size());
    return d_page_items[index].page_id;
}

int TData::Page_Count() const
{
    return static_cast<int>(d_page_items.size());
}

const std::vector<TPageItem>& TData::Pages() const
{
    return d_page_items;
}

const TPageItem& TData::Page(int page_id) const
{
    return d_page_items[Checked_Index(Page_Index(page_id))];
}

const TPageItem* TData::Active_Page_Item() const
{
    const bool is_active = d_active_page_index >= 0 && d_active_page_index < Page_Count();
    return is_active ? &d_page_items[d_active_page_index] : nullptr;
}

QImage TData::Page_Image() const
{
    ASSERT_ACTIVE_PAGE();
    return d_page_items[d_active_page_index].image;
}

const TPageImage& TData::Page_Content() const
{
    ASSERT_ACTIVE_PAGE();
    return d_page_items[d_active_page_index].image;
}

void TData::Set_Page_Image(const QImage& image)
{
    ASSERT_ACTIVE_PAGE();
    Set_Page_Image(TPageImage(image));
}

void TData::Set_Page_Image(const TPageImage& image)
{
    ASSERT_ACTIVE_PAGE();
    Record(d_active_page_index);
    d_page_items[d_active_page_index].image = image;
}

void TData::Replace_Content(int page_id, const TPageImage& image, std::vector<TDataItem> items)
{
    const int index = Page_Index(page_id);
    if (index < 0)
        return;
    Record(index);
    d_page_items[index].image = image;
    d_page_items[index].data_items = std::move(items);
    if (index == d_active_page_index)
        d_positions.clear();
}

bool TData::Page_Image_Valid() const
{
    const TPageItem* const page = Active_Page_Item();
    return page && !page->image.isNull();
}

bool TData::Page_Has_Data() const
{
    const TPageItem* const page = Active_Page_Item();
    return page && !page->data_items.empty();
}

void TData::Clear()
{
    Make_Active(-1);
    d_page_items.clear();
    d_next_page_id = 1;
}

int TData::Item_Count() const
{
    ASSERT_ACTIVE_PAGE();
    return static_cast<int>(d_page_items[d_active_page_index].data_items.size());
}

int TData::Item_Max_Value() const
{
    ASSERT_ACTIVE_PAGE();
    int max_value = 0;
    for (const TDataItem& item : d_page_items[d_active_page_index].data_items)
        max_value = std::max(max_value, item.value);
    return max_value;
}

bool TData::Item_Exists(int id) const
{
    ASSERT_ACTIVE_PAGE();
    return Find(id) >= 0;
}

TDataItem TData::Item(int index) const
{
    ASSERT_ACTIVE_PAGE();
    assert(static_cast<unsigned int>(index) < d_page_items[d_active_page_index].data_items.size());
    return d_page_items[d_active_page_index].data_items[index];
}

bool TData::Add_Item(const TDataItem& item)
{
    ASSERT_ACTIVE_PAGE();
    if (Find(item.id) >= 0)
        return false;
    Record(d_active_page_index);
    std::vector<TDataItem>& items = d_page_items[d_active_page_index].data_items;
    d_positions.insert(item.id, static_cast<int>(items.size()));
    items.push_back(item);
    return true;
}

bool TData::Remove_Item(int id)
{
    ASSERT_ACTIVE_PAGE();
    return Remove_Items({id}) > 0;
}

int TData::Remove_Items(const std::vector<int>& ids)
{
    ASSERT_ACTIVE_PAGE();
    std::vector<TDataItem>& items = d_page_items[d_active_page_index].data_items;
    const QSet<int> unwanted(ids.cbegin(), ids.cend());
    const auto is_unwanted = [&unwanted](const TDataItem& item) {
        return unwanted.contains(item.id);
    };
    const auto count = static_cast<int>(std::count_if(items.cbegin(), items.cend(), is_unwanted));
    if (count == 0)
        return 0;
    Record(d_active_page_index);
    items.erase(std::remove_if(items.begin(), items.end(), is_unwanted), items.end());
    d_positions.clear();
    return count;
}

bool TData::Change_Item_Value(int id, int value)
{
    ASSERT_ACTIVE_PAGE();
    return Change_Item(id, [value](TDataItem* item) { item->value = value; });
}

void TData::Number_Items(int page_id, bool selected_only, const std::function<int()>& next)
{
    const int index = Page_Index(page_id);
    if (index < 0)
        return;
    bool is_recorded = false;
    for (TDataItem& item : d_page_items[index].data_items) {
        if (selected_only && !item.selected)
            continue;
        const int value = next();
        if (value != item.value && !std::exchange(is_recorded, true))
            Record(index);
        item.value = value;
    }
}

bool TData::Change_Item_Text(int id, const QString& text)
{
    ASSERT_ACTIVE_PAGE();
    return Change_Item(id, [&text](TDataItem* item) { item->text = text; });
}

bool TData::Change_Item_Border(int id, int border_type)
{
    ASSERT_ACTIVE_PAGE();
    return Change_Item(id, [border_type](TDataItem* item) { item->border_type = border_type; });
}

bool TData::Change_Item_Position(int id, const QPointF& position)
{
    ASSERT_ACTIVE_PAGE();
    return Change_Item(id, [&position](TDataItem* item) { item->position = position; });
}

bool TData::Change_Item_Selection(int id, bool selected)
{
    ASSERT_ACTIVE_PAGE();
    return Change_Item(id, [selected](TDataItem* item) { item->selected = selected; });
}

void TData::Clear_Selection()
{
    ASSERT_ACTIVE_PAGE();
    for (TDataItem& item : d_page_items[d_active_page_index].data_items)
        item.selected = false;
}

void TData::Set_Recorder(TRecorder recorder)
{
    d_recorder = std::move(recorder);
}

void TData::Swap_Pages(std::vector<int>* order, std::vector<TPageItem>* pages)
{
    const int active_page = Active_Page();
    Make_Active(-1);
    std::vector<TPageItem> present = std::move(d_page_items);
    std::vector<int> present_order;
    present_order.reserve(present.size());
    QHash<int, TPageItem*> sources;
    for (TPageItem& page : present) {
        present_order.push_back(page.page_id);
        sources.insert(page.page_id, &page);
    }
    for (TPageItem& page : *pages)
        sources.insert(page.page_id, &page);

    for (const TPageItem& page : present) {
        TPageItem* const source = sources.value(page.page_id);
        if (source != &page)
            Copy_Selection(page, source);
    }
    d_page_items.clear();
    d_page_items.reserve(order->size());
    for (const int page_id : *order) {
        if (TPageItem* const page = sources.take(page_id))
            d_page_items.push_back(std::exchange(*page, TPageItem()));
    }
    pages->clear();
    for (TPageItem& page : present) {
        if (page.page_id != TPageItem().page_id)
            pages->push_back(std::move(page));
    }
    order->swap(present_order);
    Set_Active_Page(active_page);
}

/// Makes the page at an index active, or none if the index is -1. Clears the index of labels, which
/// belongs to the active page.
void TData::Make_Active(int page_index)
{
    if (page_index == d_active_page_index)
        return;
    d_positions.clear();
    d_active_page_index = page_index;
}

/// Passes a page to the recorder and gives it a new revision. Every operation calls this before it
/// changes the page.
void TData::Record(int page_index)
{
    TPageItem& page = d_page_items[page_index];
    if (d_recorder)
        d_recorder(page);
    page.revision = ++d_last_revision;
}

void TData::Build_Index() const
{
    const std::vector<TDataItem>& items = d_page_items[d_active_page_index].data_items;
    d_positions.clear();
    d_positions.reserve(static_cast<int>(items.size()));
    int position = 0;
    for (const TDataItem& item : items)
        d_positions.insert(item.id, position++);
}

/// Position of a label in the active page's data_items; -1 for an unknown id.
int TData::Find(int id) const
{
    if (d_positions.size() != Item_Count())
        Build_Index();
    return d_positions.value(id, -1);
}

template <typename TChange>
bool TData::Change_Item(int id, const TChange& change)
{
    const int position = Find(id);
    if (position < 0)
        return false;
    TDataItem& item = d_page_items[d_active_page_index].data_items[position];
    TDataItem changed = item;
    change(&changed);
    if (!Has_Same_Content(changed, item))
        Record(d_active_page_index);
    item = std::move(changed);
    return true;
}
