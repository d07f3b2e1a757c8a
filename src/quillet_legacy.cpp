// Documents of the two earlier generations: an item list (".qld") and an image (".qli").

#include "src/quillet.h"

#include "src/format/legacyfile.h"
#include "src/settingswidget.h"

#include "core/xmlfile.h"

#include <cassert>

bool TQuillet::Load_Legacy_Data(const QString& base_name)
{
    TProgress progress = New_Progress(tr("Opening page %1 of %2"));
    progress.Begin_Part(1, 1);
    const auto read_list = [&](TXmlFile* xml_file, int version, std::vector<TDataItem>* items) {
        progress.Update();
        if (version == 1)
            Load_Legacy_V1(xml_file, items);
        else
            Load_Legacy_V2(xml_file, items);
    };
    TFileContent content;
    try {
        content.pages.emplace({LegacyFile::Read_Pair(base_name, read_list)});
    } catch (const TXmlFileException& exception) {
        content.fault = exception.Message();
    }
    progress.Update();
    return Show_Content(content, &progress);
}

void TQuillet::Load_Legacy_V1(TXmlFile* xml_file, std::vector<TDataItem>* items)
{
    assert(xml_file);
    Read_Legacy_List(*xml_file, 1, items);
}

void TQuillet::Load_Legacy_V2(TXmlFile* xml_file, std::vector<TDataItem>* items)
{
    assert(xml_file);
    Read_Legacy_List(*xml_file, 2, items);
}

/// Applies each label setting as soon as it is read: it stays even if a later one is missing.
void TQuillet::Read_Legacy_List(const TXmlFile& xml_file, int version,
                                std::vector<TDataItem>* items)
{
    d_settings_widget->Set_Label_Size(LegacyFile::Read_Label_Size(xml_file));
    Set_Label_Color(LegacyFile::Read_Color_Name(xml_file));
    LegacyFile::Read_Items(xml_file, version, items);
}
