#include "src/format/document.h"

#include "src/model/numbering.h"
#include "src/model/pageturn.h"

#include <cassert>
#include <numeric>

TDocument::TDocument(const TFileContent& content)
{
    if (content.label_size)
        appearance.label_size =
            qBound(TAppearance::Smallest_Label, *content.label_size, TAppearance::Largest_Label);
    if (content.color_name)
        appearance.color_name = TAppearance::Color(*content.color_name).name();
    appearance.header_1 = content.header_1;
    appearance.header_2 = content.header_2;
    if (!content.pages)
        return;
    for (const TFilePage& page : *content.pages)
        Add_Page(page);
}

TDocument::TDocument(const TProjectSurvey& survey)
    : appearance(survey.appearance)
{
    for (const TFilePage& page : survey.pages)
        Add_Page(page);
}

const TPageItem& TDocument::Content(const TNamedPage& page) const
{
    return data.Page(page.page_id);
}

QList<int> TDocument::Page_Ids() const
{
    QList<int> page_ids;
    page_ids.reserve(static_cast<int>(pages.size()));
    for (const TNamedPage& page : pages)
        page_ids.append(page.page_id);
    return page_ids;
}

QStringList TDocument::Page_Names() const
{
    QStringList names;
    for (const TNamedPage& page : pages)
        names.append(page.name);
    return names;
}

std::vector<int> TDocument::Page_Numbers() const
{
    std::vector<int> numbers(pages.size());
    std::iota(numbers.begin(), numbers.end(), 1);
    return numbers;
}

int TDocument::Add_Page(const QString& name, const TPageImage& image)
{
    const int page_id = data.Add_Page(image);
    pages.push_back({page_id, name});
    return page_id;
}

void TDocument::Add_Page(const TFilePage& page)
{
    const int active_page = data.Active_Page();
    data.Set_Active_Page(Add_Page(page.name, page.image));
    for (const TDataItem& item : page.items)
        data.Add_Item(item);
    data.Set_Active_Page(active_page);
}

void TDocument::Append(const TDocument& other)
{
    for (const TNamedPage& page : other.pages) {
        const TPageItem& content = other.Content(page);
        Add_Page({page.name, content.image, content.data_items});
    }
}

void TDocument::Keep_Pages(const std::vector<int>& numbers)
{
    std::vector<TNamedPage> kept;
    std::vector<int> page_ids;
    for (const int number : numbers) {
        kept.push_back(pages[static_cast<std::size_t>(number) - 1]);
        page_ids.push_back(kept.back().page_id);
    }
    pages = std::move(kept);
    std::vector<TPageItem> removed;
    data.Swap_Pages(&page_ids, &removed);
}

bool TDocument::Turn_Page(int number, int right_angles)
{
    TPageItem page = Content(pages[static_cast<std::size_t>(number) - 1]);
    if (page.image.isNull())
        return false;
    constexpr int left = 3;
    if (right_angles == left) {
        page = PageTurn::Turned(page, PageTurn::TDirection::Left);
    } else {
        for (int turn = 0; turn < right_angles; ++turn)
            page = PageTurn::Turned(page, PageTurn::TDirection::Right);
    }
    data.Replace_Content(page.page_id, page.image, std::move(page.data_items));
    return true;
}

bool Can_Number_Pages(const QList<int>& page_ids, int first_value, int method, const TData& data)
{
    TNumbering numbering(first_value, method);
    for (const int page_id : page_ids) {
        for (std::size_t label = 0; label < data.Page(page_id).data_items.size(); ++label)
            numbering.Take();
        numbering.Break_Page();
    }
    return !numbering.Has_Overflowed();
}

int Number_Pages(const QList<int>& page_ids, int first_value, int method, TData* data)
{
    assert(data);
    TNumbering numbering(first_value, method);
    for (const int page_id : page_ids) {
        data->Number_Items(page_id, false, [&numbering] { return numbering.Take(); });
        numbering.Break_Page();
    }
    return numbering.Next();
}
