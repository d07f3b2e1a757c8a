#include "src/format/legacyfile.h"

#include "core/xmlfile.h"
#include "src/format/itemxml.h"
#include "src/model/namedpage.h"

#include <QCoreApplication>

#include <cassert>

namespace {

const QLatin1String list_suffix(".qld");
const QLatin1String image_suffix(".qli");

/// Reads the text of an element within a group below the root.
QString Read_Setting(const TXmlFile& xml_file, const QString& group, const QString& name)
{
    const QDomElement node = xml_file.Get_Node(&xml_file.d_root_element, group, false);
    return ItemXml::Read_Text(xml_file, node, name);
}

/// In version 2, the text of a label without a text is its number.
QString Read_Label_Text(const TXmlFile& xml_file, const QDomElement& node)
{
    const QString text = ItemXml::Read_Text(xml_file, node, QStringLiteral("ID_Text"));
    bool is_number = false;
    text.toInt(&is_number);
    return is_number ? QString() : text;
}

} // namespace

bool LegacyFile::Is_Legacy(const QString& path)
{
    return path.endsWith(list_suffix, Qt::CaseInsensitive);
}

bool LegacyFile::Has_Suffix(const QString& path)
{
    return Is_Legacy(path) || path.endsWith(image_suffix, Qt::CaseInsensitive);
}

QString LegacyFile::Base_Name(const QString& path)
{
    return path.left(path.size() - list_suffix.size());
}

QString LegacyFile::Image_Path(const QString& base_name)
{
    return base_name + image_suffix;
}

TFilePage LegacyFile::Read_Pair(const QString& base_name, const TReadList& read_list)
{
    TFilePage page;
    page.name = TNamedPage::Default_Name(1);
    page.image = TPageImage::From_File(Image_Path(base_name), "PNG");
    if (page.image.isNull())
        throw TXmlFileException(
            QCoreApplication::translate("TQuillet", "Background image not found"),
            TXmlFileException::File_Error);
    TXmlFile xml_file;
    xml_file.d_file_path = base_name + list_suffix;
    int version = 0;
    xml_file.Open(ItemXml::Root_Name, &version, true);
    if (version == 1 || version == 2)
        read_list(&xml_file, version, &page.items);
    return page;
}

TFileContent LegacyFile::Read(const QString& path, int* skipped_count)
{
    TFileContent content;
    int skipped = 0;
    const auto read_list = [&](TXmlFile* xml_file, int version, std::vector<TDataItem>* items) {
        content.label_size = Read_Label_Size(*xml_file);
        content.color_name = Read_Color_Name(*xml_file);
        skipped = Read_Items(*xml_file, version, items);
    };
    content.pages.emplace({Read_Pair(Base_Name(path), read_list)});
    if (skipped_count)
        *skipped_count = skipped;
    return content;
}

int LegacyFile::Read_Label_Size(const TXmlFile& xml_file)
{
    return Read_Setting(xml_file, QStringLiteral("Item_Size"), QStringLiteral("Width")).toInt();
}

QString LegacyFile::Read_Color_Name(const TXmlFile& xml_file)
{
    return Read_Setting(xml_file, QStringLiteral("Colors"), QStringLiteral("Foreground"));
}

int LegacyFile::Read_Items(const TXmlFile& xml_file, int version, std::vector<TDataItem>* items)
{
    assert(items);
    int skipped = 0;
    QDomElement node = xml_file.Get_Node(&xml_file.d_root_element, ItemXml::Item_Name, true);
    while (!node.isNull()) {
        TDataItem item;
        item.id = ItemXml::Read_Integer(xml_file, node, QStringLiteral("ID"));
        item.value = item.id;
        if (version == 2)
            item.text = Read_Label_Text(xml_file, node);
        item.border_type = Border_Type(ItemXml::Read_Integer(xml_file, node, ItemXml::Border_Name));
        const QString position = ItemXml::Read_Text(xml_file, node, ItemXml::Position_Name);
        if (ItemXml::To_Position(position, &item.position))
            items->push_back(item);
        else
            ++skipped;
        node = xml_file.Get_Sibling_Node(&node, ItemXml::Item_Name, true);
    }
    return skipped;
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
