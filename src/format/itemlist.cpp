#include "src/format/itemlist.h"

#include "core/xmlfile.h"
#include "core/xmlguard.h"
#include "src/format/itemxml.h"
#include "src/format/plainitems.h"

#include <algorithm>

namespace {

constexpr int position_decimals = 2;

template <typename TContent>
void Write_Child(TXmlFile* xml_file, QDomElement* parent, const QString& name,
                 const TContent& content)
{
    QDomElement child = xml_file->Create_Node(parent, name);
    xml_file->Write_Text_Node(&child, content);
}

QString Coordinate_Text(double coordinate)
{
    return QString::number(coordinate, 'f', position_decimals);
}

void Write_Item(TXmlFile* xml_file, const TDataItem& item)
{
    QDomElement node = xml_file->Create_Node(&xml_file->d_root_element, ItemXml::Item_Name);
    Write_Child(xml_file, &node, ItemXml::Id_Name, item.id);
    Write_Child(xml_file, &node, ItemXml::Value_Name, item.value);
    QDomElement text = xml_file->Create_Node(&node, ItemXml::Text_Name);
    xml_file->Write_Lines(&text, item.text);
    Write_Child(xml_file, &node, ItemXml::Border_Name, item.border_type);
    const QString position =
        Coordinate_Text(item.position.x()) + QLatin1Char(',') + Coordinate_Text(item.position.y());
    Write_Child(xml_file, &node, ItemXml::Position_Name, position);
}

/// Returns a text without the characters that XML cannot represent.
QString Cleaned(const QString& text)
{
    QString cleaned;
    for (int i = 0; i < text.size(); ++i) {
        const int length = text.at(i).isHighSurrogate() ? 2 : 1;
        const QString character = text.mid(i, length);
        if (XmlGuard::Is_Text(character)) {
            cleaned += character;
            i += length - 1;
        }
    }
    return cleaned;
}

/// The beginning of a document that Write() wrote without texts, up to its first label.
QByteArray Plain_Start()
{
    static const QByteArray start =
        ItemList::Write({}).chopped(static_cast<int>(qstrlen("/>"))) + '>';
    return start;
}

TDataItem Writable(TDataItem item, ItemList::TBadText bad_text)
{
    if (bad_text == ItemList::TBadText::Leave_Out && !XmlGuard::Is_Text(item.text))
        item.text = Cleaned(item.text);
    return item;
}

} // namespace

QByteArray ItemList::Write(const std::vector<TDataItem>& items, TBadText bad_text,
                           const TPageTexts& texts)
{
    TXmlFile xml_file;
    xml_file.Reset(ItemXml::Root_Name, Version);
    for (const TDataItem& item : items)
        Write_Item(&xml_file, Writable(item, bad_text));
    QByteArray document;
    xml_file.Write_Data(&document, true);
    // Do not use the DOM: it writes several attributes in random order.
    const int root_name_end =
        document.indexOf(ItemXml::Root_Name.data()) + ItemXml::Root_Name.size();
    return document.insert(root_name_end, PageTexts::Attributes(texts));
}

QByteArray ItemList::With_Texts(const QByteArray& document, const TPageTexts& texts)
{
    if (document.startsWith(Plain_Start()) && PageTexts::Attributes(texts).isEmpty())
        return document;
    std::vector<TDataItem> items;
    Read(document, [&items](const TDataItem& item) { items.push_back(item); });
    return Write(items, TBadText::Leave_Out, texts);
}

TDataItem ItemList::Read_Item(const TXmlFile& xml_file, const QDomElement& node)
{
    TDataItem item;
    item.id = ItemXml::Read_Integer(xml_file, node, ItemXml::Id_Name);
    item.value = ItemXml::Read_Integer(xml_file, node, ItemXml::Value_Name);
    const QDomElement text = xml_file.Get_Node(&node, ItemXml::Text_Name, true);
    if (!text.isNull())
        item.text = xml_file.Read_Text_Node(&text, true);
    item.border_type = ItemXml::Read_Integer(xml_file, node, ItemXml::Border_Name);
    const QString position = ItemXml::Read_Text(xml_file, node, ItemXml::Position_Name, true);
    if (!ItemXml::To_Position(position, &item.position))
        throw TXmlFileException(QStringLiteral("XML Item position invalid"),
                                TXmlFileException::Data_Error);
    return item;
}

void ItemList::Read(const QByteArray& document, const std::function<void(const TDataItem&)>& add,
                    TPageTexts* texts)
{
    if (const auto items = PlainItems::Read(document, Plain_Start())) {
        if (texts)
            *texts = TPageTexts();
        std::for_each(items->cbegin(), items->cend(), add);
        return;
    }
    TXmlFile xml_file;
    int version = 0;
    xml_file.Open_Data(document, ItemXml::Root_Name, &version, true);
    if (version != Version)
        throw TXmlFileException(QStringLiteral("XML Version not recognized"),
                                TXmlFileException::Data_Error);
    if (texts)
        *texts = PageTexts::Read(xml_file);
    QDomElement node = xml_file.Get_Node(&xml_file.d_root_element, ItemXml::Item_Name, true);
    while (!node.isNull()) {
        add(Read_Item(xml_file, node));
        node = xml_file.Get_Sibling_Node(&node, ItemXml::Item_Name, true);
    }
}
