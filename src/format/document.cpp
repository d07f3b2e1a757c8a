#include "src/format/document.h"

#include "core/xmlfile.h"
#include "src/format/itemlist.h"
#include "src/format/projectfile.h"
#include "src/model/numbering.h"

#include <QCoreApplication>

#include <algorithm>
#include <cassert>

namespace {

void Write_Appearance(const TAppearance& appearance, TProjectWriter* writer)
{
    writer->Write_Integer(appearance.label_size);
    writer->Write_Text(appearance.color_name);
    writer->Write_Text(appearance.header_1);
    writer->Write_Text(appearance.header_2);
}

void Write_Active_Page(const QString& name, WholeDocument::TPurpose purpose, const TData& data,
                       TProjectWriter* writer)
{
    const bool is_copy = purpose == WholeDocument::TPurpose::Recovery_Copy;
    writer->Write_Text(name);
    writer->Write_Image(data.Page_Content(), is_copy ? TProjectWriter::TImageBytes::As_They_Came
                                                     : TProjectWriter::TImageBytes::As_Png);
    writer->Write_Bytes(ItemList::Write(data, is_copy ? ItemList::TBadText::Leave_Out
                                                      : ItemList::TBadText::Refuse));
}

/// A recovery copy is made at any moment, also when the page list has pages that the document does
/// not know.
std::vector<TNamedPage> Known_Pages(std::vector<TNamedPage> pages, const TData& data)
{
    const auto is_unknown = [&data](const TNamedPage& page) {
        return data.Page_Index(page.page_id) < 0;
    };
    pages.erase(std::remove_if(pages.begin(), pages.end(), is_unknown), pages.end());
    return pages;
}

} // namespace

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

QString WholeDocument::Page_Name(int page_id)
{
    return QCoreApplication::translate("TPageWidget", "Page %1").arg(page_id);
}

QString WholeDocument::Write(const TAppearance& appearance, const std::vector<TNamedPage>& pages,
                             TPurpose purpose, TData* data, const TStepReport& report,
                             TProjectWriter* writer)
{
    assert(data);
    assert(writer);
    const bool is_copy = purpose == TPurpose::Recovery_Copy;
    const std::vector<TNamedPage> written = is_copy ? Known_Pages(pages, *data) : pages;
    const int total = static_cast<int>(written.size());
    Write_Appearance(appearance, writer);
    writer->Write_Integer(is_copy ? total : data->Page_Count());

    const int active_page = data->Active_Page();
    QString fault;
    int number = 0;
    try {
        for (const TNamedPage& page : written) {
            ++number;
            if (report)
                report(number, total);
            data->Set_Active_Page(page.page_id);
            Write_Active_Page(page.name, purpose, *data, writer);
        }
    } catch (const TXmlFileException& exception) {
        fault = exception.Message();
    }
    data->Set_Active_Page(active_page);
    return fault;
}

int WholeDocument::Number_Pages(const QList<int>& page_ids, int first_value, int method,
                                TData* data)
{
    assert(data);
    TNumbering numbering(first_value, method);
    for (const int page_id : page_ids) {
        data->Number_Items(page_id, false, [&numbering] { return numbering.Take(); });
        numbering.Break_Page();
    }
    return numbering.Next();
}
