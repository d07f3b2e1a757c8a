// Documents of the two earlier generations: an item list (".qld") with one image (".qli") beside
// it.

#include "src/quillet.h"

#include "src/format/legacyfile.h"
#include "src/labelwidget.h"
#include "src/model/numbering.h"
#include "src/pagewidget.h"
#include "src/settingswidget.h"
#include "src/undo/undohistory.h"

#include "core/xmlfile.h"

#include <cassert>

bool TQuillet::Load_Legacy_Data(const QString& base_name)
{
    TProgress progress = New_Progress(tr("Opening page %1 of %2"));
    progress.Step(1, 1);
    const TPageImage image = LegacyFile::Read_Image(base_name);
    if (image.isNull())
        return Fail(tr("Background image not found"));

    progress.Go_On();
    std::vector<TDataItem> items;
    try {
        TXmlFile xml_file;
        const int version = LegacyFile::Open(base_name, &xml_file);
        if (version == 1)
            Load_Legacy_V1(&xml_file, &items);
        else if (version == 2)
            Load_Legacy_V2(&xml_file, &items);
    } catch (const TXmlFileException& exception) {
        return Fail(exception.Message());
    }
    progress.Go_On();
    Set_Legacy_Page(image, items);
    return true;
}

void TQuillet::Load_Legacy_V1(TXmlFile* xml_file, std::vector<TDataItem>* items)
{
    assert(xml_file);
    Read_Legacy_Appearance(*xml_file);
    LegacyFile::Read_Items_V1(*xml_file, items);
}

void TQuillet::Load_Legacy_V2(TXmlFile* xml_file, std::vector<TDataItem>* items)
{
    assert(xml_file);
    Read_Legacy_Appearance(*xml_file);
    LegacyFile::Read_Items_V2(*xml_file, items);
}

void TQuillet::Read_Legacy_Appearance(const TXmlFile& xml_file)
{
    d_settings_widget->Set_Label_Size(LegacyFile::Read_Label_Size(xml_file));
    Set_Label_Color(LegacyFile::Read_Color_Name(xml_file));
}

/// Starts a document with one page.
void TQuillet::Set_Legacy_Page(const TPageImage& image, const std::vector<TDataItem>& items)
{
    d_has_new_document = true;
    d_history->Clear();
    d_data.Clear();
    d_page_widget->Clear();
    const int page_id = d_data.Add_Page(image);
    d_page_widget->Add_Page(page_id);
    d_data.Set_Active_Page(page_id);
    int largest_value = 0;
    for (const TDataItem& item : items) {
        d_data.Add_Item(item);
        largest_value = qMax(largest_value, item.value);
    }
    d_page_widget->Set_Active_Page(page_id);
    d_label_widget->Set_Label_Index(TNumbering::After(largest_value));
}
