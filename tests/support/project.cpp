#include "support/project.h"

#include "support/support.h"

#include "src/displaywidget.h"
#include "src/pagewidget.h"
#include "src/reportheaderdialog.h"
#include "src/settingswidget.h"

namespace Support {

QByteArray Number(quint32 value)
{
    QByteArray bytes;
    for (int shift = 0; shift < 32; shift += 8)
        bytes.append(static_cast<char>((value >> shift) & 0xff));
    return bytes;
}

QByteArray Field(const QByteArray& content)
{
    return Number(static_cast<quint32>(content.size())) + content;
}

QByteArray Magic()
{
    return QByteArray::fromHex("62600100");
}

QByteArray Header(quint32 label_size, const QByteArray& color, const QByteArray& header_1,
                  const QByteArray& header_2, quint32 page_count)
{
    return Magic() + Number(label_size) + Field(color) + Field(header_1) + Field(header_2) +
           Number(page_count);
}

QByteArray Page_Record(const QByteArray& name, const QByteArray& image, const QByteArray& items)
{
    return Field(name) + Field(image) + Field(items);
}

QByteArray Item_List(const QByteArray& content, const QByteArray& attributes)
{
    const QByteArray root = "<?xml version=\"1.0\" encoding=\"utf-8\"?><Quillet_Data" + attributes +
                            " File_Version=\"1\"";
    return content.isEmpty() ? root + "/>" : root + '>' + content + "</Quillet_Data>";
}

QByteArray Item_Element(const QByteArray& id, const QByteArray& value, const QByteArray& text,
                        const QByteArray& border, const QByteArray& position)
{
    return "<Item><Id>" + id + "</Id><Value>" + value + "</Value><Text>" + text +
           "</Text><Border_Type>" + border + "</Border_Type><Position>" + position +
           "</Position></Item>";
}

QByteArray One_Label_Project(const QByteArray& page_name)
{
    return Header(32, "#0a141e", "", "", 1) +
           Page_Record(page_name, Png(Picture(60, 40)),
                       Item_List(Item_Element("5", "7", "", "1", "10.00,20.00")));
}

TDataItem Label(int id, int value, const QString& text, int border, const QPointF& position)
{
    TDataItem item;
    item.id = id;
    item.value = value;
    item.text = text;
    item.border_type = border;
    item.position = position;
    return item;
}

QList<int> Add_Pages(TOpenWindow* window, const std::vector<TPage>& pages)
{
    QList<int> ids;
    for (const TPage& page : pages) {
        const int id = window->d_data.Add_Page(page.image);
        window->d_data.Set_Active_Page(id);
        for (const TDataItem& item : page.items)
            window->d_data.Add_Item(item);
        window->d_page_widget->Add_Page(id);
        window->d_page_widget->Set_Page_Name(id, page.name);
        ids.append(id);
    }
    window->d_data.Set_Active_Page(-1);
    return ids;
}

QString Describe_Label(const TDataItem& item)
{
    return QStringLiteral("label %1 %2 '%3' %4 %5,%6%7")
        .arg(item.id)
        .arg(item.value)
        .arg(item.text)
        .arg(item.border_type)
        .arg(item.position.x())
        .arg(item.position.y())
        .arg(item.selected ? QStringLiteral(" selected") : QString());
}

QStringList Describe(TOpenWindow* window)
{
    TData& data = window->d_data;
    const QList<int> listed = window->d_page_widget->Page_Ids();
    const int active = data.Active_Page();
    QStringList lines;
    for (int index = 0; index < data.Page_Count(); ++index) {
        const int id = data.Page_Id(index);
        data.Set_Active_Page(id);
        const QSize size = data.Page_Image().size();
        lines += QStringLiteral("page %1 %2 %3x%4%5")
                     .arg(id)
                     .arg(window->d_page_widget->Page_Name(id))
                     .arg(size.width())
                     .arg(size.height())
                     .arg(listed.contains(id) ? QString() : QStringLiteral(" not listed"));
        for (int i = 0; i < data.Item_Count(); ++i)
            lines += Describe_Label(data.Item(i));
    }
    data.Set_Active_Page(active);
    return lines;
}

QString Describe_Appearance(const TOpenWindow& window)
{
    const QColor color = window.d_settings_widget->Label_Color();
    const QString headers = window.d_header_dialog
                                ? QStringLiteral("headers '%1' '%2'")
                                      .arg(window.d_header_dialog->Header1_Text(),
                                           window.d_header_dialog->Header2_Text())
                                : QStringLiteral("no headers");
    return QStringLiteral("%1 %2 %3")
        .arg(window.d_settings_widget->Label_Size())
        .arg(color.isValid() ? color.name() : QStringLiteral("invalid"), headers);
}

QString View_Difference(const TOpenWindow& window, int label_size, const QColor& color)
{
    constexpr int square = 1;
    TDisplayWidget view(nullptr);
    view.Set_Label_Size(QSize(label_size, label_size), (label_size * 4 + 5) / 10);
    view.Set_Label_Color(color);
    return Difference(window.d_display_widget->Render_Pixmap(8, square, false).toImage(),
                      view.Render_Pixmap(8, square, false).toImage());
}

} // namespace Support
