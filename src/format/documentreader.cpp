#include "src/format/documentreader.h"

#include "core/xmlfile.h"
#include "src/format/legacyfile.h"

#include <QCoreApplication>

namespace {

void Add_Items(int page_id, const std::vector<TDataItem>& items, TData* data)
{
    data->Set_Active_Page(page_id);
    for (const TDataItem& item : items)
        data->Add_Item(item);
    data->Set_Active_Page(-1);
}

/// A name as the window would write it: colours have many names, and no colour is black.
QString Color_Name(const QString& name)
{
    return TAppearance::Color(name).name();
}

void Read_Legacy_Appearance(const TXmlFile& xml_file, TAppearance* appearance)
{
    appearance->label_size =
        qBound(TAppearance::Smallest_Label, LegacyFile::Read_Label_Size(xml_file),
               TAppearance::Largest_Label);
    appearance->color_name = Color_Name(LegacyFile::Read_Color_Name(xml_file));
}

} // namespace

TDocument DocumentReader::From_Survey(const TProjectSurvey& survey)
{
    TDocument document;
    document.appearance = {survey.label_size, Color_Name(survey.color_name), survey.header_1,
                           survey.header_2};
    for (const TSurveyedPage& page : survey.pages)
        Add_Items(document.Add_Page(page.name, page.image), page.items, &document.data);
    return document;
}

TDocument DocumentReader::Read_Legacy(const QString& path)
{
    const QString base_name = LegacyFile::Base_Name(path);
    const TPageImage image = LegacyFile::Read_Image(base_name);
    if (image.isNull())
        throw TXmlFileException(
            QCoreApplication::translate("TQuillet", "Background image not found"),
            TXmlFileException::File_Error);
    TDocument document;
    TXmlFile xml_file;
    std::vector<TDataItem> items;
    const int version = LegacyFile::Open(base_name, &xml_file);
    // Other versions are not known: there the image is all.
    if (version == 1 || version == 2)
        Read_Legacy_Appearance(xml_file, &document.appearance);
    if (version == 1)
        LegacyFile::Read_Items_V1(xml_file, &items);
    else if (version == 2)
        LegacyFile::Read_Items_V2(xml_file, &items);
    const int page_id = document.Add_Page(QString(), image);
    document.pages.back().name = WholeDocument::Page_Name(page_id);
    Add_Items(page_id, items, &document.data);
    return document;
}
