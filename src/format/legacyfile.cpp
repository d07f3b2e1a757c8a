#include "src/format/legacyfile.h"

#include "core/xmlfile.h"
#include "src/format/itemxml.h"

#include <cassert>

namespace {

const QLatin1String list_suffix(".qld");

/// The text that the root's child of one name has in its child of another name.
QString Read_Setting(const TXmlFile& xml_file, const QString& group, const QString& name)
{
    const QDomElement node = xml_file.Get_Node(&xml_file.d_root_element, group, false);
    return ItemXml::Read_Text(xml_file, node, name);
}

/// Documents of version 2 had a text for every label, the number's digits where there was no other.
QString Read_Label_Text(const TXmlFile& xml_file, const QDomElement& node)
{
    const QString text = ItemXml::Read_Text(xml_file, node, QStringLiteral("ID_Text"));
    bool is_number = false;
    text.toInt(&is_number);
    return is_number ? QString() : text;
}

void Read_Items(const TXmlFile& xml_file, bool has_texts, std::vector<TDataItem>* items)
{
    assert(items);
    QDomElement node = xml_file.Get_Node(&xml_file.d_root_element, ItemXml::Item_Name, true);
    while (!node.isNull()) {
        TDataItem item;
        item.id = ItemXml::Read_Integer(xml_file, node, QStringLiteral("ID"));
        item.value = item.id;
        if (has_texts)
            item.text = Read_Label_Text(xml_file, node);
        item.border_type =
            LegacyFile::Border_Type(ItemXml::Read_Integer(xml_file, node, ItemXml::Border_Name));
        const QString position = ItemXml::Read_Text(xml_file, node, ItemXml::Position_Name);
        if (ItemXml::To_Position(position, &item.position))
            items->push_back(item);
        node = xml_file.Get_Sibling_Node(&node, ItemXml::Item_Name, true);
    }
}

} // namespace

bool LegacyFile::Is_Legacy(const QString& path)
{
    return path.endsWith(list_suffix, Qt::CaseInsensitive);
}

QString LegacyFile::Base_Name(const QString& path)
{
    return path.left(path.size() - list_suffix.size());
}

TPageImage LegacyFile::Read_Image(const QString& base_name)
{
    return TPageImage::From_File(base_name + QStringLiteral(".qli"), "PNG");
}

int LegacyFile::Open(const QString& base_name, TXmlFile* xml_file)
{
    assert(xml_file);
    xml_file->d_file_path = base_name + list_suffix;
    int version = 0;
    xml_file->Open(ItemXml::Root_Name, &version, true);
    return version;
}

int LegacyFile::Read_Label_Size(const TXmlFile& xml_file)
{
    return Read_Setting(xml_file, QStringLiteral("Item_Size"), QStringLiteral("Width")).toInt();
}

QString LegacyFile::Read_Color_Name(const TXmlFile& xml_file)
{
    return Read_Setting(xml_file, QStringLiteral("Colors"), QStringLiteral("Foreground"));
}

void LegacyFile::Read_Items_V1(const TXmlFile& xml_file, std::vector<TDataItem>* items)
{
    Read_Items(xml_file, false, items);
}

void LegacyFile::Read_Items_V2(const TXmlFile& xml_file, std::vector<TDataItem>* items)
{
    Read_Items(xml_file, true, items);
}

int LegacyFile::Border_Type(int legacy_border)
{
    switch (legacy_border) {
    case 1:
        return Square_Border;
    case 2:
        return Ellipse_Border;
    case 3:
        return Triangle_Border;
    default:
        return No_Border;
    }
}
