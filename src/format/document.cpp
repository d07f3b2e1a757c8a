#include "src/format/document.h"

#include "src/model/numbering.h"

#include <cassert>

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
