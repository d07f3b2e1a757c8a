#include "src/data.h"

#include "src/model/datachange.h"

#include <QSet>

#include <algorithm>
#include <cassert>
#include <cmath>
#include <iterator>
#include <utility>

// A macro, because an assertion prints the function in which it stands, and that has to be the
// operation which was misused.
#define ASSERT_ACTIVE_PAGE()                                                                       \
    assert(!(d_active_page_index < 0));                                                            \
    assert(static_cast<unsigned int>(d_active_page_index) < d_page_items.size())

namespace {

/// Whether two coordinates are the same, also when they are no numbers. The toolkit's points count
/// as equal when they nearly are.
bool Is_Same(double left, double right)
{
    return left == right ? std::signbit(left) == std::signbit(right)
                         : std::isnan(left) && std::isnan(right);
}

/// Whether two labels are the same in all but their selection.
bool Have_Same_Content(const TDataItem& left, const TDataItem& right)
{
    return left.value == right.value && left.border_type == right.border_type &&
           Is_Same(left.position.x(), right.position.x()) &&
           Is_Same(left.position.y(), right.position.y()) && left.text == right.text;
}

} // namespace

int TData::d_next_page_id = 1;

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
    if (d_record)
        d_record->Note_Added_Page(Page_Count(), d_next_page_id);
    d_page_items.push_back({d_next_page_id, image, {}});
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
    if (d_record)
        d_record->Note_Removed_Page(index, std::move(d_page_items[index]));
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
    TPageImage& present = d_page_items[d_active_page_index].image;
    if (d_record && present.Source_Bytes() != image.Source_Bytes())
        d_record->Note_Image(Active_Page(), present);
    present = image;
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
    std::vector<TDataItem>& items = d_page_items[d_active_page_index].data_items;
    if (d_record)
        d_record->Note_Added_Label(Active_Page(), Item_Count(), item.id);
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
    if (d_record) {
        for (std::size_t place = 0; place < items.size(); ++place) {
            if (is_unwanted(items[place]))
                d_record->Note_Removed_Label(Active_Page(), static_cast<int>(place), items[place]);
        }
        d_record->End_Removing();
    }
    const auto end = std::remove_if(items.begin(), items.end(), is_unwanted);
    const auto count = static_cast<int>(std::distance(end, items.end()));
    if (count > 0)
        d_positions.clear();
    items.erase(end, items.end());
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
    TDataChange::TValues before{page_id, {}};
    int place = 0;
    for (TDataItem& item : d_page_items[index].data_items) {
        if (item.selected || !selected_only) {
            const int value = std::exchange(item.value, next());
            if (d_record && value != item.value)
                before.others.emplace_back(place, value);
        }
        ++place;
    }
    if (d_record)
        d_record->Note_Values(std::move(before));
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

void TData::Set_Record(TDataChange* record)
{
    d_record = record;
    if (d_record)
        d_record->End_Removing();
}

void TData::Swap(TDataChange* change)
{
    const int active_page = Active_Page();
    Make_Active(-1);
    change->Swap(&d_page_items);
    Set_Active_Page(active_page);
}

bool TData::Has_Content(int page_id, const TDataItem& item) const
{
    const bool is_active = page_id == Active_Page();
    const int page_index = is_active ? d_active_page_index : Page_Index(page_id);
    if (page_index < 0)
        return false;
    const std::vector<TDataItem>& items = d_page_items[page_index].data_items;
    const auto has_id = [&item](const TDataItem& one) { return one.id == item.id; };
    const int place =
        is_active ? Find(item.id)
                  : static_cast<int>(std::distance(
                        items.cbegin(), std::find_if(items.cbegin(), items.cend(), has_id)));
    return place >= 0 && place < static_cast<int>(items.size()) &&
           Have_Same_Content(items[place], item);
}

/// The active page, or null when there is none.
const TPageItem* TData::Active_Page_Item() const
{
    const bool is_active = d_active_page_index >= 0 && d_active_page_index < Page_Count();
    return is_active ? &d_page_items[d_active_page_index] : nullptr;
}

/// Makes the page at a place the active one, none for -1. What is known of the places of labels is
/// about the active page only and is forgotten with it.
void TData::Make_Active(int page_index)
{
    if (page_index == d_active_page_index)
        return;
    d_positions.clear();
    d_active_page_index = page_index;
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

/// Place of a label in the active page's data_items, -1 for an unknown id.
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
    if (!d_record) {
        change(&item);
        return true;
    }
    const TDataItem before = item;
    change(&item);
    if (!Have_Same_Content(before, item))
        d_record->Note_Content(Active_Page(), before);
    return true;
}
